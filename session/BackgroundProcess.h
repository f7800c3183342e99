// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "Result.h"

#include <QString>

/// The program, continued in a child process without a terminal while its caller waits.
class BackgroundProcess
{
public:
    /// Forks; to be called before the application object is created. Returns in the child, whose output goes to the
    /// file `logPath`. The parent blocks until release() and then exits with Done. If the child ends before, the parent
    /// prints what is in the file, removes it, and exits with the child's status.
    static Result<BackgroundProcess> start(const QString& logPath);

    /// Lets the parent print the text and exit. Returns false if the parent has been interrupted.
    bool release(const QString& text);

private:
    explicit BackgroundProcess(int parent);

    int mParent;
};
