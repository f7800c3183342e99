// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "TelvaroDBusConnectorBase.h"

#include "DBusConnection.h"
#include "DBusConnectionParameter.h"
#include "TelvaroDeviceDistinction.h"

#include <QDebug>

TelvaroDBusConnectorBase::TelvaroDBusConnectorBase(DBusConnectionParameter&& parameter, QObject* parent)
    : QObject(parent)
    , mInterface(parameter.getServiceName(), parameter.getPath(), parameter.getInterfaceName(),
                 DBusConnection::getQDBusConnection())
{
}

TelvaroDBusConnectorBase::~TelvaroDBusConnectorBase() = default;

bool TelvaroDBusConnectorBase::isInterfaceValid() const
{
    if (!TelvaroDeviceDistinction::isCompositorDevice()) {
        return false;
    }
    const QString service = mInterface.service();
    if (!DBusConnection::isServiceRegistered(service)) {
        qWarning() << "DBus Service for Telvaro" << service << "is not registered";
        return false;
    }
    if (!mInterface.isValid()) {
        qWarning() << "Invalid DBus interface!";
        return false;
    }
    return true;
}
