// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QDBusContext>
#include <QObject>

class CallGate;
class Output;
class ScreenSaver;

/// The screen on the bus: screen saver, orientation and full-screen mode.
class ScreenObject : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_PROPERTY(bool screenSaverActive READ screenSaverActive)
    Q_PROPERTY(bool screenSaverEnabled READ screenSaverEnabled WRITE setScreenSaverEnabled)
    Q_PROPERTY(int screenSaverTimeoutSeconds READ screenSaverTimeoutSeconds WRITE setScreenSaverTimeoutSeconds)
    Q_PROPERTY(QString orientation READ orientation WRITE setOrientation)
    Q_PROPERTY(bool fullScreen READ fullScreen WRITE setFullScreen)

public:
    ScreenObject(Output& output, ScreenSaver& screenSaver, CallGate& gate, QObject* parent = nullptr);

    bool screenSaverActive() const;
    bool screenSaverEnabled() const;
    void setScreenSaverEnabled(bool enabled);
    int screenSaverTimeoutSeconds() const;
    /// Sends an error reply when `seconds` is negative.
    void setScreenSaverTimeoutSeconds(int seconds);
    QString orientation() const;
    /// Sends an error reply when `orientation` is none of Output::orientations().
    void setOrientation(const QString& orientation);
    bool fullScreen() const;
    void setFullScreen(bool fullScreen);

private:
    Output& mOutput;
    ScreenSaver& mScreenSaver;
};
