// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "service/BenchmarkService.h"

#include "service/ServiceNames.h"

#include <poll.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <sstream>
#include <stdexcept>

using namespace ServiceNames;

namespace {

constexpr int cViewsOfAnApplication = 5;

std::string readDescription(const std::string& path)
{
    std::ifstream file(path);
    std::stringstream text;
    text << file.rdbuf();
    std::string description = text.str();
    const std::size_t end = description.rfind("</node>");
    if (end == std::string::npos) {
        throw std::runtime_error(path + " does not describe an object");
    }
    // Every object has this interface too.
    description.insert(end, R"(
  <interface name="org.freedesktop.DBus.Properties">
    <method name="Get">
      <arg name="interface" type="s" direction="in"/>
      <arg name="property" type="s" direction="in"/>
      <arg name="value" type="v" direction="out"/>
    </method>
    <method name="Set">
      <arg name="interface" type="s" direction="in"/>
      <arg name="property" type="s" direction="in"/>
      <arg name="value" type="v" direction="in"/>
    </method>
    <method name="GetAll">
      <arg name="interface" type="s" direction="in"/>
      <arg name="values" type="a{sv}" direction="out"/>
    </method>
    <signal name="PropertiesChanged">
      <arg name="interface" type="s"/>
      <arg name="changed" type="a{sv}"/>
      <arg name="invalidated" type="as"/>
    </signal>
  </interface>
)");
    return description;
}

std::string makeUuid(int view)
{
    char text[40];
    std::snprintf(text, sizeof text, "{6b1f0a52-93c4-4e0d-8a77-%012d}", view);
    return text;
}

int viewOf(const std::string& uuid)
{
    return std::stoi(uuid.substr(uuid.rfind('-') + 1));
}

void appendVariant(DBusMessageIter& iterator, int type, const void* value)
{
    const char signature[] = {static_cast<char>(type), '\0'};
    DBusMessageIter variant;
    dbus_message_iter_open_container(&iterator, DBUS_TYPE_VARIANT, signature, &variant);
    dbus_message_iter_append_basic(&variant, type, value);
    dbus_message_iter_close_container(&iterator, &variant);
}

void appendAttribute(DBusMessageIter& attributes, const char* key, int type, const void* value)
{
    DBusMessageIter entry;
    dbus_message_iter_open_container(&attributes, DBUS_TYPE_DICT_ENTRY, nullptr, &entry);
    dbus_message_iter_append_basic(&entry, DBUS_TYPE_STRING, &key);
    appendVariant(entry, type, value);
    dbus_message_iter_close_container(&attributes, &entry);
}

void appendTextAttribute(DBusMessageIter& attributes, const char* key, const std::string& text)
{
    const char* const characters = text.c_str();
    appendAttribute(attributes, key, DBUS_TYPE_STRING, &characters);
}

/// Appends a record with the fields and attributes that the reference compositor sends.
void appendView(DBusMessageIter& views, int view, const std::string& title, bool isCurrent)
{
    const std::string application = "org.example.application" + std::to_string(view / cViewsOfAnApplication);
    const std::string processName = "application" + std::to_string(view / cViewsOfAnApplication);
    DBusMessageIter record;
    dbus_message_iter_open_container(&views, DBUS_TYPE_STRUCT, nullptr, &record);
    for (const std::string& text : {makeUuid(view), application, title, processName,
                                    std::string(isCurrent ? "current" : "background"), std::string("window")}) {
        const char* const characters = text.c_str();
        dbus_message_iter_append_basic(&record, DBUS_TYPE_STRING, &characters);
    }
    const std::uint32_t pid = 1000 + static_cast<std::uint32_t>(view);
    const std::uint32_t sortIndex = static_cast<std::uint32_t>(view % cViewsOfAnApplication);
    dbus_message_iter_append_basic(&record, DBUS_TYPE_UINT32, &pid);
    dbus_message_iter_append_basic(&record, DBUS_TYPE_UINT32, &sortIndex);

    DBusMessageIter attributes;
    dbus_message_iter_open_container(&record, DBUS_TYPE_ARRAY, "{sv}", &attributes);
    appendTextAttribute(attributes, "title", title);
    appendTextAttribute(attributes, "processName", processName);
    for (const auto& [key, isSet] : {std::pair("current", isCurrent), {"responding", true}, {"dialog", false}}) {
        const dbus_bool_t value = isSet;
        appendAttribute(attributes, key, DBUS_TYPE_BOOLEAN, &value);
    }
    for (const auto& [key, size] : {std::pair("width", 1280), {"height", 720}}) {
        const std::int32_t value = size;
        appendAttribute(attributes, key, DBUS_TYPE_INT32, &value);
    }
    dbus_message_iter_close_container(&record, &attributes);
    dbus_message_iter_close_container(&views, &record);
}

long long now()
{
    return std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count();
}

} // namespace

