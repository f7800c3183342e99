// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "shell/Keymap.h"

#include <QChar>
#include <QKeySequence>
#include <QRegularExpression>

#include <algorithm>
#include <memory>
#include <xkbcommon/xkbcommon-keysyms.h>
#include <xkbcommon/xkbcommon.h>

namespace {

using XkbKeymap = std::unique_ptr<xkb_keymap, decltype(&xkb_keymap_unref)>;

/// Null when there is no such layout.
XkbKeymap compile(const Keymap::Layout& layout)
{
    const std::unique_ptr<xkb_context, decltype(&xkb_context_unref)> context(xkb_context_new(XKB_CONTEXT_NO_FLAGS),
                                                                             xkb_context_unref);
    // The caller reports a layout that does not exist.
    xkb_context_set_log_level(context.get(), XKB_LOG_LEVEL_CRITICAL);
    const QByteArray name = layout.name.toUtf8();
    const QByteArray variant = layout.variant.toUtf8();
    xkb_rule_names names{};
    names.layout = name.constData();
    names.variant = layout.name.isEmpty() ? nullptr : variant.constData();
    return {xkb_keymap_new_from_names(context.get(), &names, XKB_KEYMAP_COMPILE_NO_FLAGS), xkb_keymap_unref};
}

/// The keys that produce no character of their own.
xkb_keysym_t keysymOfKey(int key)
{
    static const QHash<int, xkb_keysym_t> keysyms{
        {Qt::Key_Escape, XKB_KEY_Escape},
        {Qt::Key_Tab, XKB_KEY_Tab},
        {Qt::Key_Backtab, XKB_KEY_Tab},
        {Qt::Key_Backspace, XKB_KEY_BackSpace},
        {Qt::Key_Return, XKB_KEY_Return},
        {Qt::Key_Enter, XKB_KEY_KP_Enter},
        {Qt::Key_Insert, XKB_KEY_Insert},
        {Qt::Key_Delete, XKB_KEY_Delete},
        {Qt::Key_Pause, XKB_KEY_Pause},
        {Qt::Key_Print, XKB_KEY_Print},
        {Qt::Key_Home, XKB_KEY_Home},
        {Qt::Key_End, XKB_KEY_End},
        {Qt::Key_Left, XKB_KEY_Left},
        {Qt::Key_Up, XKB_KEY_Up},
        {Qt::Key_Right, XKB_KEY_Right},
        {Qt::Key_Down, XKB_KEY_Down},
        {Qt::Key_PageUp, XKB_KEY_Page_Up},
        {Qt::Key_PageDown, XKB_KEY_Page_Down},
        {Qt::Key_Shift, XKB_KEY_Shift_L},
        {Qt::Key_Control, XKB_KEY_Control_L},
        {Qt::Key_Alt, XKB_KEY_Alt_L},
        {Qt::Key_AltGr, XKB_KEY_ISO_Level3_Shift},
        {Qt::Key_Meta, XKB_KEY_Super_L},
        {Qt::Key_Super_L, XKB_KEY_Super_L},
        {Qt::Key_CapsLock, XKB_KEY_Caps_Lock},
        {Qt::Key_NumLock, XKB_KEY_Num_Lock},
        {Qt::Key_ScrollLock, XKB_KEY_Scroll_Lock},
        {Qt::Key_Menu, XKB_KEY_Menu},
    };
    if (key >= Qt::Key_F1 && key <= Qt::Key_F35) {
        return XKB_KEY_F1 + static_cast<xkb_keysym_t>(key - Qt::Key_F1);
    }
    return keysyms.value(key, XKB_KEY_NoSymbol);
}

xkb_keysym_t symbolAt(xkb_keymap* keymap, xkb_keycode_t code, xkb_level_index_t level)
{
    const xkb_keysym_t* symbols = nullptr;
    const int count = xkb_keymap_key_get_syms_by_level(keymap, code, 0, level, &symbols);
    return count == 1 ? symbols[0] : XKB_KEY_NoSymbol;
}

/// The names that XKB has for the keys of the four rows.
QVector<QVector<QByteArray>> namesOfRows()
{
    QVector<QVector<QByteArray>> rows{{"TLDE"}, {}, {}, {"LSGT"}};
    const QVector<QByteArray> prefixes{"AE", "AD", "AC", "AB"};
    for (int i = 0; i < prefixes.size(); ++i) {
        for (int number = 1; number <= 12; ++number) {
            rows[i].append(prefixes.at(i) + QByteArray::number(number).rightJustified(2, '0'));
        }
    }
    rows[1].append("BKSL");
    return rows;
}

Keymap::Row rowOf(xkb_keymap* keymap, const QVector<QByteArray>& names)
{
    constexpr xkb_level_index_t cLevels = 3;
    Keymap::Row row;
    for (const QByteArray& name : names) {
        const xkb_keycode_t code = xkb_keymap_key_by_name(keymap, name.constData());
        QStringList characters;
        for (xkb_level_index_t level = 0; level < cLevels; ++level) {
            const uint character = xkb_keysym_to_utf32(symbolAt(keymap, code, level));
            characters.append(character > 0x20 ? QString::fromUcs4(&character, 1) : QString());
        }
        row.append(characters);
    }
    return row;
}

} // namespace

