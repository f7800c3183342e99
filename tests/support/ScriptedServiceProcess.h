// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "RecordedCall.h"
#include "SteeredProcess.h"

#include <QList>

/// A signal of the service; arguments in GVariant's text format.
struct ServiceSignal
{
    QString path;
    QString interface;
    QString member;
    QStringList arguments;
    /// Everybody, where empty.
    QString destination = {};
    int count = 1;

    static ServiceSignal propertiesChanged(const QString& path, const QString& interface, const QString& changed,
                                           const QStringList& invalidated = {});

    QJsonObject toJson() const;
};

/// What the service does with one call.
class Behaviour
{
public:
    static Behaviour reply(const QStringList& arguments = {});
    static Behaviour error(const QString& name, const QString& message);
    static Behaviour silence();
    /// What the service does where nothing is scripted.
    static Behaviour plain();
    /// Ends the service's process before it answers.
    static Behaviour exit();
    /// Ends another process instead of answering.
    static Behaviour killing(qint64 processId);

    /// The same, that many milliseconds later.
    Behaviour after(int milliseconds) const;
    /// The same, and a signal just before.
    Behaviour withSignal(const ServiceSignal& signal) const;

    QJsonObject toJson() const;

private:
    explicit Behaviour(const QJsonObject& description);

    QJsonObject mDescription;
};

/// The compositor service of the tests, in a process of its own. Once started it has the objects of the interface
/// files and answers like a plain service: the screen is on, "0" degrees, not full; there are no views; every method
/// succeeds. Tests change what they need.
class ScriptedServiceProcess : public SteeredProcess
{
public:
    ScriptedServiceProcess();

    /// Starts the process, without its bus name.
    void start() override;

    /// Back to the answers of a plain service; forgets the calls.
    void reset();

    void own(const QString& name = QStringLiteral(TELVARO_SERVICE_NAME));
    /// As above, and takes the name from one that has taken it in the same way, with no gap between the two. That one
    /// gets it back when this one ends.
    void takeOver(const QString& name = QStringLiteral(TELVARO_SERVICE_NAME));
    void release(const QString& name = QStringLiteral(TELVARO_SERVICE_NAME));

    /// Each call consumes the first behaviour; the last one stays.
    void script(const QString& path, const QString& interface, const QString& member,
                const QList<Behaviour>& behaviours);
    /// As above, for Get or Set of one property.
    void scriptProperty(const QString& method, const QString& path, const QString& property,
                        const QList<Behaviour>& behaviours);
    /// The value of a property, in GVariant's text format.
    void setProperty(const QString& path, const QString& interface, const QString& name, const QString& value);

    void setViews(const QString& value);
    void setCurrentView(const QString& uuid);

    /// A stateful service stores what is written to a property and signals it.
    void setStateful(bool enabled);

    /// A late service sends the answers to Get and Set, if they are not scripted, that many milliseconds after it has
    /// made them; it goes through the list of delays over and over.
    void setLate(const QList<int>& delays);

    /// Returns once the bus has handed the signals on.
    void emitSignal(const ServiceSignal& signal, int count = 1);

    /// All calls since the last time.
    QList<RecordedCall> takeCalls();
    /// As above, of each its description only.
    QStringList takeDescriptions();

    QString uniqueName();
};
