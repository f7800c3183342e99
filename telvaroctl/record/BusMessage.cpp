// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "BusMessage.h"

#include <QVariantMap>

#include <dbus/dbus.h>

namespace {

template <typename Value, typename Result = Value> QVariant readBasic(DBusMessageIter& iterator)
{
    Value value{};
    dbus_message_iter_get_basic(&iterator, &value);
    return QVariant::fromValue(static_cast<Result>(value));
}

QString readText(DBusMessageIter& iterator)
{
    const char* text = nullptr;
    dbus_message_iter_get_basic(&iterator, &text);
    return QString::fromUtf8(text);
}

QVariant readValue(DBusMessageIter& iterator);

QVariantList readList(DBusMessageIter& iterator)
{
    QVariantList list;
    while (dbus_message_iter_get_arg_type(&iterator) != DBUS_TYPE_INVALID) {
        list.append(readValue(iterator));
        dbus_message_iter_next(&iterator);
    }
    return list;
}

QVariantMap readMap(DBusMessageIter& iterator)
{
    QVariantMap map;
    while (dbus_message_iter_get_arg_type(&iterator) != DBUS_TYPE_INVALID) {
        DBusMessageIter entry;
        dbus_message_iter_recurse(&iterator, &entry);
        const QVariantList keyAndValue = readList(entry);
        map.insert(keyAndValue.at(0).toString(), keyAndValue.at(1));
        dbus_message_iter_next(&iterator);
    }
    return map;
}

QVariant readValue(DBusMessageIter& iterator)
{
    DBusMessageIter content;
    switch (dbus_message_iter_get_arg_type(&iterator)) {
    case DBUS_TYPE_STRING:
    case DBUS_TYPE_OBJECT_PATH:
    case DBUS_TYPE_SIGNATURE:
        return readText(iterator);
    case DBUS_TYPE_BOOLEAN:
        return readBasic<dbus_bool_t, bool>(iterator);
    case DBUS_TYPE_BYTE:
        return readBasic<unsigned char, int>(iterator);
    case DBUS_TYPE_INT16:
        return readBasic<dbus_int16_t, int>(iterator);
    case DBUS_TYPE_UINT16:
        return readBasic<dbus_uint16_t, int>(iterator);
    case DBUS_TYPE_INT32:
        return readBasic<dbus_int32_t>(iterator);
    case DBUS_TYPE_UINT32:
        return readBasic<dbus_uint32_t>(iterator);
    case DBUS_TYPE_INT64:
        return readBasic<dbus_int64_t, qlonglong>(iterator);
    case DBUS_TYPE_UINT64:
        return readBasic<dbus_uint64_t, qulonglong>(iterator);
    case DBUS_TYPE_DOUBLE:
        return readBasic<double>(iterator);
    case DBUS_TYPE_VARIANT:
        dbus_message_iter_recurse(&iterator, &content);
        return readValue(content);
    case DBUS_TYPE_STRUCT:
        dbus_message_iter_recurse(&iterator, &content);
        return readList(content);
    case DBUS_TYPE_ARRAY:
        dbus_message_iter_recurse(&iterator, &content);
        return dbus_message_iter_get_element_type(&iterator) == DBUS_TYPE_DICT_ENTRY ? QVariant(readMap(content))
                                                                                     : QVariant(readList(content));
    default:
        return {};
    }
}

} // namespace

BusMessage::BusMessage(DBusMessage* message)
    : mMessage(message)
{
}

BusMessage::Type BusMessage::type() const
{
    switch (dbus_message_get_type(mMessage)) {
    case DBUS_MESSAGE_TYPE_METHOD_CALL:
        return Type::Call;
    case DBUS_MESSAGE_TYPE_METHOD_RETURN:
        return Type::Reply;
    case DBUS_MESSAGE_TYPE_ERROR:
        return Type::Error;
    default:
        return Type::Signal;
    }
}

bool BusMessage::isReplyExpected() const
{
    return dbus_message_get_no_reply(mMessage) == 0;
}

quint32 BusMessage::serial() const
{
    return dbus_message_get_serial(mMessage);
}

quint32 BusMessage::replySerial() const
{
    return dbus_message_get_reply_serial(mMessage);
}

QString BusMessage::sender() const
{
    return QString::fromUtf8(dbus_message_get_sender(mMessage));
}

QString BusMessage::destination() const
{
    return QString::fromUtf8(dbus_message_get_destination(mMessage));
}

QString BusMessage::path() const
{
    return QString::fromUtf8(dbus_message_get_path(mMessage));
}

QString BusMessage::interface() const
{
    return QString::fromUtf8(dbus_message_get_interface(mMessage));
}

QString BusMessage::member() const
{
    return QString::fromUtf8(dbus_message_get_member(mMessage));
}

QString BusMessage::errorName() const
{
    return QString::fromUtf8(dbus_message_get_error_name(mMessage));
}

QString BusMessage::signature() const
{
    return QString::fromUtf8(dbus_message_get_signature(mMessage));
}

QVariantList BusMessage::arguments() const
{
    DBusMessageIter iterator;
    return dbus_message_iter_init(mMessage, &iterator) == 0 ? QVariantList() : readList(iterator);
}
