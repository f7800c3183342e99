// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QList>
#include <QMap>
#include <QString>

/// What the introspection of an object says about its interfaces.
struct Introspection
{
    struct Member
    {
        enum Kind
        {
            Property,
            Method,
            Signal
        };

        Kind kind = Property;
        /// The type of a property, and the types of the arguments that go into a method.
        QString type;
        /// The types of the arguments that come out of a method or a signal.
        QString results;
        /// "read", "write" or "readwrite" for a property.
        QString access;

        bool operator==(const Member& other) const;
        /// "property b readwrite", "method ss -> u"
        QString description() const;
    };
    using Members = QMap<QString, Member>;

    QString path;
    /// The members by their names, by the names of the interfaces.
    QMap<QString, Members> interfaces;

    static Introspection parse(const QString& xml);

    /// The objects of the service, as the interface files describe them.
    static QList<Introspection> expected();
};
