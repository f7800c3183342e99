// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "EveryOperation.h"
#include "LogCapture.h"
#include "TelvaroDeviceDistinction.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <iostream>
#include <string>

namespace {

void answer(const QJsonObject& object)
{
    std::cout << QJsonDocument(object).toJson(QJsonDocument::Compact).toStdString() << std::endl;
}

QJsonObject callEveryOperation()
{
    LogCapture log;
    Connectors connectors;
    QJsonObject outcomes{
        {QStringLiteral("construction"), QJsonArray{QString(), QJsonArray::fromStringList(log.takeTexts())}}};
    for (const NamedOperation& operation : everyOperation()) {
        const QString result = operation.call(connectors);
        outcomes.insert(operation.name, QJsonArray{result, QJsonArray::fromStringList(log.takeTexts())});
    }
    return outcomes;
}

} // namespace

// An application on the device whose manifest stands in the working directory. Answers the lines "device", whether this
// is the compositor device, and "operations", the outcome of every operation.
int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    std::string command;
    while (std::getline(std::cin, command)) {
        if (command == "device") {
            answer({{QStringLiteral("compositorDevice"), TelvaroDeviceDistinction::isCompositorDevice()}});
        } else if (command == "operations") {
            answer(callEveryOperation());
        }
    }
    return 0;
}
