// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/RequestGuard.h"

#include "state/Limits.h"
#include "wayland/Subsurface.h"

#include <QWaylandCompositor>

#include <cstring>
#include <unistd.h>

namespace {

/// Far more objects than an application has at a time, and few enough for the memory.
constexpr quint32 cMostObjects = 10000;
constexpr qint64 cMostPixels = qint64(Limits::cLargestEdge) * Limits::cLargestEdge;

/// Whether `type` is an argument in a message's signature, which also has versions and marks of nullability.
bool isArgument(char type)
{
    return std::strchr("iufsonah", type) != nullptr;
}

void closeDescriptors(const wl_message* message, const wl_argument* arguments)
{
    int index = 0;
    for (const char* type = message->signature; *type != '\0'; ++type) {
        if (isArgument(*type)) {
            if (*type == 'h') {
                close(arguments[index].h);
            }
            ++index;
        }
    }
}

/// Routes later requests of the resource to Qt again.
void restore(wl_resource* resource, const void* implementation)
{
    wl_resource_set_implementation(resource, implementation, resource->data, resource->destroy);
}

int dropRequest(const void* implementation, void* target, uint32_t, const wl_message* message, wl_argument* arguments)
{
    restore(static_cast<wl_resource*>(target), implementation);
    closeDescriptors(message, arguments);
    return 0;
}

/// Calls `handle` instead of Qt's handler.
template <void (*handle)(wl_resource*, const wl_argument*)>
int handleRequest(const void* implementation, void* target, uint32_t, const wl_message*, wl_argument* arguments)
{
    auto* const resource = static_cast<wl_resource*>(target);
    restore(resource, implementation);
    handle(resource, arguments);
    return 0;
}

/// Routes the current request, and only this one, to `dispatcher`.
void redirect(wl_resource* resource, wl_dispatcher_func_t dispatcher)
{
    wl_resource_set_dispatcher(resource, dispatcher, resource->object.implementation, resource->data,
                               resource->destroy);
}

void drop(wl_resource* resource)
{
    redirect(resource, dropRequest);
}

/// Drops the current request and disconnects its client.
void reject(wl_resource* resource, quint32 error, const char* text)
{
    wl_resource_post_error(resource, error, "%s", text);
    drop(resource);
}

void destroyResource(wl_resource* resource, const wl_argument*)
{
    wl_resource_destroy(resource);
}

} // namespace

struct RequestGuard::Rule
{
    const char* interface;
    const char* request;
    void (RequestGuard::*check)(const Request& request);
};

const RequestGuard::Rule RequestGuard::cRules[] = {
    {"wl_surface", "set_buffer_scale", &RequestGuard::checkScale},
    {"wl_surface", "set_buffer_transform", &RequestGuard::checkTransform},
    {"wl_shm_pool", "create_buffer", &RequestGuard::checkBuffer},
    {"wl_pointer", "set_cursor", &RequestGuard::checkCursor},
    {"wl_subcompositor", "get_subsurface", &RequestGuard::createSubsurface},
    {"wl_seat", "release", &RequestGuard::destroyObject},
    {"wl_output", "release", &RequestGuard::destroyObject},
    {"zwp_idle_inhibit_manager_v1", "destroy", &RequestGuard::destroyObject},
};

RequestGuard::RequestGuard(QWaylandCompositor& compositor)
    : mCompositor(compositor)
{
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

/// Object ids are dense and reused, so a high id means that many objects are alive.
void RequestGuard::checkNewId(const Request& request)
{
    int index = 0;
    for (const char* type = request.message->signature; *type != '\0'; ++type) {
        if (isArgument(*type)) {
            if (*type == 'n' && request.arguments[index].n > cMostObjects) {
                wl_client_post_no_memory(wl_resource_get_client(request.resource));
                drop(request.resource);
            }
            ++index;
        }
    }
}

void RequestGuard::checkScale(const Request& request)
{
    if (request.arguments[0].i <= 0) {
        reject(request.resource, WL_SURFACE_ERROR_INVALID_SCALE, "the scale of a buffer is a positive number");
    }
}

void RequestGuard::checkTransform(const Request& request)
{
    if (request.arguments[0].i < WL_OUTPUT_TRANSFORM_NORMAL
        || request.arguments[0].i > WL_OUTPUT_TRANSFORM_FLIPPED_270) {
        reject(request.resource, WL_SURFACE_ERROR_INVALID_TRANSFORM, "there is no such transform of a buffer");
    }
}

/// Limits the size of a wl_buffer: libwayland admits two gigabytes, and what is shown is copied.
void RequestGuard::checkBuffer(const Request& request)
{
    if (qint64(request.arguments[2].i) * request.arguments[3].i > cMostPixels) {
        reject(request.resource, WL_SHM_ERROR_INVALID_STRIDE, "the buffer is larger than any output");
    }
}

void RequestGuard::checkCursor(const Request& request)
{
    if (mMaySetCursor && !mMaySetCursor(wl_resource_get_client(request.resource))) {
        drop(request.resource);
    }
}

/// Destroys the object: Qt ignores this request and would keep the object until its client disconnects.
void RequestGuard::destroyObject(const Request& request)
{
    redirect(request.resource, handleRequest<destroyResource>);
}

void RequestGuard::createSubsurface(const Request& request)
{
    redirect(request.resource, handleRequest<Subsurface::handleGetSubsurface>);
}
