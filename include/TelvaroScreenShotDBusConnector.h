// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "TelvaroDBusConnectorBase.h"
#include "TelvaroExport.h"

#include <QString>

#include <optional>

class QObject;

/// Asks the compositor service to take screenshots.
///
/// D-Bus: object "/screenshot", interface "de.Telvaro.screenshot".
class TELVARO_EXPORT TelvaroScreenShotDBusConnector : public TelvaroDBusConnectorBase
{
public:
    /// Makes the proxy; calls nothing.
    explicit TelvaroScreenShotDBusConnector(QObject* parent = nullptr);

    /// Has the service store a screenshot in the directory and returns the string that it answers, unchanged, an empty
    /// one included. What the string says, such as the path of the new file, is the service's business.
    ///
    /// The directory must exist for this process, else nothing is sent; it goes to the service exactly as it is passed,
    /// so use an absolute path. An empty string is this process's current directory here and an empty string there.
    ///
    /// Returns an empty optional
    /// - if isInterfaceValid(), which is asked first, is false; it has logged why, except on another device;
    /// - if the directory does not exist, with the warning
    ///   `Unable to capture screenshot, store directory does not exists "<directory>"`;
    /// - on an error reply or a reply without a string, with the warning
    ///   `Reply of  "ScreenShot" is invalid! "<the error's message>"`.
    ///
    /// Blocks until the service has answered, up to 25 seconds with a service that hangs.
    ///
    /// D-Bus: method "ScreenShot", signature s, reply s.
    std::optional<QString> captureScreenShot(const QString& directory);
};
