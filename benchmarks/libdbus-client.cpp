// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ClientMain.h"
#include "LibDBus.h"
#include "PlainClient.h"
#include "ServiceNames.h"

#include <stdexcept>

using namespace ServiceNames;

namespace {

std::string readString(DBusMessageIter& iterator)
{
    const char* text = nullptr;
    dbus_message_iter_get_basic(&iterator, &text);
    dbus_message_iter_next(&iterator);
    return text;
}

std::uint32_t readNumber(DBusMessageIter& iterator)
{
    std::uint32_t number = 0;
    dbus_message_iter_get_basic(&iterator, &number);
    dbus_message_iter_next(&iterator);
    return number;
}

PlainAttribute readAttribute(DBusMessageIter& variant)
{
    DBusMessageIter value;
    dbus_message_iter_recurse(&variant, &value);
    switch (dbus_message_iter_get_arg_type(&value)) {
    case DBUS_TYPE_BOOLEAN:
        return readNumber(value) != 0;
    case DBUS_TYPE_UINT32:
        return readNumber(value);
    default:
        return readString(value);
    }
}

PlainView readView(DBusMessageIter& record)
{
    DBusMessageIter field;
    dbus_message_iter_recurse(&record, &field);
    PlainView view;
    view.uuid = readString(field);
    view.appId = readString(field);
    view.info1 = readString(field);
    view.info2 = readString(field);
    view.info3 = readString(field);
    view.info4 = readString(field);
    view.pid = readNumber(field);
    view.sortIndex = readNumber(field);

    DBusMessageIter entry;
    dbus_message_iter_recurse(&field, &entry);
    while (dbus_message_iter_get_arg_type(&entry) == DBUS_TYPE_DICT_ENTRY) {
        DBusMessageIter pair;
        dbus_message_iter_recurse(&entry, &pair);
        std::string key = readString(pair);
        view.attributes.emplace(std::move(key), readAttribute(pair));
        dbus_message_iter_next(&entry);
    }
    return view;
}

std::vector<PlainView> readViewsOf(DBusMessage* reply)
{
    DBusMessageIter iterator;
    dbus_message_iter_init(reply, &iterator);
    DBusMessageIter variant;
    dbus_message_iter_recurse(&iterator, &variant);
    DBusMessageIter record;
    dbus_message_iter_recurse(&variant, &record);
    std::vector<PlainView> views;
    while (dbus_message_iter_get_arg_type(&record) == DBUS_TYPE_STRUCT) {
        views.push_back(readView(record));
        dbus_message_iter_next(&record);
    }
    return views;
}

void appendVariant(DBusMessageIter& iterator, int type, const void* value)
{
    const char signature[] = {static_cast<char>(type), '\0'};
    DBusMessageIter variant;
    dbus_message_iter_open_container(&iterator, DBUS_TYPE_VARIANT, signature, &variant);
    dbus_message_iter_append_basic(&variant, type, value);
    dbus_message_iter_close_container(&iterator, &variant);
}

bool namesCurrentView(DBusMessage* notification)
{
    DBusMessageIter iterator;
    dbus_message_iter_init(notification, &iterator);
    dbus_message_iter_next(&iterator);
    DBusMessageIter entry;
    dbus_message_iter_recurse(&iterator, &entry);
    while (dbus_message_iter_get_arg_type(&entry) == DBUS_TYPE_DICT_ENTRY) {
        DBusMessageIter pair;
        dbus_message_iter_recurse(&entry, &pair);
        if (readString(pair) == "currentView") {
            return true;
        }
        dbus_message_iter_next(&entry);
    }
    return false;
}

/// An application on libdbus, the reference implementation, on which QtDBus stands too.
class LibDBusClient : public PlainClient
{
public:
    LibDBusClient()
        : mConnection(connectToBus())
    {
        const std::string rule = std::string("type='signal',sender='") + cService + "',path='" + cTaskSwitcherPath
            + "',interface='" + cPropertiesInterface + "',member='PropertiesChanged'";
        LibDBusError error;
        dbus_bus_add_match(mConnection.get(), rule.c_str(), error.get());
        error.check();
    }

    void fetchViews() override
    {
        mFetchedViews = get(cTaskSwitcherPath, cTaskSwitcherInterface, "views");
    }

protected:
    bool hasOwner() override
    {
        const DBusMessagePointer request(
            dbus_message_new_method_call(cBusDaemon, cBusDaemonPath, cBusDaemon, "NameHasOwner"));
        dbus_message_append_args(request.get(), DBUS_TYPE_STRING, &cService, DBUS_TYPE_INVALID);
        const DBusMessagePointer reply = call(request);
        LibDBusError error;
        dbus_bool_t hasOwner = FALSE;
        dbus_message_get_args(reply.get(), error.get(), DBUS_TYPE_BOOLEAN, &hasOwner, DBUS_TYPE_INVALID);
        error.check();
        return hasOwner != FALSE;
    }

    std::vector<PlainView> getViews() override
    {
        return readViewsOf(get(cTaskSwitcherPath, cTaskSwitcherInterface, "views").get());
    }

    std::string getText(const char* path, const char* interface, const char* property) override
    {
        const DBusMessagePointer reply = get(path, interface, property);
        DBusMessageIter iterator;
        dbus_message_iter_init(reply.get(), &iterator);
        DBusMessageIter value;
        dbus_message_iter_recurse(&iterator, &value);
        return readString(value);
    }

    void setText(const char* path, const char* interface, const char* property, const std::string& value) override
    {
        const char* const text = value.c_str();
        set(path, interface, property, DBUS_TYPE_STRING, &text);
    }

