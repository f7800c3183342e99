// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Json.h"

#include "Console.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusSignature>
#include <QDBusVariant>
#include <QJsonArray>
#include <QJsonDocument>
#include <QMetaType>
#include <QVariant>

namespace {

QJsonValue argumentToJson(const QDBusArgument& argument)
{
    switch (argument.currentType()) {
    case QDBusArgument::ArrayType: {
        QJsonArray array;
        argument.beginArray();
        while (!argument.atEnd()) {
            array.append(argumentToJson(argument));
        }
        argument.endArray();
        return array;
    }
    case QDBusArgument::StructureType: {
        QJsonArray array;
        argument.beginStructure();
        while (!argument.atEnd()) {
            array.append(argumentToJson(argument));
        }
        argument.endStructure();
        return array;
    }
    case QDBusArgument::MapType: {
        QJsonObject object;
        argument.beginMap();
        while (!argument.atEnd()) {
            argument.beginMapEntry();
            const QString key = argument.asVariant().toString();
            object.insert(key, argumentToJson(argument));
            argument.endMapEntry();
        }
        argument.endMap();
        return object;
    }
    default:
        return toJson(argument.asVariant());
    }
}

} // namespace

QJsonValue toJson(const QVariant& value)
{
    const int type = value.userType();
    if (type == qMetaTypeId<QDBusArgument>()) {
        return argumentToJson(value.value<QDBusArgument>());
    }
    if (type == qMetaTypeId<QDBusVariant>()) {
        return toJson(value.value<QDBusVariant>().variant());
    }
    if (type == qMetaTypeId<QDBusObjectPath>()) {
        return value.value<QDBusObjectPath>().path();
    }
    if (type == qMetaTypeId<QDBusSignature>()) {
        return value.value<QDBusSignature>().signature();
    }
    if (type == QMetaType::QByteArray) {
        QJsonArray bytes;
        const QByteArray array = value.toByteArray();
        for (const char byte : array) {
            bytes.append(static_cast<unsigned char>(byte));
        }
        return bytes;
    }
    if (type == QMetaType::UChar) {
        return value.toInt();
    }
    return QJsonValue::fromVariant(value);
}

QJsonObject toJson(const TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry& view)
{
    QJsonObject attributes;
    for (auto attribute = view.attributes.cbegin(); attribute != view.attributes.cend(); ++attribute) {
        attributes.insert(attribute.key(), toJson(attribute.value()));
    }
    return {
        {QStringLiteral("uuid"), view.uuid},
        {QStringLiteral("appId"), view.appId},
        {QStringLiteral("info1"), view.info1},
        {QStringLiteral("info2"), view.info2},
        {QStringLiteral("info3"), view.info3},
        {QStringLiteral("info4"), view.info4},
        {QStringLiteral("pid"), static_cast<qint64>(view.pid)},
        {QStringLiteral("sortIndex"), static_cast<qint64>(view.sortIndex)},
        {QStringLiteral("attributes"), attributes},
    };
}

void printJson(const QJsonObject& object)
{
    printText(QString::fromUtf8(QJsonDocument(object).toJson()));
}

void printJson(const QJsonArray& array)
{
    printText(QString::fromUtf8(QJsonDocument(array).toJson()));
}
