// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "CompositorBus.h"

#include "PrivateBus.h"

#include <QDBusArgument>
#include <QDBusVariant>

#include <stdexcept>

const QString CompositorBus::cTaskSwitcherPath = QStringLiteral("/taskswitcher");
const QString CompositorBus::cTaskSwitcher = QStringLiteral("de.Telvaro.taskswitcher");
const QString CompositorBus::cScreenPath = QStringLiteral("/screen");
const QString CompositorBus::cScreen = QStringLiteral("de.Telvaro.screen");
const QString CompositorBus::cOverlayPath = QStringLiteral("/globaloverlay");
const QString CompositorBus::cOverlay = QStringLiteral("de.Telvaro.globaloverlay");
const QString CompositorBus::cScreenShotPath = QStringLiteral("/screenshot");
const QString CompositorBus::cScreenShot = QStringLiteral("de.Telvaro.screenshot");
const QString CompositorBus::cNotificationsPath = QStringLiteral("/org/freedesktop/Notifications");
const QString CompositorBus::cNotifications = QStringLiteral("org.freedesktop.Notifications");
const QString CompositorBus::cProperties = QStringLiteral("org.freedesktop.DBus.Properties");

QDBusMessage CompositorBus::call(const QString& path, const QString& interface, const QString& member,
                                 const QVariantList& arguments)
{
    QDBusMessage message =
        QDBusMessage::createMethodCall(QStringLiteral(TELVARO_SERVICE_NAME), path, interface, member);
    message.setArguments(arguments);
    return PrivateBus::connection().call(message);
}

QVariantList CompositorBus::callChecked(const QString& path, const QString& interface, const QString& member,
                                        const QVariantList& arguments)
{
    const QDBusMessage reply = call(path, interface, member, arguments);
    if (reply.type() != QDBusMessage::ReplyMessage) {
        throw std::runtime_error((member + QStringLiteral(": ") + errorOf(reply)).toStdString());
    }
    return reply.arguments();
}

QVariant CompositorBus::get(const QString& path, const QString& interface, const QString& property)
{
    return callChecked(path, cProperties, QStringLiteral("Get"), {interface, property})
        .value(0)
        .value<QDBusVariant>()
        .variant();
}

QDBusMessage CompositorBus::set(const QString& path, const QString& interface, const QString& property,
                                const QVariant& value)
{
    return call(path, cProperties, QStringLiteral("Set"),
                {interface, property, QVariant::fromValue(QDBusVariant(value))});
}

QList<CompositorBus::View> CompositorBus::views()
{
    const auto argument = get(cTaskSwitcherPath, cTaskSwitcher, QStringLiteral("views")).value<QDBusArgument>();
    if (argument.currentSignature() != QLatin1String("a(ssssssuua{sv})")) {
        throw std::runtime_error("unexpected signature " + argument.currentSignature().toStdString());
    }
    QList<View> views;
    argument >> views;
    return views;
}

QString CompositorBus::currentView()
{
    return get(cTaskSwitcherPath, cTaskSwitcher, QStringLiteral("currentView")).toString();
}

CompositorBus::View CompositorBus::viewWithTitle(const QString& title)
{
    for (const View& view : views()) {
        if (view.info1 == title) {
            return view;
        }
    }
    return {};
}

QString CompositorBus::errorOf(const QDBusMessage& reply)
{
    return reply.type() == QDBusMessage::ErrorMessage ? reply.errorName() + QStringLiteral(": ") + reply.errorMessage()
                                                      : QString();
}
