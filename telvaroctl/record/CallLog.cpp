// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "CallLog.h"

#include "BusMessage.h"
#include "ServiceInterfaces.h"

#include <TelvaroDBusDefinitions.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

namespace {

/// A reply within this time is not late: a service that works needs much less.
constexpr qint64 cLateMilliseconds = 100;

} // namespace

CallLog::CallLog(std::function<QString(const QString&)> mask)
    : mMask(std::move(mask))
{
}

void CallLog::noteCall(const BusMessage& message, qint64 time)
{
    const QVector<Kind> kinds = kindsOf(message);
    for (const Kind& kind : kinds) {
        ++mCounts[kind];
    }
    if (!kinds.isEmpty() && message.isReplyExpected()) {
        const Kind& kind = kinds.constFirst();
        mWaiting.insert({message.sender(), message.serial()}, {kind, mCounts.value(kind), time});
    }
}

std::optional<QJsonObject> CallLog::noteReply(const BusMessage& message, qint64 time)
{
    const QPair<QString, quint32> key(message.destination(), message.replySerial());
    if (!mWaiting.contains(key)) {
        return {};
    }
    const Call call = mWaiting.take(key);
    QJsonObject fault;
    if (message.type() == BusMessage::Type::Error) {
        const QString text = mMask(message.arguments().value(0).toString());
        fault.insert(QStringLiteral("error"), message.errorName());
        if (!text.isEmpty()) {
            fault.insert(QStringLiteral("text"), text);
        }
    }
    const qint64 delay = time - call.time;
    if (delay >= cLateMilliseconds) {
        fault.insert(QStringLiteral("delay"), std::round(static_cast<double>(delay) / 10) / 100);
    }
    if (fault.isEmpty()) {
        return {};
    }
    return stepFor(call, fault);
}

void CallLog::noteServiceGone(qint64 time)
{
    for (Call& call : mWaiting) {
        call.end = call.end.value_or(time);
    }
}

QVector<QJsonObject> CallLog::finish(qint64 time)
{
    QVector<Call> unanswered;
    std::copy_if(mWaiting.cbegin(), mWaiting.cend(), std::back_inserter(unanswered), [time](const Call& call) {
        return call.end.value_or(time) - call.time >= cLateMilliseconds;
    });
    std::sort(unanswered.begin(), unanswered.end(), [](const Call& left, const Call& right) {
        return left.time < right.time;
    });
    mWaiting.clear();
    QVector<QJsonObject> steps;
    for (const Call& call : qAsConst(unanswered)) {
        steps.append(stepFor(call, {{QStringLiteral("silent"), true}}));
    }
    return steps;
}

QVector<CallLog::Kind> CallLog::kindsOf(const BusMessage& message)
{
    if (message.interface() != TelvaroDBusDefinitions::getPropertyInterface()) {
        const ServiceInterface* const interface = ServiceInterface::find(message.interface());
        const bool isKnown = interface != nullptr && interface->path == message.path()
            && interface->methods.contains(message.member())
            && interface->methods.value(message.member()) == message.signature();
        return isKnown ? QVector<Kind>{{QStringLiteral("call"), interface->name + QLatin1Char('.') + message.member()}}
                       : QVector<Kind>();
    }
    static const QMap<QString, QString> signatures{
        {QStringLiteral("Get"), QStringLiteral("ss")},
        {QStringLiteral("GetAll"), QStringLiteral("s")},
        {QStringLiteral("Set"), QStringLiteral("ssv")},
    };
    if (!signatures.contains(message.member()) || signatures.value(message.member()) != message.signature()) {
        return {};
    }
    const QVariantList arguments = message.arguments();
    const ServiceInterface* const interface = ServiceInterface::find(arguments.at(0).toString());
    if (interface == nullptr || interface->path != message.path()) {
        return {};
    }
    const bool isWrite = message.member() == QLatin1String("Set");
    const bool isForAll = message.member() == QLatin1String("GetAll");
    QVector<Kind> kinds;
    for (auto property = interface->properties.cbegin(); property != interface->properties.cend(); ++property) {
        if ((isForAll || property.key() == arguments.at(1).toString()) && (!isWrite || property->isWritable)) {
            kinds.append({isWrite ? QStringLiteral("set") : QStringLiteral("get"),
                          interface->name + QLatin1Char('.') + property.key()});
        }
    }
    return kinds;
}

QJsonObject CallLog::stepFor(const Call& call, QJsonObject fault)
{
    const QString times = QStringLiteral("times");
    fault.insert(call.kind.first, call.kind.second);
    fault.insert(times, 1);
    QJsonObject step{{QStringLiteral("fault"), fault}};
    if (call.number > 1) {
        step.insert(QStringLiteral("after"),
                    QJsonObject{{call.kind.first, call.kind.second}, {times, call.number - 1}});
    }
    return step;
}
