// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ScreenShotWorker.h"

#include <TelvaroScreenShotDBusConnector.h>

#include <optional>

void ScreenShotWorker::capture(const QString& directory)
{
    // A connector belongs to the thread in which it is made; this runs in the worker's.
    TelvaroScreenShotDBusConnector screenShot;
    const std::optional<QString> path = screenShot.captureScreenShot(directory);
    if (path) {
        Q_EMIT captured(*path);
    } else {
        Q_EMIT failed();
    }
}
