// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/XdgSurface.h"

#include "wayland/ClientBounds.h"
#include "wayland/ClientResources.h"
#include "wayland/ClientSurface.h"
#include "wayland/XdgPopup.h"
#include "wayland/XdgPositioner.h"
#include "wayland/XdgShell.h"
#include "wayland/XdgToplevel.h"

#include <QWaylandCompositor>
#include <QWaylandSurfaceRole>

#include <algorithm>
#include <xdg-shell-server-protocol.h>

namespace {

/// A client that acknowledges none of its configure events keeps at most this many.
constexpr int cMostConfigures = 1000;

QWaylandSurfaceRole toplevelRole("xdg_toplevel");
QWaylandSurfaceRole popupRole("xdg_popup");

} // namespace

XdgSurface::XdgSurface(XdgShell& shell, wl_resource* shellObject, ServerSurface* surface)
    : mShell(shell)
    , mShellObject(shellObject)
    , mSurface(surface)
{
    surface->setXdgSurface(this);
    connect(surface, &QWaylandSurface::redraw, this, &XdgSurface::handleCommit);
    connect(surface, &QWaylandSurface::surfaceDestroyed, this, [this] {
        setMapped(false);
    });
}

XdgSurface::~XdgSurface()
{
    setMapped(false);
}

void XdgSurface::create(XdgShell& shell, wl_resource* shellObject, uint32_t id, wl_resource* surface)
{
    static const struct xdg_surface_interface requests = {destroy, getToplevel, getPopup, setWindowGeometry,
                                                          ackConfigure};
    auto* const serverSurface = qobject_cast<ServerSurface*>(QWaylandSurface::fromResource(surface));
    const QWaylandSurfaceRole* const role = serverSurface->role();
    if (serverSurface->xdgSurface() != nullptr || (role != nullptr && role != &toplevelRole && role != &popupRole)) {
        wl_resource_post_error(shellObject, XDG_WM_BASE_ERROR_ROLE, "the surface has a role already");
        return;
    }
    if (serverSurface->hasBuffer()) {
        wl_resource_post_error(shellObject, XDG_WM_BASE_ERROR_INVALID_SURFACE_STATE, "the surface has a buffer");
        return;
    }
    auto* const self = new XdgSurface(shell, shellObject, serverSurface);
    self->mResource = ClientResources::create(wl_resource_get_client(shellObject), xdg_surface_interface,
                                              wl_resource_get_version(shellObject), id, requests, self,
                                              ClientResources::deleteObject<XdgSurface>);
    if (self->mResource == nullptr) {
        delete self;
    }
}

XdgSurface* XdgSurface::of(wl_resource* resource)
{
    return resource == nullptr ? nullptr : static_cast<XdgSurface*>(wl_resource_get_user_data(resource));
}

XdgToplevel* XdgSurface::toplevel() const
{
    return qobject_cast<XdgToplevel*>(mRoleObject);
}

XdgPopup* XdgSurface::popup() const
{
    return qobject_cast<XdgPopup*>(mRoleObject);
}

QRect XdgSurface::windowGeometry() const
{
    const ClientSurface* const surface = ClientSurface::of(mSurface);
    const QRect bounds = surface == nullptr ? QRect() : surface->bounds();
    const QRect geometry = mGeometry.value_or(bounds) & bounds;
    return geometry.isEmpty() ? bounds : geometry;
}

void XdgSurface::sendConfigure(const QRect& popupGeometry)
{
    if (mSurface == nullptr) {
        return;
    }
    const uint32_t serial = mSurface->compositor()->nextSerial();
    mConfigures.append({serial, popupGeometry});
    if (mConfigures.size() > cMostConfigures) {
        mConfigures.removeFirst();
        mStaleCount = std::max(0, mStaleCount - 1);
    }
    xdg_surface_send_configure(mResource, serial);
}

bool XdgSurface::admitCommit(bool attachesBuffer)
{
    if (attachesBuffer && !mIsConfigured) {
        wl_resource_post_error(mResource, XDG_SURFACE_ERROR_UNCONFIGURED_BUFFER,
                               "a buffer is attached before a configure event is acknowledged");
        return false;
    }
    if (mPendingGeometry) {
        mGeometry = mPendingGeometry;
    }
    mPopupGeometry = mAcknowledgedGeometry;
    return mRoleObject == nullptr || toplevel() == nullptr || toplevel()->admitCommit();
}

void XdgSurface::rejectSurfaceDestruction()
{
    wl_resource_post_error(mShellObject, XDG_WM_BASE_ERROR_DEFUNCT_SURFACES,
                           "the xdg_surface must be destroyed before its wl_surface");
}

void XdgSurface::destroy(wl_client*, wl_resource* resource)
{
    if (!of(resource)->mRoleObject.isNull()) {
        wl_resource_post_error(resource, XDG_SURFACE_ERROR_DEFUNCT_ROLE_OBJECT,
                               "the window or popup must be destroyed before its xdg_surface");
        return;
    }
    wl_resource_destroy(resource);
}

