// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Screen.h"

#include <TelvaroDBusDefinitions.h>

#include <QHash>

namespace {

using Connector = TelvaroScreenDBusConnector;
using ChangeSignal = void (Screen::*)();

const QHash<QString, ChangeSignal>& changeSignals()
{
    static const QHash<QString, ChangeSignal> cChangeSignals{
        {Connector::cScreenSaverActiveProperty, &Screen::screenSaverActiveChanged},
        {Connector::cScreenSaverEnabledProperty, &Screen::screenSaverEnabledChanged},
        {Connector::cScreenSaverTimoutProperty, &Screen::screenSaverTimeoutChanged},
        {Connector::cScreenOrientationProperty, &Screen::orientationChanged},
        {Connector::cFullScreenProperty, &Screen::fullScreenChanged},
    };
    return cChangeSignals;
}

} // namespace

Screen::Screen(QObject* parent)
    : ServiceObject(parent)
{
    // The connector's signals do not make bindable properties: two of the five are not followed, and a full screen that
    // ends after it was there from the start is not told.
    QDBusConnection bus = getBus();
    if (bus.isConnected()) {
        bus.connect(TelvaroDBusDefinitions::getServiceName(), TelvaroDBusDefinitions::getScreenPath(),
                    TelvaroDBusDefinitions::getPropertyInterface(), Connector::cPropertiesChanged,
                    QStringLiteral("sa{sv}as"), this, SLOT(onPropertiesChanged(QString, QVariantMap, QStringList)));
    }
    if (isAvailable()) {
        readAll();
    }
}

bool Screen::isScreenSaverActive() const
{
    return mValues.value(Connector::cScreenSaverActiveProperty).toBool();
}

bool Screen::isScreenSaverEnabled() const
{
    return mValues.value(Connector::cScreenSaverEnabledProperty).toBool();
}

void Screen::setScreenSaverEnabled(bool enabled)
{
    if (enabled) {
        mConnector.enableScreenSaver();
    } else {
        mConnector.disableScreenSaver();
    }
    read(Connector::cScreenSaverEnabledProperty);
}

int Screen::getScreenSaverTimeout() const
{
    return mValues.value(Connector::cScreenSaverTimoutProperty).toInt();
}

void Screen::setScreenSaverTimeout(int seconds)
{
    mConnector.setScreenSaverTimeout(seconds);
    read(Connector::cScreenSaverTimoutProperty);
}

QString Screen::getOrientation() const
{
    return mValues.value(Connector::cScreenOrientationProperty).toString();
}

void Screen::setOrientation(const QString& orientation)
{
    mConnector.setOrientation(orientation);
    read(Connector::cScreenOrientationProperty);
}

bool Screen::isFullScreen() const
{
    return mValues.value(Connector::cFullScreenProperty).toBool();
}

void Screen::setFullScreen(bool fullScreen)
{
    mConnector.setFullScreen(fullScreen);
    read(Connector::cFullScreenProperty);
}

void Screen::onServiceChanged()
{
    readAll();
}

void Screen::readAll()
{
    const QList<QString> names = changeSignals().keys();
    for (const QString& name : names) {
        read(name);
    }
}

void Screen::onPropertiesChanged(const QString& /*interface*/, const QVariantMap& changed,
                                 const QStringList& invalidated)
{
    const QStringList names = changed.keys() + invalidated;
    for (const QString& name : names) {
        if (changeSignals().contains(name)) {
            read(name);
        }
    }
}

void Screen::read(const QString& name)
{
    const QVariant value = isAvailable() ? mConnector.getProperty(name) : QVariant();
    if (mValues.value(name) != value) {
        mValues.insert(name, value);
        Q_EMIT(this->*changeSignals().value(name))();
    }
}
