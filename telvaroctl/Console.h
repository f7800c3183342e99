// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "Printable.h"

#include <QString>

/// Prints all messages of Qt's logging to standard error, prefixed with the tool's name, and counts the library's
/// warnings: an operation of the library that reports failure by an empty result has failed if it has warned. A warning
/// of Qt or of a plugin says nothing about the operation and is not counted.
void installMessageHandler();
int warningCount();

/// Prints the text to standard output and flushes it.
void printText(const QString& text);
void printLine(const QString& line);

/// Prints one line to standard error, prefixed with the tool's name.
void printError(const QString& message);

/// Returns the columns of the terminal on standard output; 0 where that is not a terminal.
int terminalWidth();
