// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

class QString;

/// The time limit of the command, which also holds while Qt or the library blocks: at the limit a timer signal prints
/// the message and ends the process with the status Failed.
namespace TimeLimit {

/// Starts the time, with the message of expect().
void start(int milliseconds, const QString& message);

/// Sets the message that is printed at the limit, without the program's name.
void expect(const QString& message);

/// Returns the milliseconds until the limit.
int remaining();
/// As above, less a part in which the process can print what it knows.
int remainingButReserve();
/// Returns the timeout of a call whose failure to return is the limit's to report, and not Qt's at the same time.
int beyond();

/// Ends the limit.
void lift();

} // namespace TimeLimit
