// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "TelvaroTaskSwitcherDBusConnector.h"

#include "DBusConnection.h"
#include "DBusConnectionParameter.h"
#include "PropertyReply.h"
#include "QProcessHandler.h"
#include "TelvaroDBusDefinitions.h"
#include "ViewsArgument.h"

#include <QDBusMetaType>
#include <QDBusVariant>
#include <QDebug>

#include <algorithm>
#include <optional>

using TaskSwitcherEntry = TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry;

const QString TelvaroTaskSwitcherDBusConnector::cCurrentViewProperty = QStringLiteral("currentView");
const QString TelvaroTaskSwitcherDBusConnector::cViewsProperty = QStringLiteral("views");
const QString TelvaroTaskSwitcherDBusConnector::cPropertiesChanged = QStringLiteral("PropertiesChanged");

namespace {

// Like Qt's operator>> for QVariantMap, without its extra QVariant per value.
void readAttributes(const QDBusArgument& argument, QVariantMap& attributes)
{
    QString key;
    QDBusVariant value;
    argument.beginMap();
    attributes.clear();
    while (!argument.atEnd()) {
        argument.beginMapEntry();
        argument >> key >> value;
        argument.endMapEntry();
        // Keeps both values of a repeated key.
        static_cast<QMultiMap<QString, QVariant>&>(attributes).insert(key, value.variant());
    }
    argument.endMap();
}

} // namespace

TelvaroTaskSwitcherDBusConnector::TelvaroTaskSwitcherDBusConnector(QObject* parent)
    : TelvaroDBusConnectorBase(DBusConnectionParameter::create(TelvaroDBusDefinitions::getServiceName(),
                                                               TelvaroDBusDefinitions::getTaskSwitcherPath(),
                                                               TelvaroDBusDefinitions::getPropertyInterface()),
                               parent)
{
    qRegisterMetaType<TaskSwitcherEntry>();
    qDBusRegisterMetaType<TaskSwitcherEntry>();

    if (!DBusConnection::subscribe(
            TelvaroDBusDefinitions::getServiceName(), TelvaroDBusDefinitions::getTaskSwitcherPath(),
            TelvaroDBusDefinitions::getPropertyInterface(), cPropertiesChanged, QStringLiteral("sa{sv}as"), this,
            SLOT(onPropertiesChanged(QString, QVariantMap, QStringList)))) {
        qWarning() << "Failed to connect to PropertiesChanged signal";
    }
}

TelvaroTaskSwitcherDBusConnector::~TelvaroTaskSwitcherDBusConnector() = default;

// The return type is spelled out, because it is part of the function name in the warnings.
QList<TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry> TelvaroTaskSwitcherDBusConnector::getViews()
{
    QList<TaskSwitcherEntry> views;
    if (!mInterface.isValid()) {
        qWarning() << "Invalid DBus interface!";
        return views;
    }
    static const QVariantList cArguments = {TelvaroDBusDefinitions::getTaskSwitcherInterface(), cViewsProperty};
    const std::optional<QVariant> value = PropertyReply::getValue(
        mInterface.callWithArgumentList(QDBus::AutoDetect, TelvaroDBusDefinitions::getPropertyMehodGet(), cArguments));
    if (!value) {
        qWarning() << "Unable to read views!";
        return views;
    }
    const auto argument = value->value<QDBusArgument>();
    if (!value->canConvert<QDBusArgument>() || !ViewsArgument::isReadable(argument)) {
        qWarning() << "Unable to parse dbus-reply to dbus-argument";
        return views;
    }
    argument >> views;
    return views;
}

TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry TelvaroTaskSwitcherDBusConnector::getCurrentView()
{
    const QList<TaskSwitcherEntry> views = getViews();
    if (!isInterfaceValid()) {
        return {};
    }
    static const QVariantList cArguments = {TelvaroDBusDefinitions::getTaskSwitcherInterface(), cCurrentViewProperty};
    const std::optional<QVariant> value = PropertyReply::getValue(
        mInterface.callWithArgumentList(QDBus::AutoDetect, TelvaroDBusDefinitions::getPropertyMehodGet(), cArguments));
    if (!value) {
        qWarning() << "Unable to read current view!";
        return {};
    }
    if (!value->canConvert<QString>()) {
        qWarning() << "Unable to parse dbus-reply to dbus-argument";
        return {};
    }
    const QString uuid = value->toString();
    const auto current = std::find_if(views.begin(), views.end(), [&uuid](const TaskSwitcherEntry& view) {
        return view.uuid == uuid;
    });
    if (current == views.end()) {
        qWarning() << "current view not found in all views list";
        return {};
    }
    return *current;
}

QDBusError TelvaroTaskSwitcherDBusConnector::setCurrentView(const TaskSwitcherEntry& entry)
{
    if (!isInterfaceValid()) {
        return QDBusError(QDBusError::UnknownInterface, QStringLiteral("Invalid QDBus Interface"));
    }
    if (entry.uuid.isEmpty()) {
        return QDBusError(QDBusError::InvalidArgs, QStringLiteral("uuid should not be empty"));
    }
    return QDBusError(mInterface.call(QDBus::AutoDetect, TelvaroDBusDefinitions::getPropertyMehodSet(),
                                      TelvaroDBusDefinitions::getTaskSwitcherInterface(), cCurrentViewProperty,
                                      QVariant::fromValue(QDBusVariant(entry.uuid))));
}

TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry
TelvaroTaskSwitcherDBusConnector::pidToTaskSwitcherEntry(uint32_t pid)
{
    const QList<TaskSwitcherEntry> views = getViews();
    const auto found = std::find_if(views.begin(), views.end(), [pid](const TaskSwitcherEntry& view) {
        return view.pid == pid;
    });
    if (found == views.end()) {
        qWarning() << "pid not matched with a view, return empty TaskSwitcherEntry";
        return {};
    }
    return *found;
}

TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry
TelvaroTaskSwitcherDBusConnector::idsToTaskSwitcherEntry(const QString& appId, uint32_t sortIndex)
{
    const QList<TaskSwitcherEntry> views = getViews();
    const auto found = std::find_if(views.begin(), views.end(), [&appId, sortIndex](const TaskSwitcherEntry& view) {
        return view.appId == appId && view.sortIndex == sortIndex;
    });
    if (found == views.end()) {
        qWarning() << "app Id and sortIndex not matched with a view, return empty TaskSwitcherEntry";
        return {};
    }
    return *found;
}

bool TelvaroTaskSwitcherDBusConnector::switchToView(const QString& appId, uint32_t sortIndex)
{
    // The empty entry needs no check here: setCurrentView() rejects it.
    const QDBusError error = setCurrentView(idsToTaskSwitcherEntry(appId, sortIndex));
    if (error.isValid()) {
        qWarning() << "switch view failed" << error;
        return false;
    }
    return true;
}

bool TelvaroTaskSwitcherDBusConnector::iterateViews(bool backward)
{
    QList<TaskSwitcherEntry> views = getViews();
    const TaskSwitcherEntry current = getCurrentView();

    const auto isOfAnotherApplication = [&current](const TaskSwitcherEntry& view) {
        return view.appId != current.appId;
    };
    views.erase(std::remove_if(views.begin(), views.end(), isOfAnotherApplication), views.end());
    if (views.isEmpty()) {
        qWarning() << "iterate view failed: no view is in the view list with current appID";
        return false;
    }
    std::sort(views.begin(), views.end(), [](const TaskSwitcherEntry& left, const TaskSwitcherEntry& right) {
        return left.sortIndex < right.sortIndex;
    });

    const auto found = std::find_if(views.cbegin(), views.cend(), [&current](const TaskSwitcherEntry& view) {
        return view.uuid == current.uuid;
    });
    // The views may have changed between the reads.
    const int position = found == views.cend() ? 0 : static_cast<int>(found - views.cbegin());
    const int step = backward ? views.size() - 1 : 1;
    const int target = (position + step) % views.size();
    if (target == position) {
        return true;
    }
    const QDBusError error = setCurrentView(views.at(target));
    if (error.isValid()) {
        qWarning() << "iterateViews failed:" << error;
        return false;
    }
    return true;
}

uint32_t TelvaroTaskSwitcherDBusConnector::processNameToPid(const QString& processName) const
{
    static const QString cPidOf = QStringLiteral("pidof");

    QProcessHandler process;
    if (process.startProcess(cPidOf, {processName}) != 0) {
        qWarning() << "Unable to find process with name" << processName << process.getStandardError();
        return UINT32_MAX;
    }
    const QString output = process.getStandardOutput();
    bool isNumber = false;
    const int pid = output.toInt(&isNumber);
    if (!isNumber) {
        // "covert" stays: applications may rely on the text of the log.
        qWarning() << "Unable to covert string (" << output << ") to integer";
    }
    return static_cast<uint32_t>(pid);
}

void TelvaroTaskSwitcherDBusConnector::surfaceToTop(const QString& processName)
{
    setCurrentView(pidToTaskSwitcherEntry(processNameToPid(processName)));
}

bool TelvaroTaskSwitcherDBusConnector::isCurrentView(const QString& processName)
{
    const uint32_t pid = processNameToPid(processName);
    return getCurrentView().pid == pid;
}

void TelvaroTaskSwitcherDBusConnector::onPropertiesChanged(const QString& /*name*/, const QVariantMap& map,
                                                           const QStringList& /*list*/)
{
    const auto currentView = map.constFind(cCurrentViewProperty);
    if (currentView != map.constEnd()) {
        if (currentView->canConvert<QString>()) {
            // The notified value may be outdated, so read the current one.
            Q_EMIT currentViewChanged(getCurrentView().uuid);
        } else {
            qWarning() << "Unable to convert current view to string!";
        }
    } else if (map.contains(cViewsProperty)) {
        Q_EMIT viewsChanged();
    }
}

QDBusArgument& operator<<(QDBusArgument& argument, const TaskSwitcherEntry& entry)
{
    argument.beginStructure();
    argument << entry.uuid << entry.appId << entry.info1 << entry.info2 << entry.info3 << entry.info4;
    argument << entry.pid << entry.sortIndex << entry.attributes;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, TaskSwitcherEntry& entry)
{
    argument.beginStructure();
    argument >> entry.uuid >> entry.appId >> entry.info1 >> entry.info2 >> entry.info3 >> entry.info4;
    argument >> entry.pid >> entry.sortIndex;
    readAttributes(argument, entry.attributes);
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, QList<TaskSwitcherEntry>& entries)
{
    argument.beginArray();
    entries.clear();
    while (!argument.atEnd()) {
        // Demarshal in place: copying all the strings of an entry costs more than the list's node.
        entries.append(TaskSwitcherEntry());
        argument >> entries.last();
    }
    argument.endArray();
    return argument;
}
