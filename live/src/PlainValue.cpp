// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "PlainValue.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusSignature>
#include <QDBusUnixFileDescriptor>
#include <QDBusVariant>
#include <QVariant>
#include <QVariantList>
#include <QVariantMap>

namespace {

QVariant argumentToPlainValue(const QDBusArgument& argument)
{
    switch (argument.currentType()) {
    case QDBusArgument::ArrayType: {
        QVariantList list;
        argument.beginArray();
        while (!argument.atEnd()) {
            list.append(argumentToPlainValue(argument));
        }
        argument.endArray();
        return list;
    }
    case QDBusArgument::StructureType: {
        QVariantList members;
        argument.beginStructure();
        while (!argument.atEnd()) {
            members.append(argumentToPlainValue(argument));
        }
        argument.endStructure();
        return members;
    }
    case QDBusArgument::MapType: {
        QVariantMap map;
        argument.beginMap();
        while (!argument.atEnd()) {
            argument.beginMapEntry();
            const QString key = toPlainValue(argument.asVariant()).toString();
            map.insert(key, argumentToPlainValue(argument));
            argument.endMapEntry();
        }
        argument.endMap();
        return map;
    }
    default:
        return toPlainValue(argument.asVariant());
    }
}

} // namespace

QVariant toPlainValue(const QVariant& value)
{
    const int type = value.userType();
    if (type == qMetaTypeId<QDBusArgument>()) {
        return argumentToPlainValue(value.value<QDBusArgument>());
    }
    if (type == qMetaTypeId<QDBusVariant>()) {
        return toPlainValue(value.value<QDBusVariant>().variant());
    }
    if (type == qMetaTypeId<QDBusObjectPath>()) {
        return value.value<QDBusObjectPath>().path();
    }
    if (type == qMetaTypeId<QDBusSignature>()) {
        return value.value<QDBusSignature>().signature();
    }
    if (type == qMetaTypeId<QDBusUnixFileDescriptor>()) {
        return {};
    }
    return value;
}
