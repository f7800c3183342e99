// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QMap>
#include <QString>

/// The service's objects as its interface files describe them.
class Introspection
{
public:
    /// Reads every interface file of the directory. Throws std::runtime_error on one that cannot be read.
    explicit Introspection(const QString& directory);

    /// The introspection data of the object at the path, including the standard interfaces.
    QString xml(const QString& path) const;

private:
    QMap<QString, QString> mInterfacesByPath;
};
