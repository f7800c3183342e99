// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "TelvaroGlobalOverlayDBusConnector.h"

#include "DBusConnectionParameter.h"
#include "TelvaroDBusDefinitions.h"

#include <QDBusMessage>
#include <QString>
#include <QVariant>

TelvaroGlobalOverlayDBusConnector::TelvaroGlobalOverlayDBusConnector(QObject* parent)
    : TelvaroDBusConnectorBase(DBusConnectionParameter::create(TelvaroDBusDefinitions::getServiceName(),
                                                               TelvaroDBusDefinitions::getGlobalOverlayPath(),
                                                               TelvaroDBusDefinitions::getGlobalOverlayInterface()),
                               parent)
{
}

TelvaroGlobalOverlayDBusConnector::~TelvaroGlobalOverlayDBusConnector() = default;

void TelvaroGlobalOverlayDBusConnector::showGlobalOverlay(const QString& displayMessage)
{
    dbusCallHelper(TelvaroDBusDefinitions::getGlobalOverlayMethodShow(), QVariant(displayMessage));
}

void TelvaroGlobalOverlayDBusConnector::hideGlobalOverlay()
{
    dbusCallHelper(TelvaroDBusDefinitions::getGlobalOverlayMethodHide(), QVariant());
}

void TelvaroGlobalOverlayDBusConnector::dbusCallHelper(const QString& method, const QVariant& argument)
{
    if (!isInterfaceValid()) {
        return;
    }
    if (argument.isValid()) {
        mInterface.call(QDBus::AutoDetect, method, argument);
    } else {
        mInterface.call(QDBus::AutoDetect, method);
    }
}
