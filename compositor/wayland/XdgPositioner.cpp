// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/XdgPositioner.h"

#include "wayland/ClientBounds.h"
#include "wayland/ClientResources.h"

#include <xdg-shell-server-protocol.h>

using ClientBounds::clamped;

namespace {

PopupRules& mutableRulesOf(wl_resource* positioner)
{
    return *static_cast<PopupRules*>(wl_resource_get_user_data(positioner));
}

bool check(wl_resource* positioner, bool isValid, const char* text)
{
    if (!isValid) {
        wl_resource_post_error(positioner, XDG_POSITIONER_ERROR_INVALID_INPUT, "%s", text);
    }
    return isValid;
}

void setSize(wl_client*, wl_resource* positioner, int32_t width, int32_t height)
{
    if (check(positioner, width > 0 && height > 0, "the size of a popup is positive")) {
        mutableRulesOf(positioner).size = clamped(QSize(width, height));
    }
}

void setAnchorRect(wl_client*, wl_resource* positioner, int32_t x, int32_t y, int32_t width, int32_t height)
{
    if (check(positioner, width >= 0 && height >= 0, "the size of an anchor rectangle is not negative")) {
        mutableRulesOf(positioner).anchorRect = QRect(clamped(QPoint(x, y)), clamped(QSize(width, height)));
    }
}

/// Returns the edges of a value of the enum anchor or gravity, which have the same values.
Qt::Edges edgesOf(uint32_t value)
{
    switch (value) {
    case XDG_POSITIONER_ANCHOR_TOP:
        return Qt::TopEdge;
    case XDG_POSITIONER_ANCHOR_BOTTOM:
        return Qt::BottomEdge;
    case XDG_POSITIONER_ANCHOR_LEFT:
        return Qt::LeftEdge;
    case XDG_POSITIONER_ANCHOR_RIGHT:
        return Qt::RightEdge;
    case XDG_POSITIONER_ANCHOR_TOP_LEFT:
        return Qt::TopEdge | Qt::LeftEdge;
    case XDG_POSITIONER_ANCHOR_BOTTOM_LEFT:
        return Qt::BottomEdge | Qt::LeftEdge;
    case XDG_POSITIONER_ANCHOR_TOP_RIGHT:
        return Qt::TopEdge | Qt::RightEdge;
    case XDG_POSITIONER_ANCHOR_BOTTOM_RIGHT:
        return Qt::BottomEdge | Qt::RightEdge;
    default:
        return {};
    }
}

void setAnchor(wl_client*, wl_resource* positioner, uint32_t anchor)
{
    if (check(positioner, anchor <= XDG_POSITIONER_ANCHOR_BOTTOM_RIGHT, "there is no such anchor")) {
        mutableRulesOf(positioner).anchor = edgesOf(anchor);
    }
}

void setGravity(wl_client*, wl_resource* positioner, uint32_t gravity)
{
    if (check(positioner, gravity <= XDG_POSITIONER_GRAVITY_BOTTOM_RIGHT, "there is no such gravity")) {
        mutableRulesOf(positioner).gravity = edgesOf(gravity);
    }
}

void setConstraintAdjustment(wl_client*, wl_resource* positioner, uint32_t adjustment)
{
    mutableRulesOf(positioner).adjustment = adjustment;
}

void setOffset(wl_client*, wl_resource* positioner, int32_t x, int32_t y)
{
    mutableRulesOf(positioner).offset = clamped(QPoint(x, y));
}

void setReactive(wl_client*, wl_resource* positioner)
{
    mutableRulesOf(positioner).isReactive = true;
}

void setParentSize(wl_client*, wl_resource* positioner, int32_t width, int32_t height)
{
    mutableRulesOf(positioner).parentSize = clamped(QSize(width, height));
}

/// Ignores the configure event that set_parent_size is a response to: the size is what popups are placed by.
void setParentConfigure(wl_client*, wl_resource*, uint32_t)
{
}

} // namespace

void XdgPositioner::create(wl_client* client, wl_resource* shell, uint32_t id)
{
    static const struct xdg_positioner_interface requests = {
        ClientResources::destroy, setSize,   setAnchorRect, setAnchor,     setGravity,
        setConstraintAdjustment,  setOffset, setReactive,   setParentSize, setParentConfigure};
    auto* const rules = new PopupRules;
    if (ClientResources::create(client, xdg_positioner_interface, wl_resource_get_version(shell), id, requests, rules,
                                ClientResources::deleteObject<PopupRules>)
        == nullptr) {
        delete rules;
    }
}

const PopupRules& XdgPositioner::rulesOf(wl_resource* positioner)
{
    return mutableRulesOf(positioner);
}
