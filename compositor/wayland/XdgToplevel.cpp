// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/XdgToplevel.h"

#include "wayland/ClientResources.h"
#include "wayland/XdgSurface.h"

#include <xdg-decoration-unstable-v1-server-protocol.h>
#include <xdg-shell-server-protocol.h>

XdgToplevel::XdgToplevel(XdgSurface& xdgSurface)
    : mXdgSurface(&xdgSurface)
{
    connect(&xdgSurface, &XdgSurface::mappedChanged, this, &XdgToplevel::handleMappedChanged);
}

XdgToplevel::~XdgToplevel()
{
    if (mXdgSurface != nullptr) {
        mXdgSurface->removeRoleObject();
    }
}

XdgToplevel* XdgToplevel::create(XdgSurface& xdgSurface, uint32_t id)
{
    static const struct xdg_toplevel_interface requests = {ClientResources::destroy,
                                                           setParent,
                                                           setTitle,
                                                           setAppId,
                                                           showWindowMenu,
                                                           move,
                                                           resize,
                                                           setMaxSize,
                                                           setMinSize,
                                                           requestConfigure,
                                                           requestConfigure,
                                                           setFullScreen,
                                                           unsetFullScreen,
                                                           setMinimized};
    auto* const self = new XdgToplevel(xdgSurface);
    wl_resource* const parent = xdgSurface.resource();
    self->mResource =
        ClientResources::create(wl_resource_get_client(parent), xdg_toplevel_interface, wl_resource_get_version(parent),
                                id, requests, self, ClientResources::deleteObject<XdgToplevel>);
    if (self->mResource == nullptr) {
        delete self;
        return nullptr;
    }
    return self;
}

XdgToplevel* XdgToplevel::of(wl_resource* resource)
{
    return resource == nullptr ? nullptr : static_cast<XdgToplevel*>(wl_resource_get_user_data(resource));
}

void XdgToplevel::sendConfigure(const QSize& size, const QVector<uint32_t>& states)
{
    if (mXdgSurface == nullptr) {
        return;
    }
    if (mDecoration != nullptr && mDecorationMode != mSentDecorationMode) {
        mSentDecorationMode = mDecorationMode;
        zxdg_toplevel_decoration_v1_send_configure(mDecoration, mDecorationMode);
    }
    QVector<uint32_t> values = states;
    const auto bytes = static_cast<std::size_t>(values.size()) * sizeof(uint32_t);
    wl_array array = {bytes, bytes, values.data()};
    xdg_toplevel_send_configure(mResource, size.width(), size.height(), &array);
    mXdgSurface->sendConfigure();
}

void XdgToplevel::sendClose()
{
    xdg_toplevel_send_close(mResource);
}

bool XdgToplevel::admitCommit()
{
    const auto exceeds = [](int least, int most) {
        return most != 0 && least > most;
    };
    if (exceeds(mMinSize.width(), mMaxSize.width()) || exceeds(mMinSize.height(), mMaxSize.height())) {
        wl_resource_post_error(mResource, XDG_TOPLEVEL_ERROR_INVALID_SIZE,
                               "the minimum size of a window is larger than its maximum size");
        return false;
    }
    return true;
}

void XdgToplevel::setDecoration(wl_resource* decoration)
{
    mDecoration = decoration;
    mSentDecorationMode = 0;
}

void XdgToplevel::setDecorationMode(uint32_t mode)
{
    mDecorationMode = mode;
    Q_EMIT stateRequested();
}

void XdgToplevel::assignParent(XdgToplevel* parent)
{
    if (mParent != nullptr) {
        mParent->disconnect(this);
    }
    mParent = parent;
    if (parent != nullptr) {
        connect(parent, &XdgToplevel::unmapped, this, [this, parent] {
            assignParent(parent->mParent);
        });
    }
    Q_EMIT parentChanged();
}

