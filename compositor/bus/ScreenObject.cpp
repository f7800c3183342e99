// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "bus/ScreenObject.h"

#include "ScreenObjectAdaptor.h"
#include "bus/GatedAdaptor.h"
#include "bus/PropertiesAdaptor.h"
#include "state/Output.h"
#include "state/ScreenSaver.h"

#include <QDBusError>

ScreenObject::ScreenObject(Output& output, ScreenSaver& screenSaver, CallGate& gate, QObject* parent)
    : QObject(parent)
    , mOutput(output)
    , mScreenSaver(screenSaver)
{
    new GatedAdaptor<ScreenObjectAdaptor>(this, gate);
    PropertiesAdaptor* const properties = new GatedAdaptor<PropertiesAdaptor>(this, gate);
    const auto announce = [properties](const char* name) {
        return [properties, name] {
            properties->announce(name);
        };
    };
    connect(&screenSaver, &ScreenSaver::activeChanged, properties, announce("screenSaverActive"));
    connect(&screenSaver, &ScreenSaver::enabledChanged, properties, announce("screenSaverEnabled"));
    connect(&screenSaver, &ScreenSaver::timeoutChanged, properties, announce("screenSaverTimeoutSeconds"));
    connect(&output, &Output::orientationChanged, properties, announce("orientation"));
    connect(&output, &Output::fullScreenChanged, properties, announce("fullScreen"));
}

bool ScreenObject::screenSaverActive() const
{
    return mScreenSaver.isActive();
}

bool ScreenObject::screenSaverEnabled() const
{
    return mScreenSaver.isEnabled();
}

void ScreenObject::setScreenSaverEnabled(bool enabled)
{
    mScreenSaver.setEnabled(enabled);
}

int ScreenObject::screenSaverTimeoutSeconds() const
{
    return mScreenSaver.timeoutSeconds();
}

void ScreenObject::setScreenSaverTimeoutSeconds(int seconds)
{
    if (seconds < 0) {
        sendErrorReply(QDBusError::InvalidArgs,
                       QStringLiteral("%1 is not a timeout; seconds from 0 are expected, 0 for never").arg(seconds));
        return;
    }
    mScreenSaver.setTimeoutSeconds(seconds);
}

QString ScreenObject::orientation() const
{
    return mOutput.orientation();
}

void ScreenObject::setOrientation(const QString& orientation)
{
    if (!mOutput.setOrientation(orientation)) {
        const QString allowed = Output::orientations().join(QStringLiteral("\", \""));
        sendErrorReply(
            QDBusError::InvalidArgs,
            QStringLiteral("\"%1\" is not an orientation; one of \"%2\" is expected").arg(orientation, allowed));
    }
}

bool ScreenObject::fullScreen() const
{
    return mOutput.isFullScreen();
}

void ScreenObject::setFullScreen(bool fullScreen)
{
    mOutput.setFullScreen(fullScreen);
}
