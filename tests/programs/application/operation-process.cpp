// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "LogCapture.h"
#include "Operations.h"
#include "PrivateBus.h"
#include "SignalRecorder.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <iostream>
#include <memory>
#include <string>

namespace {

void answer(const QJsonObject& object)
{
    std::cout << QJsonDocument(object).toJson(QJsonDocument::Compact).constData() << std::endl;
}

} // namespace

// An application that performs the commands on its standard input, in a process of its own because it may crash.
int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    LogCapture log;
    auto operations = std::make_unique<Operations>();
    std::unique_ptr<SignalRecorder> recorder;

    answer({{QStringLiteral("ready"), true}});
    std::string line;
    while (std::getline(std::cin, line)) {
        const QJsonObject command = QJsonDocument::fromJson(QByteArray::fromStdString(line)).object();
        const QString name = command.value(QLatin1String("command")).toString();
        if (command.value(QLatin1String("announced")).toBool()) {
            answer({{QStringLiteral("started"), name}});
        }
        QString result;
        QElapsedTimer timer;
        timer.start();
        if (name == QLatin1String("turn")) {
            PrivateBus::deliver();
        } else if (name == QLatin1String("prepare")) {
            PrivateBus::deliver();
            operations->prepare();
            recorder = std::make_unique<SignalRecorder>(operations->taskSwitcher(), operations->screen());
        } else if (name == QLatin1String("take signals")) {
            PrivateBus::deliver();
            result = recorder->take().join(QLatin1Char(' '));
        } else if (name == QLatin1String("destroy")) {
            recorder.reset();
            operations = std::make_unique<Operations>();
        } else if (name != QLatin1String("ping")) {
            result = operations->perform(name);
        }
        const qint64 duration = timer.elapsed();
        answer({{QStringLiteral("result"), result},
                {QStringLiteral("log"), QJsonArray::fromStringList(log.takeTexts())},
                {QStringLiteral("milliseconds"), duration}});
    }
    return 0;
}
