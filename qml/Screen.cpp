// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Screen.h"

#include "ErrorValue.h"

Screen::Screen(QObject* parent)
    : TelvaroScreen(parent)
{
    connect(this, &TelvaroLiveObject::requestFailed, this, [this](const QDBusError& error) {
        Q_EMIT requestFailed(toErrorValue(error));
    });
}

bool Screen::isAvailable() const
{
    return getStatus() == Ready;
}
