// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "ChildProcess.h"

/// A virtual X display whose mouse and keyboard events take the same path as a user's.
class VirtualDesktop
{
public:
    VirtualDesktop();

    /// The value of DISPLAY.
    QString display() const
    {
        return mDisplay;
    }

    /// A layout of XKB and its variant.
    void setKeyboardLayout(const QStringList& layoutAndVariant);
    void movePointer(int x, int y);
    void click(int button = 1);
    void press(int button = 1);
    void release(int button = 1);
    /// A key's name in X, with modifiers: "shift+a".
    void key(const QString& name);
    void keyDown(const QString& name);
    void keyUp(const QString& name);

private:
    void type(const QStringList& arguments);

    ChildProcess mServer;
    QString mDisplay;
};
