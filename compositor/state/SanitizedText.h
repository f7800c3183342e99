// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QString>

/// Sanitizes text from a client: returns at most its first `length` characters, with line breaks as U+2028 and all
/// other control characters as blanks, so that it can be laid out.
QString sanitizedText(const QString& text, int length);