BenchmarkService::BenchmarkService(const std::string& interfaceDirectory)
    : mConnection(connectToBus())
{
    const std::initializer_list<std::pair<const char*, const char*>> objects = {
        {cTaskSwitcherPath, cTaskSwitcherInterface}, {cScreenPath, cScreenInterface},
        {cOverlayPath, cOverlayInterface},           {cNotificationsPath, cNotificationsInterface},
        {cScreenShotPath, cScreenShotInterface},
    };
    for (const auto& [path, interface] : objects) {
        mDescriptions.emplace(path, readDescription(interfaceDirectory + '/' + interface + ".xml"));
    }
    setViewCount(0);

    LibDBusError error;
    dbus_bus_request_name(mConnection.get(), cService, DBUS_NAME_FLAG_DO_NOT_QUEUE, error.get());
    error.check();
}

void BenchmarkService::run()
{
    std::cout << "ready" << std::endl;
    int busDescriptor = -1;
    dbus_connection_get_unix_fd(mConnection.get(), &busDescriptor);
    pollfd descriptors[] = {{STDIN_FILENO, POLLIN, 0}, {busDescriptor, POLLIN, 0}};
    while (poll(descriptors, 2, -1) > 0) {
        if (descriptors[0].revents != 0 && !handleCommand()) {
            return;
        }
        // In any case, since a command that sends signals may have read messages meanwhile.
        handleMessages();
    }
}

bool BenchmarkService::handleCommand()
{
    // The next command is not sent before the reply to this one, so that a read returns exactly one line.
    char buffer[64];
    const ssize_t size = read(STDIN_FILENO, buffer, sizeof buffer);
    if (size <= 0) {
        return false;
    }
    std::istringstream line(std::string(buffer, static_cast<std::size_t>(size)));
    std::string command;
    line >> command;
    long long reply = 0;
    if (command == "views") {
        int count = 0;
        line >> count;
        setViewCount(count);
    } else if (command == "broadcast") {
        mIsBroadcasting = true;
    } else if (command == "title") {
        reply = sendTitle();
    } else if (command == "switch") {
        mCurrentView = (mCurrentView + 1) % static_cast<int>(mTitles.size());
        reply = sendSwitch();
    } else if (command == "mark") {
        const DBusMessagePointer mark(dbus_message_new_signal(cNotifyChangePath, cNotifyChangeInterface, "Mark"));
        dbus_connection_send(mConnection.get(), mark.get(), nullptr);
        dbus_connection_flush(mConnection.get());
    } else {
        throw std::runtime_error("unknown command " + command);
    }
    std::cout << reply << std::endl;
    return true;
}

void BenchmarkService::setViewCount(int count)
{
    mTitles.clear();
    for (int view = 0; view < count; ++view) {
        mTitles.push_back("Übersicht " + std::to_string(view));
    }
    mCurrentView = count / 2;
    makeViewsReply();
}

void BenchmarkService::makeViewsReply()
{
    // A template: each copy gets the destination and the serial of its call.
    mViews.reset(dbus_message_new(DBUS_MESSAGE_TYPE_METHOD_RETURN));
    DBusMessageIter iterator;
    dbus_message_iter_init_append(mViews.get(), &iterator);
    appendViews(iterator);
}

