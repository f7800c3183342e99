// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QString>

#include <cstdint>

/// Bus name, object path and interface of a connector's proxy.
class DBusConnectionParameter
{
public:
    static DBusConnectionParameter create(const QString& serviceName, const QString& path,
                                          const QString& interfaceName);

    DBusConnectionParameter(const DBusConnectionParameter&) = default;
    DBusConnectionParameter(DBusConnectionParameter&&) = default;
    DBusConnectionParameter& operator=(const DBusConnectionParameter&) = default;
    DBusConnectionParameter& operator=(DBusConnectionParameter&&) = default;
    virtual ~DBusConnectionParameter() = default;

    /// The references are valid for the lifetime of this object.
    const QString& getServiceName() const;
    const QString& getPath() const;
    const QString& getInterfaceName() const;

private:
    DBusConnectionParameter(const QString& serviceName, const QString& path, const QString& interfaceName);

    QString mServiceName;
    QString mPath;
    QString mInterfaceName;
    // Unused. Keeps the size equal to that of the class in the device's own support layer.
    [[maybe_unused]] std::int32_t mReserved = 0;
};
