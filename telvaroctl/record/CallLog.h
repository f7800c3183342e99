// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QHash>
#include <QJsonObject>
#include <QMap>
#include <QPair>
#include <QString>
#include <QVector>

#include <functional>
#include <optional>

class BusMessage;

/// Follows the calls of programs to the service. A call that was refused, came late or was not answered becomes a step
/// of a script: a fault for the n-th call of its kind.
class CallLog
{
public:
    /// `mask` is applied to the texts of errors.
    explicit CallLog(std::function<QString(const QString&)> mask);

    /// Times are in milliseconds.
    void noteCall(const BusMessage& message, qint64 time);
    /// Returns the step, if a reply or an error makes one.
    std::optional<QJsonObject> noteReply(const BusMessage& message, qint64 time);
    /// The calls that wait do so no longer, unless the bus answers them with an error.
    void noteServiceGone(qint64 time);
    /// Returns a step for each call that has waited in vain.
    QVector<QJsonObject> finish(qint64 time);

private:
    /// A kind of call as a script names it: "get" and the name of a property, for instance.
    using Kind = QPair<QString, QString>;

    struct Call
    {
        Kind kind;
        /// Which call of its kind this is, from 1.
        int number = 0;
        qint64 time = 0;
        /// When the service has gone before it has answered.
        std::optional<qint64> end = {};
    };

    /// Returns the kinds that match a call: none if no fault can match it, and all properties for GetAll.
    static QVector<Kind> kindsOf(const BusMessage& message);
    static QJsonObject stepFor(const Call& call, QJsonObject fault);

    std::function<QString(const QString&)> mMask;
    QHash<Kind, int> mCounts;
    /// The calls that wait, by the caller and the serial.
    QMap<QPair<QString, quint32>, Call> mWaiting;
};