    void setBool(const char* path, const char* interface, const char* property, bool value) override
    {
        const dbus_bool_t boolean = value;
        set(path, interface, property, DBUS_TYPE_BOOLEAN, &boolean);
    }

    void callShow(const std::string& message) override
    {
        const DBusMessagePointer request = makeCall(cOverlayPath, cOverlayInterface, "Show");
        const char* const text = message.c_str();
        dbus_message_append_args(request.get(), DBUS_TYPE_STRING, &text, DBUS_TYPE_INVALID);
        call(request);
    }

    void callNotify(const std::string& icon, const std::string& summary, const std::string& body,
                    const std::vector<std::string>& actions) override
    {
        const DBusMessagePointer request = makeCall(cNotificationsPath, cNotificationsInterface, "Notify");
        const char* const application = "";
        const std::uint32_t replaces = 0;
        const char* const texts[] = {icon.c_str(), summary.c_str(), body.c_str()};
        dbus_message_append_args(request.get(), DBUS_TYPE_STRING, &application, DBUS_TYPE_UINT32, &replaces,
                                 DBUS_TYPE_STRING, &texts[0], DBUS_TYPE_STRING, &texts[1], DBUS_TYPE_STRING, &texts[2],
                                 DBUS_TYPE_INVALID);
        DBusMessageIter iterator;
        dbus_message_iter_init_append(request.get(), &iterator);
        DBusMessageIter array;
        dbus_message_iter_open_container(&iterator, DBUS_TYPE_ARRAY, "s", &array);
        for (const std::string& action : actions) {
            const char* const text = action.c_str();
            dbus_message_iter_append_basic(&array, DBUS_TYPE_STRING, &text);
        }
        dbus_message_iter_close_container(&iterator, &array);
        dbus_message_iter_open_container(&iterator, DBUS_TYPE_ARRAY, "{sv}", &array);
        DBusMessageIter entry;
        dbus_message_iter_open_container(&array, DBUS_TYPE_DICT_ENTRY, nullptr, &entry);
        const char* const key = "action-icons";
        dbus_message_iter_append_basic(&entry, DBUS_TYPE_STRING, &key);
        const dbus_bool_t value = TRUE;
        appendVariant(entry, DBUS_TYPE_BOOLEAN, &value);
        dbus_message_iter_close_container(&array, &entry);
        dbus_message_iter_close_container(&iterator, &array);
        const std::int32_t timeout = 0;
        dbus_message_iter_append_basic(&iterator, DBUS_TYPE_INT32, &timeout);
        call(request);
    }

    std::string callScreenShot(const std::string& directory) override
    {
        const DBusMessagePointer request = makeCall(cScreenShotPath, cScreenShotInterface, "ScreenShot");
        const char* const text = directory.c_str();
        dbus_message_append_args(request.get(), DBUS_TYPE_STRING, &text, DBUS_TYPE_INVALID);
        const DBusMessagePointer reply = call(request);
        DBusMessageIter iterator;
        dbus_message_iter_init(reply.get(), &iterator);
        return readString(iterator);
    }

    void awaitNotification() override
    {
        const DBusMessagePointer request = makeCall(cNotifyChangePath, cNotifyChangeInterface, cNotifyChangeMethod);
        dbus_message_set_no_reply(request.get(), TRUE);
        dbus_connection_send(mConnection.get(), request.get(), nullptr);
        while (dbus_connection_read_write(mConnection.get(), -1)) {
            while (const DBusMessagePointer message{dbus_connection_pop_message(mConnection.get())}) {
                if (dbus_message_is_signal(message.get(), cPropertiesInterface, "PropertiesChanged")
                    && namesCurrentView(message.get())) {
                    return;
                }
            }
        }
        throw std::runtime_error("the bus is gone");
    }

    std::vector<PlainView> decodeFetchedViews() override
    {
        return readViewsOf(mFetchedViews.get());
    }

private:
    static DBusMessagePointer makeCall(const char* path, const char* interface, const char* method)
    {
        return DBusMessagePointer(dbus_message_new_method_call(cService, path, interface, method));
    }

    DBusMessagePointer call(const DBusMessagePointer& request)
    {
        LibDBusError error;
        DBusMessagePointer reply(dbus_connection_send_with_reply_and_block(mConnection.get(), request.get(),
                                                                           DBUS_TIMEOUT_USE_DEFAULT, error.get()));
        error.check();
        return reply;
    }

    DBusMessagePointer get(const char* path, const char* interface, const char* property)
    {
        const DBusMessagePointer request = makeCall(path, cPropertiesInterface, "Get");
        dbus_message_append_args(request.get(), DBUS_TYPE_STRING, &interface, DBUS_TYPE_STRING, &property,
                                 DBUS_TYPE_INVALID);
        return call(request);
    }

    void set(const char* path, const char* interface, const char* property, int type, const void* value)
    {
        const DBusMessagePointer request = makeCall(path, cPropertiesInterface, "Set");
        dbus_message_append_args(request.get(), DBUS_TYPE_STRING, &interface, DBUS_TYPE_STRING, &property,
                                 DBUS_TYPE_INVALID);
        DBusMessageIter iterator;
        dbus_message_iter_init_append(request.get(), &iterator);
        appendVariant(iterator, type, value);
        call(request);
    }

    DBusConnectionPointer mConnection;
    DBusMessagePointer mFetchedViews;
};

} // namespace

int main()
{
    return runClient([] {
        return std::make_unique<LibDBusClient>();
    });
}
