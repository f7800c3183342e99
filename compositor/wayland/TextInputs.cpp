// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/TextInputs.h"

#include "wayland/ServerGlobals.h"
#include "wayland/TextInputV2.h"
#include "wayland/TextInputV3.h"

#include <QWaylandSeat>
#include <QWaylandSurface>

#include <algorithm>
#include <wayland-server-core.h>

TextInputs::TextInputs(ServerGlobals& globals, QWaylandSeat& seat)
    : mSeat(seat)
{
    announce<TextInputV2>(globals);
    announce<TextInputV3>(globals);
    connect(&seat, &QWaylandSeat::keyboardFocusChanged, this, &TextInputs::follow);
}

TextInputs::~TextInputs()
{
    for (TextInput* input : qAsConst(mInputs)) {
        input->disconnect(this);
    }
}

template <typename Version> void TextInputs::announce(ServerGlobals& globals)
{
    globals.announce(Version::managerInterface(), Version::cVersion, this,
                     [](wl_client* client, void* data, uint32_t version, uint32_t id) {
                         wl_resource* const manager =
                             wl_resource_create(client, Version::managerInterface(), static_cast<int>(version), id);
                         if (manager == nullptr) {
                             wl_client_post_no_memory(client);
                             return;
                         }
                         wl_resource_set_implementation(manager, Version::managerRequests(), data, nullptr);
                     });
}

TextInputs* TextInputs::of(wl_resource* manager)
{
    return static_cast<TextInputs*>(wl_resource_get_user_data(manager));
}

wl_resource* TextInputs::create(wl_resource* manager, const wl_interface* interface, uint32_t id)
{
    wl_resource* const resource =
        wl_resource_create(wl_resource_get_client(manager), interface, wl_resource_get_version(manager), id);
    if (resource == nullptr) {
        wl_resource_post_no_memory(manager);
    }
    return resource;
}

void TextInputs::add(TextInput* input)
{
    mInputs.append(input);
    connect(input, &QObject::destroyed, this, [this, input] {
        mInputs.removeOne(input);
        Q_EMIT activeChanged();
    });
    connect(input, &TextInput::stateChanged, this, &TextInputs::activeChanged);
    connect(input, &TextInput::panelRequested, this, &TextInputs::panelRequested);
    connect(input, &TextInput::panelDismissed, this, &TextInputs::panelDismissed);
    QWaylandSurface* const focus = mSeat.keyboardFocus();
    if (focus != nullptr && focus->waylandClient() == wl_resource_get_client(input->resource())) {
        input->setFocus(focus);
    }
}

void TextInputs::follow(QWaylandSurface* focus)
{
    wl_client* const client = focus == nullptr ? nullptr : focus->waylandClient();
    // The surface with the focus is left before the other one is entered.
    for (TextInput* input : qAsConst(mInputs)) {
        input->setFocus(nullptr);
    }
    for (TextInput* input : qAsConst(mInputs)) {
        if (wl_resource_get_client(input->resource()) == client) {
            input->setFocus(focus);
        }
    }
    Q_EMIT activeChanged();
}

TextInput* TextInputs::active() const
{
    const auto found = std::find_if(mInputs.cbegin(), mInputs.cend(), [](const TextInput* input) {
        return input->isActive();
    });
    return found == mInputs.cend() ? nullptr : *found;
}

void TextInputs::sendPanelState(bool isOpen)
{
    for (TextInput* input : qAsConst(mInputs)) {
        input->sendPanelState(isOpen);
    }
}
