// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "PrivateBus.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QFile>

#include <stdexcept>

PrivateBus::PrivateBus()
{
    const QString configuration = mDirectory.filePath(QStringLiteral("bus.conf"));
    writeConfiguration(configuration);
    mDaemon.setProcessChannelMode(QProcess::SeparateChannels);
    mDaemon.setStandardErrorFile(mDirectory.filePath(QStringLiteral("bus.log")));
    mDaemon.run(QStringLiteral("dbus-daemon"),
                {QStringLiteral("--nofork"), QStringLiteral("--print-address"),
                 QStringLiteral("--config-file=") + configuration});
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
    // What the bus has sent before an answer is queued for its receivers in this process before the answer is here.
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

// From the first turn of the event loop on Qt's own thread notes the names of this process, without the lock under
// which a call to a service reads them. When the bus itself, for which they are not read, has answered twice, the first
// of them is noted.
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

// The limits are those of an ordinary session bus.
void PrivateBus::writeConfiguration(const QString& path) const
{
    QFile file(path);
    const QString configuration = QStringLiteral(R"(<!DOCTYPE busconfig PUBLIC
 "-//freedesktop//DTD D-BUS Bus Configuration 1.0//EN" "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:dir=%1</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
  <limit name="max_incoming_bytes">1000000000</limit>
  <limit name="max_outgoing_bytes">1000000000</limit>
  <limit name="max_message_size">1000000000</limit>
  <limit name="max_completed_connections">100000</limit>
  <limit name="max_incomplete_connections">10000</limit>
  <limit name="max_connections_per_user">100000</limit>
  <limit name="max_names_per_connection">50000</limit>
  <limit name="max_match_rules_per_connection">50000</limit>
  <limit name="max_replies_per_connection">50000</limit>
</busconfig>
)")
                                      .arg(mDirectory.path());
    if (!file.open(QIODevice::WriteOnly) || file.write(configuration.toUtf8()) < 0) {
        throw std::runtime_error("cannot write " + path.toStdString());
    }
}
