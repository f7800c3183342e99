// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

class QJsonArray;

/// A method call recorded on the bus; arguments are in GVariant's text format, with type annotations.
struct RecordedCall
{
    QString sender;
    QString destination;
    QString path;
    QString interface;
    QString member;
    QString signature;
    QStringList arguments;
    bool noReply = false;
    /// The bus does not start a service for it.
    bool noAutoStart = false;

    static QList<RecordedCall> fromJson(const QJsonArray& calls);

    /// "<path> <interface>.<member> <signature>(<arguments>)", with "no reply" in front where none is expected.
    QString description() const;
};
