// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "DBusConnectionParameter.h"

DBusConnectionParameter DBusConnectionParameter::create(const QString& serviceName, const QString& path,
                                                        const QString& interfaceName)
{
    return DBusConnectionParameter(serviceName, path, interfaceName);
}

DBusConnectionParameter::DBusConnectionParameter(const QString& serviceName, const QString& path,
                                                 const QString& interfaceName)
    : mServiceName(serviceName)
    , mPath(path)
    , mInterfaceName(interfaceName)
{
}

const QString& DBusConnectionParameter::getServiceName() const
{
    return mServiceName;
}

const QString& DBusConnectionParameter::getPath() const
{
    return mPath;
}

const QString& DBusConnectionParameter::getInterfaceName() const
{
    return mInterfaceName;
}
