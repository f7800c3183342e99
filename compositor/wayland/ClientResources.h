// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <cstring>
#include <vector>
#include <wayland-server-core.h>

/// The objects of a client.
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

} // namespace ClientResources
