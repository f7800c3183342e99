// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "TelvaroScreen.h"

#include "LiveScreen.h"

#include <TelvaroScreenDBusConnector.h>

#include <QVariant>

using Connector = TelvaroScreenDBusConnector;

TelvaroScreen::TelvaroScreen(QObject* parent)
    : TelvaroLiveObject(new LiveScreen, parent)
    , mScreen(static_cast<LiveScreen*>(mProperties))
{
}

TelvaroScreen::~TelvaroScreen() = default;

bool TelvaroScreen::isScreenSaverActive() const
{
    return mScreen->getValue(Connector::cScreenSaverActiveProperty).toBool();
}

bool TelvaroScreen::isScreenSaverEnabled() const
{
    return mScreen->getValue(Connector::cScreenSaverEnabledProperty).toBool();
}

int TelvaroScreen::getScreenSaverTimeout() const
{
    return mScreen->getValue(Connector::cScreenSaverTimoutProperty).toInt();
}

QString TelvaroScreen::getOrientation() const
{
    return mScreen->getValue(Connector::cScreenOrientationProperty).toString();
}

bool TelvaroScreen::isFullScreen() const
{
    return mScreen->getValue(Connector::cFullScreenProperty).toBool();
}

QDBusPendingReply<> TelvaroScreen::setScreenSaverEnabled(bool enabled)
{
    return report(mScreen->write(Connector::cScreenSaverEnabledProperty, enabled));
}

QDBusPendingReply<> TelvaroScreen::setScreenSaverTimeout(int seconds)
{
    return report(mScreen->write(Connector::cScreenSaverTimoutProperty, seconds));
}

QDBusPendingReply<> TelvaroScreen::setOrientation(const QString& orientation)
{
    return report(mScreen->write(Connector::cScreenOrientationProperty, orientation));
}

QDBusPendingReply<> TelvaroScreen::setFullScreen(bool fullScreen)
{
    return report(mScreen->write(Connector::cFullScreenProperty, fullScreen));
}
