// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "Result.h"

#include <QHash>
#include <QString>

/// The keyboard layout that clients receive, and the keys that have a symbol on it.
class Keymap
{
public:
    /// Names of XKB; an empty layout is the default of libxkbcommon, which XKB_DEFAULT_LAYOUT sets.
    struct Layout
    {
        QString name;
        QString variant;
    };

    /// Reads "de" or "de(nodeadkeys)".
    static Result<Layout> readLayout(const QString& text);

    explicit Keymap(const Layout& layout);

    /// Returns the scan code, in the numbers of X11, of the key that has the symbol: of `key` in Qt's numbers if it
    /// produces no character, of `text` otherwise. 0 if the layout has none.
    quint32 scanCodeOf(int key, const QString& text) const;

private:
    /// By keysym.
    QHash<quint32, quint32> mCodes;
};
