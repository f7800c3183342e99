// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <cstring>
#include <wayland-server-core.h>

/// The objects of a client.
namespace ClientResources {

/// Calls `function` with each wl_resource of `interface`; a null client has none.
template <typename Function> void forEach(wl_client* client, const wl_interface& interface, const Function& function)
{
    struct Context
    {
        const wl_interface& interface;
        const Function& function;
    };
    if (client == nullptr) {
        return;
    }
    Context context{interface, function};
    wl_client_for_each_resource(
        client,
        [](wl_resource* resource, void* data) {
            const auto* const wanted = static_cast<const Context*>(data);
            if (std::strcmp(wl_resource_get_class(resource), wanted->interface.name) == 0) {
                wanted->function(resource);
            }
            return WL_ITERATOR_CONTINUE;
        },
        &context);
}

} // namespace ClientResources
