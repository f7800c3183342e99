// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "script/Script.h"

#include <QString>

#include <variant>

/// Reads scripts.
namespace ScriptFile {

struct Error
{
    QString text;
};

/// An error says what is wrong with which part of the file.
std::variant<Script::Plan, Error> read(const QString& fileName);

} // namespace ScriptFile
