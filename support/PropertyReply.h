// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QVariant>

#include <optional>

class QDBusMessage;

/// The answer to a Get of "org.freedesktop.DBus.Properties".
class PropertyReply
{
public:
    /// The property's value, without the D-Bus variant around it; or nothing, for an error and for an answer whose
    /// first argument is not there or is not a variant. As a QDBusReply<QDBusVariant> has it, without its copies.
    static std::optional<QVariant> getValue(const QDBusMessage& reply);
};
