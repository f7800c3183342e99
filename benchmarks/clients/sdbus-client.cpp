// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "clients/PlainView.h"
#include "clients/SdBus.h"
#include "service/ServiceNames.h"

#include <cstring>
#include <filesystem>

using namespace ServiceNames;

namespace {

PlainViews readViewsOf(sd_bus_message* message)
{
    return readViews<PlainView, PlainViews>(message, [](const char* text) {
        return std::string(text);
    });
}

/// An application on systemd's sd-bus.
class SdBusClient : public PlainClient
{
public:
    SdBusClient()
        : mBus(openBus())
        , mSlot(followProperties(mBus.get(), cService, cTaskSwitcherPath, onPropertiesChanged, this))
    {
    }

protected:
    bool hasOwner() override
    {
        return ::hasOwner(mBus.get(), cService);
    }

    PlainViews getViews() override
    {
        return readViewsOf(
            call(cTaskSwitcherPath, cPropertiesInterface, "Get", "ss", cTaskSwitcherInterface, "views").get());
    }

    std::string getCurrentView() override
    {
        return getText(cTaskSwitcherPath, cTaskSwitcherInterface, "currentView");
    }

    void setCurrentView(const std::string& uuid) override
    {
        call(cTaskSwitcherPath, cPropertiesInterface, "Set", "ssv", cTaskSwitcherInterface, "currentView", "s",
             uuid.c_str());
    }

    std::string getOrientation() override
    {
        return getText(cScreenPath, cScreenInterface, "orientation");
    }

    void setFullScreen(bool fullScreen) override
    {
        call(cScreenPath, cPropertiesInterface, "Set", "ssv", cScreenInterface, "fullScreen", "b", int{fullScreen});
    }

    void showOverlay() override
    {
        call(cOverlayPath, cOverlayInterface, "Show", "s", "Please wait");
    }

    void notify() override
    {
        call(cNotificationsPath, cNotificationsInterface, "Notify", "susssasa{sv}i", "", 0U, "dialog-information",
             "Update", "A new version is ready.", 2, "view-refresh", "Install", 1, "action-icons", "b", 1, 0);
    }

    std::string captureScreenShot() override
    {
        checkSucceeded(std::filesystem::exists("/tmp"));
        return readText(call(cScreenShotPath, cScreenShotInterface, "ScreenShot", "s", "/tmp").get());
    }

    void awaitNotification() override
    {
        mIsNotified = false;
        sd_bus_message* created = nullptr;
        check(sd_bus_message_new_method_call(mBus.get(), &created, cService, cNotifyChangePath, cNotifyChangeInterface,
                                             cNotifyChangeMethod));
        const SdBusMessagePointer request(created);
        check(sd_bus_message_set_expect_reply(request.get(), 0));
        check(sd_bus_send(mBus.get(), request.get(), nullptr));
        while (!mIsNotified) {
            if (check(sd_bus_process(mBus.get(), nullptr)) == 0) {
                check(sd_bus_wait(mBus.get(), UINT64_MAX));
            }
        }
    }

    void fetchViews() override
    {
        mFetchedViews = call(cTaskSwitcherPath, cPropertiesInterface, "Get", "ss", cTaskSwitcherInterface, "views");
    }

    PlainViews decodeFetchedViews() override
    {
        check(sd_bus_message_rewind(mFetchedViews.get(), 1));
        return readViewsOf(mFetchedViews.get());
    }

private:
    static int onPropertiesChanged(sd_bus_message* message, void* client, sd_bus_error* /*error*/)
    {
        const char* interface = nullptr;
        check(sd_bus_message_read_basic(message, 's', &interface));
        check(sd_bus_message_enter_container(message, 'a', "{sv}"));
        while (check(sd_bus_message_enter_container(message, 'e', "sv")) > 0) {
            if (std::strcmp(readText(message), "currentView") == 0) {
                static_cast<SdBusClient*>(client)->mIsNotified = true;
            }
            check(sd_bus_message_skip(message, "v"));
            check(sd_bus_message_exit_container(message));
        }
        return 0;
    }

    std::string getText(const char* path, const char* interface, const char* property)
    {
        const SdBusMessagePointer reply = call(path, cPropertiesInterface, "Get", "ss", interface, property);
        const char* text = nullptr;
        check(sd_bus_message_read(reply.get(), "v", "s", &text));
        return text;
    }

    template <typename... Arguments>
    SdBusMessagePointer call(const char* path, const char* interface, const char* method, const char* types,
                             Arguments... arguments)
    {
        return callMethod(mBus.get(), cService, path, interface, method, types, arguments...);
    }

    SdBusPointer mBus;
    SdBusSlotPointer mSlot;
    SdBusMessagePointer mFetchedViews;
    bool mIsNotified = false;
};

} // namespace

int main()
{
    return runClient([] {
        return std::make_unique<SdBusClient>();
    });
}
