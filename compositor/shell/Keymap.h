// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "Result.h"

#include <QHash>
#include <QString>
#include <QStringList>
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

    /// Unsets the XKB_DEFAULT_ variables, from which everybody in this process takes the layout where none is given, if
    /// they describe none.
    static void checkEnvironment();
    /// Reads "de" or "de(nodeadkeys)".
    static Result<Layout> readLayout(const QString& text);

    explicit Keymap(const Layout& layout);

    /// Returns the scan code, in the numbers of X11, of the key that has the symbol: of `key` in Qt's numbers if it
    /// produces no character, of `text` otherwise. 0 if the layout has none.
    quint32 scanCodeOf(int key, const QString& text) const
    {
        return placeOf(key, text).code;
    }
    /// Returns the scan codes of the keys that type a character when they are pressed in this order: modifiers first.
    /// Empty if the layout does not have the character.
    QVector<quint32> strokeOf(const QString& character) const;

    /// A row of keys, each with the characters that it produces alone, with Shift and with AltGr. Empty where it
    /// produces none.
    using Row = QVector<QStringList>;
    /// The four rows with digits and letters, from the top to the bottom.
    const QVector<Row>& rows() const
    {
        return mRows;
    }

    /// Returns the strokes that type the text, each as strokeOf() returns it.
    Result<QVector<QVector<quint32>>> readText(const QString& text) const;
    /// Returns the scan codes of keys that are named as in "Ctrl+Alt+Right".
    Result<QVector<quint32>> readKeys(const QString& text) const;

private:
    /// Returns 0 when the layout has no such key.
    quint32 scanCodeOfName(const QString& name) const;

    struct Place
    {
        quint32 code = 0;
        quint32 level = 0;
    };

    Place placeOf(int key, const QString& text) const;

    /// By keysym.
    QHash<quint32, Place> mPlaces;
    QVector<Row> mRows;
};
