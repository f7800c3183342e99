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

    /// What an object at the path answers to Introspect, the standard interfaces included.
    QString xml(const QString& path) const;

private:
    QMap<QString, QString> mInterfacesByPath;
};
