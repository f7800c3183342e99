// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "TelvaroNotificationDBusConnector.h"

#include "DBusConnectionParameter.h"
#include "TelvaroDBusDefinitions.h"

#include <QDBusMessage>
#include <QString>
#include <QVariant>

TelvaroNotificationDBusConnector::TelvaroNotificationDBusConnector(QObject* parent)
    : TelvaroDBusConnectorBase(DBusConnectionParameter::create(TelvaroDBusDefinitions::getServiceName(),
                                                               TelvaroDBusDefinitions::getNotificationsPath(),
                                                               TelvaroDBusDefinitions::getNotificationsInterface()),
                               parent)
{
    mHints.insert(QStringLiteral("action-icons"), true);
}

void TelvaroNotificationDBusConnector::notify(const QString& appIcon, const QString& summary, const QString& body,
                                              const QStringList& actions)
{
    if (!isInterfaceValid()) {
        return;
    }
    const QLatin1String applicationName("");
    const uint replacesId = 0;
    const int expireTimeout = 0;
    mInterface.call(QDBus::AutoDetect, TelvaroDBusDefinitions::getNotificationsMethodNotify(), applicationName,
                    replacesId, appIcon, summary, body, actions, mHints, expireTimeout);
}
