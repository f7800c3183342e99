// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "TelvaroDBusConnectorBase.h"
#include "TelvaroExport.h"

#include <QString>

#include <optional>

class QObject;

/// Screenshots, taken and stored by the compositor service.
///
/// D-Bus: object "/screenshot", interface "de.Telvaro.screenshot".
class TELVARO_EXPORT TelvaroScreenShotDBusConnector : public TelvaroDBusConnectorBase
{
public:
    /// Creates the proxy; calls no method of the service.
    explicit TelvaroScreenShotDBusConnector(QObject* parent = nullptr);

    /// Asks the service to store a screenshot in the directory and returns the string that it replies with, unchanged,
    /// even if it is empty. The service decides what the string holds, for example the path of the new file.
    ///
    /// The directory must exist for this process, or nothing is sent. It is sent exactly as passed, so use an absolute
    /// path: an empty string passes the check as this process's current directory, but is sent as an empty string.
    ///
    /// Returns an empty optional
    /// - if isInterfaceValid(), which is called first, returns false; it has logged the reason, except on another
    ///   device;
    /// - if the directory does not exist, with the warning
    ///   `Unable to capture screenshot, store directory does not exists "<directory>"`;
    /// - on an error reply or a reply without a string, with the warning
    ///   `Reply of  "ScreenShot" is invalid! "<the error's message>"`.
    ///
    /// Blocks until the service replies, for up to 25 seconds if it hangs.
    ///
    /// D-Bus: method "ScreenShot", signature s, reply s.
    std::optional<QString> captureScreenShot(const QString& directory);
};