void BenchmarkService::appendViews(DBusMessageIter& iterator) const
{
    DBusMessageIter variant;
    dbus_message_iter_open_container(&iterator, DBUS_TYPE_VARIANT, "a(ssssssuua{sv})", &variant);
    DBusMessageIter views;
    dbus_message_iter_open_container(&variant, DBUS_TYPE_ARRAY, "(ssssssuua{sv})", &views);
    for (std::size_t view = 0; view < mTitles.size(); ++view) {
        const int number = static_cast<int>(view);
        appendView(views, number, mTitles[view], number == mCurrentView);
    }
    dbus_message_iter_close_container(&variant, &views);
    dbus_message_iter_close_container(&iterator, &variant);
}

long long BenchmarkService::sendTitle()
{
    std::string& title = mTitles[static_cast<std::size_t>(++mTitleChanges) % mTitles.size()];
    title = "Übersicht, geändert " + std::to_string(mTitleChanges);
    makeViewsReply();
    return broadcast({"views"});
}

long long BenchmarkService::sendSwitch()
{
    makeViewsReply();
    return broadcast({"views", "currentView"});
}

long long BenchmarkService::broadcast(std::initializer_list<const char*> properties)
{
    std::vector<DBusMessagePointer> signals;
    for (const char* const property : properties) {
        signals.push_back(makeSignal(property));
    }
    const long long start = now();
    for (const DBusMessagePointer& signal : signals) {
        dbus_connection_send(mConnection.get(), signal.get(), nullptr);
    }
    dbus_connection_flush(mConnection.get());
    return start;
}

DBusMessagePointer BenchmarkService::makeSignal(const char* property) const
{
    DBusMessagePointer signal(dbus_message_new_signal(cTaskSwitcherPath, cPropertiesInterface, "PropertiesChanged"));
    DBusMessageIter iterator;
    dbus_message_iter_init_append(signal.get(), &iterator);
    dbus_message_iter_append_basic(&iterator, DBUS_TYPE_STRING, &cTaskSwitcherInterface);
    DBusMessageIter changed;
    dbus_message_iter_open_container(&iterator, DBUS_TYPE_ARRAY, "{sv}", &changed);
    DBusMessageIter entry;
    dbus_message_iter_open_container(&changed, DBUS_TYPE_DICT_ENTRY, nullptr, &entry);
    dbus_message_iter_append_basic(&entry, DBUS_TYPE_STRING, &property);
    appendProperty(entry, property);
    dbus_message_iter_close_container(&changed, &entry);
    dbus_message_iter_close_container(&iterator, &changed);
    DBusMessageIter invalidated;
    dbus_message_iter_open_container(&iterator, DBUS_TYPE_ARRAY, "s", &invalidated);
    dbus_message_iter_close_container(&iterator, &invalidated);
    return signal;
}

void BenchmarkService::appendProperty(DBusMessageIter& iterator, const std::string& property) const
{
    if (property == "views") {
        appendViews(iterator);
    } else if (property == "screenSaverActive") {
        const dbus_bool_t isActive = FALSE;
        appendVariant(iterator, DBUS_TYPE_BOOLEAN, &isActive);
    } else {
        const std::string value = property == "currentView" ? makeUuid(mCurrentView) : "90";
        const char* const text = value.c_str();
        appendVariant(iterator, DBUS_TYPE_STRING, &text);
    }
}

void BenchmarkService::handleMessages()
{
    if (!dbus_connection_read_write(mConnection.get(), 0)) {
        throw std::runtime_error("the bus is gone");
    }
    do {
        while (const DBusMessagePointer message{dbus_connection_pop_message(mConnection.get())}) {
            if (dbus_message_get_type(message.get()) == DBUS_MESSAGE_TYPE_METHOD_CALL) {
                answer(message.get());
            }
        }
        // Reads messages while it writes.
        dbus_connection_flush(mConnection.get());
    } while (dbus_connection_get_dispatch_status(mConnection.get()) == DBUS_DISPATCH_DATA_REMAINS);
}

