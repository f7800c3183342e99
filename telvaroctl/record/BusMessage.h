// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QString>
#include <QVariantList>

struct DBusMessage;

/// A message as it passes the bus.
class BusMessage
{
public:
    enum class Type
    {
        Call,
        Reply,
        Error,
        Signal
    };

    /// Refers to the message as long as the caller does.
    explicit BusMessage(DBusMessage* message);

    Type type() const;
    bool isReplyExpected() const;
    quint32 serial() const;
    /// The serial of the call that a reply or an error belongs to.
    quint32 replySerial() const;
    /// A header field that is missing is an empty string.
    QString sender() const;
    QString destination() const;
    QString path() const;
    QString interface() const;
    QString member() const;
    QString errorName() const;
    QString signature() const;
    /// Returns the contents: dictionaries as a QVariantMap, arrays and structures as a QVariantList, all texts as a
    /// QString, variants as their content, and nothing valid for file descriptors.
    QVariantList arguments() const;

private:
    DBusMessage* mMessage;
};
