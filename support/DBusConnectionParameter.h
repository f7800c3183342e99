// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QString>

#include <cstdint>

/// The three names from which a connector's proxy is made.
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

    /// The references hold for as long as this object lives.
    const QString& getServiceName() const;
    const QString& getPath() const;
    const QString& getInterfaceName() const;

private:
    DBusConnectionParameter(const QString& serviceName, const QString& path, const QString& interfaceName);

    QString mServiceName;
    QString mPath;
    QString mInterfaceName;
    // The type has this size wherever the device's support layer passes it around; nothing here uses the place.
    [[maybe_unused]] std::int32_t mReserved = 0;
};
