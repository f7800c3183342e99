// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "CommandLine.h"
#include "CompositorOptions.h"
#include "Session.h"
#include "UnixSignals.h"

#include <QCoreApplication>
#include <QTextStream>

namespace {

const QString cHeadless = QStringLiteral("headless");

CommandLine::Text text()
{
    return {QStringLiteral("telvaro-session"), QStringLiteral("[options] [--] [COMMAND [ARGUMENT]...]"),
            QStringLiteral("Starts a private bus, the reference compositor and the command in it, and ends all of\n"
                           "it together when the command ends. Without a command, prints the environment variables\n"
                           "of a program in the session, and runs until it is interrupted.\n\n"
                           "The compositor is a window where there is a display; without one it draws into memory."),
            QStringLiteral("Exit status: the command's; 1 if the session failed, 2 for wrong usage, 127 if the\n"
                           "command cannot be started.")};
}

QStringList compositorArguments(const QCommandLineParser& parser)
{
    QStringList arguments;
    const QList<QCommandLineOption> options = CompositorOptions::declarations();
    for (const QCommandLineOption& option : options) {
        if (parser.isSet(option)) {
            arguments.append(QStringLiteral("--%1").arg(option.names().constFirst()));
            if (!option.valueName().isEmpty()) {
                arguments.append(parser.value(option));
            }
        }
    }
    return arguments;
}

} // namespace

int main(int argc, char* argv[])
{
    UnixSignals::block();
    const QCoreApplication application(argc, argv);
    const UnixSignals unixSignals;

    CommandLine commandLine(CommandLine::Kind::Program, text(),
                            CompositorOptions::declarations()
                                + QList<QCommandLineOption>{
                                    {cHeadless, QStringLiteral("Draws into memory even where there is a display.")}});
    if (const std::optional<ExitStatus> status = commandLine.parse(QCoreApplication::arguments().mid(1))) {
        return *status;
    }
    const QCommandLineParser& parser = commandLine.parser();

    Session session(compositorArguments(parser), parser.isSet(cHeadless));
    QObject::connect(&session, &Session::ended, &application, &QCoreApplication::exit, Qt::QueuedConnection);
    QObject::connect(&unixSignals, &UnixSignals::terminationRequested, &session, &Session::end);
    if (const MaybeError error = session.start()) {
        if (session.areOptionsRejected()) {
            return Usage;
        }
        QTextStream(stderr) << "telvaro-session: " << error->text << '\n';
        return Failed;
    }
    const QStringList command = parser.positionalArguments();
    if (command.isEmpty()) {
        QTextStream output(stdout);
        const QStringList variables = session.environment();
        for (const QString& variable : variables) {
            output << "export " << variable << '\n';
        }
    } else {
        session.run(command);
    }
    return QCoreApplication::exec();
}
