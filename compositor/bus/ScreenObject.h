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
    Q_PROPERTY(bool screenSaverActive READ screenSaverActive NOTIFY screenSaverActiveChanged)
    Q_PROPERTY(
        bool screenSaverEnabled READ screenSaverEnabled WRITE setScreenSaverEnabled NOTIFY screenSaverEnabledChanged)
    Q_PROPERTY(int screenSaverTimeoutSeconds READ screenSaverTimeoutSeconds WRITE setScreenSaverTimeoutSeconds NOTIFY
                   screenSaverTimeoutSecondsChanged)
    Q_PROPERTY(QString orientation READ orientation WRITE setOrientation NOTIFY orientationChanged)
    Q_PROPERTY(bool fullScreen READ fullScreen WRITE setFullScreen NOTIFY fullScreenChanged)

public:
    ScreenObject(Output& output, ScreenSaver& screenSaver, CallGate& gate, QObject* parent = nullptr);

    bool screenSaverActive() const;
    bool screenSaverEnabled() const;
    void setScreenSaverEnabled(bool enabled);
    int screenSaverTimeoutSeconds() const;
    /// Answers with an error when `seconds` is negative.
    void setScreenSaverTimeoutSeconds(int seconds);
    QString orientation() const;
    /// Answers with an error when `orientation` is not one of those that there are.
    void setOrientation(const QString& orientation);
    bool fullScreen() const;
    void setFullScreen(bool fullScreen);

Q_SIGNALS:
    void screenSaverActiveChanged();
    void screenSaverEnabledChanged();
    void screenSaverTimeoutSecondsChanged();
    void orientationChanged();
    void fullScreenChanged();

private:
    Output& mOutput;
    ScreenSaver& mScreenSaver;
};