bool XdgSurface::takeRole(QWaylandSurfaceRole* role)
{
    if (!mRoleObject.isNull()) {
        wl_resource_post_error(mResource, XDG_SURFACE_ERROR_ALREADY_CONSTRUCTED, "the xdg_surface has a role object");
        return false;
    }
    return mSurface != nullptr && mSurface->setRole(role, mShellObject, XDG_WM_BASE_ERROR_ROLE);
}

void XdgSurface::setRoleObject(QObject* object)
{
    mRoleObject = object;
    mHasHadRole = true;
}

void XdgSurface::removeRoleObject()
{
    setMapped(false);
    reset();
    mRoleObject.clear();
}

void XdgSurface::getToplevel(wl_client*, wl_resource* resource, uint32_t id)
{
    XdgSurface* const self = of(resource);
    if (!self->takeRole(&toplevelRole)) {
        return;
    }
    if (XdgToplevel* const toplevel = XdgToplevel::create(*self, id)) {
        self->setRoleObject(toplevel);
        Q_EMIT self->mShell.toplevelCreated(toplevel);
    }
}

void XdgSurface::getPopup(wl_client*, wl_resource* resource, uint32_t id, wl_resource* parent, wl_resource* positioner)
{
    XdgSurface* const self = of(resource);
    XdgSurface* const parentSurface = of(parent);
    const PopupRules& rules = XdgPositioner::rulesOf(positioner);
    if (!self->takeRole(&popupRole)) {
        return;
    }
    // There is no other protocol here that could name the parent later.
    if (parentSurface == nullptr || parentSurface->mRoleObject.isNull()) {
        wl_resource_post_error(self->mShellObject, XDG_WM_BASE_ERROR_INVALID_POPUP_PARENT,
                               "the parent of a popup is a window or a popup");
        return;
    }
    if (!rules.isComplete()) {
        wl_resource_post_error(self->mShellObject, XDG_WM_BASE_ERROR_INVALID_POSITIONER,
                               "the positioner has no size or no anchor rectangle");
        return;
    }
    if (XdgPopup* const popup = XdgPopup::create(*self, id, *parentSurface, rules)) {
        self->setRoleObject(popup);
        Q_EMIT self->mShell.popupCreated(popup);
    }
}

bool XdgSurface::isConstructed()
{
    if (!mHasHadRole) {
        wl_resource_post_error(mResource, XDG_SURFACE_ERROR_NOT_CONSTRUCTED, "the xdg_surface has no role yet");
    }
    return !mRoleObject.isNull();
}

void XdgSurface::setWindowGeometry(wl_client*, wl_resource* resource, int32_t x, int32_t y, int32_t width,
                                   int32_t height)
{
    using ClientBounds::clamped;
    XdgSurface* const self = of(resource);
    if (!self->isConstructed()) {
        return;
    }
    if (width <= 0 || height <= 0) {
        wl_resource_post_error(resource, XDG_SURFACE_ERROR_INVALID_SIZE, "the size of a window geometry is positive");
        return;
    }
    self->mPendingGeometry = QRect(clamped(QPoint(x, y)), clamped(QSize(width, height)));
}

void XdgSurface::ackConfigure(wl_client*, wl_resource* resource, uint32_t serial)
{
    XdgSurface* const self = of(resource);
    if (!self->isConstructed()) {
        return;
    }
    QVector<Configure>& configures = self->mConfigures;
    const auto found = std::find_if(configures.begin(), configures.end(), [serial](const Configure& configure) {
        return configure.serial == serial;
    });
    if (found == configures.end()) {
        wl_resource_post_error(resource, XDG_SURFACE_ERROR_INVALID_SERIAL,
                               "the acknowledged configure event was not sent or is acknowledged already");
        return;
    }
    const int index = static_cast<int>(found - configures.begin());
    if (index >= self->mStaleCount) {
        self->mIsConfigured = true;
        self->mAcknowledgedGeometry = found->popupGeometry;
    }
    self->mStaleCount = std::max(0, self->mStaleCount - index - 1);
    configures.erase(configures.begin(), found + 1);
}

void XdgSurface::handleCommit()
{
    if (mRoleObject.isNull()) {
        return;
    }
    if (!mIsInitialized) {
        mIsInitialized = true;
        Q_EMIT initialCommit();
        return;
    }
    setMapped(mIsConfigured && mSurface->isContentAttached());
    Q_EMIT committed();
}

void XdgSurface::setMapped(bool isMapped)
{
    if (isMapped == mIsMapped) {
        return;
    }
    mIsMapped = isMapped;
    if (!isMapped) {
        reset();
    }
    Q_EMIT mappedChanged();
}

/// The client must begin again with the initial commit.
void XdgSurface::reset()
{
    mIsInitialized = false;
    mIsConfigured = false;
    mStaleCount = mConfigures.size();
    mPendingGeometry.reset();
    mGeometry.reset();
}
