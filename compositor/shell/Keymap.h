// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "Result.h"

#include <QHash>
#include <QString>
#include <QVector>

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

    /// A key with the modifier keys that are held while it is pressed, by their scan codes.
    struct Stroke
    {
        quint32 scanCode = 0;
        QVector<quint32> modifiers;
    };

    explicit Keymap(const Layout& layout);

    /// Returns the scan code, in the numbers of X11, of the key that has the symbol: of `key` in Qt's numbers if it
    /// produces no character, of `text` otherwise. 0 if the layout has none.
    quint32 scanCodeOf(int key, const QString& text) const;

    /// Returns the keys that produce the text, or which of its characters the layout has no key for.
    Result<QVector<Stroke>> readText(const QString& text) const;
    /// Returns the scan codes of keys that are named as in "Ctrl+Alt+Right".
    Result<QVector<quint32>> readKeys(const QString& text) const;

private:
    /// Returns 0 when the layout has no such key.
    quint32 scanCodeOfName(const QString& name) const;

    /// By keysym.
    QHash<quint32, quint32> mCodes;
    /// By character.
    QHash<uint, Stroke> mStrokes;
};
