// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "VariantConversionTools.h"

#include <QByteArray>
#include <QDataStream>
#include <QMetaType>
#include <QString>
#include <QVariant>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

// Qt allocates lists of any claimed length, which is out of scope here, so lists stay empty.
bool isPlain(int type)
{
    return (type >= QMetaType::Bool && type <= QMetaType::QChar) || type == QMetaType::QString
        || type == QMetaType::QByteArray || (type >= QMetaType::Long && type <= QMetaType::Float)
        || type == QMetaType::SChar;
}

} // namespace

// A value of any basic type: the first byte is the type, the others are the value as Qt stores it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0) {
        return 0;
    }
    const int type = data[0] % (QMetaType::LastCoreType + 1);
    const QByteArray stored(reinterpret_cast<const char*>(data) + 1, static_cast<int>(size) - 1);
    QVariant value;
    if (type != QMetaType::UnknownType && type != QMetaType::Void && QMetaType::isRegistered(type)) {
        value = QVariant(type, nullptr);
        QDataStream stream(stored);
        if (isPlain(type) && !QMetaType::load(stream, type, value.data())) {
            value = QVariant();
        }
    }

    bool flag = true;
    const bool isBool = VariantConversionTools::toBool(value, flag);
    if (!isBool && !flag) {
        std::abort();
    }
    const QString untouched = QStringLiteral("untouched");
    QString text = untouched;
    const bool isText = VariantConversionTools::toString(value, text);
    if (!isText && text != untouched) {
        std::abort();
    }
    // An invalid value converts to neither, a bool or an integer to both, and a text stays unchanged.
    if (!value.isValid() && (isBool || isText)) {
        std::abort();
    }
    if (type == QMetaType::Bool && value.isValid() && (!isBool || !isText || flag != value.toBool())) {
        std::abort();
    }
    if (type == QMetaType::QString && value.isValid() && (!isText || text != value.toString())) {
        std::abort();
    }
    return 0;
}
