// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Operations.h"

#include <QDBusVariant>

#include <algorithm>
#include <stdexcept>

using TaskSwitcherEntry = TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry;

struct Operations::Entry
{
    const char* name;
    Operation perform;
};

namespace {

QString text(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

QString text(const QDBusError& error)
{
    return error.isValid() ? error.name() + QStringLiteral(": ") + error.message() : QStringLiteral("accepted");
}

QString text(const QList<TaskSwitcherEntry>& views)
{
    QStringList uuids;
    for (const TaskSwitcherEntry& view : views) {
        uuids.append(view.uuid);
    }
    return uuids.join(QLatin1Char(' '));
}

template <typename Connector> QString construct(Operations&)
{
    const Connector connector;
    return {};
}

template <typename Connector> Connector& made(std::unique_ptr<Connector>& connector)
{
    if (!connector) {
        connector = std::make_unique<Connector>();
    }
    return *connector;
}

} // namespace

const QList<Operations::Entry>& Operations::table()
{
    static const QList<Entry> cTable{
        {"new TelvaroTaskSwitcherDBusConnector", construct<TelvaroTaskSwitcherDBusConnector>},
        {"new TelvaroScreenDBusConnector", construct<TelvaroScreenDBusConnector>},
        {"new TelvaroGlobalOverlayDBusConnector", construct<TelvaroGlobalOverlayDBusConnector>},
        {"new TelvaroNotificationDBusConnector", construct<TelvaroNotificationDBusConnector>},
        {"new TelvaroScreenShotDBusConnector", construct<TelvaroScreenShotDBusConnector>},
        {"isInterfaceValid",
         [](Operations& self) {
             return text(self.overlay().isInterfaceValid());
         }},
        {"getViews",
         [](Operations& self) {
             return text(self.taskSwitcher().getViews());
         }},
        {"getCurrentView",
         [](Operations& self) {
             return self.taskSwitcher().getCurrentView().uuid;
         }},
        {"setCurrentView",
         [](Operations& self) {
             TaskSwitcherEntry view;
             view.uuid = QStringLiteral("two");
             return text(self.taskSwitcher().setCurrentView(view));
         }},
        {"pidToTaskSwitcherEntry",
         [](Operations& self) {
             return self.taskSwitcher().pidToTaskSwitcherEntry(102).uuid;
         }},
        {"idsToTaskSwitcherEntry",
         [](Operations& self) {
             return self.taskSwitcher().idsToTaskSwitcherEntry(QStringLiteral("app"), 2).uuid;
         }},
        {"switchToView",
         [](Operations& self) {
             return text(self.taskSwitcher().switchToView(QStringLiteral("app"), 2));
         }},
        {"iterateViews forward",
         [](Operations& self) {
             return text(self.taskSwitcher().iterateViews(false));
         }},
        {"iterateViews backward",
         [](Operations& self) {
             return text(self.taskSwitcher().iterateViews(true));
         }},
        {"processNameToPid",
         [](Operations& self) {
             return QString::number(self.taskSwitcher().processNameToPid(QStringLiteral("102")));
         }},
        {"surfaceToTop",
         [](Operations& self) {
             self.taskSwitcher().surfaceToTop(QStringLiteral("102"));
             return QString();
         }},
        {"isCurrentView",
         [](Operations& self) {
             return text(self.taskSwitcher().isCurrentView(QStringLiteral("101")));
         }},
        {"getProperty",
         [](Operations& self) {
             return self.screen().getProperty(QStringLiteral("screenSaverTimeoutSeconds")).toString();
         }},
        {"setProperty",
         [](Operations& self) {
             self.screen().setProperty(QStringLiteral("orientation"), QDBusVariant(QStringLiteral("180")));
             return QString();
         }},
        {"enableScreenSaver",
         [](Operations& self) {
             self.screen().enableScreenSaver();
             return QString();
         }},
        {"disableScreenSaver",
         [](Operations& self) {
             self.screen().disableScreenSaver();
             return QString();
         }},
        {"setScreenSaverTimeout",
         [](Operations& self) {
             self.screen().setScreenSaverTimeout(600);
             return QString();
         }},
        {"isScreenSaverActive",
         [](Operations& self) {
             return text(self.screen().isScreenSaverActive());
         }},
        {"getOrientation",
         [](Operations& self) {
             return self.screen().getOrientation();
         }},
        {"setOrientation",
         [](Operations& self) {
             self.screen().setOrientation(TelvaroScreenDBusConnector::getOrientationPortrait());
             return QString();
         }},
        {"setFullScreen",
         [](Operations& self) {
             self.screen().setFullScreen(true);
             return QString();
         }},
        {"getFullScreen",
         [](Operations& self) {
             return text(self.screen().getFullScreen());
         }},
        {"showGlobalOverlay",
         [](Operations& self) {
             self.overlay().showGlobalOverlay(QStringLiteral("Charge the battery"));
             return QString();
         }},
        {"hideGlobalOverlay",
         [](Operations& self) {
             self.overlay().hideGlobalOverlay();
             return QString();
         }},
        {"notify",
         [](Operations& self) {
             self.notification().notify(QStringLiteral("mail"), QStringLiteral("Mail"), QStringLiteral("Two new"),
                                        {QStringLiteral("open"), QStringLiteral("Open")});
             return QString();
         }},
        {"captureScreenShot",
         [](Operations& self) {
             return self.screenShot().captureScreenShot(QStringLiteral("/")).value_or(QStringLiteral("nothing"));
         }},
    };
    return cTable;
}

QStringList Operations::names()
{
    QStringList names;
    for (const Entry& entry : table()) {
        names.append(QLatin1String(entry.name));
    }
    return names;
}

bool Operations::isConstruction(const QString& name)
{
    return name.startsWith(QLatin1String("new "));
}

QString Operations::perform(const QString& name)
{
    const auto entry = std::find_if(table().begin(), table().end(), [&name](const Entry& candidate) {
        return name == QLatin1String(candidate.name);
    });
    if (entry == table().end()) {
        throw std::invalid_argument("no operation \"" + name.toStdString() + '"');
    }
    return entry->perform(*this);
}

void Operations::prepare()
{
    taskSwitcher();
    screen();
    overlay();
    notification();
    screenShot();
}

TelvaroTaskSwitcherDBusConnector& Operations::taskSwitcher()
{
    return made(mTaskSwitcher);
}

TelvaroScreenDBusConnector& Operations::screen()
{
    return made(mScreen);
}

TelvaroGlobalOverlayDBusConnector& Operations::overlay()
{
    return made(mOverlay);
}

TelvaroNotificationDBusConnector& Operations::notification()
{
    return made(mNotification);
}

TelvaroScreenShotDBusConnector& Operations::screenShot()
{
    return made(mScreenShot);
}
