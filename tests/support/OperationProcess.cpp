// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "OperationProcess.h"

#include <QFile>
#include <QJsonArray>

namespace {

Outcome toOutcome(const QJsonObject& answer)
{
    Outcome outcome;
    outcome.result = answer.value(QLatin1String("result")).toString();
    for (const QJsonValue& text : answer.value(QLatin1String("log")).toArray()) {
        outcome.log.append(text.toString());
    }
    outcome.milliseconds = qRound64(answer.value(QLatin1String("milliseconds")).toDouble());
    return outcome;
}

} // namespace

OperationProcess::OperationProcess()
    : SteeredProcess(QStringLiteral(TELVARO_OPERATION_PROCESS), {})
{
}

Outcome OperationProcess::turn()
{
    return performCommand(QStringLiteral("turn"));
}

Outcome OperationProcess::prepare()
{
    return performCommand(QStringLiteral("prepare"));
}

Outcome OperationProcess::prepareFor(const QString& operation)
{
    return Operations::isConstruction(operation) ? turn() : prepare();
}

Outcome OperationProcess::perform(const QString& operation)
{
    return performCommand(operation);
}

void OperationProcess::begin(const QString& operation)
{
    command({{QStringLiteral("command"), operation}, {QStringLiteral("announced"), true}});
}

Outcome OperationProcess::finish()
{
    return toOutcome(readAnswer());
}

bool OperationProcess::returnsWithin(int milliseconds)
{
    return waitForAnswer(milliseconds);
}

bool OperationProcess::isBlocked() const
{
    // The main thread has the id of the process; its state follows the name in parentheses.
    QFile status(QStringLiteral("/proc/%1/task/%1/stat").arg(processId()));
    if (!status.open(QIODevice::ReadOnly)) {
        return false;
    }
    const QByteArray line = status.readAll();
    return line.mid(line.lastIndexOf(')')).startsWith(") S");
}

Outcome OperationProcess::takeSignals()
{
    return performCommand(QStringLiteral("take signals"));
}

Outcome OperationProcess::destroy()
{
    return performCommand(QStringLiteral("destroy"));
}

Outcome OperationProcess::performCommand(const QString& name)
{
    return toOutcome(command({{QStringLiteral("command"), name}}));
}
