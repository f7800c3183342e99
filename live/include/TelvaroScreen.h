// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "TelvaroLiveExport.h"
#include "TelvaroLiveObject.h"

#include <QDBusPendingReply>
#include <QObject>
#include <QString>

class LiveScreen;

/// The settings of the screen. Like every live object it never blocks, and it holds the service's values while its
/// status is Ready; see TelvaroLiveObject.
///
/// Each signal follows the change of its value, whoever caused it, and the service's coming and going. When several
/// values change at once, all getters have the new ones before the first signal.
///
/// The setters are requests: they return at once, and the value changes when the service says so. Values are sent
/// unchecked. Writing a Qt property makes the same request. If the service refuses, the value stays and requestFailed()
/// follows.
///
/// D-Bus: object "/screen", interface "de.Telvaro.screen"; each property is read once from each service (Get, ss), then
/// followed by PropertiesChanged (sa{sv}as), and written by Set (ssv) of "org.freedesktop.DBus.Properties".
class TELVARO_LIVE_EXPORT TelvaroScreen : public TelvaroLiveObject
{
    Q_OBJECT
    /// See isScreenSaverActive().
    Q_PROPERTY(bool screenSaverActive READ isScreenSaverActive NOTIFY screenSaverActiveChanged)
    /// See isScreenSaverEnabled() and setScreenSaverEnabled().
    Q_PROPERTY(
        bool screenSaverEnabled READ isScreenSaverEnabled WRITE setScreenSaverEnabled NOTIFY screenSaverEnabledChanged)
    /// See getScreenSaverTimeout() and setScreenSaverTimeout().
    Q_PROPERTY(
        int screenSaverTimeout READ getScreenSaverTimeout WRITE setScreenSaverTimeout NOTIFY screenSaverTimeoutChanged)
    /// See getOrientation() and setOrientation().
    Q_PROPERTY(QString orientation READ getOrientation WRITE setOrientation NOTIFY orientationChanged)
    /// See isFullScreen() and setFullScreen().
    Q_PROPERTY(bool fullScreen READ isFullScreen WRITE setFullScreen NOTIFY fullScreenChanged)

public:
    /// Asks the service for all values. The status begins as Loading, or as Absent where there is nobody to ask.
    explicit TelvaroScreen(QObject* parent = nullptr);
    ~TelvaroScreen() override;

    /// Whether the screen saver blanks the screen now; false while unknown. Property "screenSaverActive", b.
    bool isScreenSaverActive() const;

    /// Whether the screen saver may become active; false while unknown. Property "screenSaverEnabled", b.
    bool isScreenSaverEnabled() const;

    /// Seconds without input after which the screen saver becomes active; 0 while unknown. Property
    /// "screenSaverTimeoutSeconds", i.
    int getScreenSaverTimeout() const;

    /// The rotation of the screen's contents, degrees as the service writes them ("0", "90", "180", "270"); empty while
    /// unknown. Property "orientation", s.
    QString getOrientation() const;

    /// Whether the current view has the whole screen; false while unknown. Property "fullScreen", b.
    bool isFullScreen() const;

    /// Allows the screen saver to become active, or keeps it from that; whether an active one ends is the service's
    /// business.
    QDBusPendingReply<> setScreenSaverEnabled(bool enabled);

    /// Sets the seconds without input after which the screen saver becomes active.
    QDBusPendingReply<> setScreenSaverTimeout(int seconds);

    /// Turns the screen's contents; degrees as the service understands them, such as
    /// TelvaroScreenDBusConnector::getOrientationPortrait().
    QDBusPendingReply<> setOrientation(const QString& orientation);

    /// Gives the current view the whole screen or takes it back.
    QDBusPendingReply<> setFullScreen(bool fullScreen);

Q_SIGNALS:
    /// isScreenSaverActive() has another value.
    void screenSaverActiveChanged();
    /// isScreenSaverEnabled() has another value.
    void screenSaverEnabledChanged();
    /// getScreenSaverTimeout() has another value.
    void screenSaverTimeoutChanged();
    /// getOrientation() has another value.
    void orientationChanged();
    /// isFullScreen() has another value.
    void fullScreenChanged();

private:
    LiveScreen* const mScreen;
};
