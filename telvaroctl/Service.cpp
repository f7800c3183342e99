// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Service.h"

#include "Console.h"
#include "Manifest.h"
#include "TimeLimit.h"
#include "UnixSignals.h"

#include <TelvaroDBusDefinitions.h>
#include <TelvaroDeviceDistinction.h>
#include <TelvaroScreen.h>
#include <TelvaroTaskSwitcher.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QEventLoop>

namespace {

const QString cSession = QStringLiteral("session");
const QString cSystem = QStringLiteral("system");
constexpr int cSettlingMilliseconds = 1000;

bool isNameStored = false;
const QString cBuiltBus = QStringLiteral(TELVARO_BUS_NAME);
QString chosenBus = cBuiltBus;

QString serviceName()
{
    return QStringLiteral("the service %1").arg(TelvaroDBusDefinitions::getServiceName());
}

const char* variableOf(const QString& bus)
{
    return bus == cSystem ? "DBUS_SYSTEM_BUS_ADDRESS" : "DBUS_SESSION_BUS_ADDRESS";
}

QString addressOf(const QString& bus)
{
    const QString directory = qEnvironmentVariable("XDG_RUNTIME_DIR");
    const QString standard = bus == cSystem ? QStringLiteral("unix:path=/var/run/dbus/system_bus_socket")
        : directory.isEmpty()               ? QString()
                                            : QStringLiteral("unix:path=%1/bus").arg(directory);
    return qEnvironmentVariable(variableOf(bus), standard);
}

/// Starts Qt's D-Bus thread with SIGINT, SIGTERM and SIGHUP blocked, so that the main thread alone decides whether they
/// end the process: by default they do, whatever it is blocked in.
void startQtsThread()
{
    UnixSignals::block();
    // The first connection object starts it, even one that names no connection.
    const QDBusConnection none(QStringLiteral("none"));
    UnixSignals::unblock();
}

/// Returns when Qt's thread has done what it had to do before the call, or after the timeout.
void waitForQt(int timeoutMilliseconds = -1)
{
    Service::askBus(QStringLiteral("GetId"), {}, timeoutMilliseconds).waitForFinished();
}

/// From the first turn of the event loop on, Qt's thread stores the names of this process without the lock under which
/// calls to a service read them. Replies from the bus itself, for which the names are not read, ensure that the first
/// name has been stored.
void letQtStoreNames()
{
    waitForQt();
    QCoreApplication::processEvents();
    waitForQt();
    waitForQt();
    isNameStored = true;
}

template <typename Object> ExitStatus with(const std::function<ExitStatus(Object&)>& function)
{
    if (!Service::connect()) {
        return Failed;
    }
    Object object;
    object.setTimeout(TimeLimit::beyond());
    return Service::waitFor(object) ? function(object) : Failed;
}

} // namespace

QString Service::busName()
{
    return chosenBus;
}

void Service::chooseBus(const QString& bus)
{
    const bool isNamed = bus == cSession || bus == cSystem;
    const QString address = isNamed ? addressOf(bus) : bus;
    chosenBus = isNamed ? bus : cBuiltBus;
    if (bus != cBuiltBus) {
        qputenv(variableOf(cBuiltBus), address.toLocal8Bit());
    }
}

QString Service::busAddress()
{
    return addressOf(cBuiltBus);
}

QDBusConnection Service::bus()
{
    return QDBusConnection::TELVARO_BUS();
}

bool Service::connect()
{
    if (!TelvaroDeviceDistinction::isCompositorDevice()) {
        printError(QStringLiteral("this is not a compositor device: %1").arg(Manifest::advice()));
        return false;
    }
    return connectToBus();
}

bool Service::connectToBus()
{
    TimeLimit::expect(QStringLiteral("the bus %1 does not answer").arg(busAddress()));
    startQtsThread();
    const bool isConnected = bus().isConnected();
    if (isConnected) {
        letQtStoreNames();
    } else {
        const QString address = busAddress();
        printError(address.isEmpty()
                       ? QStringLiteral("there is no bus: %1 is not set").arg(QLatin1String(variableOf(chosenBus)))
                       : QStringLiteral("there is no bus at %1").arg(address));
    }
    TimeLimit::expect(noAnswer());
    return isConnected;
}

QDBusPendingCall Service::askBus(const QString& method, const QStringList& arguments, int timeoutMilliseconds)
{
    const QString bus = QStringLiteral("org.freedesktop.DBus");
    QDBusMessage question = QDBusMessage::createMethodCall(bus, QStringLiteral("/org/freedesktop/DBus"), bus, method);
    for (const QString& argument : arguments) {
        question << argument;
    }
    return Service::bus().asyncCall(question, timeoutMilliseconds);
}

void Service::settle()
{
    if (isNameStored) {
        waitForQt(cSettlingMilliseconds);
    }
}

bool Service::waitFor(const TelvaroLiveObject& object)
{
    QEventLoop loop;
    QObject::connect(&object, &TelvaroLiveObject::statusChanged, &loop, [&object, &loop] {
        if (object.getStatus() != TelvaroLiveObject::Loading) {
            loop.quit();
        }
    });
    if (object.getStatus() == TelvaroLiveObject::Loading) {
        loop.exec();
    }
    if (object.getStatus() == TelvaroLiveObject::Ready) {
        return true;
    }
    printError(object.getStatus() == TelvaroLiveObject::Failed ? reason(object.getError()) : notOnTheBus());
    return false;
}

bool Service::waitFor(QDBusPendingCall request)
{
    request.waitForFinished();
    if (request.isError()) {
        printError(reason(request.error()));
    }
    return !request.isError();
}

ExitStatus Service::withTaskSwitcher(const std::function<ExitStatus(TelvaroTaskSwitcher&)>& function)
{
    return with(function);
}

ExitStatus Service::withScreen(const std::function<ExitStatus(TelvaroScreen&)>& function)
{
    return with(function);
}

QString Service::reason(const QDBusError& error)
{
    if (!bus().isConnected()) {
        return busEnd();
    }
    if (error.name() == QLatin1String("org.freedesktop.DBus.Error.NameHasNoOwner")) {
        return notOnTheBus();
    }
    if (error.type() == QDBusError::NoReply) {
        return noAnswer();
    }
    return error.message().isEmpty() ? error.name() : QStringLiteral("%1: %2").arg(error.name(), error.message());
}

QString Service::noAnswer()
{
    return QStringLiteral("%1 does not answer").arg(serviceName());
}

QString Service::notOnTheBus()
{
    return bus().isConnected() ? QStringLiteral("%1 is not on the bus").arg(serviceName()) : busEnd();
}

QString Service::busEnd()
{
    return QStringLiteral("the bus has ended");
}
