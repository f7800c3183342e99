// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "shell/Keymap.h"

#include <QChar>
#include <QKeySequence>
#include <QRegularExpression>

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

} // namespace

Result<Keymap::Layout> Keymap::readLayout(const QString& text)
{
    static const QRegularExpression pattern(QStringLiteral("^(\\w+)(?:\\(([\\w-]+)\\))?$"));
    const QRegularExpressionMatch match = pattern.match(text);
    const Layout layout{match.captured(1), match.captured(2)};
    if (!match.hasMatch() || compile(layout) == nullptr) {
        return Error{
            QStringLiteral("\"%1\" is not a keyboard layout: LAYOUT or LAYOUT(VARIANT) of XKB is expected").arg(text)};
    }
    return layout;
}

Keymap::Keymap(const Layout& layout)
{
    const XkbKeymap keymap = compile(layout);
    if (keymap == nullptr) {
        return;
    }
    const xkb_keycode_t last = xkb_keymap_max_keycode(keymap.get());
    for (xkb_level_index_t level = 0; level < 4; ++level) {
        for (xkb_keycode_t code = xkb_keymap_min_keycode(keymap.get()); code <= last; ++code) {
            const xkb_keysym_t* symbols = nullptr;
            const int count = xkb_keymap_key_get_syms_by_level(keymap.get(), code, 0, level, &symbols);
            // The key that needs the fewest modifiers comes first.
            if (count == 1 && !mCodes.contains(symbols[0])) {
                mCodes.insert(symbols[0], code);
            }
        }
    }

    const quint32 shift = mCodes.value(XKB_KEY_Shift_L);
    const quint32 level3 = mCodes.value(XKB_KEY_ISO_Level3_Shift);
    for (const QVector<quint32>& modifiers : {QVector<quint32>(), {shift}, {level3}, {shift, level3}}) {
        const std::unique_ptr<xkb_state, decltype(&xkb_state_unref)> state(xkb_state_new(keymap.get()),
                                                                           xkb_state_unref);
        for (const quint32 modifier : modifiers) {
            xkb_state_update_key(state.get(), modifier, XKB_KEY_DOWN);
        }
        for (xkb_keycode_t code = xkb_keymap_min_keycode(keymap.get()); code <= last; ++code) {
            const xkb_keysym_t symbol = xkb_state_key_get_one_sym(state.get(), code);
            const uint character = xkb_keysym_to_utf32(symbol);
            const bool isKeypad = symbol >= XKB_KEY_KP_Space && symbol <= XKB_KEY_KP_9;
            if (character != 0 && !isKeypad && !mStrokes.contains(character)) {
                mStrokes.insert(character, {code, modifiers});
            }
        }
    }
}

quint32 Keymap::scanCodeOf(int key, const QString& text) const
{
    xkb_keysym_t symbol = keysymOfKey(key);
    if (symbol == XKB_KEY_NoSymbol) {
        const QVector<uint> characters = text.toUcs4();
        // With Ctrl held the text is a control character; the key itself is the upper case letter then.
        const bool isPrintable = !characters.isEmpty() && characters.constFirst() > 0x20;
        symbol = xkb_utf32_to_keysym(isPrintable ? characters.constFirst() : QChar::toLower(static_cast<uint>(key)));
    }
    return mCodes.value(symbol);
}

Result<QVector<Keymap::Stroke>> Keymap::readText(const QString& text) const
{
    QVector<Stroke> strokes;
    const QVector<uint> characters = text.toUcs4();
    for (const uint character : characters) {
        const auto stroke = mStrokes.constFind(character == '\n' ? '\r' : character);
        if (stroke == mStrokes.cend()) {
            const bool isPrintable = QChar::isPrint(character);
            return Error{QStringLiteral("the keyboard layout has no key for %1")
                             .arg(isPrintable ? QLatin1Char('"') + QString::fromUcs4(&character, 1) + QLatin1Char('"')
                                              : QStringLiteral("U+%1").arg(character, 4, 16, QLatin1Char('0')))};
        }
        strokes.append(*stroke);
    }
    return strokes;
}

Result<QVector<quint32>> Keymap::readKeys(const QString& text) const
{
    static const QHash<QString, xkb_keysym_t> modifiers{
        {QStringLiteral("ctrl"), XKB_KEY_Control_L}, {QStringLiteral("alt"), XKB_KEY_Alt_L},
        {QStringLiteral("shift"), XKB_KEY_Shift_L},  {QStringLiteral("altgr"), XKB_KEY_ISO_Level3_Shift},
        {QStringLiteral("super"), XKB_KEY_Super_L},  {QStringLiteral("meta"), XKB_KEY_Super_L},
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
        const quint32 code = modifier == modifiers.cend() ? scanCodeOfName(name) : mCodes.value(*modifier);
        if (code == 0) {
            return Error{QStringLiteral("the keyboard layout has no key \"%1\"").arg(name)};
        }
        codes.append(code);
    }
    return codes;
}

quint32 Keymap::scanCodeOfName(const QString& name) const
{
    const QVector<uint> characters = name.toUcs4();
    if (characters.size() == 1) {
        const Stroke stroke = mStrokes.value(QChar::toLower(characters.constFirst()));
        return stroke.modifiers.isEmpty() ? stroke.scanCode : 0;
    }
    // Qt's Enter is the one of the keypad.
    const int key = name.compare(QLatin1String("enter"), Qt::CaseInsensitive) == 0
        ? static_cast<int>(Qt::Key_Return)
        : QKeySequence::fromString(name, QKeySequence::PortableText)[0];
    const xkb_keysym_t symbol = keysymOfKey(key);
    return mCodes.value(symbol == XKB_KEY_NoSymbol
                            ? xkb_keysym_from_name(name.toUtf8().constData(), XKB_KEYSYM_CASE_INSENSITIVE)
                            : symbol);
}
