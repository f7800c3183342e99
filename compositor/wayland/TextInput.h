// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QWaylandSurface>

#include <cstdint>

struct wl_client;
struct wl_resource;

/// A text input object of a client, of any version of the protocol. It is active while the client has enabled it for
/// the surface with the keyboard focus: that is a text field that a person can type into.
class TextInput : public QObject
{
    Q_OBJECT

public:
    wl_resource* resource() const
    {
        return mResource;
    }

    /// Moves the focus to a surface of the client; null takes it away.
    void setFocus(QWaylandSurface* surface);
    virtual bool isActive() const = 0;
    /// Whether the text field is for numbers.
    bool isNumeric() const;

    /// Inserts `text` into the text field.
    virtual void sendText(const QString& text) = 0;
    /// Announces to a client with the focus whether the on-screen keyboard is open.
    virtual void sendPanelState(bool isOpen);

Q_SIGNALS:
    /// isActive() or isNumeric() may have changed.
    void stateChanged();
    void panelRequested();
    void panelDismissed();

protected:
    /// `requests` is the implementation of `resource`, which deletes this when it is destroyed.
    TextInput(wl_resource* resource, const void* requests);

    static TextInput* of(wl_resource* resource);
    /// Null while no surface of the client has the focus.
    QWaylandSurface* focus() const;
    void setPurpose(uint32_t purpose)
    {
        mPurpose = purpose;
    }

    virtual void sendEnter(wl_resource* surface) = 0;
    virtual void sendLeave(wl_resource* surface) = 0;

private:
    wl_resource* mResource;
    QPointer<QWaylandSurface> mFocus;
    /// The content_purpose.
    uint32_t mPurpose = 0;
};
