// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "wayland/TextInput.h"

class QWaylandSeat;
struct wl_interface;

/// A zwp_text_input_v3, which GTK, Chromium and foot use.
class TextInputV3 : public TextInput
{
    Q_OBJECT

public:
    static constexpr int cVersion = 1;

    static const wl_interface* managerInterface();
    /// The implementation of the manager, whose get_text_input calls TextInputs::add().
    static const void* managerRequests();
    static const wl_interface* interface();

    TextInputV3(wl_resource* resource, QWaylandSeat& seat);

    bool isActive() const override;
    void sendText(const QString& text) override;

protected:
    void sendEnter(wl_resource* surface) override;
    void sendLeave(wl_resource* surface) override;

private:
    enum class Change
    {
        None,
        Enable,
        Disable
    };

    static const void* requests();
    static TextInputV3* of(wl_resource* resource)
    {
        return static_cast<TextInputV3*>(TextInput::of(resource));
    }
    void commit();

    bool mIsEnabled = false;
    Change mPendingChange = Change::None;
    uint32_t mPendingPurpose = 0;
    uint32_t mCommitCount = 0;
};
