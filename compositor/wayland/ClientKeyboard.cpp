// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/ClientKeyboard.h"

#include "wayland/ClientResources.h"

#include <QPointer>
#include <QWaylandClient>
#include <QWaylandCompositor>
#include <QWaylandSurface>

#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <sys/mman.h>
#include <unistd.h>
#include <wayland-server-protocol.h>

// These headers are not made for QT_NO_KEYWORDS.
#define emit Q_EMIT
#include <QtWaylandCompositor/private/qwaylandcompositor_p.h>
#include <QtWaylandCompositor/private/qwaylandkeyboard_p.h>
#undef emit

namespace {

/// What the key codes of XKB are larger by than those of the kernel, which Wayland has.
constexpr uint cKeyOffset = 8;

} // namespace

bool ClientKeyboard::Modifiers::operator==(const Modifiers& other) const
{
    return depressed == other.depressed && latched == other.latched && locked == other.locked && group == other.group;
}

ClientKeyboard::ClientKeyboard(QWaylandSeat* seat)
    : QWaylandKeyboard(seat)
{
}

ClientKeyboard::~ClientKeyboard()
{
    if (mKeymapFile >= 0) {
        close(mKeymapFile);
    }
}

void ClientKeyboard::addClient(QWaylandClient* client, uint32_t id, uint32_t version)
{
    static const struct wl_keyboard_interface requests = {ClientResources::destroy};
    wl_resource* const keyboard = ClientResources::create(client->client(), wl_keyboard_interface,
                                                          static_cast<int>(version), id, requests, nullptr);
    if (keyboard == nullptr) {
        return;
    }
    if (version >= WL_KEYBOARD_REPEAT_INFO_SINCE_VERSION) {
        wl_keyboard_send_repeat_info(keyboard, static_cast<int32_t>(repeatRate()), static_cast<int32_t>(repeatDelay()));
    }
    createKeymapFile();
    if (mKeymapFile >= 0) {
        wl_keyboard_send_keymap(keyboard, WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1, mKeymapFile, mKeymapSize);
    }
    if (focusedClient() == client->client()) {
        sendEnter(keyboard, compositor()->nextSerial());
    }
}

void ClientKeyboard::setFocus(QWaylandSurface* surface)
{
    const QPointer<QWaylandSurface> oldFocus = focus();
    QWaylandKeyboard::setFocus(surface);
    if (focus() == oldFocus) {
        return;
    }
    const uint32_t serial = compositor()->nextSerial();
    if (oldFocus != nullptr && !oldFocus->isDestroyed()) {
        for (wl_resource* keyboard : ClientResources::of(oldFocus->waylandClient(), wl_keyboard_interface)) {
            wl_keyboard_send_leave(keyboard, serial, oldFocus->resource());
        }
    }
    mSentModifiers = modifiers();
    for (wl_resource* keyboard : ClientResources::of(focusedClient(), wl_keyboard_interface)) {
        sendEnter(keyboard, serial);
    }
}

void ClientKeyboard::sendKeyModifiers(QWaylandClient* client, uint32_t serial)
{
    const Modifiers now = modifiers();
    for (wl_resource* keyboard : ClientResources::of(client->client(), wl_keyboard_interface)) {
        wl_keyboard_send_modifiers(keyboard, serial, now.depressed, now.latched, now.locked, now.group);
    }
}

void ClientKeyboard::sendKeyPressEvent(uint code)
{
    mPressedKeys.append(code - cKeyOffset);
    sendKey(code, WL_KEYBOARD_KEY_STATE_PRESSED);
}

void ClientKeyboard::sendKeyReleaseEvent(uint code)
{
    mPressedKeys.removeAll(code - cKeyOffset);
    sendKey(code, WL_KEYBOARD_KEY_STATE_RELEASED);
}

void ClientKeyboard::sendKey(uint code, uint32_t state)
{
    sendChangedModifiers();
    const uint32_t serial = compositor()->nextSerial();
    const uint32_t time = compositor()->currentTimeMsecs();
    for (wl_resource* keyboard : ClientResources::of(focusedClient(), wl_keyboard_interface)) {
        wl_keyboard_send_key(keyboard, serial, time, code - cKeyOffset, state);
    }
    // Qt changes the modifiers after it has delivered the key.
    QMetaObject::invokeMethod(this, &ClientKeyboard::sendChangedModifiers, Qt::QueuedConnection);
}

void ClientKeyboard::sendChangedModifiers()
{
    const Modifiers now = modifiers();
    if (!(now == mSentModifiers) && focus() != nullptr) {
        mSentModifiers = now;
        // Not focusClient(), which asks for Qt's object.
        sendKeyModifiers(focus()->client(), compositor()->nextSerial());
    }
}

ClientKeyboard::Modifiers ClientKeyboard::modifiers() const
{
    xkb_state* const state = QWaylandKeyboardPrivate::get(const_cast<ClientKeyboard*>(this))->xkbState();
    if (state == nullptr) {
        return {};
    }
    return {xkb_state_serialize_mods(state, XKB_STATE_MODS_DEPRESSED),
            xkb_state_serialize_mods(state, XKB_STATE_MODS_LATCHED),
            xkb_state_serialize_mods(state, XKB_STATE_MODS_LOCKED),
            xkb_state_serialize_layout(state, XKB_STATE_LAYOUT_EFFECTIVE)};
}

void ClientKeyboard::createKeymapFile()
{
    xkb_state* const state = QWaylandKeyboardPrivate::get(this)->xkbState();
    if (state == nullptr || mKeymapFile >= 0) {
        return;
    }
    const std::unique_ptr<char, decltype(&std::free)> text(
        xkb_keymap_get_as_string(xkb_state_get_keymap(state), XKB_KEYMAP_FORMAT_TEXT_V1), std::free);
    const std::size_t size = std::strlen(text.get()) + 1;
    const int file = memfd_create("keymap", MFD_CLOEXEC | MFD_ALLOW_SEALING);
    if (file >= 0 && write(file, text.get(), size) == static_cast<ssize_t>(size)
        && fcntl(file, F_ADD_SEALS, F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_WRITE | F_SEAL_SEAL) == 0) {
        mKeymapFile = file;
        mKeymapSize = static_cast<uint32_t>(size);
    } else if (file >= 0) {
        close(file);
    }
}

void ClientKeyboard::sendEnter(wl_resource* keyboard, uint32_t serial)
{
    const auto bytes = static_cast<std::size_t>(mPressedKeys.size()) * sizeof(uint32_t);
    wl_array keys = {bytes, bytes, mPressedKeys.data()};
    wl_keyboard_send_enter(keyboard, serial, focus()->resource(), &keys);
    const Modifiers now = modifiers();
    wl_keyboard_send_modifiers(keyboard, serial, now.depressed, now.latched, now.locked, now.group);
}

wl_client* ClientKeyboard::focusedClient() const
{
    return focus() == nullptr ? nullptr : focus()->waylandClient();
}