Result<Keymap::Layout> Keymap::readLayout(const QString& text)
{
    static const QRegularExpression pattern(QStringLiteral("^(\\w+)(?:\\(([\\w-]+)\\))?\\z"));
    const QRegularExpressionMatch match = pattern.match(text);
    const Layout layout{match.captured(1), match.captured(2)};
    if (!match.hasMatch() || compile(layout) == nullptr) {
        return Error{
            QStringLiteral("\"%1\" is not a keyboard layout: LAYOUT or LAYOUT(VARIANT) of XKB is expected").arg(text)};
    }
    return layout;
}

void Keymap::checkEnvironment()
{
    if (compile(Layout()) != nullptr) {
        return;
    }
    for (const char* const variable : {"XKB_DEFAULT_RULES", "XKB_DEFAULT_MODEL", "XKB_DEFAULT_LAYOUT",
                                       "XKB_DEFAULT_VARIANT", "XKB_DEFAULT_OPTIONS"}) {
        qunsetenv(variable);
    }
    qWarning(
        "there is no keyboard layout as XKB_DEFAULT_LAYOUT and the variables with it describe it; they are ignored");
}

Keymap::Keymap(const Layout& layout)
{
    const XkbKeymap keymap = compile(layout);
    const QVector<QVector<QByteArray>> rows = namesOfRows();
    mRows.resize(rows.size());
    if (keymap == nullptr) {
        return;
    }
    const xkb_keycode_t last = xkb_keymap_max_keycode(keymap.get());
    for (xkb_level_index_t level = 0; level < 4; ++level) {
        for (xkb_keycode_t code = xkb_keymap_min_keycode(keymap.get()); code <= last; ++code) {
            const xkb_keysym_t symbol = symbolAt(keymap.get(), code, level);
            // The key that needs the fewest modifiers comes first.
            if (symbol != XKB_KEY_NoSymbol && !mPlaces.contains(symbol)) {
                mPlaces.insert(symbol, {code, level});
            }
        }
    }
    std::transform(rows.cbegin(), rows.cend(), mRows.begin(), [&keymap](const QVector<QByteArray>& names) {
        return rowOf(keymap.get(), names);
    });
}

QVector<quint32> Keymap::strokeOf(const QString& character) const
{
    const Place place = placeOf(static_cast<int>(character.toUcs4().value(0)), character);
    QVector<quint32> codes;
    if (place.level % 2 == 1) {
        codes.append(placeOf(Qt::Key_Shift, QString()).code);
    }
    if (place.level >= 2) {
        codes.append(placeOf(Qt::Key_AltGr, QString()).code);
    }
    codes.append(place.code);
    return codes.contains(0) ? QVector<quint32>() : codes;
}

