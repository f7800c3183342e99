// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QRect>

struct PopupRules;

/// Places a popup by the rules of its xdg_positioner.
class PopupPlacement
{
public:
    /// Returns the popup's rectangle. If it does not fit into `bounds` it is flipped, slid or resized as its
    /// constraint_adjustment allows. Both are relative to the parent's window geometry.
    static QRect place(const PopupRules& rules, const QRect& bounds);
};
