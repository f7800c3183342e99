// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/RequestGuard.h"

#include "wayland/ClientSurface.h"
#include "wayland/Subsurface.h"

#include <QWaylandCompositor>
#include <QWaylandSurface>
#include <QWaylandSurfaceRole>
#include <QWaylandXdgPopup>
#include <QWaylandXdgShell>
#include <QWaylandXdgToplevel>

#include <cstring>
#include <memory>
#include <unistd.h>

namespace {
/// Far more objects than an application has at a time, and no more than there is memory for.
constexpr quint32 cMostObjects = 10000;
/// As many pixels as the largest output has.
constexpr qint64 cMostPixels = 8192 * 8192;

// Of the protocol xdg-shell.
constexpr quint32 cShellErrorRole = 0;
constexpr quint32 cShellErrorDefunctSurfaces = 1;
constexpr quint32 cXdgSurfaceErrorInvalidSize = 5;

void dropDescriptors(const wl_message* message, const wl_argument* arguments)
{
    int index = 0;
    for (const char* type = message->signature; *type != '\0'; ++type) {
        if (std::strchr("iufsonah", *type) == nullptr) {
            continue;
        }
        if (*type == 'h') {
            close(arguments[index].h);
        }
        ++index;
    }
}

/// Gives the object back to its owner.
void restore(wl_resource* resource, const void* implementation)
{
    wl_resource_set_implementation(resource, implementation, resource->data, resource->destroy);
}

int dropRequest(const void* implementation, void* target, uint32_t, const wl_message* message, wl_argument* arguments)
{
    restore(static_cast<wl_resource*>(target), implementation);
    dropDescriptors(message, arguments);
    return 0;
}

int destroyInstead(const void* implementation, void* target, uint32_t, const wl_message*, wl_argument*)
{
    restore(static_cast<wl_resource*>(target), implementation);
    wl_resource_destroy(static_cast<wl_resource*>(target));
    return 0;
}

/// Has the request that is in hand handled by \a dispatcher.
void redirect(wl_resource* resource, wl_dispatcher_func_t dispatcher)
{
    wl_resource_set_dispatcher(resource, dispatcher, resource->object.implementation, resource->data,
                               resource->destroy);
}

void drop(wl_resource* resource)
{
    redirect(resource, dropRequest);
}

/// Ends the connection after the request in hand, which is not handled any more.
void refuse(wl_resource* resource, quint32 error, const char* text)
{
    wl_resource_post_error(resource, error, "%s", text);
    drop(resource);
}

QWaylandSurface* surfaceOf(const wl_argument& argument)
{
    return QWaylandSurface::fromResource(reinterpret_cast<wl_resource*>(argument.o));
}

int createSubsurface(const void* implementation, void* target, uint32_t, const wl_message*, wl_argument* arguments)
{
    auto* const subcompositor = static_cast<wl_resource*>(target);
    restore(subcompositor, implementation);
    Subsurface::create(wl_resource_get_client(subcompositor), arguments[0].n, surfaceOf(arguments[1]),
                       surfaceOf(arguments[2]));
    return 0;
}

QWaylandSurfaceRole* subsurfaceRole()
{
    static QWaylandSurfaceRole role("wl_subsurface");
    return &role;
}
} // namespace

struct RequestGuard::Rule
{
    const char* interface;
    const char* request;
    void (RequestGuard::*check)(const Request& request);
};

struct RequestGuard::Watch
{
    wl_listener listener;
    QPointer<const QObject> context;
    std::function<void()> function;
};

