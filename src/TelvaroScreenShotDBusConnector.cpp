// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "TelvaroScreenShotDBusConnector.h"

#include "DBusConnectionParameter.h"
#include "TelvaroDBusDefinitions.h"

#include <QDBusReply>
#include <QDebug>
#include <QDir>

TelvaroScreenShotDBusConnector::TelvaroScreenShotDBusConnector(QObject* parent)
    : TelvaroDBusConnectorBase(DBusConnectionParameter::create(TelvaroDBusDefinitions::getServiceName(),
                                                               TelvaroDBusDefinitions::getScreenShotPath(),
                                                               TelvaroDBusDefinitions::getScreenShotInterface()),
                               parent)
{
}

std::optional<QString> TelvaroScreenShotDBusConnector::captureScreenShot(const QString& directory)
{
    if (!isInterfaceValid()) {
        return std::nullopt;
    }
    if (!QDir(directory).exists()) {
        // "does not exists" stays: applications may rely on the text of the log.
        qWarning() << "Unable to capture screenshot, store directory does not exists" << directory;
        return std::nullopt;
    }
    const QString& method = TelvaroDBusDefinitions::getScreenShotMethod();
    const QDBusReply<QString> reply = mInterface.call(QDBus::AutoDetect, method, directory);
    if (!reply.isValid()) {
        qWarning() << "Reply of " << method << "is invalid!" << reply.error().message();
        return std::nullopt;
    }
    return reply.value();
}
