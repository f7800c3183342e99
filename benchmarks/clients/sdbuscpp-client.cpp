// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "clients/PlainView.h"
#include "service/ServiceNames.h"

#include <sdbus-c++/sdbus-c++.h>

#include <poll.h>

#include <filesystem>
#include <memory>

using namespace ServiceNames;

namespace {

using Attributes = std::map<std::string, sdbus::Variant>;
using WireView = sdbus::Struct<std::string, std::string, std::string, std::string, std::string, std::string,
                               std::uint32_t, std::uint32_t, Attributes>;

PlainAttribute readAttribute(const sdbus::Variant& value)
{
    const std::string type = value.peekValueType();
    if (type == "b") {
        return value.get<bool>();
    }
    if (type == "i") {
        return value.get<std::int32_t>();
    }
    return value.get<std::string>();
}

PlainViews readViewsOf(const sdbus::Variant& value)
{
    PlainViews views;
    for (auto& wire : value.get<std::vector<WireView>>()) {
        PlainView view{wire.get<0>(), wire.get<1>(), wire.get<2>(),
                       wire.get<3>(), wire.get<4>(), wire.get<5>(),
                       wire.get<6>(), wire.get<7>(), {}};
        for (const auto& [key, attribute] : wire.get<8>()) {
            view.attributes.emplace(key, readAttribute(attribute));
        }
        views.push_back(std::move(view));
    }
    return views;
}

/// An application on sdbus-c++.
class SdBusCppClient : public PlainClient
{
public:
    SdBusCppClient()
        : mConnection(sdbus::createSessionBusConnection())
        , mBusDaemon(sdbus::createProxy(*mConnection, cBusDaemon, cBusDaemonPath))
        , mTaskSwitcher(sdbus::createProxy(*mConnection, cService, cTaskSwitcherPath))
        , mScreen(sdbus::createProxy(*mConnection, cService, cScreenPath))
        , mOverlay(sdbus::createProxy(*mConnection, cService, cOverlayPath))
        , mNotifications(sdbus::createProxy(*mConnection, cService, cNotificationsPath))
        , mScreenShots(sdbus::createProxy(*mConnection, cService, cScreenShotPath))
        , mChanges(sdbus::createProxy(*mConnection, cService, cNotifyChangePath))
    {
        mTaskSwitcher->uponSignal("PropertiesChanged")
            .onInterface(cPropertiesInterface)
            .call([this](const std::string& /*interface*/, const Attributes& changed,
                         const std::vector<std::string>& /*invalidated*/) {
                mIsNotified = mIsNotified || changed.count("currentView") != 0;
            });
        mTaskSwitcher->finishRegistration();
    }

protected:
    bool hasOwner() override
    {
        bool hasOwner = false;
        mBusDaemon->callMethod("NameHasOwner").onInterface(cBusDaemon).withArguments(cService).storeResultsTo(hasOwner);
        return hasOwner;
    }

    PlainViews getViews() override
    {
        return readViewsOf(mTaskSwitcher->getProperty("views").onInterface(cTaskSwitcherInterface));
    }

    std::string getCurrentView() override
    {
        return mTaskSwitcher->getProperty("currentView").onInterface(cTaskSwitcherInterface);
    }

    void setCurrentView(const std::string& uuid) override
    {
        mTaskSwitcher->setProperty("currentView").onInterface(cTaskSwitcherInterface).toValue(uuid);
    }

    std::string getOrientation() override
    {
        return mScreen->getProperty("orientation").onInterface(cScreenInterface);
    }

    void setFullScreen(bool fullScreen) override
    {
        mScreen->setProperty("fullScreen").onInterface(cScreenInterface).toValue(fullScreen);
    }

    void showOverlay() override
    {
        mOverlay->callMethod("Show").onInterface(cOverlayInterface).withArguments("Please wait");
    }

    void notify() override
    {
        const std::vector<std::string> actions = {"view-refresh", "Install"};
        const Attributes hints = {{"action-icons", sdbus::Variant(true)}};
        std::uint32_t id = 0;
        mNotifications->callMethod("Notify")
            .onInterface(cNotificationsInterface)
            .withArguments("", std::uint32_t{0}, "dialog-information", "Update", "A new version is ready.", actions,
                           hints, std::int32_t{0})
            .storeResultsTo(id);
    }

    std::string captureScreenShot() override
    {
        checkSucceeded(std::filesystem::exists("/tmp"));
        std::string path;
        mScreenShots->callMethod("ScreenShot")
            .onInterface(cScreenShotInterface)
            .withArguments("/tmp")
            .storeResultsTo(path);
        return path;
    }

    void awaitNotification() override
    {
        mIsNotified = false;
        mChanges->callMethod(cNotifyChangeMethod).onInterface(cNotifyChangeInterface).dontExpectReply();
        while (!mIsNotified) {
            if (!mConnection->processPendingRequest()) {
                const sdbus::IConnection::PollData bus = mConnection->getEventLoopPollData();
                pollfd descriptor = {bus.fd, bus.events, 0};
                poll(&descriptor, 1, bus.getPollTimeout());
            }
        }
    }

    void fetchViews() override
    {
        mFetchedViews = mTaskSwitcher->getProperty("views").onInterface(cTaskSwitcherInterface);
    }

    PlainViews decodeFetchedViews() override
    {
        return readViewsOf(mFetchedViews);
    }

private:
    std::unique_ptr<sdbus::IConnection> mConnection;
    std::unique_ptr<sdbus::IProxy> mBusDaemon;
    std::unique_ptr<sdbus::IProxy> mTaskSwitcher;
    std::unique_ptr<sdbus::IProxy> mScreen;
    std::unique_ptr<sdbus::IProxy> mOverlay;
    std::unique_ptr<sdbus::IProxy> mNotifications;
    std::unique_ptr<sdbus::IProxy> mScreenShots;
    std::unique_ptr<sdbus::IProxy> mChanges;
    sdbus::Variant mFetchedViews;
    bool mIsNotified = false;
};

} // namespace

int main()
{
    return runClient([] {
        return std::make_unique<SdBusCppClient>();
    });
}
