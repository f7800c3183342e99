// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QString>

#include <optional>
#include <variant>

/// Why something failed, in words for the person who started the program.
struct Error
{
    QString text;
};

/// The value, or why there is none.
template <typename Value> using Result = std::variant<Value, Error>;

/// Empty on success.
using MaybeError = std::optional<Error>;
