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

/// Screen settings: reads and writes them, and emits signals when they change.
///
/// D-Bus: object "/screen", interface "de.Telvaro.screen". Its properties are read and written through Get (ss) and Set
/// (ssv) of "org.freedesktop.DBus.Properties"; the connector subscribes to PropertiesChanged (sa{sv}as).
///
/// Every read and write first calls isInterfaceValid(), then makes one call and blocks until the service replies, for
/// up to 25 seconds if it hangs. Read values are not cached.
///
/// A write returns nothing and sends its value unchecked. Read the property back to see whether the service accepted
/// it.
///
/// A read that fails returns false or an empty string. It logs the warnings of isInterfaceValid(), or, if the reply
/// holds no value, `Unable to read property:  "<property>"`. Then, and for a value of the wrong type, it logs
/// `Unable to convert property  "<property>" to bool!` (or `to QString!`).
///
/// Signals need a running event loop in the connector's thread. For each of the three followed properties among the
/// changed properties of a PropertiesChanged signal, the connector ignores the value in the signal, reads the property
/// from the service (one blocking call) and emits its own signal if the value differs from the last known one. A read
/// that fails counts as false or empty. The last known values start as the screen saver's state read by the
/// constructor, an empty orientation and false for full screen, so the first change of orientation is always signalled.
/// Invalidated properties are ignored.
class TELVARO_EXPORT TelvaroScreenDBusConnector : public TelvaroDBusConnectorBase
{
    Q_OBJECT

public:
    /// "screenSaverActive"
    static const QString cScreenSaverActiveProperty;
    /// "screenSaverEnabled"
    static const QString cScreenSaverEnabledProperty;
    /// "screenSaverTimeoutSeconds"
    // The misspelled name is an exported symbol: correcting it breaks every application.
    static const QString cScreenSaverTimoutProperty;
    /// "PropertiesChanged", the D-Bus signal that the connector subscribes to.
    static const QString cPropertiesChanged;
    /// "orientation"
    static const QString cScreenOrientationProperty;
    /// "fullScreen"
    static const QString cFullScreenProperty;

    /// Reads the screen saver's state once, with the warnings of isScreenSaverActive(), and subscribes to
    /// PropertiesChanged. If the subscription fails, logs `Failed to connect to PropertiesChanged siganl`: reads and
    /// writes work, but no signal is ever emitted.
    explicit TelvaroScreenDBusConnector(QObject* parent = nullptr);
    ~TelvaroScreenDBusConnector() override;

    /// "0", degrees.
    static QString getOrientationLandscape();
    /// "90", degrees.
    static QString getOrientationPortrait();
    /// "270", degrees.
    static QString getOrientationInversePortrait();

    /// Reads any property of the screen object, including those without a getter of their own. Returns an invalid
    /// QVariant on failure, with the first of the warnings above.
    QVariant getProperty(const QString& name);

    /// Writes any property of the screen object. Hides QObject::setProperty(), which can still be called by its
    /// qualified name. A map or list that holds an invalid QVariant aborts the process: D-Bus has no such value.
    void setProperty(const QString& name, const QDBusVariant& value);

Q_SIGNALS:
    /// Emitted when the screen saver starts or ends. Slots that read through the connector get the new state, but the
    /// last known state is updated only after the slots return: a PropertiesChanged signal that a slot's own event loop
    /// handles is still compared with the old state.
    void screenSaverActiveChanged(bool bActive);

    /// Emitted when the rotation of the screen's contents changes; in degrees.
    void screenOrientationChanged(QString orientation);

    /// Emitted when the current view enters or leaves full screen.
    void fullScreenChanged(bool fullScreen);

public Q_SLOTS:
    /// Allows the screen saver to start. D-Bus: property "screenSaverEnabled", b.
    void enableScreenSaver();

    /// Keeps the screen saver from starting. Whether an active screen saver ends is up to the service. D-Bus: property
    /// "screenSaverEnabled", b.
    void disableScreenSaver();

    /// Sets the number of seconds without input after which the screen saver starts. D-Bus: property
    /// "screenSaverTimeoutSeconds", i.
    void setScreenSaverTimeout(int timeoutSeconds);

    /// Returns whether the screen saver is active now. D-Bus: property "screenSaverActive", b.
    bool isScreenSaverActive();

    /// Returns the rotation of the screen's contents in degrees, exactly as the service sends it. D-Bus: property
    /// "orientation", s.
    QString getOrientation();

    /// Rotates the screen's contents to an angle in degrees that the service accepts. D-Bus: property "orientation", s.
    void setOrientation(const QString& orientation);

    /// Makes the current view enter or leave full screen. D-Bus: property "fullScreen", b.
    void setFullScreen(bool fullScreen);

    /// Returns whether the current view is full screen. D-Bus: property "fullScreen", b.
    bool getFullScreen();

private Q_SLOTS:
    void onScreenPropertiesChanged(const QString& name, const QVariantMap& map, const QStringList& list);

private:
    bool mScreenSaverActive;
    QString mOrientation;
    bool mFullScreen;
};
