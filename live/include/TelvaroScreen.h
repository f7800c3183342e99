// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "TelvaroLiveExport.h"
#include "TelvaroLiveObject.h"

#include <QDBusPendingReply>
#include <QObject>
#include <QString>

class LiveScreen;

/// Screen settings that are kept up to date. Like every live object it never blocks, and holds the service's values
/// while its status is Ready; see TelvaroLiveObject.
///
/// Each signal is emitted when its value changes, whoever changed it, and when the service starts or stops. If several
/// values change at once, all getters return the new values before the first signal is emitted.
///
/// The setters, and writes of the Qt properties, are requests: they return at once, send the value unchecked, and the
/// value changes when the service signals it. If the service refuses, the value stays and requestFailed() is emitted.
///
/// D-Bus: object "/screen", interface "de.Telvaro.screen". Each property is read once from each service (Get, ss), then
/// followed by PropertiesChanged (sa{sv}as), and written by Set (ssv) of "org.freedesktop.DBus.Properties". A property
/// that is invalidated, or signalled with an empty or unreadable value, is read again. Values of other types than those
/// below are converted as TelvaroScreenDBusConnector converts them.
class TELVARO_LIVE_EXPORT TelvaroScreen : public TelvaroLiveObject
{
    Q_OBJECT
    /// Whether the screen saver is active now.
    Q_PROPERTY(bool screenSaverActive READ isScreenSaverActive NOTIFY screenSaverActiveChanged)
    /// Whether the screen saver can start.
    Q_PROPERTY(
        bool screenSaverEnabled READ isScreenSaverEnabled WRITE setScreenSaverEnabled NOTIFY screenSaverEnabledChanged)
    /// Seconds without input until the screen saver starts.
    Q_PROPERTY(
        int screenSaverTimeout READ getScreenSaverTimeout WRITE setScreenSaverTimeout NOTIFY screenSaverTimeoutChanged)
    /// Rotation of the screen's contents in degrees.
    Q_PROPERTY(QString orientation READ getOrientation WRITE setOrientation NOTIFY orientationChanged)
    /// Whether the current view is full screen.
    Q_PROPERTY(bool fullScreen READ isFullScreen WRITE setFullScreen NOTIFY fullScreenChanged)

public:
    /// Subscribes and sends the reads; returns at once. The status starts as Loading, or as Absent without a bus or on
    /// another device.
    explicit TelvaroScreen(QObject* parent = nullptr);
    ~TelvaroScreen() override;

    /// Returns whether the screen saver is active now; false while unknown. D-Bus: property "screenSaverActive", b.
    bool isScreenSaverActive() const;

    /// Returns whether the screen saver can start; false while unknown. D-Bus: property "screenSaverEnabled", b.
    bool isScreenSaverEnabled() const;

    /// Returns the seconds without input until the screen saver starts; 0 while unknown. D-Bus: property
    /// "screenSaverTimeoutSeconds", i.
    int getScreenSaverTimeout() const;

    /// Returns the rotation of the screen's contents in degrees, exactly as the service sends it ("0", "90", "180",
    /// "270"); empty while unknown. D-Bus: property "orientation", s.
    QString getOrientation() const;

    /// Returns whether the current view is full screen; false while unknown. D-Bus: property "fullScreen", b.
    bool isFullScreen() const;

    /// Allows the screen saver to start, or keeps it from starting. Whether an active screen saver ends is up to the
    /// service.
    QDBusPendingReply<> setScreenSaverEnabled(bool enabled);
    /// Sets the number of seconds without input after which the screen saver starts.
    QDBusPendingReply<> setScreenSaverTimeout(int seconds);
    /// Rotates the screen's contents to an angle in degrees that the service accepts.
    QDBusPendingReply<> setOrientation(const QString& orientation);
    /// Makes the current view enter or leave full screen.
    QDBusPendingReply<> setFullScreen(bool fullScreen);

Q_SIGNALS:
    /// Emitted when the screen saver starts or ends.
    void screenSaverActiveChanged();
    /// Emitted when the screen saver is enabled or disabled.
    void screenSaverEnabledChanged();
    /// Emitted when the timeout of the screen saver changes.
    void screenSaverTimeoutChanged();
    /// Emitted when the rotation of the screen's contents changes.
    void orientationChanged();
    /// Emitted when the current view enters or leaves full screen.
    void fullScreenChanged();

private:
    LiveScreen* const mScreen;
};
