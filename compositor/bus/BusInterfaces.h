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
    /// The path of the object that implements it.
    QString path;
    /// The meta-object of the generated adaptor: its public slots are the methods of the interface, its properties the
    /// properties.
    const QMetaObject* description;
};

const QVector<Interface>& all();
/// Null when there is no such interface.
const Interface* find(const QString& name);

/// Returns the name of the interface that an adaptor implements; empty for any other class.
QString nameOf(const QMetaObject* adaptor);

} // namespace BusInterfaces
