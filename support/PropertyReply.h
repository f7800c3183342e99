// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QVariant>

#include <optional>

class QDBusMessage;

/// Reply to a Get of "org.freedesktop.DBus.Properties".
class PropertyReply
{
public:
    /// Returns the property's value, taken out of the D-Bus variant. Returns an empty optional for an error reply and
    /// for a reply whose first argument is missing or not a variant. Accepts and rejects the same replies as
    /// QDBusReply<QDBusVariant>, without its copies.
    static std::optional<QVariant> getValue(const QDBusMessage& reply);
};
