// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "Result.h"

#include <QString>

/// The session around this process.
namespace RunningSession {

/// The environment variable with the id of the session's process.
const QString cProcessVariable = QStringLiteral("TELVARO_SESSION_PID");

/// Terminates the session and blocks until it has ended. Returns why it cannot be ended.
MaybeError end();

} // namespace RunningSession
