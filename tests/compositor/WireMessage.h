// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QByteArray>
#include <QVector>

/// A Wayland request in wire format, valid or not.
class WireMessage
{
public:
    WireMessage(quint32 object, quint16 opcode);

    WireMessage& number(quint32 value);
    WireMessage& number(qint32 value)
    {
        return number(static_cast<quint32>(value));
    }
    WireMessage& text(const QByteArray& value);
    /// Sent as ancillary data; owned by the caller.
    WireMessage& descriptor(int value);

    QByteArray bytes() const;
    QVector<int> descriptors() const
    {
        return mDescriptors;
    }

private:
    quint32 mObject;
    quint16 mOpcode;
    QByteArray mArguments;
    QVector<int> mDescriptors;
};
