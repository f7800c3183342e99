// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QString>

/// Returns what is missing where this is not a compositor device: the path of the manifest that the library reads, its
/// content, and a file with that content to copy, if it is installed with this program. Needs the application object.
QString manifestAdvice();
