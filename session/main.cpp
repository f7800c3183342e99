// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Session.h"
#include "UnixSignals.h"

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTextStream>

#include <stdexcept>

namespace {

constexpr int cFailure = 1;
constexpr int cUsage = 2;

const char* const cHelp = "Usage: telvaro-session [options] [--] [COMMAND [ARGUMENT]...]\n"
                          "\n"
                          "Starts a private bus, the reference compositor and the command in it, and ends all of\n"
                          "it together when the command ends. Without a command, prints what a program needs in its\n"
                          "environment to be part of the session, and runs until it is interrupted.\n"
                          "\n"
                          "The compositor is a window where there is a display, else it draws into memory.\n"
                          "\n"
                          "Options:\n"
                          "  --size WIDTHxHEIGHT            size of the output in pixels\n"
                          "  --screensaver-timeout SECONDS  seconds without input until the screen saver starts\n"
                          "  --script FILE                  play the script: views that come and go, calls that\n"
                          "                                 fail, and more, at given times\n"
                          "  --headless                     draw into memory even where there is a display\n"
                          "  -h, --help                     print this text and exit\n"
                          "  -v, --version                  print the version and exit\n"
                          "\n"
                          "Exit status: the command's; 1 if the session failed, 2 for wrong usage, 127 if the command\n"
                          "cannot be started.\n";

int usageError(const QString& message)
{
    QTextStream(stderr) << "telvaro-session: " << message << '\n' << "telvaro-session: see 'telvaro-session --help'\n";
    return cUsage;
}

} // namespace

int main(int argc, char* argv[])
{
    UnixSignals::block();
    QCoreApplication application(argc, argv);
    const UnixSignals unixSignals;

    const QString value = QStringLiteral("value");
    const QStringList compositorOptions{QStringLiteral("size"), QStringLiteral("screensaver-timeout"),
                                        QStringLiteral("script")};
    const QCommandLineOption headless(QStringLiteral("headless"));
    const QCommandLineOption help(QStringList{QStringLiteral("h"), QStringLiteral("help")});
    const QCommandLineOption version(QStringList{QStringLiteral("v"), QStringLiteral("version")});
    QCommandLineParser parser;
    parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    parser.addOptions({headless, help, version});
    for (const QString& option : compositorOptions) {
        parser.addOption(QCommandLineOption(option, QString(), value));
    }
    if (!parser.parse(QCoreApplication::arguments())) {
        return usageError(parser.errorText());
    }
    if (parser.isSet(help)) {
        QTextStream(stdout) << cHelp;
        return 0;
    }
    if (parser.isSet(version)) {
        QTextStream(stdout) << "telvaro-session " TELVARO_VERSION "\n";
        return 0;
    }
    QStringList options;
    for (const QString& option : compositorOptions) {
        if (parser.isSet(option)) {
            options << QStringLiteral("--%1").arg(option) << parser.value(option);
        }
    }

    Session session(options, parser.isSet(headless));
    QObject::connect(&session, &Session::ended, &application, &QCoreApplication::exit, Qt::QueuedConnection);
    QObject::connect(&unixSignals, &UnixSignals::terminationRequested, &session, &Session::end);
    try {
        session.start();
    } catch (const Session::WrongUsage&) {
        return cUsage;
    } catch (const std::runtime_error& error) {
        QTextStream(stderr) << "telvaro-session: " << error.what() << '\n';
        return cFailure;
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
