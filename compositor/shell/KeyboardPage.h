// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QRect>
#include <QString>
#include <QVector>

class Keymap;

/// The keys of one page of the on-screen keyboard. The letters stand where the keyboard layout has them.
namespace KeyboardPage {

enum class Page
{
    Letters,
    CapitalLetters,
    Symbols,
    MoreSymbols
};

struct Key
{
    enum class Kind
    {
        Character,
        /// The other case of the letters, or more symbols.
        Shift,
        /// From the letters to the symbols and back.
        Symbols,
        Backspace,
        Return,
        Left,
        Up,
        Down,
        Right,
        Close
    };

    Kind kind = Kind::Character;
    /// The character.
    QString text;
    qreal width = 1;
    QRect rect;
};

/// Returns the keys of a page in `area`.
QVector<Key> keysOf(Page page, const Keymap& keymap, const QRect& area);

} // namespace KeyboardPage
