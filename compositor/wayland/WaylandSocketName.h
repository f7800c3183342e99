// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QByteArray>
#include <QString>

#include <variant>

/// Chooses the name of the Wayland socket and finds out beforehand whether it can be opened, because Qt Wayland
/// Compositor ends the process when it cannot.
class WaylandSocketName
{
public:
    struct Error
    {
        QString text;
    };

    /// The name to use: \a wanted, or the first free one when that is empty.
    static std::variant<QByteArray, Error> choose(const QByteArray& wanted);
};
