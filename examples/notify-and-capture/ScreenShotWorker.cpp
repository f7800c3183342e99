// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ScreenShotWorker.h"

#include <TelvaroScreenShotDBusConnector.h>

#include <optional>

void ScreenShotWorker::capture(const QString& directory)
{
    // A connector lives in the thread that creates it: this slot runs in the worker's.
    TelvaroScreenShotDBusConnector screenShot;
    const std::optional<QString> path = screenShot.captureScreenShot(directory);
    if (path) {
        Q_EMIT captured(*path);
    } else {
        Q_EMIT failed();
    }
}
