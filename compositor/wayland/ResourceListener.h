// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <functional>
#include <wayland-server-core.h>

/// Calls a function when a wl_resource is destroyed. Unlike QWaylandDestroyListener it stops listening in its
/// destructor, so it may be destroyed before the resource.
class ResourceListener
{
public:
    /// `function` may destroy this listener.
    ResourceListener(wl_resource* resource, std::function<void()> function);
    ~ResourceListener();
    ResourceListener(const ResourceListener&) = delete;
    ResourceListener& operator=(const ResourceListener&) = delete;

private:
    struct Link
    {
        wl_listener listener;
        ResourceListener* owner;
    };

    static void notify(wl_listener* listener, void* resource);

    Link mLink;
    std::function<void()> mFunction;
};
