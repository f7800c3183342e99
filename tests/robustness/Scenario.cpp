// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Scenario.h"

#include "ScriptedServiceProcess.h"
#include "TelvaroTaskSwitcherDBusConnector.h"
#include "ValueText.h"
#include "Warnings.h"

#include <QFile>
#include <QMap>

#include <algorithm>
#include <stdexcept>

using TaskSwitcherEntry = TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry;

namespace {

TaskSwitcherEntry view(const QString& uuid, const QString& appId, uint32_t pid, uint32_t sortIndex)
{
    TaskSwitcherEntry entry;
    entry.uuid = uuid;
    entry.appId = appId;
    entry.pid = pid;
    entry.sortIndex = sortIndex;
    return entry;
}

} // namespace

Scenario::Scenario()
{
    if (!QFile::link(QStringLiteral("/bin/echo"), mDirectory.filePath(QStringLiteral("pidof")))) {
        throw std::runtime_error("cannot make a pidof in " + mDirectory.path().toStdString());
    }
    qputenv("PATH", mDirectory.path().toLocal8Bit() + ':' + qgetenv("PATH"));
}

void Scenario::set(ScriptedServiceProcess& service)
{
    const QString path = QStringLiteral("/screen");
    const QString interface = QStringLiteral("de.Telvaro.screen");
    service.setViews(views());
    service.setCurrentView(QStringLiteral("one"));
    service.setProperty(path, interface, QStringLiteral("screenSaverActive"), QStringLiteral("true"));
    service.setProperty(path, interface, QStringLiteral("orientation"), QStringLiteral("'90'"));
    service.setProperty(path, interface, QStringLiteral("fullScreen"), QStringLiteral("true"));
}

QString Scenario::result(const QString& operation)
{
    static const QMap<QString, QString> cResults{
        {QStringLiteral("isInterfaceValid"), QStringLiteral("true")},
        {QStringLiteral("getViews"), QStringLiteral("one two three")},
        {QStringLiteral("getCurrentView"), QStringLiteral("one")},
        {QStringLiteral("setCurrentView"), QStringLiteral("accepted")},
        {QStringLiteral("pidToTaskSwitcherEntry"), QStringLiteral("two")},
        {QStringLiteral("idsToTaskSwitcherEntry"), QStringLiteral("two")},
        {QStringLiteral("switchToView"), QStringLiteral("true")},
        {QStringLiteral("iterateViews forward"), QStringLiteral("true")},
        {QStringLiteral("iterateViews backward"), QStringLiteral("true")},
        {QStringLiteral("processNameToPid"), QStringLiteral("102")},
        {QStringLiteral("isCurrentView"), QStringLiteral("true")},
        {QStringLiteral("getProperty"), QStringLiteral("300")},
        {QStringLiteral("isScreenSaverActive"), QStringLiteral("true")},
        {QStringLiteral("getOrientation"), QStringLiteral("90")},
        {QStringLiteral("getFullScreen"), QStringLiteral("true")},
        {QStringLiteral("captureScreenShot"), QStringLiteral("/shots/1.png")},
    };
    return cResults.value(operation);
}

bool Scenario::isFailure(const QString& operation, const QString& result)
{
    if (operation == QLatin1String("processNameToPid")) {
        return result == Scenario::result(operation);
    }
    if (operation == QLatin1String("setCurrentView")) {
        static const QStringList cErrors{
            QStringLiteral("org.freedesktop.DBus.Error.UnknownInterface: Invalid QDBus Interface"),
            QStringLiteral("org.freedesktop.DBus.Error.NoReply: "),
            QStringLiteral("org.freedesktop.DBus.Error.ServiceUnknown: "),
            QStringLiteral("org.freedesktop.DBus.Error.Disconnected: "),
        };
        return std::any_of(cErrors.begin(), cErrors.end(), [&result](const QString& error) {
            return result.startsWith(error);
        });
    }
    if (operation == QLatin1String("captureScreenShot")) {
        return result == QLatin1String("nothing");
    }
    return result == (Scenario::result(operation) == QLatin1String("true") ? QStringLiteral("false") : QString());
}

bool Scenario::isFailureLog(const QStringList& log)
{
    static const QStringList cTexts{
        Warnings::cAbsent,        Warnings::cInvalid, Warnings::cUnreadViews, Warnings::cUnreadCurrentView,
        Warnings::cNoCurrentView, Warnings::cNoPid,   Warnings::cNoIds,       Warnings::cNoStep,
    };
    static const QStringList cBeginnings{
        QStringLiteral("switch view failed QDBusError(\"org.freedesktop.DBus.Error."),
        QStringLiteral("iterateViews failed: QDBusError(\"org.freedesktop.DBus.Error."),
        QStringLiteral("Unable to read property:  \""),
        QStringLiteral("Unable to convert property  \""),
        QStringLiteral("Reply of  \"ScreenShot\" is invalid! \""),
        QStringLiteral("Failed to connect to PropertiesChanged si"),
    };
    return std::all_of(log.begin(), log.end(), [](const QString& text) {
        return cTexts.contains(text)
            || std::any_of(cBeginnings.begin(), cBeginnings.end(), [&text](const QString& beginning) {
                   return text.startsWith(beginning);
               });
    });
}

QString Scenario::views()
{
    const QString application = QStringLiteral("app");
    return ValueText::views({view(QStringLiteral("one"), application, 101, 1),
                             view(QStringLiteral("two"), application, 102, 2),
                             view(QStringLiteral("three"), QStringLiteral("other"), 103, 0)});
}