const RequestGuard::Rule RequestGuard::cRules[] = {
    {"wl_surface", "set_buffer_scale", &RequestGuard::checkScale},
    {"wl_surface", "set_buffer_transform", &RequestGuard::checkTransform},
    {"wl_surface", "destroy", &RequestGuard::checkSurfaceEnd},
    {"wl_shm_pool", "create_buffer", &RequestGuard::checkBuffer},
    {"wl_pointer", "set_cursor", &RequestGuard::checkCursor},
    {"wl_data_device", "start_drag", &RequestGuard::checkDrag},
    {"wl_subcompositor", "get_subsurface", &RequestGuard::checkSubsurface},
    {"xdg_wm_base", "get_xdg_surface", &RequestGuard::checkXdgSurface},
    {"xdg_surface", "destroy", &RequestGuard::checkXdgSurfaceEnd},
    {"xdg_surface", "ack_configure", &RequestGuard::checkXdgSurfaceState},
    {"xdg_surface", "set_window_geometry", &RequestGuard::checkWindowGeometry},
    {"xdg_surface", "get_popup", &RequestGuard::notePopup},
    {"xdg_popup", "destroy", &RequestGuard::endPopup},
};

RequestGuard::RequestGuard(QWaylandCompositor& compositor, QWaylandXdgShell& shell)
    : mCompositor(compositor)
{
    connect(&shell, &QWaylandXdgShell::toplevelCreated, this,
            [this](QWaylandXdgToplevel* toplevel, QWaylandXdgSurface* xdgSurface) {
                mRoles.insert(xdgSurface, toplevel);
            });
    connect(&shell, &QWaylandXdgShell::popupCreated, this, &RequestGuard::handlePopup);
    connect(&shell, &QWaylandXdgShell::xdgSurfaceCreated, this, [this](QWaylandXdgSurface* xdgSurface) {
        connect(xdgSurface, &QObject::destroyed, this, [this, xdgSurface] {
            mRoles.remove(xdgSurface);
        });
    });
}

RequestGuard::~RequestGuard()
{
    if (mLogger != nullptr) {
        wl_protocol_logger_destroy(mLogger);
    }
}

void RequestGuard::start()
{
    mLogger = wl_display_add_protocol_logger(mCompositor.display(), inspect, this);
}

void RequestGuard::inspect(void* self, wl_protocol_logger_type direction, const Request* request)
{
    if (direction != WL_PROTOCOL_LOGGER_REQUEST) {
        return;
    }
    auto* const guard = static_cast<RequestGuard*>(self);
    const char* const interface = wl_resource_get_class(request->resource);
    for (const Rule& rule : cRules) {
        if (std::strcmp(rule.interface, interface) == 0 && std::strcmp(rule.request, request->message->name) == 0) {
            (guard->*rule.check)(*request);
            break;
        }
    }
    guard->checkNewId(*request);
}

/// A client counts its objects up from one and uses the numbers of those that are gone again.
void RequestGuard::checkNewId(const Request& request)
{
    int index = 0;
    for (const char* type = request.message->signature; *type != '\0'; ++type) {
        if (std::strchr("iufsonah", *type) == nullptr) {
            continue;
        }
        if (*type == 'n' && request.arguments[index].n > cMostObjects) {
            wl_client_post_no_memory(wl_resource_get_client(request.resource));
            drop(request.resource);
        }
        ++index;
    }
}

void RequestGuard::checkScale(const Request& request)
{
    if (request.arguments[0].i <= 0) {
        refuse(request.resource, WL_SURFACE_ERROR_INVALID_SCALE, "the scale of a buffer is a positive number");
    }
}

void RequestGuard::checkTransform(const Request& request)
{
    if (request.arguments[0].i < WL_OUTPUT_TRANSFORM_NORMAL
        || request.arguments[0].i > WL_OUTPUT_TRANSFORM_FLIPPED_270) {
        refuse(request.resource, WL_SURFACE_ERROR_INVALID_TRANSFORM, "there is no such transform of a buffer");
    }
}

void RequestGuard::checkSurfaceEnd(const Request& request)
{
    if (QWaylandXdgSurface::findIn(QWaylandSurface::fromResource(request.resource)) != nullptr) {
        refuse(request.resource, cShellErrorDefunctSurfaces, "the xdg_surface must be destroyed before its surface");
    }
}

