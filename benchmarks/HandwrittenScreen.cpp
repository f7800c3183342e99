// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "HandwrittenScreen.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusReply>
#include <QDBusVariant>

HandwrittenScreen::HandwrittenScreen()
    : mProperties(QStringLiteral(TELVARO_SERVICE_NAME), QStringLiteral("/screen"),
                  QStringLiteral("org.freedesktop.DBus.Properties"), QDBusConnection::TELVARO_BUS())
    , mIsScreenSaverActive(isScreenSaverActive())
{
    QDBusConnection::TELVARO_BUS().connect(QStringLiteral(TELVARO_SERVICE_NAME), QStringLiteral("/screen"),
                                           QStringLiteral("org.freedesktop.DBus.Properties"),
                                           QStringLiteral("PropertiesChanged"), this,
                                           SLOT(onPropertiesChanged(QString, QVariantMap, QStringList)));
}

bool HandwrittenScreen::isScreenSaverActive()
{
    return property(QStringLiteral("screenSaverActive")).toBool();
}

QString HandwrittenScreen::orientation()
{
    return property(QStringLiteral("orientation")).toString();
}

void HandwrittenScreen::setFullScreen(bool fullScreen)
{
    if (isServiceThere()) {
        mProperties.call(QStringLiteral("Set"), QStringLiteral("de.Telvaro.screen"), QStringLiteral("fullScreen"),
                         QVariant::fromValue(QDBusVariant(fullScreen)));
    }
}

void HandwrittenScreen::onPropertiesChanged(const QString& /*interface*/, const QVariantMap& changed,
                                            const QStringList& /*invalidated*/)
{
    if (changed.contains(QStringLiteral("screenSaverActive"))) {
        const bool isActive = isScreenSaverActive();
        if (isActive != mIsScreenSaverActive) {
            mIsScreenSaverActive = isActive;
            Q_EMIT screenSaverActiveChanged(isActive);
        }
    }
}

bool HandwrittenScreen::isServiceThere() const
{
    return mProperties.connection().interface()->isServiceRegistered(mProperties.service());
}

QVariant HandwrittenScreen::property(const QString& name)
{
    if (!isServiceThere()) {
        return {};
    }
    const QDBusReply<QDBusVariant> reply =
        mProperties.call(QStringLiteral("Get"), QStringLiteral("de.Telvaro.screen"), name);
    return reply.isValid() ? reply.value().variant() : QVariant();
}
