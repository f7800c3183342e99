// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "state/Notification.h"

#include <algorithm>

QString Notification::defaultActionKey()
{
    return QStringLiteral("default");
}

bool Notification::hasDefaultAction() const
{
    return std::any_of(actions.cbegin(), actions.cend(), [](const Action& action) {
        return action.key == defaultActionKey();
    });
}
