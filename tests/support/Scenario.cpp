// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Scenario.h"

#include "ScriptedServiceProcess.h"
#include "TelvaroTaskSwitcherDBusConnector.h"
#include "ValueText.h"

#include <QFile>

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

QString Scenario::views()
{
    const QString application = QStringLiteral("app");
    return ValueText::views({view(QStringLiteral("one"), application, 101, 1),
                             view(QStringLiteral("two"), application, 102, 2),
                             view(QStringLiteral("three"), QStringLiteral("other"), 103, 0)});
}
