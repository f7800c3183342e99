// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "ProtocolWindow.h"

#include <map>
#include <memory>
#include <string>

/// Executes commands from standard input, one per line. Windows are numbered from 1.
///
/// - open APPID TITLE...: a window; with "-" for APPID it has no application id
/// - create: an unmapped window without a title
/// - appid NUMBER APPID, title NUMBER TITLE...
/// - map NUMBER, unmap NUMBER, destroy NUMBER
/// - commit NUMBER COUNT: commits new contents COUNT times
/// - titles NUMBER COUNT: sets a new title COUNT times
/// - frame NUMBER: requests a frame callback and prints its event
/// - truncate NUMBER: truncates the buffer's memory
/// - subsurface NUMBER
/// - sync: prints "synced" when the compositor has handled all requests
/// - output: prints the output's properties
/// - quit
class ProtocolClient
{
public:
    ProtocolClient();
    ~ProtocolClient();
    ProtocolClient(const ProtocolClient&) = delete;
    ProtocolClient& operator=(const ProtocolClient&) = delete;

    /// Runs until the input or the connection ends; returns the exit status.
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