void BenchmarkService::answer(DBusMessage* call)
{
    if (dbus_message_is_method_call(call, cNotifyChangeInterface, cNotifyChangeMethod)) {
        const DBusMessagePointer signal = makeSignal("currentView");
        // Unicast: the other clients would handle a broadcast in their own turns.
        dbus_message_set_destination(signal.get(), dbus_message_get_sender(call));
        dbus_connection_send(mConnection.get(), signal.get(), nullptr);
        return;
    }
    const int formerView = mCurrentView;
    const DBusMessagePointer reply = makeReply(call);
    dbus_message_set_reply_serial(reply.get(), dbus_message_get_serial(call));
    dbus_message_set_destination(reply.get(), dbus_message_get_sender(call));
    dbus_connection_send(mConnection.get(), reply.get(), nullptr);
    if (mIsBroadcasting && mCurrentView != formerView) {
        dbus_connection_flush(mConnection.get());
        sendSwitch();
    }
}

DBusMessagePointer BenchmarkService::makeReply(DBusMessage* call)
{
    if (dbus_message_is_method_call(call, cPropertiesInterface, "Get")) {
        return makePropertyReply(call);
    }
    if (dbus_message_is_method_call(call, cPropertiesInterface, "Set")) {
        writeProperty(call);
        return DBusMessagePointer(dbus_message_new_method_return(call));
    }

    DBusMessagePointer reply(dbus_message_new_method_return(call));
    if (dbus_message_is_method_call(call, cNotificationsInterface, "Notify")) {
        const std::uint32_t id = 1;
        dbus_message_append_args(reply.get(), DBUS_TYPE_UINT32, &id, DBUS_TYPE_INVALID);
    } else if (dbus_message_is_method_call(call, cScreenShotInterface, "ScreenShot")) {
        const char* const path = "/screenshots/1.png";
        dbus_message_append_args(reply.get(), DBUS_TYPE_STRING, &path, DBUS_TYPE_INVALID);
    } else if (dbus_message_is_method_call(call, DBUS_INTERFACE_INTROSPECTABLE, "Introspect")) {
        const char* const description = mDescriptions.at(dbus_message_get_path(call)).c_str();
        dbus_message_append_args(reply.get(), DBUS_TYPE_STRING, &description, DBUS_TYPE_INVALID);
    } else if (!dbus_message_has_interface(call, cOverlayInterface)) {
        reply.reset(dbus_message_new_error(call, DBUS_ERROR_UNKNOWN_METHOD, "no such method"));
    }
    return reply;
}

DBusMessagePointer BenchmarkService::makePropertyReply(DBusMessage* call) const
{
    const char* interface = nullptr;
    const char* property = nullptr;
    LibDBusError error;
    dbus_message_get_args(call, error.get(), DBUS_TYPE_STRING, &interface, DBUS_TYPE_STRING, &property,
                          DBUS_TYPE_INVALID);
    error.check();

    if (property == std::string("views")) {
        return DBusMessagePointer(dbus_message_copy(mViews.get()));
    }
    DBusMessagePointer reply(dbus_message_new_method_return(call));
    DBusMessageIter iterator;
    dbus_message_iter_init_append(reply.get(), &iterator);
    appendProperty(iterator, property);
    return reply;
}

void BenchmarkService::writeProperty(DBusMessage* call)
{
    DBusMessageIter iterator;
    dbus_message_iter_init(call, &iterator);
    dbus_message_iter_next(&iterator);
    const char* property = nullptr;
    dbus_message_iter_get_basic(&iterator, &property);
    if (property == std::string("currentView")) {
        dbus_message_iter_next(&iterator);
        DBusMessageIter value;
        dbus_message_iter_recurse(&iterator, &value);
        const char* uuid = nullptr;
        dbus_message_iter_get_basic(&value, &uuid);
        mCurrentView = viewOf(uuid);
    }
}
