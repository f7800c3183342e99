// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "Result.h"
#include "script/Script.h"
#include "shell/Keymap.h"

#include <QByteArray>
#include <QString>

namespace ScriptFile {

/// Reads a script and checks all of it; an error names the part of the file that is wrong. Keys are those of `keymap`.
Result<Script::Plan> read(const QString& fileName, const Keymap& keymap);

/// Reads the action of a single step, which has no time.
Result<Script::Action> readAction(const QByteArray& json, const Keymap& keymap);

} // namespace ScriptFile
