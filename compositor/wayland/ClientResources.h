// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <cstdint>
#include <cstring>
#include <vector>
#include <wayland-server-core.h>

/// The objects of a client, and what implementations of a protocol have in common.
namespace ClientResources {

/// Returns each wl_resource of `interface`; a null client has none.
inline std::vector<wl_resource*> of(wl_client* client, const wl_interface& interface)
{
    struct Search
    {
        const char* interface;
        std::vector<wl_resource*> found;
    };
    Search search{interface.name, {}};
    if (client != nullptr) {
        wl_client_for_each_resource(
            client,
            [](wl_resource* resource, void* data) {
                auto* const current = static_cast<Search*>(data);
                if (std::strcmp(wl_resource_get_class(resource), current->interface) == 0) {
                    current->found.push_back(resource);
                }
                return WL_ITERATOR_CONTINUE;
            },
            &search);
    }
    return search.found;
}

/// Creates an object whose requests are handled by `requests`, a struct of function pointers as wayland-scanner
/// declares it. Returns null, and disconnects the client, when there is no memory.
template <typename Requests>
wl_resource* create(wl_client* client, const wl_interface& interface, int version, uint32_t id,
                    const Requests& requests, void* data, wl_resource_destroy_func_t destroy = nullptr)
{
    wl_resource* const resource = wl_resource_create(client, &interface, version, id);
    if (resource == nullptr) {
        wl_client_post_no_memory(client);
        return nullptr;
    }
    wl_resource_set_implementation(resource, &requests, data, destroy);
    return resource;
}

/// Handles a request that is a destructor.
inline void destroy(wl_client*, wl_resource* resource)
{
    wl_resource_destroy(resource);
}

/// Deletes the Object that is the user data of a destroyed wl_resource.
template <typename Object> void deleteObject(wl_resource* resource)
{
    delete static_cast<Object*>(wl_resource_get_user_data(resource));
}

} // namespace ClientResources
