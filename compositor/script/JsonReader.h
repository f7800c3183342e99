// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "Result.h"

#include <QJsonValue>
#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <QVector>

#include <cmath>
#include <limits>

/// Reads one value of a JSON file. A value that is not what is asked for is rejected: all functions throw an Error
/// then, which says where the value stands and what is expected there.
class JsonReader
{
public:
    /// Reads a whole file.
    explicit JsonReader(const QByteArray& content);
    /// `place` is where the value stands, in words.
    JsonReader(const QString& place, const QJsonValue& value);

    [[noreturn]] void reject(const QString& reason) const;

    /// Returns a string that is not empty.
    QString readText() const;
    bool readBool() const;
    /// `Number` is an integer type.
    template <typename Number>
    Number readNumber(Number smallest, Number largest = std::numeric_limits<Number>::max()) const;
    /// Returns a number with decimals from -1000000 to 1000000.
    double readDecimal() const;
    /// The value is in seconds, at most `mostSeconds`.
    int readMilliseconds(int mostSeconds = cMostSeconds) const;
    /// Returns the index of the text in `words`.
    int readWord(const QStringList& words) const;
    /// Returns the elements of a list; `description` is what a list is asked for.
    QVector<JsonReader> readList(const QString& description) const;
    QStringList readTexts() const;
    /// Returns the members of an object of strings, numbers and booleans.
    QVariantMap readScalars() const;
    /// Returns a value of a type that has a D-Bus signature, given by its QMetaType.
    QVariant readValue(int type) const;

    const QJsonValue& value() const
    {
        return mValue;
    }
    /// Returns a reader for a part of this value.
    JsonReader part(const QString& place, const QJsonValue& value) const;

    /// Returns the text in quotation marks.
    static QString quoted(const QString& text);
    static QString quotedList(const QStringList& texts, const QString& separator = QStringLiteral(", "));

private:
    static constexpr int cMostSeconds = 1000000;

    QVariant readScalar() const;

    QString mPlace;
    QJsonValue mValue;
};

template <typename Number> Number JsonReader::readNumber(Number smallest, Number largest) const
{
    const double number = mValue.toDouble();
    if (!mValue.isDouble() || number < smallest || number > largest || std::floor(number) < number) {
        reject(QStringLiteral("a whole number from %1 to %2 is expected").arg(smallest).arg(largest));
    }
    return static_cast<Number>(number);
}
