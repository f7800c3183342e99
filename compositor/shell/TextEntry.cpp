// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "shell/TextEntry.h"

#include "shell/Keymap.h"
#include "shell/OnScreenKeyboard.h"
#include "shell/WindowStack.h"
#include "wayland/ClientWindow.h"
#include "wayland/TextInput.h"
#include "wayland/TextInputs.h"

#include <algorithm>
#include <qpa/qwindowsysteminterface_p.h>

namespace {

constexpr int cClosingMilliseconds = 100;

} // namespace

TextEntry::TextEntry(OnScreenKeyboard& keyboard, TextInputs& inputs, WindowStack& stack, QWindow& window,
                     const Keymap& keymap)
    : mKeyboard(keyboard)
    , mInputs(inputs)
    , mStack(stack)
    , mWindow(window)
    , mKeymap(keymap)
{
    mClosing.setSingleShot(true);
    mClosing.setInterval(cClosingMilliseconds);
    connect(&mClosing, &QTimer::timeout, &keyboard, &OnScreenKeyboard::close);
    connect(&inputs, &TextInputs::activeChanged, this, &TextEntry::handleActiveChange);
    connect(&inputs, &TextInputs::panelRequested, this, &TextEntry::handlePanelRequest);
    connect(&inputs, &TextInputs::panelDismissed, this, [this] {
        if (!mIsByHand) {
            mClosing.start();
        }
    });
    connect(&keyboard, &OnScreenKeyboard::openChanged, this, [this] {
        mIsByHand = mIsByHand && mKeyboard.isOpen();
        handleActiveChange();
        mInputs.sendPanelState(mKeyboard.isOpen());
    });
    connect(&keyboard, &OnScreenKeyboard::characterTyped, this, &TextEntry::type);
    connect(&keyboard, &OnScreenKeyboard::keyPressed, this, [this](int key) {
        sendKey(QEvent::KeyPress, mKeymap.scanCodeOf(key, QString()));
    });
    connect(&keyboard, &OnScreenKeyboard::keyReleased, this, [this](int key) {
        sendKey(QEvent::KeyRelease, mKeymap.scanCodeOf(key, QString()));
    });
}

void TextEntry::toggle()
{
    mClosing.stop();
    if (mKeyboard.isOpen()) {
        mKeyboard.close();
    } else {
        mIsByHand = true;
        mKeyboard.open();
    }
}

void TextEntry::handlePanelRequest()
{
    mClosing.stop();
    if (mIsByFinger) {
        mKeyboard.open();
    }
}

void TextEntry::handleActiveChange()
{
    const TextInput* const input = mInputs.active();
    if (input == nullptr && mKeyboard.isOpen() && !mIsByHand) {
        mClosing.start();
    } else {
        mKeyboard.setNumeric(input != nullptr && input->isNumeric());
    }
}

void TextEntry::type(const QString& character)
{
    TextInput* const input = mInputs.active();
    ClientWindow* const window = mStack.current();
    if (input != nullptr) {
        if (window != nullptr && window->admitEvent()) {
            input->sendText(character);
        }
        return;
    }
    QVector<quint32> codes = mKeymap.strokeOf(character);
    for (const quint32 code : qAsConst(codes)) {
        sendKey(QEvent::KeyPress, code);
    }
    std::reverse(codes.begin(), codes.end());
    for (const quint32 code : qAsConst(codes)) {
        sendKey(QEvent::KeyRelease, code);
    }
}

void TextEntry::sendKey(QEvent::Type type, quint32 code)
{
    // Handled at once, before what is queued. Qt Wayland Compositor derives the key and its text from the scan code.
    QWindowSystemInterfacePrivate::KeyEvent event(&mWindow, 0, type, Qt::Key_unknown, Qt::NoModifier, code, 0, 0);
    mIsTyping = true;
    QWindowSystemInterfacePrivate::eventHandler->sendEvent(&event);
    mIsTyping = false;
}
