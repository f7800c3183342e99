// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "Result.h"

#include <QObject>
#include <QSocketNotifier>
#include <QString>
#include <QStringList>

#include <memory>

class BusMessage;
struct DBusConnection;
struct DBusMessage;

/// A connection to the bus whose messages are read but never answered. QtDBus answers every call that it receives, and
/// a monitor that sends anything is disconnected.
class BusStream : public QObject
{
    Q_OBJECT

public:
    static Result<std::unique_ptr<BusStream>> open();
    ~BusStream() override;

    /// Returns the name that the bus has given to this connection.
    QString name() const;

    /// Turns the connection into a monitor of the messages that match `rules`; nothing can be sent from then on.
    MaybeError becomeMonitor(const QStringList& rules);
    /// Subscribes to the signals that match `rules`.
    MaybeError subscribe(const QStringList& rules);
    /// Returns the unique name of the owner of `name`; an empty one if there is none.
    QString ownerOf(const QString& name);

    /// Sends a call to the object and returns its serial. The arguments are texts. Does not wait for the reply.
    quint32 call(const QString& service, const QString& path, const QString& interface, const QString& member,
                 const QStringList& arguments);

Q_SIGNALS:
    void received(const BusMessage& message);
    void disconnected();

private:
    explicit BusStream(DBusConnection* connection);
    void read();

    DBusConnection* mConnection;
    QSocketNotifier mNotifier;
};
