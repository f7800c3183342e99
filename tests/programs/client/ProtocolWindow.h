// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <wayland-client.h>

#include <xdg-shell-client-protocol.h>

#include <string>

class ProtocolClient;

/// One xdg toplevel with a surface and a buffer of its own. Prints the compositor's events, each line beginning with a
/// word for the event and the window's number.
class ProtocolWindow
{
public:
    ProtocolWindow(ProtocolClient& client, int number);
    ~ProtocolWindow();
    ProtocolWindow(const ProtocolWindow&) = delete;
    ProtocolWindow& operator=(const ProtocolWindow&) = delete;

    void setAppId(const std::string& appId);
    void setTitle(const std::string& title);
    /// Commits without a buffer and, once configured, with one.
    void map();
    void unmap();
    void commit(uint32_t color);
    void requestFrame();
    /// Truncates the memory of the pool below its announced size and commits the buffer.
    void truncateBuffer();
    /// Creates a smaller subsurface above the surface.
    void addSubsurface(uint32_t color);
    wl_surface* surface() const
    {
        return mSurface;
    }

private:
    static void handleSurfaceConfigure(void* data, xdg_surface* surface, uint32_t serial);
    static void handleConfigure(void* data, xdg_toplevel* toplevel, int32_t width, int32_t height, wl_array* states);
    static void handleClose(void* data, xdg_toplevel* toplevel);
    static void handleFrame(void* data, wl_callback* callback, uint32_t time);
    wl_buffer* createBuffer(int width, int height, uint32_t color);
    void print(const char* event, const std::string& text = std::string()) const;

    ProtocolClient& mClient;
    int mNumber;
    wl_surface* mSurface;
    xdg_surface* mXdgSurface;
    xdg_toplevel* mToplevel;
    int mMemory = -1;
    bool mWantsMapping = false;
};
