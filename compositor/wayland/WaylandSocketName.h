// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "Result.h"

#include <QByteArray>

/// Chooses the name of the Wayland socket and checks that it can be opened: Qt Wayland Compositor calls qFatal() when
/// it cannot.
class WaylandSocketName
{
public:
    /// Returns `wanted`, or the first free name when that is empty.
    static Result<QByteArray> choose(const QByteArray& wanted);
};
