// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ProtocolClient.h"

#include <cstdio>
#include <cstring>
#include <poll.h>
#include <sstream>
#include <stdexcept>
#include <unistd.h>

ProtocolClient::ProtocolClient()
    : mDisplay(wl_display_connect(nullptr))
{
    if (mDisplay == nullptr) {
        throw std::runtime_error("cannot connect to the compositor");
    }
    static const wl_registry_listener listener = {handleGlobal, [](void*, wl_registry*, uint32_t) {}};
    wl_registry_add_listener(wl_display_get_registry(mDisplay), &listener, this);
    wl_display_roundtrip(mDisplay);
    if (mCompositor == nullptr || mSubcompositor == nullptr || mMemory == nullptr || mShell == nullptr
        || mOutput == nullptr) {
        throw std::runtime_error("the compositor lacks a global");
    }
    static const xdg_wm_base_listener shellListener = {[](void*, xdg_wm_base* shell, uint32_t serial) {
        xdg_wm_base_pong(shell, serial);
    }};
    xdg_wm_base_add_listener(mShell, &shellListener, nullptr);
    listenToOutput();
    wl_display_roundtrip(mDisplay);
}

ProtocolClient::~ProtocolClient()
{
    mWindows.clear();
    wl_display_disconnect(mDisplay);
}

void ProtocolClient::handleGlobal(void* data, wl_registry* registry, uint32_t name, const char* interface, uint32_t)
{
    auto* const self = static_cast<ProtocolClient*>(data);
    const auto bind = [&](auto** object, const wl_interface* type, uint32_t version) {
        if (std::strcmp(interface, type->name) == 0) {
            *object = static_cast<std::remove_reference_t<decltype(*object)>>(
                wl_registry_bind(registry, name, type, version));
        }
    };
    bind(&self->mCompositor, &wl_compositor_interface, 3);
    bind(&self->mSubcompositor, &wl_subcompositor_interface, 1);
    bind(&self->mMemory, &wl_shm_interface, 1);
    bind(&self->mShell, &xdg_wm_base_interface, 1);
    bind(&self->mOutput, &wl_output_interface, 2);
}

void ProtocolClient::listenToOutput()
{
    static const wl_output_listener listener = {
        [](void* data, wl_output*, int32_t, int32_t, int32_t, int32_t, int32_t, const char*, const char*,
           int32_t transform) {
            static_cast<ProtocolClient*>(data)->mOutputText = "transform " + std::to_string(transform);
        },
        [](void* data, wl_output*, uint32_t flags, int32_t width, int32_t height, int32_t) {
            if ((flags & WL_OUTPUT_MODE_CURRENT) != 0) {
                static_cast<ProtocolClient*>(data)->mOutputText +=
                    " mode " + std::to_string(width) + 'x' + std::to_string(height);
            }
        },
        [](void*, wl_output*) {},
        [](void*, wl_output*, int32_t) {},
        nullptr,
        nullptr,
    };
    wl_output_add_listener(mOutput, &listener, this);
}

int ProtocolClient::run()
{
    pollfd descriptors[] = {{wl_display_get_fd(mDisplay), POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}};
    for (;;) {
        if (wl_display_dispatch_pending(mDisplay) < 0) {
            return 1;
        }
        wl_display_flush(mDisplay);
        poll(descriptors, 2, -1);
        if (descriptors[0].revents != 0 && wl_display_dispatch(mDisplay) < 0) {
            std::puts("disconnected");
            std::fflush(stdout);
            return 1;
        }
        if (descriptors[1].revents != 0 && !readCommands()) {
            return 0;
        }
    }
}

bool ProtocolClient::readCommands()
{
    char buffer[4096];
    const ssize_t length = read(STDIN_FILENO, buffer, sizeof(buffer));
    if (length <= 0) {
        return false;
    }
    mInput.append(buffer, static_cast<size_t>(length));
    for (size_t end = mInput.find('\n'); end != std::string::npos; end = mInput.find('\n')) {
        const std::string line = mInput.substr(0, end);
        mInput.erase(0, end + 1);
        if (!runCommand(line)) {
            return false;
        }
    }
    return true;
}

bool ProtocolClient::runCommand(const std::string& line)
{
    std::istringstream stream(line);
    std::string command;
    std::string argument;
    std::string rest;
    stream >> command >> argument >> std::ws;
    std::getline(stream, rest);
    const int number = std::atoi(argument.c_str());
    const int count = std::atoi(rest.c_str());

    if (command == "quit") {
        return false;
    }
    if (command == "open") {
        ProtocolWindow& window = addWindow();
        window.setTitle(rest);
        if (argument != "-") {
            window.setAppId(argument);
        }
        window.map();
    } else if (command == "create") {
        addWindow();
    } else if (command == "sync") {
        // The second round trip covers the requests that windows send in reply to events of the first.
        if (wl_display_roundtrip(mDisplay) < 0 || wl_display_roundtrip(mDisplay) < 0) {
            std::puts("disconnected");
            std::fflush(stdout);
            return false;
        }
        std::puts("synced");
        std::fflush(stdout);
    } else if (command == "output") {
        wl_display_roundtrip(mDisplay);
        std::printf("output %s\n", mOutputText.c_str());
        std::fflush(stdout);
    } else if (mWindows.count(number) == 0) {
        throw std::runtime_error("cannot do \"" + line + '"');
    } else if (command == "appid") {
        mWindows[number]->setAppId(rest);
    } else if (command == "title") {
        mWindows[number]->setTitle(rest);
    } else if (command == "map") {
        mWindows[number]->map();
    } else if (command == "unmap") {
        mWindows[number]->unmap();
    } else if (command == "destroy") {
        mWindows.erase(number);
    } else if (command == "frame") {
        mWindows[number]->requestFrame();
    } else if (command == "truncate") {
        mWindows[number]->truncateBuffer();
    } else if (command == "subsurface") {
        mWindows[number]->addSubsurface(0xff0000ff);
    } else if (command == "commit") {
        for (int i = 0; i < count; ++i) {
            mWindows[number]->commit(0xff000000 | static_cast<uint32_t>(i));
            wl_display_dispatch_pending(mDisplay);
            wl_display_roundtrip(mDisplay);
        }
    } else if (command == "titles") {
        for (int i = 1; i <= count; ++i) {
            mWindows[number]->setTitle("Title " + std::to_string(i));
            // libwayland disconnects when its buffer overflows.
            if (i % 50 == 0) {
                wl_display_roundtrip(mDisplay);
            }
        }
    } else {
        throw std::runtime_error("unknown command \"" + line + '"');
    }
    return true;
}

ProtocolWindow& ProtocolClient::addWindow()
{
    const int number = ++mLastNumber;
    mWindows[number] = std::make_unique<ProtocolWindow>(*this, number);
    return *mWindows[number];
}
