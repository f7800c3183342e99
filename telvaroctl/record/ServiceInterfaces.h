// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QMap>
#include <QString>
#include <QVector>

/// An interface of the service, as its introspection file describes it.
struct ServiceInterface
{
    struct Property
    {
        QString signature;
        bool isWritable = false;
    };

    QString name;
    QString path;
    /// The signatures of the in arguments, by the methods' names.
    QMap<QString, QString> methods;
    QMap<QString, Property> properties;

    static const QVector<ServiceInterface>& all();
    /// Null when there is no such interface.
    static const ServiceInterface* find(const QString& name);
};
