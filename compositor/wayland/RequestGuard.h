// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <functional>
#include <wayland-server.h>

class QWaylandCompositor;

/// Filters the clients' requests before Qt handles them. Qt 5 relies on clients to destroy their objects in the order
/// of the protocol and to stay within its ranges. The guard rejects a request that does not with the protocol's error,
/// which disconnects the client, drops it, or handles it itself where Qt does not.
///
/// How it works: libwayland has no filter for requests, but it has protocol loggers. In its dispatch loop
/// (wl_client_connection_data() in wayland-server.c) it unmarshals a request, looks up its objects, calls the loggers,
/// and only then reads the dispatcher of the wl_resource. So a logger that calls wl_resource_set_dispatcher() redirects
/// the very request that it is shown; the dispatcher restores the resource first and then does something else than Qt.
///
/// What makes this safe in libwayland, read in 1.21:
/// - The arguments that a logger sees are valid: the objects exist and have the type of the protocol, new ids are free.
/// - The loop handles one request at a time, in one thread: nothing is dispatched between the logger and the
///   dispatcher, so no other request is ever redirected.
/// - wl_resource_post_error() only marks the client. The loop destroys it after the request in hand and dispatches
///   none of those that follow.
/// - After a dispatcher has returned, libwayland forgets the file descriptors among the arguments without closing them
///   (wl_closure_clear_fds()), so whoever drops a request closes them.
/// - The fields `object`, `data` and `destroy` of wl_resource, which the guard reads to restore a resource, are part of
///   libwayland's stable ABI; accessors exist only for writing.
/// The order of logger and dispatcher is not documented. CompositorHostileClientTest fails where it differs.
class RequestGuard
{
public:
    using ClientRule = std::function<bool(wl_client*)>;

    explicit RequestGuard(QWaylandCompositor& compositor);
    ~RequestGuard();
    RequestGuard(const RequestGuard&) = delete;
    RequestGuard& operator=(const RequestGuard&) = delete;

    /// Starts to filter; the compositor must have been created.
    void start();
    /// Sets which clients may call wl_pointer.set_cursor.
    void setCursorRule(const ClientRule& rule)
    {
        mMaySetCursor = rule;
    }

private:
    using Request = wl_protocol_logger_message;
    struct Rule;

    static const Rule cRules[];
    static void inspect(void* self, wl_protocol_logger_type direction, const Request* request);

    void checkNewId(const Request& request);
    void checkScale(const Request& request);
    void checkTransform(const Request& request);
    void createSubsurface(const Request& request);
    void destroyObject(const Request& request);
    void checkBuffer(const Request& request);
    void checkCursor(const Request& request);

    QWaylandCompositor& mCompositor;
    wl_protocol_logger* mLogger = nullptr;
    ClientRule mMaySetCursor;
};
