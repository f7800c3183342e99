// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QString>

/// Sends Qt's messages, the library's warnings among them, to standard error in the tool's form and counts the
/// warnings: an operation of the library that reports failure by an empty result has failed if it has warned.
void installMessageHandler();
int warningCount();

/// Writes the text to standard output at once.
void printText(const QString& text);
void printLine(const QString& line);

/// Writes one line to standard error.
void printError(const QString& message);

/// The text with everything replaced that would move a terminal's cursor or change its state.
QString printable(const QString& text);

/// The columns of the terminal on standard output; 0 where that is not a terminal.
int terminalWidth();
