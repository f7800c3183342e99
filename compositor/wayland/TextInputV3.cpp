// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/TextInputV3.h"

#include "wayland/TextInputs.h"

#include <utility>
#include <wayland-server-core.h>

#include <text-input-unstable-v3-server-protocol.h>

const wl_interface* TextInputV3::managerInterface()
{
    return &zwp_text_input_manager_v3_interface;
}

const void* TextInputV3::managerRequests()
{
    static const struct zwp_text_input_manager_v3_interface requests = {
        [](wl_client*, wl_resource* manager) {
            wl_resource_destroy(manager);
        },
        [](wl_client*, wl_resource* manager, uint32_t id, wl_resource*) {
            TextInputs::add<TextInputV3>(manager, id);
        },
    };
    return &requests;
}

const wl_interface* TextInputV3::interface()
{
    return &zwp_text_input_v3_interface;
}

TextInputV3::TextInputV3(wl_resource* resource, QWaylandSeat&)
    : TextInput(resource, requests())
{
}

const void* TextInputV3::requests()
{
    static const struct zwp_text_input_v3_interface requests = {
        [](wl_client*, wl_resource* resource) {
            wl_resource_destroy(resource);
        },
        [](wl_client*, wl_resource* resource) {
            of(resource)->mPendingChange = Change::Enable;
            of(resource)->mPendingPurpose = ZWP_TEXT_INPUT_V3_CONTENT_PURPOSE_NORMAL;
        },
        [](wl_client*, wl_resource* resource) {
            of(resource)->mPendingChange = Change::Disable;
        },
        [](wl_client*, wl_resource*, const char*, int32_t, int32_t) {},
        [](wl_client*, wl_resource*, uint32_t) {},
        [](wl_client*, wl_resource* resource, uint32_t, uint32_t purpose) {
            of(resource)->mPendingPurpose = purpose;
        },
        [](wl_client*, wl_resource*, int32_t, int32_t, int32_t, int32_t) {},
        [](wl_client*, wl_resource* resource) {
            of(resource)->commit();
        },
    };
    return &requests;
}

void TextInputV3::commit()
{
    ++mCommitCount;
    const Change change = std::exchange(mPendingChange, Change::None);
    if (focus() == nullptr) {
        return;
    }
    if (change != Change::None) {
        mIsEnabled = change == Change::Enable;
    }
    // In version 2 of the protocol, which has no purpose of a PIN, the same number is that of a date.
    setPurpose(mPendingPurpose == ZWP_TEXT_INPUT_V3_CONTENT_PURPOSE_PIN
                   ? uint32_t{ZWP_TEXT_INPUT_V3_CONTENT_PURPOSE_DIGITS}
                   : mPendingPurpose);
    Q_EMIT stateChanged();
    // The protocol has no request to show the panel: clients enable again what is enabled already.
    if (change == Change::Enable) {
        Q_EMIT panelRequested();
    }
}

bool TextInputV3::isActive() const
{
    return mIsEnabled && focus() != nullptr;
}

void TextInputV3::sendText(const QString& text)
{
    zwp_text_input_v3_send_commit_string(resource(), text.toUtf8().constData());
    zwp_text_input_v3_send_done(resource(), mCommitCount);
}

void TextInputV3::sendEnter(wl_resource* surface)
{
    mIsEnabled = false;
    zwp_text_input_v3_send_enter(resource(), surface);
}

void TextInputV3::sendLeave(wl_resource* surface)
{
    mIsEnabled = false;
    zwp_text_input_v3_send_leave(resource(), surface);
}
