// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QByteArray>
#include <QString>

#include <variant>

/// Chooses the name of the Wayland socket and checks that it can be opened: Qt Wayland Compositor calls qFatal() when
/// it cannot.
class WaylandSocketName
{
public:
    struct Error
    {
        QString text;
    };

    /// Returns `wanted`, or the first free name when that is empty.
    static std::variant<QByteArray, Error> choose(const QByteArray& wanted);
};
