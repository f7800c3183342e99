// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QPoint>
#include <QPointer>
#include <QWaylandSurface>

struct wl_client;
struct wl_resource;

/// What makes a surface a part of another one. Qt's own outlives its surface, answers for it after its end, and is
/// never freed; this one ends with its object and tells of itself by the same signals of the surfaces.
class Subsurface
{
public:
    /// Ends with its object.
    static void create(wl_client* client, quint32 id, QWaylandSurface* surface, QWaylandSurface* parent);

    Subsurface(const Subsurface&) = delete;
    Subsurface& operator=(const Subsurface&) = delete;

private:
    explicit Subsurface(QWaylandSurface* surface);
    ~Subsurface();

    static Subsurface* of(wl_resource* resource);
    static void setPosition(wl_client* client, wl_resource* resource, int32_t x, int32_t y);
    static void placeAbove(wl_client* client, wl_resource* resource, wl_resource* sibling);
    static void placeBelow(wl_client* client, wl_resource* resource, wl_resource* sibling);

    QPointer<QWaylandSurface> mSurface;
};
