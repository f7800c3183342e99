// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "ProtocolWindow.h"

#include <map>
#include <memory>
#include <string>

/// Reads commands from standard input, one per line, and does them. Windows are numbered from 1.
///
/// - open APPID TITLE...: a window; with "-" for the application's id it gets none
/// - create: a window without a name that is not mapped
/// - appid NUMBER APPID, title NUMBER TITLE..., parent NUMBER NUMBER
/// - map NUMBER, unmap NUMBER, destroy NUMBER
/// - commit NUMBER COUNT: new contents, so many times
/// - titles NUMBER COUNT: new titles, so many times
/// - frame NUMBER: asks to be told when it is shown, and prints that
/// - truncate NUMBER: takes the buffer's memory away
/// - subsurface NUMBER
/// - subsurfaceloop: two surfaces that are subsurfaces of each other
/// - sync: prints "synced" when the compositor has done everything
/// - output: prints what is known of the output
/// - quit
class ProtocolClient
{
public:
    ProtocolClient();
    ~ProtocolClient();
    ProtocolClient(const ProtocolClient&) = delete;
    ProtocolClient& operator=(const ProtocolClient&) = delete;

    /// Until the input or the connection ends; answers the exit status.
    int run();

    wl_compositor* compositor() const
    {
        return mCompositor;
    }
    wl_subcompositor* subcompositor() const
    {
        return mSubcompositor;
    }
    wl_shm* memory() const
    {
        return mMemory;
    }
    xdg_wm_base* shell() const
    {
        return mShell;
    }

private:
    static void handleGlobal(void* data, wl_registry* registry, uint32_t name, const char* interface, uint32_t version);
    void listenToOutput();
    bool readCommands();
    bool runCommand(const std::string& line);
    ProtocolWindow& addWindow();
    void makeSubsurfaceLoop();

    wl_display* mDisplay;
    wl_compositor* mCompositor = nullptr;
    wl_subcompositor* mSubcompositor = nullptr;
    wl_shm* mMemory = nullptr;
    xdg_wm_base* mShell = nullptr;
    wl_output* mOutput = nullptr;
    std::string mOutputText;
    std::string mInput;
    std::map<int, std::unique_ptr<ProtocolWindow>> mWindows;
    int mLastNumber = 0;
};
