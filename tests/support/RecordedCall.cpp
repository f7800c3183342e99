// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "RecordedCall.h"

#include <QJsonArray>
#include <QJsonObject>

QList<RecordedCall> RecordedCall::fromJson(const QJsonArray& calls)
{
    QList<RecordedCall> recordedCalls;
    for (const QJsonValue& value : calls) {
        const QJsonObject call = value.toObject();
        const auto text = [&call](const char* key) {
            return call.value(QLatin1String(key)).toString();
        };
        QStringList arguments;
        for (const QJsonValue& argument : call.value(QLatin1String("arguments")).toArray()) {
            arguments.append(argument.toString());
        }
        recordedCalls.append({text("sender"), text("destination"), text("path"), text("interface"), text("member"),
                              text("signature"), arguments, call.value(QLatin1String("noReply")).toBool(),
                              call.value(QLatin1String("noAutoStart")).toBool()});
    }
    return recordedCalls;
}

QString RecordedCall::description() const
{
    return QStringLiteral("%1%2 %3.%4 %5(%6)")
        .arg(noReply ? QStringLiteral("no reply ") : QString(), path, interface, member, signature,
             arguments.join(QStringLiteral(", ")));
}
