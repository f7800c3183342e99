// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "BusService.h"
#include "Introspection.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QMap>
#include <QString>

/// The scriptable service.
///
/// The reply to a call is, in this order: the script for its path, interface and member (and, for Get and Set,
/// property); the object's description for Introspect; the stored value for Get; an empty reply for a Set, which is
/// stored and signalled only by a stateful service; an error otherwise.
///
/// A script is a list of behaviours of which each call consumes the first; the last one stays.
///
/// A late service makes its plain answers at once and sends each some time later, by a list of delays that it goes
/// through over and over, so that answers may overtake each other, and be overtaken by signals.
class ScriptedService : public BusService
{
public:
    /// Connects to the bus at the address. Throws std::runtime_error on a failure.
    ScriptedService(const QString& address, const QString& interfaceDirectory);

    QJsonObject handle(const QJsonObject& command);

private:
    struct Target
    {
        QString path;
        QString interface;
        QString member;
        QString property;

        bool operator<(const Target& other) const;
    };
    struct DelayedAnswer;
    struct DelayedReply;

    static Target targetOf(GDBusMessage* call);
    static gboolean onDelayOver(gpointer delayedAnswer);
    static gboolean onReplyDue(gpointer delayedReply);

    void receive(GDBusMessage* call) override;
    void behave(GDBusMessage* call, const QJsonObject& behaviour);
    void answer(GDBusMessage* call, const QJsonObject& behaviour);
    void answerByDefault(GDBusMessage* call, const Target& target);
    QList<QJsonObject>* findScript(const Target& target);
    void sendReply(GDBusMessage* call, GVariantPointer body, int delay = 0);
    int takeDelay();
    void sendError(GDBusMessage* call, const QString& name, const QString& text);
    void emitSignal(const QJsonObject& signal);
    void waitForBus();

    Introspection mIntrospection;
    QJsonArray mCalls;
    QMap<Target, QList<QJsonObject>> mScripts;
    QMap<Target, QString> mProperties;
    bool mStateful = false;
    QList<int> mDelays;
};
