// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QObject>

#include <cstdint>

class ServerGlobals;
class XdgPopup;
class XdgToplevel;
struct wl_client;
struct wl_resource;
Q_DECLARE_OPAQUE_POINTER(wl_client*)

/// The xdg_wm_base global at version 3. Replaces QWaylandXdgShell, which implements version 1, sends each window a
/// configure event without a size first, and uses objects that the client has destroyed.
class XdgShell : public QObject
{
    Q_OBJECT

public:
    explicit XdgShell(ServerGlobals& globals);

Q_SIGNALS:
    void toplevelCreated(XdgToplevel* toplevel);
    void popupCreated(XdgPopup* popup);
    void pong(wl_client* client, uint32_t serial);

private:
    static void bind(wl_client* client, void* data, uint32_t version, uint32_t id);
    static void destroy(wl_client* client, wl_resource* resource);
    static void createPositioner(wl_client* client, wl_resource* resource, uint32_t id);
    static void createSurface(wl_client* client, wl_resource* resource, uint32_t id, wl_resource* surface);
    static void handlePong(wl_client* client, wl_resource* resource, uint32_t serial);
};
