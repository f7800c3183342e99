// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ScreenShot.h"

#include "ErrorValue.h"

#include <TelvaroRequests.h>

#include <QDBusPendingCallWatcher>
#include <QUrl>

ScreenShot::ScreenShot(QObject* parent)
    : TelvaroLiveObject(parent)
{
}

bool ScreenShot::isAvailable() const
{
    return getStatus() == Ready;
}

void ScreenShot::capture(const QString& directory)
{
    const QUrl url(directory);
    auto* const watcher = new QDBusPendingCallWatcher(
        TelvaroRequests::captureScreenShot(url.isLocalFile() ? url.toLocalFile() : directory), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, directory] {
        watcher->deleteLater();
        const QDBusPendingReply<QString> reply = *watcher;
        if (reply.isError()) {
            Q_EMIT requestFailed(toErrorValue(reply.error()), directory);
        } else {
            Q_EMIT captured(reply.value());
        }
    });
}
