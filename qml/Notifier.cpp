// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Notifier.h"

#include "ErrorValue.h"

#include <TelvaroRequests.h>

#include <QDBusPendingCallWatcher>

Notifier::Notifier(QObject* parent)
    : TelvaroLiveObject(parent)
{
}

bool Notifier::isAvailable() const
{
    return getStatus() == Ready;
}

void Notifier::send()
{
    auto* const watcher = new QDBusPendingCallWatcher(TelvaroRequests::notify(mIcon, mSummary, mBody, mActions), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        const QDBusPendingReply<uint> reply = *watcher;
        if (reply.isError()) {
            Q_EMIT requestFailed(toErrorValue(reply.error()));
        } else {
            Q_EMIT sent(reply.value());
        }
    });
}
