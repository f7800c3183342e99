// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

#include <cstdint>

struct wl_client;
struct wl_resource;

/// The rules of an xdg_positioner. All coordinates are relative to the parent's window geometry and clamped.
struct PopupRules
{
    QSize size;
    QRect anchorRect;
    Qt::Edges anchor;
    Qt::Edges gravity;
    /// Bits of xdg_positioner.constraint_adjustment.
    uint32_t adjustment = 0;
    QPoint offset;
    bool isReactive = false;
    /// The size that the parent is going to have; empty for the one that it has.
    QSize parentSize;

    bool isComplete() const
    {
        return !size.isEmpty() && !anchorRect.isEmpty();
    }
};

/// The xdg_positioner objects.
namespace XdgPositioner {

void create(wl_client* client, wl_resource* shell, uint32_t id);
const PopupRules& rulesOf(wl_resource* positioner);

} // namespace XdgPositioner
