// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "TaskSwitcherFixture.h"

#include "PrivateBus.h"
#include "ValueText.h"

namespace {

const QString cPath = QStringLiteral("/taskswitcher");
const QString cInterface = QStringLiteral("de.Telvaro.taskswitcher");
const QString cGet = QStringLiteral("Get");
const QString cSet = QStringLiteral("Set");
const QString cViews = QStringLiteral("views");
const QString cCurrentView = QStringLiteral("currentView");

QString getCall(const QString& property)
{
    return QStringLiteral("/taskswitcher org.freedesktop.DBus.Properties.Get ss('de.Telvaro.taskswitcher', '%1')")
        .arg(property);
}

} // namespace

TaskSwitcherEntry TaskSwitcherFixture::makeView(const QString& uuid, const QString& appId, quint32 sortIndex,
                                                quint32 pid)
{
    TaskSwitcherEntry entry;
    entry.uuid = uuid;
    entry.appId = appId;
    entry.sortIndex = sortIndex;
    entry.pid = pid;
    return entry;
}

QStringList TaskSwitcherFixture::uuids(const QList<TaskSwitcherEntry>& entries)
{
    QStringList uuids;
    for (const TaskSwitcherEntry& entry : entries) {
        uuids.append(entry.uuid);
    }
    return uuids;
}

bool TaskSwitcherFixture::isEmpty(const TaskSwitcherEntry& entry)
{
    return entry.uuid.isEmpty() && entry.appId.isEmpty() && entry.info1.isEmpty() && entry.info2.isEmpty()
        && entry.info3.isEmpty() && entry.info4.isEmpty() && entry.pid == 0 && entry.sortIndex == 0
        && entry.attributes.isEmpty();
}

QString TaskSwitcherFixture::warning(const QString& operation, const QString& text)
{
    return QStringLiteral(
               "warning default TelvaroTaskSwitcherDBusConnector.cpp TelvaroTaskSwitcherDBusConnector::%1 %2")
        .arg(operation, text);
}

QString TaskSwitcherFixture::getViewsCall()
{
    return getCall(cViews);
}

QString TaskSwitcherFixture::getCurrentViewCall()
{
    return getCall(cCurrentView);
}

QString TaskSwitcherFixture::setCurrentViewCall(const QString& uuid)
{
    return QStringLiteral("/taskswitcher org.freedesktop.DBus.Properties.Set "
                          "ssv('de.Telvaro.taskswitcher', 'currentView', <'%1'>)")
        .arg(uuid);
}

void TaskSwitcherFixture::setViews(const QList<TaskSwitcherEntry>& entries, const QString& currentView)
{
    mService.setViews(ValueText::views(entries));
    mService.setCurrentView(currentView);
}

void TaskSwitcherFixture::emitPropertiesChanged(const QString& changed, const QStringList& invalidated)
{
    mService.emitSignal(ServiceSignal::propertiesChanged(cPath, cInterface, changed, invalidated));
    PrivateBus::deliver();
}

void TaskSwitcherFixture::scriptViews(const QList<Behaviour>& behaviours)
{
    mService.scriptProperty(cGet, cPath, cViews, behaviours);
}

void TaskSwitcherFixture::scriptCurrentView(const QList<Behaviour>& behaviours)
{
    mService.scriptProperty(cGet, cPath, cCurrentView, behaviours);
}

void TaskSwitcherFixture::scriptSetCurrentView(const QList<Behaviour>& behaviours)
{
    mService.scriptProperty(cSet, cPath, cCurrentView, behaviours);
}
