// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "TelvaroRequests.h"

#include "ServiceCall.h"

#include <TelvaroDBusDefinitions.h>

#include <QDir>
#include <QVariant>

QDBusPendingReply<> TelvaroRequests::showGlobalOverlay(const QString& displayMessage)
{
    return ServiceCall::request(TelvaroDBusDefinitions::getGlobalOverlayPath(),
                                TelvaroDBusDefinitions::getGlobalOverlayInterface(),
                                TelvaroDBusDefinitions::getGlobalOverlayMethodShow(), {displayMessage});
}

QDBusPendingReply<> TelvaroRequests::hideGlobalOverlay()
{
    return ServiceCall::request(TelvaroDBusDefinitions::getGlobalOverlayPath(),
                                TelvaroDBusDefinitions::getGlobalOverlayInterface(),
                                TelvaroDBusDefinitions::getGlobalOverlayMethodHide(), {});
}

QDBusPendingReply<uint> TelvaroRequests::notify(const QString& appIcon, const QString& summary, const QString& body,
                                                const QStringList& actions, uint32_t replacesId, int expireTimeout,
                                                const QVariantMap& hints)
{
    const QString applicationName;
    return ServiceCall::request(TelvaroDBusDefinitions::getNotificationsPath(),
                                TelvaroDBusDefinitions::getNotificationsInterface(),
                                TelvaroDBusDefinitions::getNotificationsMethodNotify(),
                                {applicationName, replacesId, appIcon, summary, body, actions, hints, expireTimeout});
}

QVariantMap TelvaroRequests::getDefaultNotificationHints()
{
    return {{QStringLiteral("action-icons"), true}};
}

QDBusPendingReply<QString> TelvaroRequests::captureScreenShot(const QString& directory, int timeout)
{
    if (!QDir(directory).exists()) {
        return ServiceCall::refuse(QDBusError::InvalidArgs,
                                   QStringLiteral("The directory \"%1\" does not exist").arg(directory));
    }
    return ServiceCall::request(TelvaroDBusDefinitions::getScreenShotPath(),
                                TelvaroDBusDefinitions::getScreenShotInterface(),
                                TelvaroDBusDefinitions::getScreenShotMethod(), {directory}, timeout);
}
