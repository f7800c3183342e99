// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "Printable.h"

#include <QString>

/// Prints the messages of Qt's logging to standard error, prefixed with the tool's name; those of the library only if
/// the tool is verbose.
void installMessageHandler();
void setVerbose(bool verbose);

/// Returns the last warning of the library.
QString lastWarning();

/// Prints the text to standard output. Returns false, and prints why, if it cannot be written.
bool printText(const QString& text);
bool printLine(const QString& line);
/// Returns whether a text could not be written.
bool isOutputLost();

/// Prints one line to standard error, prefixed with the tool's name.
void printError(const QString& message);

/// Returns the columns of the terminal on standard output; 0 where that is not a terminal.
int terminalWidth();
