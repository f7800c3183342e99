// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "Result.h"
#include "script/Script.h"

#include <QString>

namespace ScriptFile {

/// Reads a script and checks all of it; an error names the part of the file that is wrong.
Result<Script::Plan> read(const QString& fileName);

} // namespace ScriptFile
