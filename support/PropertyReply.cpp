// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "PropertyReply.h"

#include <QDBusMessage>
#include <QDBusVariant>
#include <QList>
#include <QMetaType>

std::optional<QVariant> PropertyReply::getValue(const QDBusMessage& reply)
{
    if (reply.type() != QDBusMessage::ReplyMessage) {
        return std::nullopt;
    }
    const QList<QVariant> arguments = reply.arguments();
    if (arguments.isEmpty() || arguments.first().userType() != qMetaTypeId<QDBusVariant>()) {
        return std::nullopt;
    }
    return arguments.first().value<QDBusVariant>().variant();
}