Keymap::Place Keymap::placeOf(int key, const QString& text) const
{
    xkb_keysym_t symbol = keysymOfKey(key);
    if (symbol == XKB_KEY_NoSymbol) {
        const QVector<uint> characters = text.toUcs4();
        // With Ctrl held the text is a control character; the key itself is the upper case letter then.
        const bool isPrintable = !characters.isEmpty() && characters.constFirst() > 0x20;
        symbol = xkb_utf32_to_keysym(isPrintable ? characters.constFirst() : QChar::toLower(static_cast<uint>(key)));
    }
    return mPlaces.value(symbol);
}

Result<QVector<QVector<quint32>>> Keymap::readText(const QString& text) const
{
    QVector<QVector<quint32>> strokes;
    const QVector<uint> characters = text.toUcs4();
    for (const uint character : characters) {
        const QString quoted = QString::fromUcs4(&character, 1);
        const quint32 control = character == '\n' ? placeOf(Qt::Key_Return, QString()).code
            : character == '\t'                   ? placeOf(Qt::Key_Tab, QString()).code
                                                  : 0;
        const QVector<quint32> stroke = control == 0 ? strokeOf(quoted) : QVector<quint32>{control};
        if (stroke.isEmpty()) {
            return Error{QStringLiteral("the keyboard layout has no key for %1")
                             .arg(QChar::isPrint(character)
                                      ? QLatin1Char('"') + quoted + QLatin1Char('"')
                                      : QStringLiteral("U+%1").arg(character, 4, 16, QLatin1Char('0')))};
        }
        strokes.append(stroke);
    }
    return strokes;
}

Result<QVector<quint32>> Keymap::readKeys(const QString& text) const
{
    static const QHash<QString, Qt::Key> modifiers{
        {QStringLiteral("ctrl"), Qt::Key_Control},  {QStringLiteral("alt"), Qt::Key_Alt},
        {QStringLiteral("shift"), Qt::Key_Shift},   {QStringLiteral("altgr"), Qt::Key_AltGr},
        {QStringLiteral("super"), Qt::Key_Super_L}, {QStringLiteral("meta"), Qt::Key_Super_L},
    };
    QStringList names = text.split(QLatin1Char('+'));
    // The key "+" itself.
    if (names.size() > 1 && names.constLast().isEmpty() && names.at(names.size() - 2).isEmpty()) {
        names.removeLast();
        names.last() = QStringLiteral("+");
    }
    QVector<quint32> codes;
    for (int i = 0; i < names.size(); ++i) {
        const QString& name = names.at(i);
        const auto modifier = modifiers.constFind(name.toLower());
        if (modifier == modifiers.cend() && i < names.size() - 1) {
            return Error{QStringLiteral("\"%1\" is not a modifier: one of Ctrl, Alt, Shift, AltGr, Super is expected "
                                        "before a \"+\"")
                             .arg(name)};
        }
        const quint32 code = modifier == modifiers.cend() ? scanCodeOfName(name) : scanCodeOf(*modifier, QString());
        if (code == 0) {
            return Error{QStringLiteral("the keyboard layout has no key \"%1\"").arg(name)};
        }
        codes.append(code);
    }
    return codes;
}

quint32 Keymap::scanCodeOfName(const QString& name) const
{
    if (name.toUcs4().size() == 1) {
        const QVector<quint32> stroke = strokeOf(name.toLower());
        return stroke.size() == 1 ? stroke.constFirst() : 0;
    }
    // Qt's Enter is the one of the keypad.
    const int key = name.compare(QLatin1String("enter"), Qt::CaseInsensitive) == 0
        ? static_cast<int>(Qt::Key_Return)
        : QKeySequence::fromString(name, QKeySequence::PortableText)[0];
    const xkb_keysym_t symbol = keysymOfKey(key);
    return mPlaces
        .value(symbol == XKB_KEY_NoSymbol ? xkb_keysym_from_name(name.toUtf8().constData(), XKB_KEYSYM_CASE_INSENSITIVE)
                                          : symbol)
        .code;
}
