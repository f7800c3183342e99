// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "VariantConversionTools.h"

#include <QMetaType>
#include <QString>
#include <QVariant>

namespace {

bool isInteger(int type)
{
    switch (type) {
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::UChar:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
        return true;
    default:
        return false;
    }
}

} // namespace

bool VariantConversionTools::toBool(const QVariant& value, bool& result)
{
    const int type = value.userType();
    if (type == QMetaType::Bool) {
        result = value.toBool();
        return true;
    }
    if (isInteger(type)) {
        result = value.toULongLong() != 0;
        return true;
    }
    if (type == QMetaType::QString) {
        const QString word = value.toString();
        const bool isTrue = word == QLatin1String("true") || word == QLatin1String("1");
        if (isTrue || word == QLatin1String("false") || word == QLatin1String("0")) {
            result = isTrue;
            return true;
        }
    }
    return false;
}

bool VariantConversionTools::toInt(const QVariant& value, int& result)
{
    QString digits;
    if (!isInteger(value.userType()) || !toString(value, digits)) {
        return false;
    }
    // QVariant's own conversion cuts off what an int cannot hold.
    bool fits = false;
    const int number = digits.toInt(&fits);
    if (fits) {
        result = number;
    }
    return fits;
}

bool VariantConversionTools::toString(const QVariant& value, QString& result)
{
    switch (const int type = value.userType()) {
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::UChar:
        // QVariant would convert the byte to a character.
        result = QString::number(value.toInt());
        return true;
    case QMetaType::QString:
    case QMetaType::Bool:
    case QMetaType::Float:
    case QMetaType::Double:
        result = value.toString();
        return true;
    default:
        if (isInteger(type)) {
            result = value.toString();
            return true;
        }
        return false;
    }
}
