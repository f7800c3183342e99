// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "PrivateBus.h"

#include <QCoreApplication>
#include <QDBusMessage>

PrivateBus::PrivateBus()
{
    mDaemon.setProcessChannelMode(QProcess::SeparateChannels);
    mDaemon.setStandardErrorFile(mDirectory.filePath(QStringLiteral("bus.log")));
    mDaemon.run(QStringLiteral("dbus-daemon"),
                {QStringLiteral("--nofork"), QStringLiteral("--print-address"),
                 QStringLiteral("--config-file=" TELVARO_BUS_CONFIGURATION),
                 QStringLiteral("--address=unix:dir=") + mDirectory.path()});
    setAddress(mDaemon.readOutputLine());
}

QString PrivateBus::address()
{
    return qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS");
}

void PrivateBus::setAddress(const QByteArray& address)
{
    qputenv("DBUS_SESSION_BUS_ADDRESS", address);
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", address);
}

QDBusConnection PrivateBus::connection()
{
    return QDBusConnection::TELVARO_BUS();
}

void PrivateBus::synchronise()
{
    // Messages are ordered: everything that the bus has sent before this reply is queued in this process.
    const QDBusMessage query =
        QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
                                       QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetId"));
    connection().call(query);
}

void PrivateBus::deliver()
{
    static const bool cIsReady = waitForNames();
    Q_UNUSED(cIsReady)
    synchronise();
    QCoreApplication::processEvents();
}

// From the first turn of the event loop on, Qt's thread stores the names of this process without the lock under which
// calls to a service read them. Two replies from the bus itself, for which the names are not read, ensure that the
// first name has been stored.
bool PrivateBus::waitForNames()
{
    synchronise();
    QCoreApplication::processEvents();
    synchronise();
    synchronise();
    return true;
}

qint64 PrivateBus::processId() const
{
    return mDaemon.processId();
}

void PrivateBus::kill()
{
    mDaemon.end();
}

void PrivateBus::freeze()
{
    mDaemon.freeze();
}

void PrivateBus::thaw()
{
    mDaemon.thaw();
}
