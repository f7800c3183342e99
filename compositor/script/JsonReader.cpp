// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "script/JsonReader.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMetaType>

JsonReader::JsonReader(const QByteArray& content)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(content, &error);
    if (document.isNull()) {
        mPlace = QStringLiteral("line %1").arg(content.left(error.offset).count('\n') + 1);
        reject(QStringLiteral("not JSON: %1").arg(error.errorString()));
    }
    mValue = document.isArray() ? QJsonValue(document.array()) : QJsonValue(document.object());
}

JsonReader::JsonReader(const QString& place, const QJsonValue& value)
    : mPlace(place)
    , mValue(value)
{
}

void JsonReader::reject(const QString& reason) const
{
    throw Error{mPlace.isEmpty() ? reason : QStringLiteral("%1: %2").arg(mPlace, reason)};
}

QString JsonReader::readText() const
{
    if (!mValue.isString() || mValue.toString().isEmpty()) {
        reject(QStringLiteral("a text is expected that is not empty"));
    }
    return mValue.toString();
}

bool JsonReader::readBool() const
{
    if (!mValue.isBool()) {
        reject(QStringLiteral("true or false is expected"));
    }
    return mValue.toBool();
}

double JsonReader::readDecimal() const
{
    constexpr int cLargest = 1000000;
    const double number = mValue.toDouble();
    if (!mValue.isDouble() || std::abs(number) > cLargest) {
        reject(QStringLiteral("a number from -%1 to %1 is expected").arg(cLargest));
    }
    return number;
}

int JsonReader::readMilliseconds(int mostSeconds) const
{
    const double seconds = mValue.toDouble();
    if (!mValue.isDouble() || seconds < 0 || seconds > mostSeconds) {
        reject(QStringLiteral("a number of seconds from 0 to %1 is expected").arg(mostSeconds));
    }
    return static_cast<int>(std::lround(seconds * 1000));
}

int JsonReader::readWord(const QStringList& words) const
{
    const int index = mValue.isString() ? words.indexOf(mValue.toString()) : -1;
    if (index < 0) {
        reject(QStringLiteral("%1 is expected").arg(quotedList(words, QStringLiteral(" or "))));
    }
    return index;
}

QVector<JsonReader> JsonReader::readList(const QString& description) const
{
    if (!mValue.isArray()) {
        reject(QStringLiteral("%1 is expected").arg(description));
    }
    QVector<JsonReader> elements;
    const QJsonArray array = mValue.toArray();
    for (const QJsonValue& element : array) {
        elements.append({mPlace, element});
    }
    return elements;
}

QStringList JsonReader::readTexts() const
{
    QStringList texts;
    const QString description = QStringLiteral("a list of texts");
    const QVector<JsonReader> elements = readList(description);
    for (const JsonReader& element : elements) {
        if (!element.mValue.isString()) {
            reject(QStringLiteral("%1 is expected").arg(description));
        }
        texts.append(element.mValue.toString());
    }
    return texts;
}

QVariant JsonReader::readScalar() const
{
    if (mValue.isDouble()) {
        const int number = mValue.toInt(std::numeric_limits<int>::min());
        return number == std::numeric_limits<int>::min() ? QVariant(mValue.toDouble()) : QVariant(number);
    }
    if (!mValue.isString() && !mValue.isBool()) {
        reject(QStringLiteral("a text, a number, true or false is expected"));
    }
    return mValue.toVariant();
}

QVariantMap JsonReader::readScalars() const
{
    if (!mValue.isObject()) {
        reject(QStringLiteral("an object is expected"));
    }
    QVariantMap values;
    const QJsonObject object = mValue.toObject();
    for (auto member = object.begin(); member != object.end(); ++member) {
        values.insert(member.key(), part(quoted(member.key()), member.value()).readScalar());
    }
    return values;
}

QVariant JsonReader::readValue(int type) const
{
    switch (type) {
    case QMetaType::Bool:
        return readBool();
    case QMetaType::Int:
        return readNumber<int>(std::numeric_limits<int>::min());
    case QMetaType::UInt:
        return readNumber<uint>(0);
    case QMetaType::QStringList:
        return readTexts();
    case QMetaType::QVariantMap:
        return readScalars();
    default:
        if (!mValue.isString()) {
            reject(QStringLiteral("a text is expected"));
        }
        return mValue.toString();
    }
}

JsonReader JsonReader::part(const QString& place, const QJsonValue& value) const
{
    return {QStringLiteral("%1, %2").arg(mPlace, place), value};
}

QString JsonReader::quoted(const QString& text)
{
    return QLatin1Char('"') + text + QLatin1Char('"');
}

QString JsonReader::quotedList(const QStringList& texts, const QString& separator)
{
    QStringList result;
    for (const QString& text : texts) {
        result.append(quoted(text));
    }
    return result.join(separator);
}
