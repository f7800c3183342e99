// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

/// The exit statuses of the programs.
enum ExitStatus
{
    Done = 0,
    Failed = 1,
    Usage = 2
};
