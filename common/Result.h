// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QString>

#include <optional>
#include <variant>

/// Why something failed, as text for the person who started the program.
struct Error
{
    QString text;
};

/// What a function that parses or looks up something returns: a value, or why there is none.
template <typename Value> using Result = std::variant<Value, Error>;

/// What a function that starts something returns: empty on success.
using MaybeError = std::optional<Error>;
