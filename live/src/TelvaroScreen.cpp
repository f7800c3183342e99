// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "TelvaroScreen.h"

#include "LiveScreen.h"

#include <TelvaroScreenDBusConnector.h>

#include <QVariant>

using Connector = TelvaroScreenDBusConnector;

TelvaroScreen::TelvaroScreen(QObject* parent)
    : TelvaroLiveObject(new LiveScreen, parent)
{
}

TelvaroScreen::~TelvaroScreen() = default;

bool TelvaroScreen::isScreenSaverActive() const
{
    return getValue(Connector::cScreenSaverActiveProperty).toBool();
}

bool TelvaroScreen::isScreenSaverEnabled() const
{
    return getValue(Connector::cScreenSaverEnabledProperty).toBool();
}

int TelvaroScreen::getScreenSaverTimeout() const
{
    return getValue(Connector::cScreenSaverTimoutProperty).toInt();
}

QString TelvaroScreen::getOrientation() const
{
    return getValue(Connector::cScreenOrientationProperty).toString();
}

bool TelvaroScreen::isFullScreen() const
{
    return getValue(Connector::cFullScreenProperty).toBool();
}

QDBusPendingReply<> TelvaroScreen::setScreenSaverEnabled(bool enabled)
{
    return write(Connector::cScreenSaverEnabledProperty, enabled);
}

QDBusPendingReply<> TelvaroScreen::setScreenSaverTimeout(int seconds)
{
    return write(Connector::cScreenSaverTimoutProperty, seconds);
}

QDBusPendingReply<> TelvaroScreen::setOrientation(const QString& orientation)
{
    return write(Connector::cScreenOrientationProperty, orientation);
}

QDBusPendingReply<> TelvaroScreen::setFullScreen(bool fullScreen)
{
    return write(Connector::cFullScreenProperty, fullScreen);
}

QVariant TelvaroScreen::getValue(const QString& name) const
{
    return static_cast<const LiveScreen*>(mProperties)->getValue(name);
}

QDBusPendingReply<> TelvaroScreen::write(const QString& name, const QVariant& value)
{
    return report(static_cast<const LiveScreen*>(mProperties)->write(name, value));
}
