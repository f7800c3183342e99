// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <linux/input-event-codes.h>
#include <poll.h>
#include <stdexcept>
#include <string>
#include <sys/mman.h>
#include <unistd.h>
#include <wayland-client.h>
#include <xdg-shell-client-protocol.h>

namespace {

constexpr int cSmallWidth = 72;
constexpr int cSmallHeight = 64;
constexpr std::uint32_t cClicked = 0xff00ff00;

/// A full-screen window on shared memory. It paints when the frame callback comes: everything, a small part, or
/// nothing; and everything in another colour at a click. Its commands are "full", "small", "still", and "count", which
/// prints the number of frames that were shown.
class PaintingClient
{
public:
    PaintingClient()
        : mDisplay(wl_display_connect(nullptr))
    {
        if (mDisplay == nullptr) {
            throw std::runtime_error("cannot connect to the compositor");
        }
        static const wl_registry_listener listener = {handleGlobal, [](void*, wl_registry*, std::uint32_t) {}};
        wl_registry_add_listener(wl_display_get_registry(mDisplay), &listener, this);
        wl_display_roundtrip(mDisplay);
        if (mCompositor == nullptr || mMemory == nullptr || mSeat == nullptr || mShell == nullptr) {
            throw std::runtime_error("the compositor lacks a global");
        }
        listenToPointer();
        createWindow();
    }

    int run()
    {
        std::array<pollfd, 2> sources = {{{wl_display_get_fd(mDisplay), POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}}};
        for (;;) {
            while (wl_display_prepare_read(mDisplay) != 0) {
                wl_display_dispatch_pending(mDisplay);
            }
            wl_display_flush(mDisplay);
            poll(sources.data(), sources.size(), -1);
            if (sources[0].revents != 0) {
                wl_display_read_events(mDisplay);
            } else {
                wl_display_cancel_read(mDisplay);
            }
            if (wl_display_dispatch_pending(mDisplay) < 0) {
                return EXIT_FAILURE;
            }
            if (sources[1].revents != 0 && !readCommands()) {
                return EXIT_SUCCESS;
            }
        }
    }

private:
    struct Buffer
    {
        wl_buffer* buffer = nullptr;
        std::uint32_t* pixels = nullptr;
        bool isBusy = false;
    };

    static void handleGlobal(void* data, wl_registry* registry, std::uint32_t name, const char* interface,
                             std::uint32_t)
    {
        auto* const self = static_cast<PaintingClient*>(data);
        const auto bind = [&](auto** object, const wl_interface* type, std::uint32_t version) {
            if (std::strcmp(interface, type->name) == 0) {
                *object = static_cast<std::remove_reference_t<decltype(*object)>>(
                    wl_registry_bind(registry, name, type, version));
            }
        };
        bind(&self->mCompositor, &wl_compositor_interface, 4);
        bind(&self->mMemory, &wl_shm_interface, 1);
        bind(&self->mSeat, &wl_seat_interface, 1);
        bind(&self->mShell, &xdg_wm_base_interface, 1);
    }

    void listenToPointer()
    {
        // Of version 1, which has five events.
        static const wl_pointer_listener listener = [] {
            wl_pointer_listener handlers{};
            handlers.enter = [](void*, wl_pointer*, std::uint32_t, wl_surface*, wl_fixed_t, wl_fixed_t) {};
            handlers.leave = [](void*, wl_pointer*, std::uint32_t, wl_surface*) {};
            handlers.motion = [](void*, wl_pointer*, std::uint32_t, wl_fixed_t, wl_fixed_t) {};
            handlers.button = [](void* data, wl_pointer*, std::uint32_t, std::uint32_t, std::uint32_t button,
                                 std::uint32_t state) {
                if (button == BTN_LEFT && state == WL_POINTER_BUTTON_STATE_PRESSED) {
                    static_cast<PaintingClient*>(data)->invert();
                }
            };
            handlers.axis = [](void*, wl_pointer*, std::uint32_t, std::uint32_t, wl_fixed_t) {};
            return handlers;
        }();
        wl_pointer_add_listener(wl_seat_get_pointer(mSeat), &listener, this);
    }

    void createWindow()
    {
        static const xdg_wm_base_listener shellListener = {[](void*, xdg_wm_base* shell, std::uint32_t serial) {
            xdg_wm_base_pong(shell, serial);
        }};
        static const xdg_surface_listener surfaceListener = {
            [](void* data, xdg_surface* surface, std::uint32_t serial) {
                xdg_surface_ack_configure(surface, serial);
                static_cast<PaintingClient*>(data)->resize();
            }};
        static const xdg_toplevel_listener toplevelListener = {
            [](void* data, xdg_toplevel*, std::int32_t width, std::int32_t height, wl_array*) {
                auto* const self = static_cast<PaintingClient*>(data);
                self->mWantedWidth = width > 0 ? width : 640;
                self->mWantedHeight = height > 0 ? height : 480;
            },
            [](void*, xdg_toplevel*) {
                std::exit(EXIT_SUCCESS);
            },
            nullptr, nullptr};
        mSurface = wl_compositor_create_surface(mCompositor);
        xdg_surface* const surface = xdg_wm_base_get_xdg_surface(mShell, mSurface);
        xdg_toplevel* const toplevel = xdg_surface_get_toplevel(surface);
        xdg_wm_base_add_listener(mShell, &shellListener, nullptr);
        xdg_surface_add_listener(surface, &surfaceListener, this);
        xdg_toplevel_add_listener(toplevel, &toplevelListener, this);
        xdg_toplevel_set_app_id(toplevel, "painting-client");
        xdg_toplevel_set_fullscreen(toplevel, nullptr);
        wl_surface_commit(mSurface);
    }

