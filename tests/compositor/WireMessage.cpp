// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "WireMessage.h"

namespace {

void append(QByteArray* bytes, quint32 value)
{
    bytes->append(reinterpret_cast<const char*>(&value), sizeof(value));
}

} // namespace

WireMessage::WireMessage(quint32 object, quint16 opcode)
    : mObject(object)
    , mOpcode(opcode)
{
}

WireMessage& WireMessage::number(quint32 value)
{
    append(&mArguments, value);
    return *this;
}

WireMessage& WireMessage::text(const QByteArray& value)
{
    append(&mArguments, static_cast<quint32>(value.size() + 1));
    mArguments.append(value.constData(), value.size() + 1);
    while (mArguments.size() % 4 != 0) {
        mArguments.append('\0');
    }
    return *this;
}

WireMessage& WireMessage::descriptor(int value)
{
    mDescriptors.append(value);
    return *this;
}

QByteArray WireMessage::bytes() const
{
    constexpr quint32 headerSize = 8;
    QByteArray bytes;
    append(&bytes, mObject);
    append(&bytes, (headerSize + static_cast<quint32>(mArguments.size())) << 16 | mOpcode);
    return bytes + mArguments;
}