void XdgToplevel::setParent(wl_client*, wl_resource* resource, wl_resource* parentResource)
{
    XdgToplevel* const self = of(resource);
    XdgToplevel* const parent = of(parentResource);
    for (const XdgToplevel* ancestor = parent; ancestor != nullptr; ancestor = ancestor->mParent) {
        if (ancestor == self) {
            wl_resource_post_error(resource, XDG_TOPLEVEL_ERROR_INVALID_PARENT,
                                   "a window cannot be the parent of itself or of its ancestors");
            return;
        }
    }
    const bool isMapped = parent != nullptr && parent->mXdgSurface != nullptr && parent->mXdgSurface->isMapped();
    self->assignParent(isMapped ? parent : nullptr);
}

void XdgToplevel::setTitle(wl_client*, wl_resource* resource, const char* title)
{
    XdgToplevel* const self = of(resource);
    self->mTitle = QString::fromUtf8(title);
    Q_EMIT self->titleChanged();
}

void XdgToplevel::setAppId(wl_client*, wl_resource* resource, const char* appId)
{
    XdgToplevel* const self = of(resource);
    self->mAppId = QString::fromUtf8(appId);
    Q_EMIT self->appIdChanged();
}

/// Ignored: the menu is the person's own.
void XdgToplevel::showWindowMenu(wl_client*, wl_resource*, wl_resource*, uint32_t, int32_t, int32_t)
{
}

/// Ignored: windows stay where they are. The same holds for resize.
void XdgToplevel::move(wl_client*, wl_resource*, wl_resource*, uint32_t)
{
}

void XdgToplevel::resize(wl_client*, wl_resource* resource, wl_resource*, uint32_t, uint32_t edges)
{
    constexpr uint32_t vertical = XDG_TOPLEVEL_RESIZE_EDGE_TOP | XDG_TOPLEVEL_RESIZE_EDGE_BOTTOM;
    constexpr uint32_t horizontal = XDG_TOPLEVEL_RESIZE_EDGE_LEFT | XDG_TOPLEVEL_RESIZE_EDGE_RIGHT;
    if ((edges & ~(vertical | horizontal)) != 0 || (edges & vertical) == vertical
        || (edges & horizontal) == horizontal) {
        wl_resource_post_error(resource, XDG_TOPLEVEL_ERROR_INVALID_RESIZE_EDGE, "there is no such edge");
    }
}

void XdgToplevel::setSizeLimit(QSize& limit, const QSize& size)
{
    if (size.width() < 0 || size.height() < 0) {
        wl_resource_post_error(mResource, XDG_TOPLEVEL_ERROR_INVALID_SIZE, "the size of a window is not negative");
        return;
    }
    limit = size;
}

void XdgToplevel::setMaxSize(wl_client*, wl_resource* resource, int32_t width, int32_t height)
{
    of(resource)->setSizeLimit(of(resource)->mMaxSize, QSize(width, height));
}

void XdgToplevel::setMinSize(wl_client*, wl_resource* resource, int32_t width, int32_t height)
{
    of(resource)->setSizeLimit(of(resource)->mMinSize, QSize(width, height));
}

/// Handles set_maximized and unset_maximized: every window that is not full screen is maximized.
void XdgToplevel::requestConfigure(wl_client*, wl_resource* resource)
{
    Q_EMIT of(resource)->stateRequested();
}

void XdgToplevel::setFullScreen(wl_client*, wl_resource* resource, wl_resource*)
{
    of(resource)->mWantsFullScreen = true;
    Q_EMIT of(resource)->stateRequested();
}

void XdgToplevel::unsetFullScreen(wl_client*, wl_resource* resource)
{
    of(resource)->mWantsFullScreen = false;
    Q_EMIT of(resource)->stateRequested();
}

/// Ignored: the person switches to another view.
void XdgToplevel::setMinimized(wl_client*, wl_resource*)
{
}

/// Discards what the client must set again before it maps the window again.
void XdgToplevel::handleMappedChanged()
{
    if (mXdgSurface->isMapped()) {
        return;
    }
    Q_EMIT unmapped();
    mTitle.clear();
    mAppId.clear();
    assignParent(nullptr);
    mWantsFullScreen = false;
    mMinSize = QSize(0, 0);
    mMaxSize = QSize(0, 0);
}
