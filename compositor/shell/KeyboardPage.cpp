// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "shell/KeyboardPage.h"

#include "shell/Keymap.h"

#include <QStringList>

#include <algorithm>

using KeyboardPage::Key;

namespace {

using KeyRow = QVector<Key>;

constexpr int cShortestRow = 10;
/// Beside them Shift and Backspace have room in the last row.
constexpr int cLastRowSymbols = 8;

bool isLetter(const QString& character)
{
    return !character.isEmpty() && QChar::isLetter(character.toUcs4().constFirst());
}

/// The rows of letters, from the top to the bottom, as pairs of a small letter and its capital.
QVector<QVector<QStringList>> lettersOf(const Keymap& keymap)
{
    QVector<QVector<QStringList>> rows;
    for (const Keymap::Row& row : keymap.rows().mid(1)) {
        QVector<QStringList> letters;
        for (const QStringList& characters : row) {
            if (isLetter(characters.at(0))) {
                letters.append({characters.at(0), isLetter(characters.at(1)) ? characters.at(1) : characters.at(0)});
            }
        }
        rows.append(letters);
    }
    return rows;
}

/// The digits, and then the other characters of the layout that are no letters of its own, as far as they are common.
QStringList symbolsOf(const Keymap& keymap)
{
    QStringList symbols = QStringLiteral("1 2 3 4 5 6 7 8 9 0").split(QLatin1Char(' '));
    QStringList letters;
    for (const QVector<QStringList>& row : lettersOf(keymap)) {
        for (const QStringList& pair : row) {
            letters += pair;
        }
    }
    const auto add = [&](int level, bool (*isWanted)(uint)) {
        for (const Keymap::Row& row : keymap.rows()) {
            for (const QStringList& characters : row) {
                const QString& character = characters.at(level);
                if (!character.isEmpty() && isWanted(character.toUcs4().constFirst()) && !symbols.contains(character)
                    && !letters.contains(character)) {
                    symbols.append(character);
                }
            }
        }
    };
    const auto isAny = [](uint) {
        return true;
    };
    // What else AltGr produces has no room.
    const auto isCommon = [](uint character) {
        return character < 0x7f || QChar::category(character) == QChar::Symbol_Currency;
    };
    add(1, isAny);
    add(0, isAny);
    add(2, isCommon);
    return symbols;
}

KeyRow charactersOf(const QStringList& characters)
{
    KeyRow row;
    for (const QString& character : characters) {
        row.append({Key::Kind::Character, character, 1, {}});
    }
    return row;
}

qreal widthOf(const KeyRow& row)
{
    qreal width = 0;
    for (const Key& key : row) {
        width += key.width;
    }
    return width;
}

QVector<KeyRow> letterRows(const Keymap& keymap, bool isCapital)
{
    QVector<KeyRow> rows;
    for (const QVector<QStringList>& letters : lettersOf(keymap)) {
        QStringList characters;
        for (const QStringList& pair : letters) {
            characters.append(pair.at(isCapital ? 1 : 0));
        }
        rows.append(charactersOf(characters));
    }
    return rows;
}

QVector<KeyRow> symbolRows(const Keymap& keymap, bool isSecondPage)
{
    constexpr int cPage = 2 * cShortestRow + cLastRowSymbols;
    const QStringList symbols = symbolsOf(keymap).mid(isSecondPage ? cPage : 0, cPage);
    return {charactersOf(symbols.mid(0, cShortestRow)), charactersOf(symbols.mid(cShortestRow, cShortestRow)),
            charactersOf(symbols.mid(2 * cShortestRow))};
}

KeyRow bottomRow()
{
    return {
        {Key::Kind::Close, {}, 1, {}},
        {Key::Kind::Symbols, {}, 1.5, {}},
        {Key::Kind::Character, QStringLiteral(","), 1, {}},
        {Key::Kind::Character, QStringLiteral(" "), 3, {}},
        {Key::Kind::Character, QStringLiteral("."), 1, {}},
        {Key::Kind::Left, {}, 1, {}},
        {Key::Kind::Up, {}, 1, {}},
        {Key::Kind::Down, {}, 1, {}},
        {Key::Kind::Right, {}, 1, {}},
        {Key::Kind::Return, {}, 1.5, {}},
    };
}

} // namespace

QVector<Key> KeyboardPage::keysOf(Page page, const Keymap& keymap, const QRect& area)
{
    const bool hasSymbols = page == Page::Symbols || page == Page::MoreSymbols;
    QVector<KeyRow> rows =
        hasSymbols ? symbolRows(keymap, page == Page::MoreSymbols) : letterRows(keymap, page == Page::CapitalLetters);
    qreal width = cShortestRow;
    for (const KeyRow& row : qAsConst(rows)) {
        width = std::max(width, widthOf(row));
    }
    KeyRow& last = rows.last();
    const qreal sideWidth = std::max<qreal>(1, (width - widthOf(last)) / 2);
    last.prepend({Key::Kind::Shift, {}, sideWidth, {}});
    last.append({Key::Kind::Backspace, {}, sideWidth, {}});
    rows.append(bottomRow());

    QVector<Key> keys;
    for (int i = 0; i < rows.size(); ++i) {
        const qreal rowWidth = widthOf(rows.at(i));
        const qreal unit = area.width() / std::max(i < rows.size() - 1 ? width : 0, rowWidth);
        const int top = area.top() + i * area.height() / rows.size();
        const int bottom = area.top() + (i + 1) * area.height() / rows.size();
        qreal left = area.left() + (area.width() - rowWidth * unit) / 2;
        for (Key key : qAsConst(rows[i])) {
            const qreal right = left + key.width * unit;
            key.rect = QRect(QPoint(qRound(left), top), QPoint(qRound(right) - 1, bottom - 1));
            keys.append(key);
            left = right;
        }
    }
    return keys;
}
