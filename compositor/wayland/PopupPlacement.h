// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QRect>

class QWaylandXdgPopup;

/// Where a popup goes, by the rules that its client gave with it.
class PopupPlacement
{
public:
    /// The popup's rectangle relative to its parent, chosen so that it lies within \a bounds (relative to the parent,
    /// too) as far as the client allows: flipped to the other side, moved, or made smaller.
    static QRect place(const QWaylandXdgPopup& popup, const QRect& bounds);
};
