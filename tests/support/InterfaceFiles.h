// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "RecordedCall.h"

#include <QMap>
#include <QString>
#include <QStringList>

/// The interface files in dbus/.
class InterfaceFiles
{
public:
    /// Throws std::runtime_error on a file that cannot be read.
    InterfaceFiles();

    /// Describes how a call to the service violates the files; empty if it does not.
    QString problem(const RecordedCall& call) const;

    /// "<interface>.<method>" of all methods and "<interface>:<property>" of all properties.
    QStringList members() const;

private:
    struct Property
    {
        QString type;
        QString access;
    };
    struct Interface
    {
        QString path;
        QMap<QString, QString> methodSignatures;
        QMap<QString, Property> properties;
    };

    void read(const QString& fileName);
    QString propertyProblem(const RecordedCall& call) const;

    QMap<QString, Interface> mInterfaces;
};
