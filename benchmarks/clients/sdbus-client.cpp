// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "clients/PlainView.h"
#include "service/ServiceNames.h"

#include <systemd/sd-bus.h>

#include <cstring>
#include <filesystem>
#include <memory>
#include <stdexcept>

using namespace ServiceNames;

namespace {

struct Unref
{
    void operator()(sd_bus* bus) const
    {
        sd_bus_flush_close_unref(bus);
    }

    void operator()(sd_bus_message* message) const
    {
        sd_bus_message_unref(message);
    }

    void operator()(sd_bus_slot* slot) const
    {
        sd_bus_slot_unref(slot);
    }
};
using BusPointer = std::unique_ptr<sd_bus, Unref>;
using MessagePointer = std::unique_ptr<sd_bus_message, Unref>;
using SlotPointer = std::unique_ptr<sd_bus_slot, Unref>;

int check(int result)
{
    if (result < 0) {
        throw std::runtime_error(std::strerror(-result));
    }
    return result;
}

std::string readString(sd_bus_message* message)
{
    const char* text = nullptr;
    check(sd_bus_message_read_basic(message, 's', &text));
    return text;
}

PlainAttribute readAttribute(sd_bus_message* message)
{
    const char* contents = nullptr;
    check(sd_bus_message_peek_type(message, nullptr, &contents));
    check(sd_bus_message_enter_container(message, 'v', contents));
    PlainAttribute attribute;
    if (*contents == 'b') {
        int value = 0;
        check(sd_bus_message_read_basic(message, 'b', &value));
        attribute = value != 0;
    } else if (*contents == 'u') {
        std::uint32_t value = 0;
        check(sd_bus_message_read_basic(message, 'u', &value));
        attribute = value;
    } else {
        attribute = readString(message);
    }
    check(sd_bus_message_exit_container(message));
    return attribute;
}

PlainViews readViewsOf(sd_bus_message* message)
{
    PlainViews views;
    check(sd_bus_message_enter_container(message, 'v', "a(ssssssuua{sv})"));
    check(sd_bus_message_enter_container(message, 'a', "(ssssssuua{sv})"));
    while (check(sd_bus_message_enter_container(message, 'r', "ssssssuua{sv}")) > 0) {
        PlainView view;
        const char* uuid = nullptr;
        const char* appId = nullptr;
        const char* info[4] = {};
        check(sd_bus_message_read(message, "ssssssuu", &uuid, &appId, &info[0], &info[1], &info[2], &info[3], &view.pid,
                                  &view.sortIndex));
        view.uuid = uuid;
        view.appId = appId;
        view.info1 = info[0];
        view.info2 = info[1];
        view.info3 = info[2];
        view.info4 = info[3];
        check(sd_bus_message_enter_container(message, 'a', "{sv}"));
        while (check(sd_bus_message_enter_container(message, 'e', "sv")) > 0) {
            std::string key = readString(message);
            view.attributes.emplace(std::move(key), readAttribute(message));
            check(sd_bus_message_exit_container(message));
        }
        check(sd_bus_message_exit_container(message));
        check(sd_bus_message_exit_container(message));
        views.push_back(std::move(view));
    }
    check(sd_bus_message_exit_container(message));
    check(sd_bus_message_exit_container(message));
    return views;
}

/// An application on systemd's sd-bus.
class SdBusClient : public PlainClient
{
public:
    SdBusClient()
    {
        sd_bus* bus = nullptr;
        check(sd_bus_open_user(&bus));
        mBus.reset(bus);
        sd_bus_slot* slot = nullptr;
        check(sd_bus_match_signal(bus, &slot, cService, cTaskSwitcherPath, cPropertiesInterface, "PropertiesChanged",
                                  onPropertiesChanged, this));
        mSlot.reset(slot);
    }

protected:
    bool hasOwner() override
    {
        sd_bus_message* reply = nullptr;
        check(sd_bus_call_method(mBus.get(), cBusDaemon, cBusDaemonPath, cBusDaemon, "NameHasOwner", nullptr, &reply,
                                 "s", cService));
        const MessagePointer owned(reply);
        int hasOwner = 0;
        check(sd_bus_message_read(reply, "b", &hasOwner));
        return hasOwner != 0;
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
        return readString(call(cScreenShotPath, cScreenShotInterface, "ScreenShot", "s", "/tmp").get());
    }

    void awaitNotification() override
    {
        mIsNotified = false;
        sd_bus_message* created = nullptr;
        check(sd_bus_message_new_method_call(mBus.get(), &created, cService, cNotifyChangePath, cNotifyChangeInterface,
                                             cNotifyChangeMethod));
        const MessagePointer request(created);
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
            if (readString(message) == "currentView") {
                static_cast<SdBusClient*>(client)->mIsNotified = true;
            }
            check(sd_bus_message_skip(message, "v"));
            check(sd_bus_message_exit_container(message));
        }
        return 0;
    }

    std::string getText(const char* path, const char* interface, const char* property)
    {
        const MessagePointer reply = call(path, cPropertiesInterface, "Get", "ss", interface, property);
        const char* text = nullptr;
        check(sd_bus_message_read(reply.get(), "v", "s", &text));
        return text;
    }

    template <typename... Arguments>
    MessagePointer call(const char* path, const char* interface, const char* method, const char* types,
                        Arguments... arguments)
    {
        sd_bus_message* reply = nullptr;
        check(sd_bus_call_method(mBus.get(), cService, path, interface, method, nullptr, &reply, types, arguments...));
        return MessagePointer(reply);
    }

    BusPointer mBus;
    SlotPointer mSlot;
    MessagePointer mFetchedViews;
    bool mIsNotified = false;
};

} // namespace

int main()
{
    return runClient([] {
        return std::make_unique<SdBusClient>();
    });
}
