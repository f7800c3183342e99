// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "BusMonitorProcess.h"

#include "PrivateBus.h"

#include <QDBusMessage>
#include <QJsonArray>

BusMonitorProcess::BusMonitorProcess()
    : SteeredProcess(QStringLiteral("bus-monitor"), {PrivateBus::address()})
{
}

QList<RecordedCall> BusMonitorProcess::takeCalls()
{
    // Messages of a connection are ordered, so the marker follows all earlier calls.
    const QString marker = QStringLiteral("Marker%1").arg(++mMarker);
    const QDBusConnection connection = PrivateBus::connection();
    connection.send(
        QDBusMessage::createSignal(QStringLiteral("/marker"), QStringLiteral("org.example.Marker"), marker));
    const QJsonObject answer = command({{QStringLiteral("marker"), marker}});
    QList<RecordedCall> calls;
    for (const RecordedCall& call : RecordedCall::fromJson(answer.value(QLatin1String("calls")).toArray())) {
        if (call.sender == connection.baseService()) {
            calls.append(call);
        }
    }
    return calls;
}
