// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Notifier.h"

Notifier::Notifier(QObject* parent)
    : ServiceObject(parent)
{
}

void Notifier::send()
{
    mConnector.notify(mIcon, mSummary, mBody, mActions);
}