/// Everything that is shown is copied, and libwayland would take a picture of two gigabytes.
void RequestGuard::checkBuffer(const Request& request)
{
    if (qint64(request.arguments[2].i) * request.arguments[3].i > cMostPixels) {
        refuse(request.resource, WL_SHM_ERROR_INVALID_STRIDE, "the buffer is larger than any output");
    }
}

void RequestGuard::checkCursor(const Request& request)
{
    if (mMaySetCursor && !mMaySetCursor(wl_resource_get_client(request.resource))) {
        drop(request.resource);
    }
}

/// A drag without a source concerns nobody but its client; Qt does not survive one.
void RequestGuard::checkDrag(const Request& request)
{
    auto* const source = reinterpret_cast<wl_resource*>(request.arguments[0].o);
    if (source != nullptr && mMayDrag && mMayDrag(wl_resource_get_client(request.resource))) {
        Q_EMIT dragStarting(source);
        return;
    }
    if (source != nullptr) {
        wl_data_source_send_cancelled(source);
    }
    drop(request.resource);
}

void RequestGuard::checkXdgSurface(const Request& request)
{
    if (QWaylandXdgSurface::findIn(surfaceOf(request.arguments[1])) != nullptr) {
        refuse(request.resource, cShellErrorRole, "the surface has an xdg_surface already");
    }
}

void RequestGuard::checkXdgSurfaceEnd(const Request& request)
{
    if (!mRoles.value(QWaylandXdgSurface::fromResource(request.resource)).isNull()) {
        refuse(request.resource, cShellErrorDefunctSurfaces,
               "the window or popup must be destroyed before its xdg_surface");
    }
}

/// Between the end of its window or popup and its own an xdg surface has no state.
void RequestGuard::checkXdgSurfaceState(const Request& request)
{
    const auto role = mRoles.constFind(QWaylandXdgSurface::fromResource(request.resource));
    if (role != mRoles.cend() && role->isNull()) {
        drop(request.resource);
    }
}

void RequestGuard::checkWindowGeometry(const Request& request)
{
    if (request.arguments[2].i <= 0 || request.arguments[3].i <= 0) {
        refuse(request.resource, cXdgSurfaceErrorInvalidSize, "the size of a window geometry is positive");
    }
}

void RequestGuard::notePopup(const Request& request)
{
    mClient = wl_resource_get_client(request.resource);
    mNewId = request.arguments[0].n;
}

void RequestGuard::handlePopup(QWaylandXdgPopup* popup, QWaylandXdgSurface* xdgSurface)
{
    mRoles.insert(xdgSurface, popup);
    const QPointer<QObject> owned = popup;
    watch(wl_client_get_object(mClient, mNewId), this, [owned] {
        delete owned;
    });
}

/// Qt leaves this request without an answer, and would keep the popup until its client goes.
void RequestGuard::endPopup(const Request& request)
{
    redirect(request.resource, destroyInstead);
}

void RequestGuard::checkSubsurface(const Request& request)
{
    QWaylandSurface* const surface = surfaceOf(request.arguments[1]);
    const ClientSurface* const clientSurface = ClientSurface::of(surface);
    if (clientSurface == nullptr || clientSurface->hasParent() || surface == surfaceOf(request.arguments[2])) {
        refuse(request.resource, WL_SUBCOMPOSITOR_ERROR_BAD_SURFACE, "the surface cannot become a subsurface");
    } else if (surface->setRole(subsurfaceRole(), request.resource, WL_SUBCOMPOSITOR_ERROR_BAD_SURFACE)) {
        redirect(request.resource, createSubsurface);
    } else {
        drop(request.resource);
    }
}

void RequestGuard::watch(wl_resource* resource, const QObject* context, const std::function<void()>& function)
{
    auto* const watch = new Watch{{}, context, function};
    watch->listener.notify = [](wl_listener* listener, void*) {
        // The listener is the first member.
        std::unique_ptr<Watch> ended(reinterpret_cast<Watch*>(listener));
        wl_list_remove(&listener->link);
        if (ended->context != nullptr) {
            ended->function();
        }
    };
    wl_resource_add_destroy_listener(resource, &watch->listener);
}
