// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ErrorValue.h"

#include <QDBusError>

QVariantMap toErrorValue(const QDBusError& error)
{
    return {{QStringLiteral("name"), error.name()}, {QStringLiteral("message"), error.message()}};
}
