// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/TextInputV2.h"

#include "wayland/TextInputs.h"

#include <QWaylandCompositor>
#include <QWaylandSeat>

#include <QtWaylandCompositor/private/qwayland-server-text-input-unstable-v2.h>

const wl_interface* TextInputV2::managerInterface()
{
    return QtWaylandServer::zwp_text_input_manager_v2::interface();
}

const void* TextInputV2::managerRequests()
{
    static const struct zwp_text_input_manager_v2_interface requests = {
        [](wl_client*, wl_resource* manager) {
            wl_resource_destroy(manager);
        },
        [](wl_client*, wl_resource* manager, uint32_t id, wl_resource*) {
            TextInputs::add<TextInputV2>(manager, id);
        },
    };
    return &requests;
}

const wl_interface* TextInputV2::interface()
{
    return QtWaylandServer::zwp_text_input_v2::interface();
}

TextInputV2::TextInputV2(wl_resource* resource, QWaylandSeat& seat)
    : TextInput(resource, requests())
    , mSeat(seat)
{
}

const void* TextInputV2::requests()
{
    static const struct zwp_text_input_v2_interface requests = {
        [](wl_client*, wl_resource* resource) {
            wl_resource_destroy(resource);
        },
        [](wl_client*, wl_resource* resource, wl_resource* surface) {
            of(resource)->enable(surface);
        },
        [](wl_client*, wl_resource* resource, wl_resource* surface) {
            of(resource)->disable(surface);
        },
        [](wl_client*, wl_resource* resource) {
            of(resource)->mWantsPanel = true;
            of(resource)->requestPanel();
        },
        [](wl_client*, wl_resource* resource) {
            of(resource)->mWantsPanel = false;
            if (of(resource)->isActive()) {
                Q_EMIT of(resource)->panelDismissed();
            }
        },
        [](wl_client*, wl_resource*, const char*, int32_t, int32_t) {},
        [](wl_client*, wl_resource* resource, uint32_t, uint32_t purpose) {
            of(resource)->mPendingPurpose = purpose;
        },
        [](wl_client*, wl_resource*, int32_t, int32_t, int32_t, int32_t) {},
        [](wl_client*, wl_resource*, const char*) {},
        [](wl_client*, wl_resource* resource, uint32_t, uint32_t) {
            of(resource)->setPurpose(of(resource)->mPendingPurpose);
            Q_EMIT of(resource)->stateChanged();
        },
    };
    return &requests;
}

void TextInputV2::enable(wl_resource* surface)
{
    mSurface = surface;
    mSurfaceListener = std::make_unique<ResourceListener>(surface, [this] {
        mSurface = nullptr;
        Q_EMIT stateChanged();
    });
    Q_EMIT stateChanged();
    requestPanel();
}

void TextInputV2::requestPanel()
{
    // Qt requests the panel before it enables the text input.
    if (mWantsPanel && isActive()) {
        mWantsPanel = false;
        Q_EMIT panelRequested();
    }
}

void TextInputV2::disable(wl_resource* surface)
{
    if (surface == mSurface) {
        mWantsPanel = false;
        mSurface = nullptr;
        mSurfaceListener.reset();
        Q_EMIT stateChanged();
    }
}

bool TextInputV2::isActive() const
{
    return mSurface != nullptr && focus() != nullptr && focus()->resource() == mSurface;
}

void TextInputV2::sendText(const QString& text)
{
    zwp_text_input_v2_send_commit_string(resource(), text.toUtf8().constData());
}

void TextInputV2::sendPanelState(bool isOpen)
{
    if (focus() == nullptr) {
        return;
    }
    // Views are configured to a smaller size instead of being covered.
    zwp_text_input_v2_send_input_panel_state(resource(),
                                             isOpen ? ZWP_TEXT_INPUT_V2_INPUT_PANEL_VISIBILITY_VISIBLE
                                                    : ZWP_TEXT_INPUT_V2_INPUT_PANEL_VISIBILITY_HIDDEN,
                                             0, 0, 0, 0);
}

void TextInputV2::sendEnter(wl_resource* surface)
{
    zwp_text_input_v2_send_enter(resource(), mSeat.compositor()->nextSerial(), surface);
}

void TextInputV2::sendLeave(wl_resource* surface)
{
    zwp_text_input_v2_send_leave(resource(), mSeat.compositor()->nextSerial(), surface);
}
