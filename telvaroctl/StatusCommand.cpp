// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Command.h"
#include "Console.h"
#include "DeepStatus.h"
#include "Json.h"
#include "Manifest.h"
#include "Service.h"
#include "Table.h"
#include "TimeLimit.h"

#include <TelvaroDBusDefinitions.h>
#include <TelvaroDeviceDistinction.h>
#include <TelvaroScreenDBusConnector.h>
#include <TelvaroTaskSwitcherDBusConnector.h>

#include <QCommandLineParser>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingReply>
#include <QJsonArray>
#include <QJsonObject>
#include <QString>

#include <map>

namespace {

using Names = TelvaroDBusDefinitions;

const QString cDeep = QStringLiteral("deep");

struct Owner
{
    QString name;
    uint pid = 0;
};

Owner serviceOwner()
{
    QDBusPendingReply<QString> name =
        Service::askBus(QStringLiteral("GetNameOwner"), {Names::getServiceName()}, TimeLimit::beyond());
    name.waitForFinished();
    if (name.isError()) {
        return {};
    }
    QDBusPendingReply<uint> pid =
        Service::askBus(QStringLiteral("GetConnectionUnixProcessID"), {name.value()}, TimeLimit::beyond());
    pid.waitForFinished();
    return {name.value(), pid.isError() ? 0 : pid.value()};
}

QDBusPendingCall ask(const QString& path, const QString& interface, const QString& method, const QStringList& arguments)
{
    QDBusMessage question = QDBusMessage::createMethodCall(Names::getServiceName(), path, interface, method);
    question.setAutoStartService(false);
    for (const QString& argument : arguments) {
        question << argument;
    }
    return Service::bus().asyncCall(question, TimeLimit::remainingButReserve());
}

QDBusPendingCall askProperty(const QString& path, const QString& interface, const QString& property)
{
    return ask(path, Names::getPropertyInterface(), Names::getPropertyMehodGet(), {interface, property});
}

/// Asks for the description of an object, all of whose methods have an effect.
QDBusPendingCall askDescription(const QString& path)
{
    return ask(path, QStringLiteral("org.freedesktop.DBus.Introspectable"), QStringLiteral("Introspect"), {});
}

/// Returns the state of each object by its name: empty if it answers, or what is wrong.
std::map<QString, QString> askObjects()
{
    std::map<QString, QDBusPendingCall> questions = {
        {QStringLiteral("globaloverlay"), askDescription(Names::getGlobalOverlayPath())},
        {QStringLiteral("notifications"),
         ask(Names::getNotificationsPath(), Names::getNotificationsInterface(), QStringLiteral("GetServerInformation"),
             {})},
        {QStringLiteral("screen"),
         askProperty(Names::getScreenPath(), Names::getScreenInterface(),
                     TelvaroScreenDBusConnector::cScreenSaverActiveProperty)},
        {QStringLiteral("screenshot"), askDescription(Names::getScreenShotPath())},
        {QStringLiteral("taskswitcher"),
         askProperty(Names::getTaskSwitcherPath(), Names::getTaskSwitcherInterface(),
                     TelvaroTaskSwitcherDBusConnector::cViewsProperty)},
    };
    std::map<QString, QString> states;
    for (auto& [name, question] : questions) {
        question.waitForFinished();
        const bool isSilent = question.isError() && question.error().type() == QDBusError::NoReply;
        states[name] = isSilent  ? QStringLiteral("does not answer")
            : question.isError() ? Service::reason(question.error())
                                 : QString();
    }
    return states;
}

ExitStatus showStatus(bool asJson, bool isDeep)
{
    const bool isDevice = TelvaroDeviceDistinction::isCompositorDevice();
    const bool isBusThere = Service::connectToBus();
    const Owner owner = isBusThere ? serviceOwner() : Owner();
    const bool isServiceThere = !owner.name.isEmpty();

    std::map<QString, QString> states;
    bool isEachAnswering = isServiceThere;
    if (isServiceThere) {
        states = askObjects();
        for (const auto& [name, state] : states) {
            isEachAnswering = isEachAnswering && state.isEmpty();
        }
    }
    const bool isUsable = isDevice && isEachAnswering;
    const QList<DeepStatus::Item> items = isUsable && isDeep ? DeepStatus::examine() : QList<DeepStatus::Item>();
    bool isFlawless = true;

    QJsonObject proxies;
    QJsonObject objects;
    QJsonObject deep;
    QJsonArray unchanged;
    Table table({QStringLiteral("WHAT"), QStringLiteral("STATE")});
    table.addRow({QStringLiteral("compositor device"), isDevice ? QStringLiteral("yes") : QStringLiteral("no")});
    table.addRow({QStringLiteral("manifest"), Manifest::path()});
    const QString code = Manifest::productCode();
    table.addRow({QStringLiteral("product code"), code.isEmpty() ? QStringLiteral("unknown") : code});
    table.addRow({QStringLiteral("%1 bus").arg(Service::busName()), Service::busAddress()});
    table.addRow({QStringLiteral("service %1").arg(Names::getServiceName()),
                  isServiceThere ? QStringLiteral("registered") : QStringLiteral("not registered")});
    if (isServiceThere) {
        table.addRow({QStringLiteral("owner"), QStringLiteral("%1, process %2").arg(owner.name).arg(owner.pid)});
    }
    for (const char* name : {"globaloverlay", "notifications", "screen", "screenshot", "taskswitcher"}) {
        const QString object = QLatin1String(name);
        const QString state = !isServiceThere ? QStringLiteral("is not there")
            : states.at(object).isEmpty()     ? QStringLiteral("answers")
                                              : states.at(object);
        proxies.insert(object, isServiceThere && states.at(object).isEmpty());
        objects.insert(object, state);
        table.addRow({QStringLiteral("object %1").arg(object), state});
    }
    for (const DeepStatus::Item& item : items) {
        isFlawless = isFlawless && item.problems.isEmpty();
        deep.insert(item.name, QJsonArray::fromStringList(item.problems));
        QString state = item.problems.isEmpty() ? QStringLiteral("agrees") : item.problems.join(QStringLiteral("; "));
        if (item.isUnchanged) {
            unchanged.append(item.name);
            state += QStringLiteral("; not changed, so its notifications are unknown");
        }
        table.addRow({item.name, state});
    }

    if (asJson) {
        QJsonObject object{
            {QStringLiteral("compositorDevice"), isDevice},
            {QStringLiteral("manifest"), Manifest::path()},
            {QStringLiteral("productCode"), code},
            {QStringLiteral("bus"), Service::busName()},
            {QStringLiteral("busAddress"), Service::busAddress()},
            {QStringLiteral("service"), Names::getServiceName()},
            {QStringLiteral("serviceRegistered"), isServiceThere},
            {QStringLiteral("owner"), owner.name},
            {QStringLiteral("ownerPid"), static_cast<qint64>(owner.pid)},
            {QStringLiteral("proxies"), proxies},
            {QStringLiteral("objects"), objects},
        };
        if (isDeep) {
            object.insert(QStringLiteral("deep"), deep);
            object.insert(QStringLiteral("deepUnchanged"), unchanged);
        }
        printJson(object);
    } else {
        printText(table.toText(terminalWidth()));
    }
    if (!isDevice) {
        printError(QStringLiteral("this is not a compositor device: %1").arg(Manifest::advice()));
    } else if (isBusThere && !isServiceThere) {
        printError(Service::notOnTheBus());
    } else if (isServiceThere && !isEachAnswering) {
        printError(QStringLiteral("not every object of the service answers"));
    } else if (!isFlawless) {
        printError(QStringLiteral("the service does not agree with its interfaces"));
    }
    return isUsable && isFlawless ? Done : Failed;
}

} // namespace

QList<Command> statusCommands()
{
    return {
        {"status", "Shows whether the compositor can be used from here.", "",
         "Exits with 0 if this is a compositor device, the service is registered on the bus and each of its objects "
         "answers, else with 1.",
         [] {
             return jsonOption()
                 + QList<QCommandLineOption>{
                     {cDeep,
                      QStringLiteral(
                          "Compares the introspection, the values and the notifications of a service, to bring "
                          "up a device. Changes each setting of the screen and the "
                          "current view for a moment.")}};
         },
         [](const QCommandLineParser& parser, const QStringList& /*arguments*/) {
             return showStatus(isJsonWanted(parser), parser.isSet(cDeep));
         }},
    };
}
