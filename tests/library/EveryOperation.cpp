// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "EveryOperation.h"

#include <QDBusError>
#include <QDBusVariant>
#include <QDir>
#include <QVariant>

namespace {

QString text(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

QString text(const TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry& entry)
{
    return QStringLiteral("view \"%1\"").arg(entry.uuid);
}

std::vector<NamedOperation> makeOperations()
{
    const QString application = QStringLiteral("app");
    const QString process = QStringLiteral("no-such-process");
    std::vector<NamedOperation> operations;
    const auto add = [&operations](const char* name, std::function<QString(Connectors&)> call) {
        operations.push_back({QString::fromLatin1(name), std::move(call)});
    };
    const auto addSilent = [&add](const char* name, std::function<void(Connectors&)> call) {
        add(name, [call](Connectors& c) {
            call(c);
            return QString();
        });
    };

    add("isInterfaceValid", [](Connectors& c) {
        return text(c.overlay.isInterfaceValid());
    });
    add("getViews", [](Connectors& c) {
        return QString::number(c.taskSwitcher.getViews().size());
    });
    add("getCurrentView", [](Connectors& c) {
        return text(c.taskSwitcher.getCurrentView());
    });
    add("setCurrentView", [](Connectors& c) {
        TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry entry;
        entry.uuid = QStringLiteral("a");
        return c.taskSwitcher.setCurrentView(entry).name();
    });
    add("setCurrentView without uuid", [](Connectors& c) {
        return c.taskSwitcher.setCurrentView({}).name();
    });
    add("pidToTaskSwitcherEntry", [](Connectors& c) {
        return text(c.taskSwitcher.pidToTaskSwitcherEntry(1));
    });
    add("idsToTaskSwitcherEntry", [=](Connectors& c) {
        return text(c.taskSwitcher.idsToTaskSwitcherEntry(application, 0));
    });
    add("switchToView", [=](Connectors& c) {
        return text(c.taskSwitcher.switchToView(application, 0));
    });
    add("iterateViews to the next", [](Connectors& c) {
        return text(c.taskSwitcher.iterateViews(false));
    });
    add("iterateViews to the previous", [](Connectors& c) {
        return text(c.taskSwitcher.iterateViews(true));
    });
    add("processNameToPid", [=](Connectors& c) {
        return QString::number(c.taskSwitcher.processNameToPid(process));
    });
    addSilent("surfaceToTop", [=](Connectors& c) {
        c.taskSwitcher.surfaceToTop(process);
    });
    add("isCurrentView", [=](Connectors& c) {
        return text(c.taskSwitcher.isCurrentView(process));
    });
    addSilent("enableScreenSaver", [](Connectors& c) {
        c.screen.enableScreenSaver();
    });
    addSilent("disableScreenSaver", [](Connectors& c) {
        c.screen.disableScreenSaver();
    });
    addSilent("setScreenSaverTimeout", [](Connectors& c) {
        c.screen.setScreenSaverTimeout(1);
    });
    add("isScreenSaverActive", [](Connectors& c) {
        return text(c.screen.isScreenSaverActive());
    });
    add("getOrientation", [](Connectors& c) {
        return c.screen.getOrientation();
    });
    addSilent("setOrientation", [](Connectors& c) {
        c.screen.setOrientation(QStringLiteral("90"));
    });
    addSilent("setFullScreen", [](Connectors& c) {
        c.screen.setFullScreen(true);
    });
    add("getFullScreen", [](Connectors& c) {
        return text(c.screen.getFullScreen());
    });
    add("getProperty", [](Connectors& c) {
        return c.screen.getProperty(QStringLiteral("orientation")).toString();
    });
    addSilent("setProperty", [](Connectors& c) {
        c.screen.setProperty(QStringLiteral("orientation"), QDBusVariant(QStringLiteral("90")));
    });
    addSilent("showGlobalOverlay", [](Connectors& c) {
        c.overlay.showGlobalOverlay(QStringLiteral("message"));
    });
    addSilent("hideGlobalOverlay", [](Connectors& c) {
        c.overlay.hideGlobalOverlay();
    });
    addSilent("notify", [](Connectors& c) {
        c.notification.notify(QStringLiteral("icon"), QStringLiteral("summary"), QStringLiteral("body"),
                              {QStringLiteral("id"), QStringLiteral("label")});
    });
    add("captureScreenShot", [](Connectors& c) {
        return c.screenShot.captureScreenShot(QDir::tempPath()).value_or(QString());
    });
    add("captureScreenShot into no directory", [](Connectors& c) {
        return c.screenShot.captureScreenShot(QStringLiteral("/no/such/folder")).value_or(QString());
    });
    return operations;
}

} // namespace

const std::vector<NamedOperation>& everyOperation()
{
    static const std::vector<NamedOperation> operations = makeOperations();
    return operations;
}

QMap<QString, Outcome> outcomesWithoutService(const QStringList& baseMessages, const QStringList& viewsMessages)
{
    const QStringList& base = baseMessages;
    const QStringList& views = viewsMessages;
    const QString noPid = QStringLiteral("pid not matched with a view, return empty TaskSwitcherEntry");
    const QString noIds =
        QStringLiteral("app Id and sortIndex not matched with a view, return empty TaskSwitcherEntry");
    const QString noStep = QStringLiteral("iterate view failed: no view is in the view list with current appID");
    const QString noSwitch = QStringLiteral("switch view failed QDBusError(\"org.freedesktop.DBus.Error."
                                            "UnknownInterface\", \"Invalid QDBus Interface\")");
    const QString noProcess = QStringLiteral("Unable to find process with name \"no-such-process\" \"\"");
    const QString refused = QStringLiteral("org.freedesktop.DBus.Error.UnknownInterface");
    const QString no = text(false);
    const QString none = text(TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry());
    const auto unconverted = [](const char* property, const char* type) {
        return QStringLiteral("Unable to convert property  \"%1\" to %2!")
            .arg(QLatin1String(property), QLatin1String(type));
    };
    return {
        {QStringLiteral("isInterfaceValid"), {no, base}},
        {QStringLiteral("getViews"), {QStringLiteral("0"), views}},
        {QStringLiteral("getCurrentView"), {none, views + base}},
        {QStringLiteral("setCurrentView"), {refused, base}},
        {QStringLiteral("setCurrentView without uuid"), {refused, base}},
        {QStringLiteral("pidToTaskSwitcherEntry"), {none, views + QStringList{noPid}}},
        {QStringLiteral("idsToTaskSwitcherEntry"), {none, views + QStringList{noIds}}},
        {QStringLiteral("switchToView"), {no, views + QStringList{noIds} + base + QStringList{noSwitch}}},
        {QStringLiteral("iterateViews to the next"), {no, views + views + base + QStringList{noStep}}},
        {QStringLiteral("iterateViews to the previous"), {no, views + views + base + QStringList{noStep}}},
        {QStringLiteral("processNameToPid"), {QStringLiteral("4294967295"), {noProcess}}},
        {QStringLiteral("surfaceToTop"), {QString(), QStringList{noProcess} + views + QStringList{noPid} + base}},
        {QStringLiteral("isCurrentView"), {no, QStringList{noProcess} + views + base}},
        {QStringLiteral("enableScreenSaver"), {QString(), base}},
        {QStringLiteral("disableScreenSaver"), {QString(), base}},
        {QStringLiteral("setScreenSaverTimeout"), {QString(), base}},
        {QStringLiteral("isScreenSaverActive"), {no, base + QStringList{unconverted("screenSaverActive", "bool")}}},
        {QStringLiteral("getOrientation"), {QString(), base + QStringList{unconverted("orientation", "QString")}}},
        {QStringLiteral("setOrientation"), {QString(), base}},
        {QStringLiteral("setFullScreen"), {QString(), base}},
        {QStringLiteral("getFullScreen"), {no, base + QStringList{unconverted("fullScreen", "bool")}}},
        {QStringLiteral("getProperty"), {QString(), base}},
        {QStringLiteral("setProperty"), {QString(), base}},
        {QStringLiteral("showGlobalOverlay"), {QString(), base}},
        {QStringLiteral("hideGlobalOverlay"), {QString(), base}},
        {QStringLiteral("notify"), {QString(), base}},
        {QStringLiteral("captureScreenShot"), {QString(), base}},
        {QStringLiteral("captureScreenShot into no directory"), {QString(), base}},
    };
}
