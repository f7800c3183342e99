// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "HandwrittenTaskSwitcher.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMetaType>
#include <QDBusReply>
#include <QDBusVariant>

#include <algorithm>

HandwrittenTaskSwitcher::HandwrittenTaskSwitcher()
    : mProperties(QStringLiteral(TELVARO_SERVICE_NAME), QStringLiteral("/taskswitcher"),
                  QStringLiteral("org.freedesktop.DBus.Properties"), QDBusConnection::TELVARO_BUS())
{
    qDBusRegisterMetaType<ViewRecord>();
    QDBusConnection::TELVARO_BUS().connect(QStringLiteral(TELVARO_SERVICE_NAME), QStringLiteral("/taskswitcher"),
                                           QStringLiteral("org.freedesktop.DBus.Properties"),
                                           QStringLiteral("PropertiesChanged"), this,
                                           SLOT(onPropertiesChanged(QString, QVariantMap, QStringList)));
}

ViewRecordList HandwrittenTaskSwitcher::views()
{
    const QDBusReply<QDBusVariant> reply =
        mProperties.call(QStringLiteral("Get"), QStringLiteral("de.Telvaro.taskswitcher"), QStringLiteral("views"));
    if (!reply.isValid()) {
        return {};
    }
    return qdbus_cast<ViewRecordList>(reply.value().variant());
}

ViewRecord HandwrittenTaskSwitcher::currentView()
{
    const ViewRecordList all = views();
    if (!mProperties.connection().interface()->isServiceRegistered(mProperties.service())) {
        return {};
    }
    const QDBusReply<QDBusVariant> reply = mProperties.call(
        QStringLiteral("Get"), QStringLiteral("de.Telvaro.taskswitcher"), QStringLiteral("currentView"));
    if (!reply.isValid()) {
        return {};
    }
    const QString uuid = reply.value().variant().toString();
    const auto current = std::find_if(all.begin(), all.end(), [&uuid](const ViewRecord& view) {
        return view.uuid == uuid;
    });
    return current != all.end() ? *current : ViewRecord();
}

bool HandwrittenTaskSwitcher::setCurrentView(const ViewRecord& view)
{
    if (!mProperties.connection().interface()->isServiceRegistered(mProperties.service())) {
        return false;
    }
    const QDBusMessage reply =
        mProperties.call(QStringLiteral("Set"), QStringLiteral("de.Telvaro.taskswitcher"),
                         QStringLiteral("currentView"), QVariant::fromValue(QDBusVariant(view.uuid)));
    return reply.type() == QDBusMessage::ReplyMessage;
}

bool HandwrittenTaskSwitcher::stepToNextView()
{
    const ViewRecordList all = views();
    const ViewRecord current = currentView();
    ViewRecordList ofApplication;
    std::copy_if(all.begin(), all.end(), std::back_inserter(ofApplication), [&current](const ViewRecord& view) {
        return view.appId == current.appId;
    });
    if (ofApplication.isEmpty()) {
        return false;
    }
    std::sort(ofApplication.begin(), ofApplication.end(), [](const ViewRecord& left, const ViewRecord& right) {
        return left.sortIndex < right.sortIndex;
    });
    auto next = std::find_if(ofApplication.begin(), ofApplication.end(), [&current](const ViewRecord& view) {
        return view.uuid == current.uuid;
    });
    if (next == ofApplication.end() || ++next == ofApplication.end()) {
        next = ofApplication.begin();
    }
    return setCurrentView(*next);
}

void HandwrittenTaskSwitcher::onPropertiesChanged(const QString& /*interface*/, const QVariantMap& changed,
                                                  const QStringList& /*invalidated*/)
{
    if (changed.contains(QStringLiteral("currentView"))) {
        Q_EMIT currentViewChanged(currentView().uuid);
    }
}
