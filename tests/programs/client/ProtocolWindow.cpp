// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ProtocolWindow.h"

#include "ProtocolClient.h"

#include <cstdio>
#include <sys/mman.h>
#include <unistd.h>

namespace {

constexpr int cWidth = 300;
constexpr int cHeight = 200;
constexpr uint32_t cWhite = 0xffffffff;

} // namespace

ProtocolWindow::ProtocolWindow(ProtocolClient& client, int number)
    : mClient(client)
    , mNumber(number)
    , mSurface(wl_compositor_create_surface(client.compositor()))
    , mXdgSurface(xdg_wm_base_get_xdg_surface(client.shell(), mSurface))
    , mToplevel(xdg_surface_get_toplevel(mXdgSurface))
{
    static const xdg_surface_listener surfaceListener = {handleSurfaceConfigure};
    static const xdg_toplevel_listener toplevelListener = {handleConfigure, handleClose, nullptr, nullptr};
    xdg_surface_add_listener(mXdgSurface, &surfaceListener, this);
    xdg_toplevel_add_listener(mToplevel, &toplevelListener, this);
}

ProtocolWindow::~ProtocolWindow()
{
    xdg_toplevel_destroy(mToplevel);
    xdg_surface_destroy(mXdgSurface);
    wl_surface_destroy(mSurface);
    if (mMemory >= 0) {
        close(mMemory);
    }
}

void ProtocolWindow::setAppId(const std::string& appId)
{
    xdg_toplevel_set_app_id(mToplevel, appId.c_str());
}

void ProtocolWindow::setTitle(const std::string& title)
{
    xdg_toplevel_set_title(mToplevel, title.c_str());
}

void ProtocolWindow::map()
{
    mWantsMapping = true;
    wl_surface_commit(mSurface);
}

void ProtocolWindow::unmap()
{
    wl_surface_attach(mSurface, nullptr, 0, 0);
    wl_surface_commit(mSurface);
}

void ProtocolWindow::commit(uint32_t color)
{
    wl_surface_attach(mSurface, createBuffer(cWidth, cHeight, color), 0, 0);
    wl_surface_damage(mSurface, 0, 0, cWidth, cHeight);
    wl_surface_commit(mSurface);
}

void ProtocolWindow::requestFrame()
{
    static const wl_callback_listener listener = {handleFrame};
    wl_callback_add_listener(wl_surface_frame(mSurface), &listener, this);
    wl_surface_commit(mSurface);
}

void ProtocolWindow::truncateBuffer()
{
    commit(cWhite);
    if (ftruncate(mMemory, 0) != 0) {
        std::perror("ftruncate");
    }
}

void ProtocolWindow::addSubsurface(uint32_t color)
{
    wl_surface* const surface = wl_compositor_create_surface(mClient.compositor());
    wl_subsurface* const subsurface = wl_subcompositor_get_subsurface(mClient.subcompositor(), surface, mSurface);
    wl_subsurface_set_position(subsurface, 20, 30);
    wl_surface_attach(surface, createBuffer(40, 50, color), 0, 0);
    wl_surface_damage(surface, 0, 0, 40, 50);
    wl_surface_commit(surface);
    wl_surface_commit(mSurface);
}

wl_buffer* ProtocolWindow::createBuffer(int width, int height, uint32_t color)
{
    const int size = width * height * static_cast<int>(sizeof(color));
    const int memory = memfd_create("protocol-client", MFD_CLOEXEC);
    if (memory < 0 || ftruncate(memory, size) != 0) {
        std::perror("memfd_create");
        return nullptr;
    }
    auto* const pixels =
        static_cast<uint32_t*>(mmap(nullptr, static_cast<size_t>(size), PROT_READ | PROT_WRITE, MAP_SHARED, memory, 0));
    for (int i = 0; i < width * height; ++i) {
        pixels[i] = color;
    }
    munmap(pixels, static_cast<size_t>(size));

    wl_shm_pool* const pool = wl_shm_create_pool(mClient.memory(), memory, size);
    wl_buffer* const buffer = wl_shm_pool_create_buffer(pool, 0, width, height, width * static_cast<int>(sizeof(color)),
                                                        WL_SHM_FORMAT_ARGB8888);
    wl_shm_pool_destroy(pool);
    static const wl_buffer_listener listener = {[](void*, wl_buffer* released) {
        wl_buffer_destroy(released);
    }};
    wl_buffer_add_listener(buffer, &listener, nullptr);
    if (mMemory >= 0) {
        close(mMemory);
    }
    mMemory = memory;
    return buffer;
}

void ProtocolWindow::handleSurfaceConfigure(void* data, xdg_surface* surface, uint32_t serial)
{
    auto* const self = static_cast<ProtocolWindow*>(data);
    xdg_surface_ack_configure(surface, serial);
    if (self->mWantsMapping) {
        self->mWantsMapping = false;
        self->commit(cWhite);
    }
}

void ProtocolWindow::handleConfigure(void* data, xdg_toplevel*, int32_t width, int32_t height, wl_array* states)
{
    static const char* const names[] = {"", "maximized", "fullscreen", "resizing", "activated"};
    std::string text = std::to_string(width) + 'x' + std::to_string(height);
    const auto* const first = static_cast<const uint32_t*>(states->data);
    for (size_t i = 0; i < states->size / sizeof(uint32_t); ++i) {
        text += first[i] < std::size(names) ? ' ' + std::string(names[first[i]]) : " other";
    }
    static_cast<ProtocolWindow*>(data)->print("configure", text);
}

void ProtocolWindow::handleClose(void* data, xdg_toplevel*)
{
    static_cast<ProtocolWindow*>(data)->print("close");
}

void ProtocolWindow::handleFrame(void* data, wl_callback* callback, uint32_t)
{
    wl_callback_destroy(callback);
    static_cast<ProtocolWindow*>(data)->print("frame");
}

void ProtocolWindow::print(const char* event, const std::string& text) const
{
    std::printf("%s %d%s%s\n", event, mNumber, text.empty() ? "" : " ", text.c_str());
    std::fflush(stdout);
}
