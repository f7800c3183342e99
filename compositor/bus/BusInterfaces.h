// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QString>
#include <QVector>

struct QMetaObject;

/// The interfaces of the compositor's objects, as their introspection files describe them.
namespace BusInterfaces {

struct Interface
{
    QString name;
    /// Where the object is found that has it.
    QString path;
    /// The adaptor's: its public slots are the interface's methods, and its properties the interface's.
    const QMetaObject* description;
};

const QVector<Interface>& all();
/// Null when there is no such interface.
const Interface* find(const QString& name);

/// The interface that an adaptor is for.
QString nameOf(const QMetaObject* adaptor);

} // namespace BusInterfaces
