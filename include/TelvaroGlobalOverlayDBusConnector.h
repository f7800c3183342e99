// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "TelvaroDBusConnectorBase.h"
#include "TelvaroExport.h"

#include <QObject>
#include <QString>

class QVariant;

/// Shows and hides a message on top of everything else on the screen.
///
/// D-Bus: object "/globaloverlay", interface "de.Telvaro.globaloverlay".
///
/// Both operations first call isInterfaceValid() and do nothing if it returns false; it has logged the reason, except
/// on another device. They block until the service replies, for up to 25 seconds if it hangs. The reply is discarded:
/// an error is neither logged nor reported. The connector keeps no record of the message; only the service knows
/// whether one is shown.
class TELVARO_EXPORT TelvaroGlobalOverlayDBusConnector : public TelvaroDBusConnectorBase
{
    Q_OBJECT

public:
    /// Creates the proxy; calls no method of the service.
    explicit TelvaroGlobalOverlayDBusConnector(QObject* parent = nullptr);
    ~TelvaroGlobalOverlayDBusConnector() override;

public Q_SLOTS:
    /// Shows the message. An empty message is sent as an empty string. D-Bus: method "Show", signature s.
    void showGlobalOverlay(const QString& displayMessage);

    /// Hides the message. D-Bus: method "Hide", no arguments.
    void hideGlobalOverlay();

private:
    void dbusCallHelper(const QString& method, const QVariant& argument);
};
