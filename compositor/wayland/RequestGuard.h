// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QWaylandXdgSurface>

#include <functional>
#include <wayland-server.h>

class QWaylandCompositor;
class QWaylandXdgShell;

/// Sees every request before Qt does and keeps from it what Qt 5 does not survive. Qt trusts its clients to end their
/// objects in the right order: a request to an object whose surface, window or popup has already gone ends in freed
/// memory. A client that breaks the protocol in such a way is cut off; where the protocol leaves an object behind that
/// has nothing to do any more, its requests are dropped.
class RequestGuard : public QObject
{
    Q_OBJECT

public:
    using ClientRule = std::function<bool(wl_client*)>;

    RequestGuard(QWaylandCompositor& compositor, QWaylandXdgShell& shell);
    ~RequestGuard() override;

    /// Begins to look at requests; to be called when there is a display.
    void start();
    /// Who may give the pointer an image.
    void setCursorRule(const ClientRule& rule)
    {
        mMaySetCursor = rule;
    }
    /// Who may begin to drag.
    void setDragRule(const ClientRule& rule)
    {
        mMayDrag = rule;
    }

    /// Calls \a function when the object goes, unless \a context has gone before.
    static void watch(wl_resource* resource, const QObject* context, const std::function<void()>& function);

Q_SIGNALS:
    /// A client that may do so begins to drag what this source holds.
    void dragStarting(wl_resource* source);

private:
    using Request = wl_protocol_logger_message;
    struct Rule;
    struct Watch;

    static const Rule cRules[];
    static void inspect(void* self, wl_protocol_logger_type direction, const Request* request);

    void checkNewId(const Request& request);
    void checkScale(const Request& request);
    void checkTransform(const Request& request);
    void checkSurfaceEnd(const Request& request);
    void checkXdgSurface(const Request& request);
    void checkXdgSurfaceEnd(const Request& request);
    void checkXdgSurfaceState(const Request& request);
    void checkWindowGeometry(const Request& request);
    void notePopup(const Request& request);
    void endPopup(const Request& request);
    void checkSubsurface(const Request& request);
    void checkBuffer(const Request& request);
    void checkCursor(const Request& request);
    void checkDrag(const Request& request);

    void handlePopup(QWaylandXdgPopup* popup, QWaylandXdgSurface* xdgSurface);

    QWaylandCompositor& mCompositor;
    wl_protocol_logger* mLogger = nullptr;
    ClientRule mMaySetCursor;
    ClientRule mMayDrag;
    /// The popup that the request in hand is about to make.
    wl_client* mClient = nullptr;
    quint32 mNewId = 0;
    /// What an xdg surface has been made: a window or a popup. Null when that has gone.
    QHash<const QWaylandXdgSurface*, QPointer<QObject>> mRoles;
};
