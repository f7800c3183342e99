// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QEvent>
#include <QObject>
#include <QTimer>

class Keymap;
class OnScreenKeyboard;
class QWindow;
class TextInputs;
class WindowStack;

/// Connects the on-screen keyboard with the clients: opens and closes it with their text fields, and sends them what is
/// typed on it. Characters go through the client's text input, or as keys if it has none; all other keys are keys.
class TextEntry : public QObject
{
    Q_OBJECT

public:
    /// `window` receives the keys.
    TextEntry(OnScreenKeyboard& keyboard, TextInputs& inputs, WindowStack& stack, QWindow& window,
              const Keymap& keymap);

    /// Notes that the last input was a finger, or something else.
    void noteFinger()
    {
        mIsByFinger = true;
    }
    void noteOtherInput()
    {
        mIsByFinger = mIsByFinger && mIsTyping;
    }
    /// Opens the keyboard until this is called again, whether or not there is a text field; or closes it.
    void toggle();

private:
    void handlePanelRequest();
    void handleActiveChange();
    void type(const QString& character);
    void sendKey(QEvent::Type type, quint32 code);

    OnScreenKeyboard& mKeyboard;
    TextInputs& mInputs;
    WindowStack& mStack;
    QWindow& mWindow;
    const Keymap& mKeymap;
    bool mIsByFinger = false;
    bool mIsByHand = false;
    /// While keys of the on-screen keyboard are sent, which pass where a person's do.
    bool mIsTyping = false;
    /// A client leaves a text field before it enters the next one.
    QTimer mClosing;
};
