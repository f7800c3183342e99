// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "PlainClient.h"

#include "Digest.h"
#include "ServiceNames.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>

using namespace ServiceNames;

void PlainClient::readViews()
{
    mViews = getViews();
}

void PlainClient::readCurrentView()
{
    mView = currentView();
}

void PlainClient::setCurrentView()
{
    setCurrentView(mView);
}

void PlainClient::stepToNextView()
{
    std::vector<PlainView> views = getViews();
    const PlainView current = currentView();
    views.erase(std::remove_if(views.begin(), views.end(),
                               [&current](const PlainView& view) {
                                   return view.appId != current.appId;
                               }),
                views.end());
    if (views.empty()) {
        throw std::runtime_error("no view of the application");
    }
    std::sort(views.begin(), views.end(), [](const PlainView& left, const PlainView& right) {
        return left.sortIndex < right.sortIndex;
    });
    auto next = std::find_if(views.begin(), views.end(), [&current](const PlainView& view) {
        return view.uuid == current.uuid;
    });
    if (next == views.end() || ++next == views.end()) {
        next = views.begin();
    }
    setCurrentView(*next);
}

void PlainClient::readOrientation()
{
    checkOwner();
    mText = getText(cScreenPath, cScreenInterface, "orientation");
}

void PlainClient::writeFullScreen()
{
    checkOwner();
    setBool(cScreenPath, cScreenInterface, "fullScreen", true);
}

void PlainClient::showOverlay()
{
    checkOwner();
    callShow("Please wait");
}

void PlainClient::notify()
{
    checkOwner();
    callNotify("dialog-information", "Update", "A new version is ready.", {"view-refresh", "Install"});
}

void PlainClient::captureScreenShot()
{
    checkOwner();
    const std::string directory = "/tmp";
    if (!std::filesystem::exists(directory)) {
        throw std::runtime_error("no such directory");
    }
    mText = callScreenShot(directory);
}

void PlainClient::awaitChange()
{
    awaitNotification();
    mText = currentView().uuid;
}

void PlainClient::decodeViews()
{
    mViews = decodeFetchedViews();
}

void PlainClient::addResult(Digest& digest) const
{
    for (const PlainView& view : mViews) {
        view.addTo(digest);
    }
    mView.addTo(digest);
    digest.add(std::string_view(mText));
}

void PlainClient::checkOwner()
{
    if (!hasOwner()) {
        throw std::runtime_error("the service is not there");
    }
}

PlainView PlainClient::currentView()
{
    const std::vector<PlainView> views = getViews();
    checkOwner();
    const std::string uuid = getText(cTaskSwitcherPath, cTaskSwitcherInterface, "currentView");
    const auto current = std::find_if(views.begin(), views.end(), [&uuid](const PlainView& view) {
        return view.uuid == uuid;
    });
    return current != views.end() ? *current : PlainView();
}

void PlainClient::setCurrentView(const PlainView& view)
{
    checkOwner();
    setText(cTaskSwitcherPath, cTaskSwitcherInterface, "currentView", view.uuid);
}
