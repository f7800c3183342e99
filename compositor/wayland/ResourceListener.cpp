// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/ResourceListener.h"

#include <utility>

ResourceListener::ResourceListener(wl_resource* resource, std::function<void()> function)
    : mLink{{{}, notify}, this}
    , mFunction(std::move(function))
{
    wl_resource_add_destroy_listener(resource, &mLink.listener);
}

ResourceListener::~ResourceListener()
{
    wl_list_remove(&mLink.listener.link);
}

void ResourceListener::notify(wl_listener* listener, void*)
{
    // The listener is the first member of its link.
    ResourceListener* const self = reinterpret_cast<Link*>(listener)->owner;
    wl_list_remove(&listener->link);
    wl_list_init(&listener->link);
    const std::function<void()> function = std::exchange(self->mFunction, nullptr);
    function();
}
