// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

/// Writes all messages of Qt and libwayland to standard error, prefixed with the program's name.
namespace Log {

/// Installs the message handler. A fatal message ends the process with exit status 1 instead of a core dump: Qt calls
/// the lack of a display or of a place for the Wayland socket fatal, and these are ordinary failures to start.
void install();

} // namespace Log
