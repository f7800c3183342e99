// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Json.h"

#include "Console.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QMetaType>
#include <QVariant>

// QJsonValue::fromVariant() makes a string of bytes, and null of one.
QJsonValue toJson(const QVariant& value)
{
    switch (static_cast<QMetaType::Type>(value.userType())) {
    case QMetaType::QVariantList: {
        QJsonArray array;
        const QVariantList list = value.toList();
        for (const QVariant& element : list) {
            array.append(toJson(element));
        }
        return array;
    }
    case QMetaType::QVariantMap:
        return toJson(value.toMap());
    case QMetaType::QByteArray: {
        QJsonArray bytes;
        const QByteArray array = value.toByteArray();
        for (const char byte : array) {
            bytes.append(static_cast<unsigned char>(byte));
        }
        return bytes;
    }
    case QMetaType::UChar:
        return value.toInt();
    default:
        return QJsonValue::fromVariant(value);
    }
}

QJsonObject toJson(const QVariantMap& map)
{
    QJsonObject object;
    for (auto member = map.cbegin(); member != map.cend(); ++member) {
        object.insert(member.key(), toJson(member.value()));
    }
    return object;
}

void printJson(const QJsonObject& object)
{
    printText(QString::fromUtf8(QJsonDocument(object).toJson()));
}

void printJson(const QJsonArray& array)
{
    printText(QString::fromUtf8(QJsonDocument(array).toJson()));
}
