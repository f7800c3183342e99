// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "TelvaroDBusConnectorBase.h"
#include "TelvaroExport.h"

#include <QObject>
#include <QString>

class QVariant;

/// Shows a message over everything on the screen and takes it away again.
///
/// D-Bus: object "/globaloverlay", interface "de.Telvaro.globaloverlay".
///
/// Both operations first ask isInterfaceValid() and do nothing if it is false; it has logged why, except on another
/// device. They block until the service has answered, up to 25 seconds with a service that hangs. The answer is not
/// looked at: an error is neither logged nor reported. Whether a message is shown now is the service's business;
/// nothing is remembered here.
class TELVARO_EXPORT TelvaroGlobalOverlayDBusConnector : public TelvaroDBusConnectorBase
{
    Q_OBJECT

public:
    /// Makes the proxy; calls nothing.
    explicit TelvaroGlobalOverlayDBusConnector(QObject* parent = nullptr);
    ~TelvaroGlobalOverlayDBusConnector() override;

public Q_SLOTS:
    /// Shows the message. An empty message is sent as an empty string. D-Bus: method "Show", signature s.
    void showGlobalOverlay(const QString& displayMessage);

    /// Takes the message away. D-Bus: method "Hide", no arguments.
    void hideGlobalOverlay();

private:
    void dbusCallHelper(const QString& method, const QVariant& argument);
};
