// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ChildProcess.h"
#include "LiveComparison.h"
#include "LiveRequests.h"
#include "LogCapture.h"
#include "Operations.h"
#include "PrivateBus.h"
#include "Scenario.h"
#include "SignalRecorder.h"
#include "SteeredProcess.h"
#include "TestMain.h"
#include "Warnings.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QRegularExpression>

#include <cstdlib>
#include <iostream>
#include <random>

namespace {

/// How long one seed may take; Qt gives up on a lost reply after 25 seconds.
const int cSeedDeadline = 300000;

bool isKnown(const QString& message)
{
    return Operations::isFailureLog({message}) || message == Warnings::cUnparsed
        || message == QLatin1String("Unable to convert current view to string!");
}

/// Whether the library must read a value of this type as views; all other types must be rejected.
bool areViews(const QString& type, int count)
{
    static const QRegularExpression cViews(QStringLiteral("^a\\([so]{6}[ynqiuxt]{2}a\\{sv\\}"));
    const bool isList = type.startsWith(QLatin1Char('a')) && type != QLatin1String("as") && type != QLatin1String("ay");
    return isList && (count == 0 || cViews.match(type).hasMatch());
}

/// Describes what is wrong with a result of getViews(); empty if nothing is.
QString viewsProblem(const QJsonObject& status, int read, const QStringList& log)
{
    const QString type = status.value(QLatin1String("viewsType")).toString();
    const int count = status.value(QLatin1String("viewsCount")).toInt();
    const bool isRight = type.isEmpty() ? read == 0 && log == QStringList{Warnings::cUnreadViews}
        : areViews(type, count)         ? read == count && log.isEmpty()
                                        : read == 0 && log == QStringList{Warnings::cUnparsed};
    return isRight
        ? QString()
        : QStringLiteral("%1 views were read of %2 %3: %4").arg(read).arg(count).arg(type, log.join(QLatin1Char('\n')));
}

/// Performs operations in random order on a service with this seed, and lets it rest now and then to compare the live
/// objects with it. Returns a description of the failure, or an empty text.
QString runSeed(unsigned seed, int replyCount)
{
    PrivateBus bus;
    const Scenario scenario;
    SteeredProcess service(QStringLiteral(TELVARO_FUZZING_SERVICE),
                           {PrivateBus::address(), QStringLiteral(TELVARO_INTERFACE_DIRECTORY), QString::number(seed)});
    service.start();
    service.command({{QStringLiteral("command"), QStringLiteral("own")},
                     {QStringLiteral("name"), QStringLiteral(TELVARO_SERVICE_NAME)}});
    PrivateBus::deliver();

    LogCapture log;
    Operations operations;
    operations.prepare();
    LiveObjects live;
    LiveComparison comparison(live, operations, log);
    const std::vector<LiveRequest>& requests = LiveRequest::all();
    SignalRecorder recorder(operations.taskSwitcher(), operations.screen());
    std::mt19937 random(seed);
    const QStringList names = Operations::names();
    const QString status = QStringLiteral("status");
    while (service.command({{QStringLiteral("command"), status}}).value(QLatin1String("replies")).toInt()
           < replyCount) {
        QStringList messages = log.takeTexts();
        const int read = operations.taskSwitcher().getViews().size();
        const QStringList viewsLog = log.takeTexts();
        const QString problem = viewsProblem(service.command({{QStringLiteral("command"), status}}), read, viewsLog);
        if (!problem.isEmpty()) {
            return problem;
        }
        for (int count = 0; count < 10; ++count) {
            operations.perform(names.at(static_cast<int>(random() % static_cast<unsigned>(names.size()))));
            requests.at(random() % requests.size()).send(live);
            PrivateBus::deliver();
        }
        service.command({{QStringLiteral("command"), QStringLiteral("rest")}});
        const QStringList differences = comparison.waitForEquality(messages);
        if (!differences.isEmpty()) {
            return QStringLiteral("the live objects differ from the service: ") + differences.join(QLatin1String(", "));
        }
        service.command({{QStringLiteral("command"), QStringLiteral("resume")}});
        messages += log.takeTexts();
        for (const QString& message : messages) {
            if (!isKnown(message)) {
                return QStringLiteral("it logged ") + message;
            }
        }
        recorder.take();
    }
    const QStringList missing = comparison.missing();
    if (!missing.isEmpty()) {
        return QStringLiteral("too few replies to compare ") + missing.join(QLatin1String(", "));
    }
    return service.isRunning() ? QString() : QStringLiteral("the service has ended");
}

/// One process per seed, since Qt caches the introspection.
bool runSeedInChild(unsigned seed, int replyCount)
{
    const QStringList arguments{QStringLiteral("--seed"), QString::number(seed), QStringLiteral("--replies"),
                                QString::number(replyCount)};
    ChildProcess process;
    process.run(QStringLiteral(TELVARO_OWN_PATH), arguments);
    const bool hasEnded = process.waitForFinished(cSeedDeadline);
    if (hasEnded && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0) {
        return true;
    }
    std::cout << "Seed " << seed << (hasEnded ? " failed" : " did not end") << ". Again by: " << TELVARO_OWN_PATH << ' '
              << arguments.join(QLatin1Char(' ')).toStdString() << std::endl;
    return false;
}

} // namespace

int main(int argc, char** argv)
{
    prepareTestEnvironment();
    QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Operates the libraries on a service that answers and notifies at random."));
    parser.addHelpOption();
    const QCommandLineOption seedOption(QStringLiteral("seed"), QStringLiteral("Only this seed."),
                                        QStringLiteral("number"));
    const QCommandLineOption seedsOption(QStringLiteral("seeds"), QStringLiteral("Seeds 1 to this one; 20 by default."),
                                         QStringLiteral("number"), QStringLiteral("20"));
    const QCommandLineOption repliesOption(QStringLiteral("replies"),
                                           QStringLiteral("Replies for each seed; 1000 by default."),
                                           QStringLiteral("number"), QStringLiteral("1000"));
    parser.addOptions({seedOption, seedsOption, repliesOption});
    parser.process(application);

    const int replyCount = parser.value(repliesOption).toInt();
    if (parser.isSet(seedOption)) {
        const QString problem = runSeed(parser.value(seedOption).toUInt(), replyCount);
        if (!problem.isEmpty()) {
            std::cerr << problem.toStdString() << std::endl;
        }
        return problem.isEmpty() ? EXIT_SUCCESS : EXIT_FAILURE;
    }
    const unsigned seedCount = parser.value(seedsOption).toUInt();
    unsigned failures = 0;
    for (unsigned seed = 1; seed <= seedCount; ++seed) {
        failures += runSeedInChild(seed, replyCount) ? 0 : 1;
    }
    std::cout << seedCount << " seeds of " << replyCount << " replies, " << failures << " failures" << std::endl;
    return failures == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
