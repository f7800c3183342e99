// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "BackgroundProcess.h"
#include "CommandLine.h"
#include "CompositorOptions.h"
#include "EnvironmentFile.h"
#include "Manifest.h"
#include "RunningSession.h"
#include "Session.h"
#include "ShellWord.h"
#include "UnixSignals.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QTextStream>

#include <clocale>

namespace {

const QString cHeadless = QStringLiteral("headless");
const QString cBackground = QStringLiteral("background");
const QString cEnvironmentFile = QStringLiteral("env-file");
const QString cEnd = QStringLiteral("end");

CommandLine::Text text()
{
    return {
        QStringLiteral("telvaro-session"), QStringLiteral("[options] [--] [COMMAND [ARGUMENT]...]"),
        QStringLiteral("Starts a private bus, the reference compositor and the command in it. When the command "
                       "ends, ends both, and everything that the command has started. Without a command, prints "
                       "the environment variables of a program in the session, and runs until it is interrupted.\n\n"
                       "The compositor is a window where there is a display; without one it draws into memory."),
        QStringLiteral("Exit status: the command's, or that of a script's end; 1 if the session failed, 2 for "
                       "wrong usage, 127 if the command cannot be started.")};
}

QList<QCommandLineOption> options()
{
    return CompositorOptions::declarations()
        + QList<QCommandLineOption>{
            {cHeadless, QStringLiteral("Draws into memory even where there is a display.")},
            {cEnvironmentFile,
             QStringLiteral("Writes the environment to FILE, to be sourced by a shell, as soon "
                            "as the session is ready. Replaces FILE, and removes it when the session ends."),
             QStringLiteral("FILE")},
            {cBackground,
             QStringLiteral(
                 "Returns as soon as the session is ready, and keeps it running until COMMAND or --end ends it; "
                 "its messages go to FILE.log. Needs --env-file.")},
            {cEnd, QStringLiteral("Ends the session that it is called in, and waits for its end.")},
        };
}

QStringList compositorArguments(const QCommandLineParser& parser)
{
    QStringList arguments;
    const QList<QCommandLineOption> compositorOptions = CompositorOptions::declarations();
    for (const QCommandLineOption& option : compositorOptions) {
        if (parser.isSet(option)) {
            arguments.append(QStringLiteral("--%1").arg(option.names().constFirst()));
            if (!option.valueName().isEmpty()) {
                arguments.append(parser.value(option));
            }
        }
    }
    return arguments;
}

ExitStatus fail(const Error& error)
{
    QTextStream(stderr) << "telvaro-session: " << error.text << '\n';
    return Failed;
}

/// Writes the environment of a session that is ready to where the options want it. Lets a caller of a session in the
/// background return.
MaybeError announce(const Session& session, const QCommandLineParser& parser, EnvironmentFile& environmentFile,
                    BackgroundProcess& background)
{
    if (!Manifest::isOfCompositorDevice()) {
        QTextStream(stderr) << "telvaro-session: the library does nothing on this machine: " << Manifest::advice()
                            << '\n';
    }
    if (parser.isSet(cEnvironmentFile)) {
        if (MaybeError error = environmentFile.write(session.environmentScript())) {
            return error;
        }
    }
    if (parser.isSet(cBackground)) {
        return background.release(QStringLiteral("Join the session:  . %1\n"
                                                 "End it from there: telvaro-session --end\n")
                                      .arg(shellWord(QFileInfo(parser.value(cEnvironmentFile)).absoluteFilePath())));
    }
    if (parser.positionalArguments().isEmpty()) {
        QTextStream(stdout) << session.environmentScript();
    }
    return {};
}

/// Runs the session until it ends.
int run(QCoreApplication& application, const QCommandLineParser& parser, BackgroundProcess& background)
{
    const UnixSignals unixSignals;
    Session session(compositorArguments(parser), parser.isSet(cHeadless), parser.positionalArguments());
    EnvironmentFile environmentFile;
    if (parser.isSet(cEnvironmentFile)) {
        if (const MaybeError error = environmentFile.reserve(parser.value(cEnvironmentFile))) {
            return fail(*error);
        }
    }
    QObject::connect(&session, &Session::ended, &application, &QCoreApplication::exit, Qt::QueuedConnection);
    QObject::connect(&unixSignals, &UnixSignals::terminationRequested, &session, &Session::end);
    QObject::connect(&session, &Session::ready, &application, [&] {
        if (const MaybeError error = announce(session, parser, environmentFile, background)) {
            QCoreApplication::exit(fail(*error));
        } else {
            session.run();
        }
    });
    if (const MaybeError error = session.start()) {
        return fail(*error);
    }
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char* argv[])
{
    // The arguments are parsed before there is an application object, which would do this.
    std::setlocale(LC_ALL, "");
    QStringList arguments;
    for (int index = 1; index < argc; ++index) {
        arguments.append(QString::fromLocal8Bit(argv[index]));
    }
    CommandLine commandLine(CommandLine::Kind::Program, text(), options());
    if (const std::optional<ExitStatus> status = commandLine.parse(arguments)) {
        return *status;
    }
    const QCommandLineParser& parser = commandLine.parser();
    if (parser.isSet(cEnd)) {
        const MaybeError error = RunningSession::end();
        return error ? fail(*error) : Done;
    }

    if (parser.isSet(cEnvironmentFile) && parser.value(cEnvironmentFile).isEmpty()) {
        return CommandLine::refuse(text().command, QStringLiteral("--env-file needs the name of a file"));
    }
    BackgroundProcess background;
    if (parser.isSet(cBackground)) {
        if (!parser.isSet(cEnvironmentFile)) {
            return CommandLine::refuse(text().command, QStringLiteral("--background needs --env-file"));
        }
        if (const MaybeError error = background.start(parser.value(cEnvironmentFile) + QStringLiteral(".log"))) {
            return fail(*error);
        }
    }
    UnixSignals::block();
    QCoreApplication application(argc, argv);
    return run(application, parser, background);
}
