// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "shell/ScanCodeCompleter.h"

ScanCodeCompleter::ScanCodeCompleter(const Keymap& keymap)
    : mKeymap(keymap)
    , mNext(QWindowSystemInterfacePrivate::eventHandler)
{
    // Qt keeps one handler, and a second is not installed beside it.
    QWindowSystemInterfacePrivate::removeWindowSystemEventhandler(mNext);
    QWindowSystemInterfacePrivate::installWindowSystemEventHandler(this);
}

ScanCodeCompleter::~ScanCodeCompleter()
{
    QWindowSystemInterfacePrivate::removeWindowSystemEventhandler(this);
    QWindowSystemInterfacePrivate::installWindowSystemEventHandler(mNext);
}

bool ScanCodeCompleter::sendEvent(QWindowSystemInterfacePrivate::WindowSystemEvent* event)
{
    if (event->type == QWindowSystemInterfacePrivate::Key) {
        auto* const key = static_cast<QWindowSystemInterfacePrivate::KeyEvent*>(event);
        if (key->nativeScanCode == 0) {
            key->nativeScanCode = mKeymap.scanCodeOf(key->key, key->unicode);
        }
    }
    return mNext == nullptr ? QWindowSystemEventHandler::sendEvent(event) : mNext->sendEvent(event);
}
