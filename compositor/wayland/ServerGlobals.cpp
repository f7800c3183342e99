// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/ServerGlobals.h"

#include <algorithm>
#include <cstring>

ServerGlobals::ServerGlobals(wl_display* display)
    : mDisplay(display)
{
    wl_display_set_global_filter(display, isVisible, this);
}

ServerGlobals::~ServerGlobals()
{
    wl_display_set_global_filter(mDisplay, nullptr, nullptr);
    for (wl_global* global : mGlobals) {
        wl_global_destroy(global);
    }
}

void ServerGlobals::announce(const wl_interface* interface, int version, void* data, wl_global_bind_func_t bind)
{
    mGlobals.push_back(wl_global_create(mDisplay, interface, version, data, bind));
}

bool ServerGlobals::isVisible(const wl_client*, const wl_global* global, void* self)
{
    const std::vector<wl_global*>& globals = static_cast<const ServerGlobals*>(self)->mGlobals;
    // By name: Qt has copies of its own of the interfaces that are not part of libwayland.
    return std::all_of(globals.cbegin(), globals.cend(), [global](const wl_global* own) {
        return own == global
            || std::strcmp(wl_global_get_interface(own)->name, wl_global_get_interface(global)->name) != 0;
    });
}
