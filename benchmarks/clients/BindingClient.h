// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "clients/Client.h"
#include "clients/NextView.h"

/// A client that keeps views and texts of the types of its binding, for each of which there is an addTo().
template <typename View, typename Views> class ViewClient : public Client
{
public:
    void addResult(Digest& digest) const override
    {
        for (const View& view : mViews) {
            addTo(digest, view);
        }
        addTo(digest, mView);
        addTo(digest, mText);
    }

protected:
    using Text = decltype(View::uuid);

    Views mViews;
    View mView;
    Text mText;
};

/// An application without the library: its operations, made of one function for each message, in the library's order.
template <typename View, typename Views> class BindingClient : public ViewClient<View, Views>
{
protected:
    using typename ViewClient<View, Views>::Text;

    BindingClient()
    {
        this->mOperations = {
            {"views",
             [this] {
                 mViews = getViews();
             }},
            {"current",
             [this] {
                 mView = currentView();
             }},
            {"set",
             [this] {
                 writeCurrentView(mView.uuid);
             }},
            {"step",
             [this] {
                 stepToNextView();
             }},
            {"screen-read",
             [this] {
                 checkSucceeded(hasOwner());
                 mText = getOrientation();
             }},
            {"screen-write",
             [this] {
                 checkSucceeded(hasOwner());
                 setFullScreen(true);
             }},
            {"overlay",
             [this] {
                 checkSucceeded(hasOwner());
                 showOverlay();
             }},
            {"notify",
             [this] {
                 checkSucceeded(hasOwner());
                 notify();
             }},
            {"screenshot",
             [this] {
                 checkSucceeded(hasOwner());
                 mText = captureScreenShot();
             }},
            {"change",
             [this] {
                 awaitNotification();
                 mText = currentView().uuid;
             }},
            {"fetch",
             [this] {
                 fetchViews();
             }},
            {"decode",
             [this] {
                 mViews = decodeFetchedViews();
             }},
        };
    }

    virtual bool hasOwner() = 0;
    virtual Views getViews() = 0;
    virtual Text getCurrentView() = 0;
    virtual void setCurrentView(const Text& uuid) = 0;
    virtual Text getOrientation() = 0;
    virtual void setFullScreen(bool fullScreen) = 0;
    virtual void showOverlay() = 0;
    virtual void notify() = 0;
    virtual Text captureScreenShot() = 0;
    /// Requests a change of the service and returns once its notification has arrived.
    virtual void awaitNotification() = 0;
    /// Reads the reply that decodeFetchedViews() decodes again and again, without the bus.
    virtual void fetchViews() = 0;
    virtual Views decodeFetchedViews() = 0;

private:
    using ViewClient<View, Views>::mViews;
    using ViewClient<View, Views>::mView;
    using ViewClient<View, Views>::mText;

    View currentView()
    {
        const Views views = getViews();
        checkSucceeded(hasOwner());
        return findView<View>(views, getCurrentView());
    }

    void writeCurrentView(const Text& uuid)
    {
        checkSucceeded(hasOwner());
        setCurrentView(uuid);
    }

    void stepToNextView()
    {
        const Views views = getViews();
        writeCurrentView(nextView(views, currentView()).uuid);
    }
};
