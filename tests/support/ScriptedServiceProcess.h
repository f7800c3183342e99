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
    /// A broadcast if empty.
    QString destination = {};
    int count = 1;

    static ServiceSignal propertiesChanged(const QString& path, const QString& interface, const QString& changed,
                                           const QStringList& invalidated = {});

    QJsonObject toJson() const;
};

/// The service's behaviour for one call.
class Behaviour
{
public:
    static Behaviour reply(const QStringList& arguments = {});
    static Behaviour error(const QString& name, const QString& message);
    static Behaviour silence();
    /// What the service does unless a reply is scripted.
    static Behaviour plain();
    /// Ends the service's process instead of replying.
    static Behaviour exit();
    /// Kills the process instead of replying.
    static Behaviour killing(qint64 processId);

    /// The same behaviour after a delay.
    Behaviour after(int milliseconds) const;
    /// The same behaviour, preceded by a signal.
    Behaviour withSignal(const ServiceSignal& signal) const;

    QJsonObject toJson() const;

private:
    explicit Behaviour(const QJsonObject& description);

    QJsonObject mDescription;
};

/// The compositor service of the tests, in a process of its own. Once started, it has the objects of the interface
/// files and the state of a plain service: the screen is on, "0" degrees, not full; there are no views; every method
/// succeeds. Tests change what they need.
class ScriptedServiceProcess : public SteeredProcess
{
public:
    ScriptedServiceProcess();

    /// Starts the process, without its bus name.
    void start() override;

    /// Resets the state to that of a plain service and drops the recorded calls.
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

    /// A stateful service stores written properties and emits PropertiesChanged.
    void setStateful(bool enabled);

    /// Delays the service's replies to Get and Set, unless they are scripted, by these milliseconds in turn.
    void setLate(const QList<int>& delays);

    /// Returns once the bus has forwarded the signals.
    void emitSignal(const ServiceSignal& signal, int count = 1);

    /// Takes all calls since the last time.
    QList<RecordedCall> takeCalls();
    /// As above, only the descriptions.
    QStringList takeDescriptions();

    QString uniqueName();
};
