// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/XdgPopup.h"

#include "wayland/ClientResources.h"
#include "wayland/XdgSurface.h"

#include <algorithm>
#include <utility>
#include <xdg-shell-server-protocol.h>

namespace {

XdgPopup* of(wl_resource* resource)
{
    return static_cast<XdgPopup*>(wl_resource_get_user_data(resource));
}

} // namespace

XdgPopup::XdgPopup(XdgSurface& xdgSurface, XdgSurface& parent, const PopupRules& rules)
    : mXdgSurface(&xdgSurface)
    , mParent(&parent)
    , mRules(rules)
{
    parent.popups().append(this);
}

XdgPopup::~XdgPopup()
{
    if (mXdgSurface != nullptr) {
        mXdgSurface->removeRoleObject();
    }
    if (mParent != nullptr) {
        mParent->popups().removeOne(this);
    }
}

XdgPopup* XdgPopup::create(XdgSurface& xdgSurface, uint32_t id, XdgSurface& parent, const PopupRules& rules)
{
    static const struct xdg_popup_interface requests = {destroy, grab, reposition};
    auto* const self = new XdgPopup(xdgSurface, parent, rules);
    wl_resource* const surface = xdgSurface.resource();
    self->mResource =
        ClientResources::create(wl_resource_get_client(surface), xdg_popup_interface, wl_resource_get_version(surface),
                                id, requests, self, ClientResources::deleteObject<XdgPopup>);
    if (self->mResource == nullptr) {
        delete self;
        return nullptr;
    }
    return self;
}

bool XdgPopup::isMovable() const
{
    return wl_resource_get_version(mResource) >= XDG_POPUP_REPOSITION_SINCE_VERSION;
}

void XdgPopup::sendConfigure(const QRect& geometry)
{
    if (mXdgSurface == nullptr) {
        return;
    }
    if (const std::optional<uint32_t> token = std::exchange(mToken, std::nullopt)) {
        xdg_popup_send_repositioned(mResource, *token);
    }
    xdg_popup_send_configure(mResource, geometry.x(), geometry.y(), geometry.width(), geometry.height());
    mXdgSurface->sendConfigure(geometry);
}

void XdgPopup::dismiss()
{
    if (!std::exchange(mIsDismissed, true)) {
        xdg_popup_send_popup_done(mResource);
    }
}

void XdgPopup::destroy(wl_client*, wl_resource* resource)
{
    XdgSurface* const xdgSurface = of(resource)->mXdgSurface;
    if (!xdgSurface->popups().isEmpty()) {
        wl_resource_post_error(xdgSurface->shellObject(), XDG_WM_BASE_ERROR_NOT_THE_TOPMOST_POPUP,
                               "the popups of a popup must be destroyed before it");
        return;
    }
    wl_resource_destroy(resource);
}

void XdgPopup::grab(wl_client*, wl_resource* resource, wl_resource*, uint32_t)
{
    XdgPopup* const self = of(resource);
    if (self->mXdgSurface->isMapped()) {
        wl_resource_post_error(resource, XDG_POPUP_ERROR_INVALID_GRAB, "the popup is mapped already");
        return;
    }
    if (self->mParent == nullptr) {
        self->dismiss();
        return;
    }
    const XdgPopup* const parent = self->mParent->popup();
    if (parent != nullptr && !parent->isGrabbing()) {
        wl_resource_post_error(resource, XDG_POPUP_ERROR_INVALID_GRAB, "the parent is a popup without a grab");
        return;
    }
    const QVector<XdgPopup*>& siblings = self->mParent->popups();
    const bool isBelow = std::any_of(siblings.cbegin(), siblings.cend(), [self](const XdgPopup* other) {
        return other != self && other->isGrabbing() && !other->isDismissed();
    });
    if (isBelow) {
        wl_resource_post_error(self->mXdgSurface->shellObject(), XDG_WM_BASE_ERROR_NOT_THE_TOPMOST_POPUP,
                               "the parent has a popup with a grab already");
        return;
    }
    self->mIsGrabbing = true;
    if (parent != nullptr && parent->isDismissed()) {
        self->dismiss();
    }
}

void XdgPopup::reposition(wl_client*, wl_resource* resource, wl_resource* positioner, uint32_t token)
{
    XdgPopup* const self = of(resource);
    const PopupRules& rules = XdgPositioner::rulesOf(positioner);
    if (!rules.isComplete()) {
        wl_resource_post_error(self->mXdgSurface->shellObject(), XDG_WM_BASE_ERROR_INVALID_POSITIONER,
                               "the positioner has no size or no anchor rectangle");
        return;
    }
    self->mRules = rules;
    self->mToken = token;
    if (self->mXdgSurface->isInitialized() && !self->isDismissed()) {
        Q_EMIT self->placementRequested();
    }
}
