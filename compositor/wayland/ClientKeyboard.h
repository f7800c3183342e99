// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QVector>
#include <QWaylandKeyboard>

#include <cstdint>

struct wl_client;
struct wl_resource;

/// The wl_keyboard objects of the seat. QWaylandKeyboard, which keeps the focus and the state of the keys, sends events
/// to a single object of a client; here each gets them.
class ClientKeyboard : public QWaylandKeyboard
{
    Q_OBJECT

public:
    explicit ClientKeyboard(QWaylandSeat* seat);
    ~ClientKeyboard() override;

    void setFocus(QWaylandSurface* surface) override;
    void sendKeyModifiers(QWaylandClient* client, uint32_t serial) override;
    void sendKeyPressEvent(uint code) override;
    void sendKeyReleaseEvent(uint code) override;
    void addClient(QWaylandClient* client, uint32_t id, uint32_t version) override;

private:
    struct Modifiers
    {
        uint32_t depressed;
        uint32_t latched;
        uint32_t locked;
        uint32_t group;

        bool operator==(const Modifiers& other) const;
    };

    Modifiers modifiers() const;
    void sendKey(uint code, uint32_t state);
    void sendChangedModifiers();
    void createKeymapFile();
    void sendEnter(wl_resource* keyboard, uint32_t serial);
    wl_client* focusedClient() const;

    QVector<uint32_t> mPressedKeys;
    Modifiers mSentModifiers = {};
    /// A file with the keymap, -1 before the first client.
    int mKeymapFile = -1;
    uint32_t mKeymapSize = 0;
};
