// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QString>

/// Returns the text with control and format characters replaced: escape sequences, line breaks and changes of direction
/// in a foreign text must not reach the terminal.
QString printable(const QString& text);
