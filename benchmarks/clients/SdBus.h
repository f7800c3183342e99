// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <systemd/sd-bus.h>

#include <cstring>
#include <memory>
#include <stdexcept>
#include <utility>

/// Owning pointers to sd-bus's objects.
struct SdBusUnref
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
using SdBusPointer = std::unique_ptr<sd_bus, SdBusUnref>;
using SdBusMessagePointer = std::unique_ptr<sd_bus_message, SdBusUnref>;
using SdBusSlotPointer = std::unique_ptr<sd_bus_slot, SdBusUnref>;

/// Returns the result, throws a negative one.
inline int check(int result)
{
    if (result < 0) {
        throw std::runtime_error(std::strerror(-result));
    }
    return result;
}

inline SdBusPointer openBus()
{
    sd_bus* bus = nullptr;
    check(sd_bus_open_user(&bus));
    return SdBusPointer(bus);
}

inline SdBusSlotPointer followProperties(sd_bus* bus, const char* service, const char* path,
                                         sd_bus_message_handler_t handler, void* object)
{
    sd_bus_slot* slot = nullptr;
    check(sd_bus_match_signal(bus, &slot, service, path, "org.freedesktop.DBus.Properties", "PropertiesChanged",
                              handler, object));
    return SdBusSlotPointer(slot);
}

template <typename... Arguments>
SdBusMessagePointer callMethod(sd_bus* bus, const char* service, const char* path, const char* interface,
                               const char* method, const char* types, Arguments... arguments)
{
    sd_bus_message* reply = nullptr;
    check(sd_bus_call_method(bus, service, path, interface, method, nullptr, &reply, types, arguments...));
    return SdBusMessagePointer(reply);
}

inline bool hasOwner(sd_bus* bus, const char* service)
{
    const SdBusMessagePointer reply = callMethod(bus, "org.freedesktop.DBus", "/org/freedesktop/DBus",
                                                 "org.freedesktop.DBus", "NameHasOwner", "s", service);
    int hasOwner = 0;
    check(sd_bus_message_read(reply.get(), "b", &hasOwner));
    return hasOwner != 0;
}

inline const char* readText(sd_bus_message* message)
{
    const char* text = nullptr;
    check(sd_bus_message_read_basic(message, 's', &text));
    return text;
}

template <typename Attribute, typename ToText>
void readAttribute(sd_bus_message* message, Attribute& attribute, ToText toText)
{
    const char* contents = nullptr;
    check(sd_bus_message_peek_type(message, nullptr, &contents));
    check(sd_bus_message_enter_container(message, 'v', contents));
    if (*contents == 's') {
        attribute = toText(readText(message));
    } else {
        int value = 0;
        check(sd_bus_message_read_basic(message, *contents, &value));
        if (*contents == 'b') {
            attribute = value != 0;
        } else {
            attribute = value;
        }
    }
    check(sd_bus_message_exit_container(message));
}

/// Reads the list of views out of a variant; `toText` converts its UTF-8.
template <typename View, typename Views, typename ToText> Views readViews(sd_bus_message* message, ToText toText)
{
    Views views;
    check(sd_bus_message_enter_container(message, 'v', "a(ssssssuua{sv})"));
    check(sd_bus_message_enter_container(message, 'a', "(ssssssuua{sv})"));
    while (check(sd_bus_message_enter_container(message, 'r', "ssssssuua{sv}")) > 0) {
        View view;
        for (auto* const field : {&view.uuid, &view.appId, &view.info1, &view.info2, &view.info3, &view.info4}) {
            *field = toText(readText(message));
        }
        check(sd_bus_message_read(message, "uu", &view.pid, &view.sortIndex));
        check(sd_bus_message_enter_container(message, 'a', "{sv}"));
        while (check(sd_bus_message_enter_container(message, 'e', "sv")) > 0) {
            readAttribute(message, view.attributes[toText(readText(message))], toText);
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
