// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QObject>
#include <QString>
#include <QVector>

#include <cstdint>

class QWaylandSeat;
class QWaylandSurface;
class ServerGlobals;
class TextInput;
struct wl_client;
struct wl_interface;
struct wl_resource;

/// The globals zwp_text_input_manager_v2 and zwp_text_input_manager_v3, and the text input objects of all clients.
class TextInputs : public QObject
{
    Q_OBJECT

public:
    TextInputs(ServerGlobals& globals, QWaylandSeat& seat);
    ~TextInputs() override;

    /// Returns the active one; null when no text field has the focus.
    TextInput* active() const;
    void sendPanelState(bool isOpen);

    /// Creates an object of class `Version` with `id` for the client of `manager`.
    template <typename Version> static void add(wl_resource* manager, uint32_t id)
    {
        TextInputs* const self = of(manager);
        if (wl_resource* const resource = create(manager, Version::interface(), id)) {
            self->add(new Version(resource, self->mSeat));
        }
    }

Q_SIGNALS:
    /// active() or its state may have changed.
    void activeChanged();
    /// The active one wants the on-screen keyboard to open, or to close.
    void panelRequested();
    void panelDismissed();

private:
    template <typename Version> void announce(ServerGlobals& globals);
    static TextInputs* of(wl_resource* manager);
    /// Returns null when there is no memory.
    static wl_resource* create(wl_resource* manager, const wl_interface* interface, uint32_t id);
    void add(TextInput* input);
    void follow(QWaylandSurface* focus);

    QWaylandSeat& mSeat;
    QVector<TextInput*> mInputs;
};