    /// Allocates buffers where the size has changed, and paints the first frame.
    void resize()
    {
        if (mWidth == mWantedWidth && mHeight == mWantedHeight) {
            return;
        }
        mWidth = mWantedWidth;
        mHeight = mWantedHeight;
        const int stride = mWidth * static_cast<int>(sizeof(std::uint32_t));
        const int bytes = stride * mHeight;
        for (Buffer& buffer : mBuffers) {
            if (buffer.buffer != nullptr) {
                wl_buffer_destroy(buffer.buffer);
                munmap(buffer.pixels, mMappedBytes);
            }
            const int memory = memfd_create("painting-client", MFD_CLOEXEC);
            if (memory < 0 || ftruncate(memory, bytes) != 0) {
                throw std::runtime_error("no memory for a buffer");
            }
            buffer.pixels = static_cast<std::uint32_t*>(
                mmap(nullptr, static_cast<std::size_t>(bytes), PROT_READ | PROT_WRITE, MAP_SHARED, memory, 0));
            wl_shm_pool* const pool = wl_shm_create_pool(mMemory, memory, bytes);
            buffer.buffer = wl_shm_pool_create_buffer(pool, 0, mWidth, mHeight, stride, WL_SHM_FORMAT_XRGB8888);
            buffer.isBusy = false;
            wl_shm_pool_destroy(pool);
            close(memory);
            static const wl_buffer_listener listener = {[](void* data, wl_buffer* released) {
                auto* const self = static_cast<PaintingClient*>(data);
                for (Buffer& candidate : self->mBuffers) {
                    candidate.isBusy &= candidate.buffer != released;
                }
                self->paint();
            }};
            wl_buffer_add_listener(buffer.buffer, &listener, this);
        }
        mMappedBytes = static_cast<std::size_t>(bytes);
        mIsWanted = true;
        mIsComplete = false;
        paint();
    }

    /// Paints where a frame is wanted, the last one is shown and a buffer is free.
    void paint()
    {
        const auto buffer = std::find_if(mBuffers.begin(), mBuffers.end(), [](const Buffer& candidate) {
            return !candidate.isBusy;
        });
        if (!mIsWanted || mIsWaiting || buffer == mBuffers.end()) {
            return;
        }
        mColor += 0x00010203;
        const std::uint32_t color = mIsInverted ? cClicked : 0xff000000 | (mColor & 0x00ff00ff);
        const bool isFull = !mIsSmall || !mIsComplete;
        const int width = isFull ? mWidth : cSmallWidth;
        const int height = isFull ? mHeight : cSmallHeight;
        for (int y = 0; y < height; ++y) {
            std::fill_n(buffer->pixels + static_cast<std::ptrdiff_t>(y) * mWidth, width, color);
        }
        static const wl_callback_listener listener = {[](void* data, wl_callback* callback, std::uint32_t) {
            wl_callback_destroy(callback);
            static_cast<PaintingClient*>(data)->handleShown();
        }};
        wl_callback_add_listener(wl_surface_frame(mSurface), &listener, this);
        wl_surface_attach(mSurface, buffer->buffer, 0, 0);
        wl_surface_damage_buffer(mSurface, 0, 0, width, height);
        wl_surface_commit(mSurface);
        buffer->isBusy = true;
        mIsComplete = true;
        mIsWaiting = true;
        mIsWanted = mIsAnimated;
    }

    void handleShown()
    {
        mIsWaiting = false;
        if (mCount++ == 0) {
            std::puts("shown");
            std::fflush(stdout);
        }
        paint();
    }

    void invert()
    {
        mIsInverted = !mIsInverted;
        mIsComplete = false;
        mIsWanted = true;
        paint();
    }

    /// Returns false at the end of the commands.
    bool readCommands()
    {
        std::array<char, 256> text{};
        const ssize_t length = read(STDIN_FILENO, text.data(), text.size());
        if (length <= 0) {
            return false;
        }
        mInput.append(text.data(), static_cast<std::size_t>(length));
        for (std::size_t end = mInput.find('\n'); end != std::string::npos; end = mInput.find('\n')) {
            const std::string command = mInput.substr(0, end);
            mInput.erase(0, end + 1);
            if (command == "count") {
                std::printf("%d %d %d\n", mCount, mWidth, mHeight);
                std::fflush(stdout);
            } else {
                mIsSmall = command == "small";
                mIsAnimated = command != "still";
                mIsWanted |= mIsAnimated;
                paint();
            }
        }
        return true;
    }

    wl_display* const mDisplay;
    wl_compositor* mCompositor = nullptr;
    wl_shm* mMemory = nullptr;
    wl_seat* mSeat = nullptr;
    xdg_wm_base* mShell = nullptr;
    wl_surface* mSurface = nullptr;
    std::array<Buffer, 3> mBuffers;
    int mWantedWidth = 0;
    int mWantedHeight = 0;
    int mWidth = 0;
    int mHeight = 0;
    std::size_t mMappedBytes = 0;
    int mCount = 0;
    std::uint32_t mColor = 0;
    bool mIsSmall = false;
    bool mIsAnimated = false;
    bool mIsInverted = false;
    bool mIsWanted = false;
    bool mIsWaiting = false;
    bool mIsComplete = false;
    std::string mInput;
};

} // namespace

int main()
{
    try {
        return PaintingClient().run();
    } catch (const std::exception& exception) {
        std::fprintf(stderr, "painting-client: %s\n", exception.what());
        return EXIT_FAILURE;
    }
}
