// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Operations.h"

#include "Warnings.h"

#include <QDBusVariant>

#include <algorithm>
#include <stdexcept>

using TaskSwitcherEntry = TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry;
using namespace Warnings;

struct Operations::Entry
{
    const char* name;
    QString (*perform)(Operations& self);
    const char* result;
    const char* failure;
    Messages messages;
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

QString setCurrentView(Operations& self, const QString& uuid)
{
    TaskSwitcherEntry view;
    view.uuid = uuid;
    return text(self.taskSwitcher().setCurrentView(view));
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

Message toBus(const char* member, const QStringList& log = {})
{
    return {QLatin1String(member), {}, {}, {}, log};
}

Message toService(const char* path, const char* interface, const char* member, const QStringList& log = {})
{
    return {QLatin1String(member), QLatin1String(path), QLatin1String(interface), {}, log};
}

Message toProperty(const char* member, const char* property, const QStringList& log)
{
    const QString name = QLatin1String(property);
    const bool isOfViews = name == QLatin1String("views") || name == QLatin1String("currentView");
    return {
        QLatin1String(member), isOfViews ? QStringLiteral("/taskswitcher") : QStringLiteral("/screen"), {}, name, log};
}

Message get(const char* property, const QStringList& log)
{
    return toProperty("Get", property, log);
}

Message set(const char* property, const QStringList& log = {})
{
    return toProperty("Set", property, log);
}

/// The presence query, which precedes everything but reads of the views.
Messages presence(const QStringList& further = {})
{
    return {toBus("NameHasOwner", QStringList(cAbsent) + further)};
}

/// Constructs and destroys a proxy, with messages in between.
Messages construction(const char* path, const Messages& between = {}, const QStringList& log = {})
{
    return Messages{toService(path, "org.freedesktop.DBus.Introspectable", "Introspect", log), toBus("AddMatch", log),
                    toBus("GetNameOwner", log)}
    + between + Messages{toBus("RemoveMatch"), toBus("RemoveMatch")};
}

Messages subscription()
{
    return {toBus("AddMatch"), toBus("AddMatch"), toBus("GetNameOwner"), toBus("RemoveMatch"), toBus("RemoveMatch")};
}

Messages screenConstruction()
{
    const QString active = QStringLiteral("screenSaverActive");
    const QStringList log{unconverted(active), cUnsubscribedScreen};
    return construction("/screen",
                        presence(log) + Messages{get("screenSaverActive", QStringList(unread(active)) + log)}
                            + subscription(),
                        QStringList(cAbsent) + log);
}

Messages read(const char* property)
{
    const QString name = QLatin1String(property);
    return presence({unconverted(name)}) + Messages{get(property, {unread(name), unconverted(name)})};
}

Messages write(const char* property)
{
    return presence() + Messages{set(property)};
}

Messages call(const char* path, const char* interface, const char* member, const QStringList& log = {})
{
    return presence() + Messages{toService(path, interface, member, log)};
}

Messages currentView()
{
    return Messages{get("views", {cUnreadViews, cAbsent})} + presence()
        + Messages{get("currentView", {cUnreadCurrentView})};
}

QString disconnected()
{
    return error(QStringLiteral("org.freedesktop.DBus.Error.Disconnected"),
                 QStringLiteral("Not connected to D-Bus server"));
}

Messages switching()
{
    const QString failed = cSwitchFailed + cInvalidInterface;
    return Messages{get("views", {cUnreadViews, cNoIds, cAbsent, failed})} + presence({failed})
        + Messages{set("currentView", {cSwitchFailed + disconnected()})};
}

Messages iteration()
{
    return Messages{get("views", {cUnreadViews, cUnreadViews, cAbsent, cNoStep}),
                    get("views", {cUnreadViews, cAbsent, cNoStep})}
    + presence({cNoStep}) + Messages{get("currentView", {cUnreadCurrentView, cNoStep})}
    + presence({cStepFailed + cInvalidInterface}) + Messages{set("currentView", {cStepFailed + disconnected()})};
}

} // namespace

const QList<Operations::Entry>& Operations::table()
{
    static const QList<Entry> cTable{
        {"new TelvaroTaskSwitcherDBusConnector", construct<TelvaroTaskSwitcherDBusConnector>, "", "",
         construction("/taskswitcher", subscription(), {cUnsubscribedTaskSwitcher})},
        {"new TelvaroScreenDBusConnector", construct<TelvaroScreenDBusConnector>, "", "", screenConstruction()},
        {"new TelvaroGlobalOverlayDBusConnector", construct<TelvaroGlobalOverlayDBusConnector>, "", "",
         construction("/globaloverlay")},
        {"new TelvaroNotificationDBusConnector", construct<TelvaroNotificationDBusConnector>, "", "",
         construction("/org/freedesktop/Notifications")},
        {"new TelvaroScreenShotDBusConnector", construct<TelvaroScreenShotDBusConnector>, "", "",
         construction("/screenshot")},
        {"isInterfaceValid",
         [](Operations& self) {
             return text(self.overlay().isInterfaceValid());
         },
         "true", "false", presence()},
        {"getViews",
         [](Operations& self) {
             return text(self.taskSwitcher().getViews());
         },
         "one two three",
         "",
         {get("views", {cUnreadViews})}},
        {"getCurrentView",
         [](Operations& self) {
             return self.taskSwitcher().getCurrentView().uuid;
         },
         "one", "", currentView()},
        {"setCurrentView",
         [](Operations& self) {
             return setCurrentView(self, QStringLiteral("two"));
         },
         "accepted", "org.freedesktop.DBus.Error.UnknownInterface: Invalid QDBus Interface", write("currentView")},
        {"setCurrentView without uuid",
         [](Operations& self) {
             return setCurrentView(self, {});
         },
         "org.freedesktop.DBus.Error.InvalidArgs: uuid should not be empty",
         "org.freedesktop.DBus.Error.UnknownInterface: Invalid QDBus Interface", presence()},
        {"pidToTaskSwitcherEntry",
         [](Operations& self) {
             return self.taskSwitcher().pidToTaskSwitcherEntry(102).uuid;
         },
         "two",
         "",
         {get("views", {cUnreadViews, cNoPid})}},
        {"idsToTaskSwitcherEntry",
         [](Operations& self) {
             return self.taskSwitcher().idsToTaskSwitcherEntry(QStringLiteral("app"), 2).uuid;
         },
         "two",
         "",
         {get("views", {cUnreadViews, cNoIds})}},
        {"switchToView",
         [](Operations& self) {
             return text(self.taskSwitcher().switchToView(QStringLiteral("app"), 2));
         },
         "true", "false", switching()},
        {"iterateViews forward",
         [](Operations& self) {
             return text(self.taskSwitcher().iterateViews(false));
         },
         "true", "false", iteration()},
        {"iterateViews backward",
         [](Operations& self) {
             return text(self.taskSwitcher().iterateViews(true));
         },
         "true", "false", iteration()},
        {"processNameToPid",
         [](Operations& self) {
             return QString::number(self.taskSwitcher().processNameToPid(QStringLiteral("102")));
         },
         "102",
         "102",
         {}},
        {"surfaceToTop",
         [](Operations& self) {
             self.taskSwitcher().surfaceToTop(QStringLiteral("102"));
             return QString();
         },
         "", "", Messages{get("views", {cUnreadViews, cNoPid, cAbsent})} + write("currentView")},
        {"isCurrentView",
         [](Operations& self) {
             return text(self.taskSwitcher().isCurrentView(QStringLiteral("101")));
         },
         "true", "false", currentView()},
        {"getProperty",
         [](Operations& self) {
             return self.screen().getProperty(QStringLiteral("screenSaverTimeoutSeconds")).toString();
         },
         "300", "",
         presence()
             + Messages{get("screenSaverTimeoutSeconds", {unread(QStringLiteral("screenSaverTimeoutSeconds"))})}},
        {"setProperty",
         [](Operations& self) {
             self.screen().setProperty(QStringLiteral("orientation"), QDBusVariant(QStringLiteral("180")));
             return QString();
         },
         "", "", write("orientation")},
        {"enableScreenSaver",
         [](Operations& self) {
             self.screen().enableScreenSaver();
             return QString();
         },
         "", "", write("screenSaverEnabled")},
        {"disableScreenSaver",
         [](Operations& self) {
             self.screen().disableScreenSaver();
             return QString();
         },
         "", "", write("screenSaverEnabled")},
        {"setScreenSaverTimeout",
         [](Operations& self) {
             self.screen().setScreenSaverTimeout(600);
             return QString();
         },
         "", "", write("screenSaverTimeoutSeconds")},
        {"isScreenSaverActive",
         [](Operations& self) {
             return text(self.screen().isScreenSaverActive());
         },
         "true", "false", read("screenSaverActive")},
        {"getOrientation",
         [](Operations& self) {
             return self.screen().getOrientation();
         },
         "90", "", read("orientation")},
        {"setOrientation",
         [](Operations& self) {
             self.screen().setOrientation(TelvaroScreenDBusConnector::getOrientationPortrait());
             return QString();
         },
         "", "", write("orientation")},
        {"setFullScreen",
         [](Operations& self) {
             self.screen().setFullScreen(true);
             return QString();
         },
         "", "", write("fullScreen")},
        {"getFullScreen",
         [](Operations& self) {
             return text(self.screen().getFullScreen());
         },
         "true", "false", read("fullScreen")},
        {"showGlobalOverlay",
         [](Operations& self) {
             self.overlay().showGlobalOverlay(QStringLiteral("Charge the battery"));
             return QString();
         },
         "", "", call("/globaloverlay", "de.Telvaro.globaloverlay", "Show")},
        {"hideGlobalOverlay",
         [](Operations& self) {
             self.overlay().hideGlobalOverlay();
             return QString();
         },
         "", "", call("/globaloverlay", "de.Telvaro.globaloverlay", "Hide")},
        {"notify",
         [](Operations& self) {
             self.notification().notify(QStringLiteral("mail"), QStringLiteral("Mail"), QStringLiteral("Two new"),
                                        {QStringLiteral("open"), QStringLiteral("Open")});
             return QString();
         },
         "", "", call("/org/freedesktop/Notifications", "org.freedesktop.Notifications", "Notify")},
        {"captureScreenShot",
         [](Operations& self) {
             return self.screenShot().captureScreenShot(QStringLiteral("/")).value_or(QStringLiteral("nothing"));
         },
         "/shots/1.png", "nothing",
         call("/screenshot", "de.Telvaro.screenshot", "ScreenShot",
              {invalidScreenShot(QStringLiteral("Not connected to D-Bus server"))})},
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

const Operations::Entry& Operations::entry(const QString& name)
{
    const auto found = std::find_if(table().begin(), table().end(), [&name](const Entry& candidate) {
        return name == QLatin1String(candidate.name);
    });
    if (found == table().end()) {
        throw std::invalid_argument("no operation \"" + name.toStdString() + '"');
    }
    return *found;
}

QString Operations::result(const QString& name)
{
    return QLatin1String(entry(name).result);
}

QString Operations::failure(const QString& name)
{
    return QLatin1String(entry(name).failure);
}

Messages Operations::messages(const QString& name)
{
    return entry(name).messages;
}

bool Operations::isFailure(const QString& name, const QString& result)
{
    if (name == QLatin1String("setCurrentView")) {
        static const QStringList cErrors{
            QStringLiteral("org.freedesktop.DBus.Error.NoReply: "),
            QStringLiteral("org.freedesktop.DBus.Error.ServiceUnknown: "),
            QStringLiteral("org.freedesktop.DBus.Error.Disconnected: "),
        };
        for (const QString& error : cErrors) {
            if (result.startsWith(error)) {
                return true;
            }
        }
    }
    return result == failure(name);
}

bool Operations::isFailureLog(const QStringList& log)
{
    static const QStringList cTexts{
        cAbsent, cInvalid, cUnreadViews, cUnreadCurrentView,        cNoCurrentView,
        cNoPid,  cNoIds,   cNoStep,      cUnsubscribedTaskSwitcher, cUnsubscribedScreen,
    };
    static const QStringList cBeginnings{
        cSwitchFailed + QStringLiteral("QDBusError(\"org.freedesktop.DBus.Error."),
        cStepFailed + QStringLiteral("QDBusError(\"org.freedesktop.DBus.Error."),
        QStringLiteral("Unable to read property:  \""),
        QStringLiteral("Unable to convert property  \""),
        QStringLiteral("Reply of  \"ScreenShot\" is invalid! \""),
    };
    return std::all_of(log.begin(), log.end(), [](const QString& text) {
        return cTexts.contains(text)
            || std::any_of(cBeginnings.begin(), cBeginnings.end(), [&text](const QString& beginning) {
                   return text.startsWith(beginning);
               });
    });
}

QString Operations::perform(const QString& name)
{
    return entry(name).perform(*this);
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
