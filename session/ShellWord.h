// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QString>

/// Returns the text as a shell reads it: in quotes if it has other characters than paths and addresses usually have.
QString shellWord(const QString& text);
