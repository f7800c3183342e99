// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "Client.h"
#include "PlainView.h"

#include <string>
#include <vector>

/// What is the same in all applications without Qt: the operations, made of one function for each kind of message.
class PlainClient : public Client
{
public:
    void readViews() override;
    void readCurrentView() override;
    void setCurrentView() override;
    void stepToNextView() override;
    void readOrientation() override;
    void writeFullScreen() override;
    void showOverlay() override;
    void notify() override;
    void captureScreenShot() override;
    void awaitChange() override;
    void decodeViews() override;
    void addResult(Digest& digest) const override;

protected:
    virtual bool hasOwner() = 0;
    virtual std::vector<PlainView> getViews() = 0;
    virtual std::string getText(const char* path, const char* interface, const char* property) = 0;
    virtual void setText(const char* path, const char* interface, const char* property, const std::string& value) = 0;
    virtual void setBool(const char* path, const char* interface, const char* property, bool value) = 0;
    virtual void callShow(const std::string& message) = 0;
    virtual void callNotify(const std::string& icon, const std::string& summary, const std::string& body,
                            const std::vector<std::string>& actions) = 0;
    virtual std::string callScreenShot(const std::string& directory) = 0;
    /// Sends the request for a change and returns once its notification has arrived.
    virtual void awaitNotification() = 0;
    virtual std::vector<PlainView> decodeFetchedViews() = 0;

private:
    void checkOwner();
    PlainView currentView();
    void setCurrentView(const PlainView& view);

    std::vector<PlainView> mViews;
    PlainView mView;
    std::string mText;
};
