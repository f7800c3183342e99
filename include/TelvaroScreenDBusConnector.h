// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "TelvaroDBusConnectorBase.h"
#include "TelvaroExport.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVariantMap>

class QDBusVariant;

/// Reads and changes the settings of the screen and tells when they change.
///
/// D-Bus: object "/screen", interface "de.Telvaro.screen", whose properties are read and written through Get (ss) and
/// Set (ssv) of "org.freedesktop.DBus.Properties"; its signal PropertiesChanged (sa{sv}as) is followed.
///
/// Every read and write first asks isInterfaceValid(), then makes one call and blocks until the service has answered,
/// up to 25 seconds with a service that hangs. Nothing that is read is cached.
///
/// A write returns nothing: values are sent unchecked, and a service that refuses one cannot be told from one that
/// accepts it but by reading the property back.
///
/// A read that fails returns false or an empty string. It logs what isInterfaceValid() logs, or, when the service does
/// not answer with a value, `Unable to read property:  "<property>"`; and then, as for a value of another type,
/// `Unable to convert property  "<property>" to bool!` (or `to QString!`).
///
/// Signals need a running event loop in the thread that owns the connector. For each of the three properties that a
/// notification names as changed, the new value is read from the bus (blocking, one call each), whatever the
/// notification says of it, and the signal is emitted if it differs from the last known one. The last known values at
/// construction are the screen saver's state as read then, no orientation, and no full screen: the first notification
/// of an orientation is signalled whichever it is. A read that fails counts as false or empty. Properties that are only
/// invalidated are ignored.
class TELVARO_EXPORT TelvaroScreenDBusConnector : public TelvaroDBusConnectorBase
{
    Q_OBJECT

public:
    /// "screenSaverActive"
    static const QString cScreenSaverActiveProperty;
    /// "screenSaverEnabled"
    static const QString cScreenSaverEnabledProperty;
    /// "screenSaverTimeoutSeconds"
    static const QString cScreenSaverTimoutProperty;
    /// "PropertiesChanged", the signal that is followed.
    static const QString cPropertiesChanged;
    /// "orientation"
    static const QString cScreenOrientationProperty;
    /// "fullScreen"
    static const QString cFullScreenProperty;

    /// Reads the screen saver's state once, with the warnings of isScreenSaverActive(), and subscribes to the
    /// service's change notifications. If that fails, logs `Failed to connect to PropertiesChanged siganl`: the
    /// connector reads and writes, but never emits a signal.
    explicit TelvaroScreenDBusConnector(QObject* parent = nullptr);
    ~TelvaroScreenDBusConnector() override;

    /// "0", degrees.
    static QString getOrientationLandscape();
    /// "90", degrees.
    static QString getOrientationPortrait();
    /// "270", degrees.
    static QString getOrientationInversePortrait();

    /// Reads any property of the screen, those without a function of their own included. Invalid on failure, with the
    /// first of the warnings above.
    QVariant getProperty(const QString& name);

    /// Writes any property of the screen. Hides QObject::setProperty(), which stays reachable by its full name. A value
    /// that holds an invalid QVariant in a map or a list ends the process, since D-Bus has no such value.
    void setProperty(const QString& name, const QDBusVariant& value);

Q_SIGNALS:
    /// The screen saver became active or ended. A slot that asks back through the connector gets the new state, while
    /// a notification that is handled meanwhile is still compared with the old one.
    void screenSaverActiveChanged(bool bActive);

    /// The rotation of the screen's contents changed; degrees.
    void screenOrientationChanged(QString orientation);

    /// The current view got the whole screen or gave it back.
    void fullScreenChanged(bool fullScreen);

public Q_SLOTS:
    /// Allows the screen saver to become active. Property "screenSaverEnabled", b.
    void enableScreenSaver();

    /// Keeps the screen saver from becoming active; whether one that is active ends is the service's business. Property
    /// "screenSaverEnabled", b.
    void disableScreenSaver();

    /// Sets the seconds without input after which the screen saver becomes active. Property
    /// "screenSaverTimeoutSeconds", i.
    void setScreenSaverTimeout(int timeoutSeconds);

    /// Whether the screen saver is active now. Property "screenSaverActive", b.
    bool isScreenSaverActive();

    /// The rotation of the screen's contents; degrees as the service writes them. Property "orientation", s.
    QString getOrientation();

    /// Turns the screen's contents; degrees as the service understands them. Property "orientation", s.
    void setOrientation(const QString& orientation);

    /// Gives the current view the whole screen or takes it back. Property "fullScreen", b.
    void setFullScreen(bool fullScreen);

    /// Whether the current view has the whole screen. Property "fullScreen", b.
    bool getFullScreen();

private Q_SLOTS:
    void onScreenPropertiesChanged(const QString& name, const QVariantMap& map, const QStringList& list);

private:
    bool mScreenSaverActive;
    QString mOrientation;
    bool mFullScreen;
};
