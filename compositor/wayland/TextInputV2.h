// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "wayland/ResourceListener.h"
#include "wayland/TextInput.h"

#include <memory>

class QWaylandSeat;
struct wl_interface;

/// A zwp_text_input_v2, which Qt 5 uses. QWaylandTextInput serves one text input of a client and sends what the
/// compositor's own QInputMethod types, which here does not exist.
class TextInputV2 : public TextInput
{
    Q_OBJECT

public:
    static constexpr int cVersion = 1;

    static const wl_interface* managerInterface();
    /// The implementation of the manager, whose get_text_input calls TextInputs::add().
    static const void* managerRequests();
    static const wl_interface* interface();

    TextInputV2(wl_resource* resource, QWaylandSeat& seat);

    bool isActive() const override;
    void sendText(const QString& text) override;
    void sendPanelState(bool isOpen) override;

protected:
    void sendEnter(wl_resource* surface) override;
    void sendLeave(wl_resource* surface) override;

private:
    static const void* requests();
    static TextInputV2* of(wl_resource* resource)
    {
        return static_cast<TextInputV2*>(TextInput::of(resource));
    }
    void enable(wl_resource* surface);
    void disable(wl_resource* surface);
    void requestPanel();

    QWaylandSeat& mSeat;
    /// The surface for which the text input is enabled, which need not have the focus.
    wl_resource* mSurface = nullptr;
    std::unique_ptr<ResourceListener> mSurfaceListener;
    uint32_t mPendingPurpose = 0;
    bool mWantsPanel = false;
};
