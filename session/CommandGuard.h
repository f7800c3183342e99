// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

/// Forks, in the child process that is about to execute the command. Returns in the new child, which executes it, and
/// never in the process between, the guard: as the subreaper of all that the command starts, the guard waits for the
/// command, terminates and then kills what the command has left running, and exits with the command's status as a shell
/// reports it.
///
/// SIGTERM, which the guard also gets if the session dies, terminates the command, and kills it after a grace period.
void guardCommand();
