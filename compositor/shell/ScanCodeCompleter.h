// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "shell/Keymap.h"

#include <qpa/qwindowsysteminterface_p.h>

/// Completes key events of platforms that give no scan codes, as VNC, with the one that the symbol has on the keymap.
/// Qt Wayland Compositor handles each key event before the window does and derives its symbol from the scan code; this
/// stands before that handler.
class ScanCodeCompleter : public QWindowSystemEventHandler
{
public:
    /// To be created when the compositor of Qt has been, and destroyed before it.
    explicit ScanCodeCompleter(const Keymap& keymap);
    ~ScanCodeCompleter() override;
    ScanCodeCompleter(const ScanCodeCompleter&) = delete;
    ScanCodeCompleter& operator=(const ScanCodeCompleter&) = delete;

    bool sendEvent(QWindowSystemInterfacePrivate::WindowSystemEvent* event) override;

private:
    const Keymap& mKeymap;
    QWindowSystemEventHandler* mNext;
};
