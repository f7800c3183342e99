// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/TextInput.h"

#include <wayland-server-core.h>

#include <text-input-unstable-v3-server-protocol.h>

TextInput::TextInput(wl_resource* resource, const void* requests)
    : mResource(resource)
{
    wl_resource_set_implementation(resource, requests, this, [](wl_resource* destroyed) {
        delete of(destroyed);
    });
}

TextInput* TextInput::of(wl_resource* resource)
{
    return static_cast<TextInput*>(wl_resource_get_user_data(resource));
}

QWaylandSurface* TextInput::focus() const
{
    return mFocus == nullptr || mFocus->isDestroyed() ? nullptr : mFocus.data();
}

void TextInput::setFocus(QWaylandSurface* surface)
{
    if (surface == mFocus) {
        return;
    }
    if (const QWaylandSurface* const left = focus()) {
        sendLeave(left->resource());
    }
    mFocus = surface;
    if (surface != nullptr) {
        sendEnter(surface->resource());
    }
}

bool TextInput::isNumeric() const
{
    // These have the same numbers in all versions of the protocol.
    return mPurpose >= ZWP_TEXT_INPUT_V3_CONTENT_PURPOSE_DIGITS && mPurpose <= ZWP_TEXT_INPUT_V3_CONTENT_PURPOSE_PHONE;
}

void TextInput::sendPanelState(bool)
{
}
