// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Command.h"
#include "Console.h"
#include "Service.h"
#include "TimeLimit.h"
#include "UnixSignals.h"
#include "record/BusStream.h"
#include "record/Recorder.h"
#include "record/ScriptWriter.h"

#include <TelvaroDBusDefinitions.h>

#include <QCommandLineParser>
#include <QCoreApplication>

#include <utility>

namespace {

const QString cAnonymous = QStringLiteral("anonymous");
const QString cForce = QStringLiteral("force");

template <typename Value> bool isFailure(const Result<Value>& result)
{
    if (const auto* const error = std::get_if<Error>(&result)) {
        printError(error->text);
        return true;
    }
    return false;
}

ExitStatus record(const QCommandLineParser& parser, const QStringList& arguments)
{
    if (!Service::connect()) {
        return Failed;
    }

    Result<std::unique_ptr<BusStream>> stream = BusStream::open();
    Result<std::unique_ptr<BusStream>> sender = BusStream::open();
    if (isFailure(stream) || isFailure(sender)) {
        return Failed;
    }
    const QString& fileName = arguments.constFirst();
    Result<std::unique_ptr<ScriptWriter>> writer = ScriptWriter::open(fileName, parser.isSet(cForce));
    if (isFailure(writer)) {
        return Failed;
    }
    Recorder recorder(std::get<std::unique_ptr<ScriptWriter>>(std::move(writer)),
                      std::get<std::unique_ptr<BusStream>>(std::move(stream)),
                      std::get<std::unique_ptr<BusStream>>(std::move(sender)), parser.isSet(cAnonymous));
    QObject::connect(&recorder, &Recorder::started, [] {
        printError(QStringLiteral("recording %1").arg(TelvaroDBusDefinitions::getServiceName()));
    });
    QObject::connect(&recorder, &Recorder::ended, [] {
        QCoreApplication::exit(Failed);
    });
    if (const MaybeError error = recorder.start()) {
        printError(error->text);
        return Failed;
    }
    // A service that hangs is recorded, too.
    TimeLimit::lift();
    // From here on the event loop ends the process.
    UnixSignals::block();
    const UnixSignals unixSignals;
    QObject::connect(&unixSignals, &UnixSignals::terminationRequested, QCoreApplication::instance(),
                     &QCoreApplication::quit);
    const int status = QCoreApplication::exec();
    const Result<int> count = recorder.finish();
    if (isFailure(count)) {
        return Failed;
    }
    printError(QStringLiteral("%1 steps written to %2").arg(std::get<int>(count)).arg(fileName));
    return static_cast<ExitStatus>(status);
}

} // namespace

QList<Command> recordCommands()
{
    return {
        {"record",
         "Records what the service does as a script, until interrupted.",
         "",
         "The reference compositor plays FILE as its script; '-' is standard output. Prints "
         "'recording' to standard error once it listens, and waits for a service that is not "
         "registered yet. The time limit ends when the bus has replied.",
         [] {
             return QList<QCommandLineOption>{
                 {cAnonymous, QStringLiteral("Replaces all texts but ids by 'text 1', 'text 2' and so on.")},
                 {cForce, QStringLiteral("Replaces FILE if it exists.")},
             };
         },
         record,
         {QStringLiteral("FILE")},
         1},
    };
}
