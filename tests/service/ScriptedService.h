// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "GObjectPointer.h"
#include "Introspection.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QMap>
#include <QString>

/// A service that does what it is told. It sits on the raw connection below any object model, so that it sees every
/// method call and nothing is answered on its behalf.
///
/// What a call is answered with, in this order: the script for its path, interface and member (and, for Get and Set,
/// property); the object's description for Introspect; the stored value for Get; an empty reply for a Set, which is
/// stored and signalled only by a stateful service; an error otherwise.
///
/// A script is a list of behaviours of which each call consumes the first; the last one stays.
class ScriptedService
{
public:
    /// Connects to the bus at the address. Throws std::runtime_error where it cannot.
    ScriptedService(const QString& address, const QString& interfaceDirectory);
    ~ScriptedService();
    ScriptedService(const ScriptedService&) = delete;
    ScriptedService& operator=(const ScriptedService&) = delete;

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
    struct Event;

    static GDBusMessage* filter(GDBusConnection* connection, GDBusMessage* message, gboolean incoming,
                                gpointer service);
    static gboolean onCall(gpointer event);
    static gboolean onDelayOver(gpointer event);

    void receive(GDBusMessage* call);
    void behave(GDBusMessage* call, const QJsonObject& behaviour);
    void answer(GDBusMessage* call, const QJsonObject& behaviour);
    void answerByDefault(GDBusMessage* call, const Target& target);
    QList<QJsonObject>* findScript(const Target& target);
    void send(GDBusMessage* message);
    void sendReply(GDBusMessage* call, GVariantPointer body);
    void sendError(GDBusMessage* call, const QString& name, const QString& text);
    void emitSignal(const QJsonObject& signal);
    void requestName(const QString& name);
    void releaseName(const QString& name);
    void waitForBus();
    static void expectResult(const GVariantPointer& reply, guint32 expected);
    GVariantPointer callBusDaemon(const char* member, GVariant* arguments);

    GObjectPointer<GDBusConnection> mConnection;
    guint mFilter;
    Introspection mIntrospection;
    QJsonArray mCalls;
    QMap<Target, QList<QJsonObject>> mScripts;
    QMap<Target, QString> mProperties;
    bool mStateful = false;
};
