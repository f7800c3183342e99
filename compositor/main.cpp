// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "CommandLine.h"
#include "Compositor.h"
#include "Log.h"
#include "UnixSignals.h"

#include <QGuiApplication>
#include <QIcon>
#include <QStandardPaths>

#include <csignal>
#include <cstdio>

namespace {

constexpr int cExitFailed = 1;
constexpr int cExitWrongUsage = 2;

/// How Qt has to behave; all of it must be settled before there is an application object.
void prepareQt()
{
    // The output's pixels are the device's, whatever the desktop scales its windows by.
    QCoreApplication::setAttribute(Qt::AA_DisableHighDpiScaling);
    // Input methods belong to the clients: the compositor passes keys on as they are.
    qputenv("QT_IM_MODULE", "none");
    QCoreApplication::setApplicationName(QStringLiteral("telvaro-compositor"));
    QCoreApplication::setApplicationVersion(QStringLiteral(TELVARO_VERSION));
}

/// Qt looks for icons where the desktop keeps them; without a desktop it has to be told.
void prepareIcons()
{
    const QStringList directories = QStandardPaths::locateAll(QStandardPaths::GenericDataLocation,
                                                              QStringLiteral("icons"), QStandardPaths::LocateDirectory);
    QIcon::setThemeSearchPaths(QIcon::themeSearchPaths() + directories);
    if (QIcon::themeName().isEmpty()) {
        QIcon::setThemeName(QStringLiteral("Adwaita"));
    }
    QIcon::setFallbackThemeName(QStringLiteral("Adwaita"));
}

int run(int argc, char* argv[], const CommandLine& commandLine)
{
    Log::install();
    std::signal(SIGPIPE, SIG_IGN);
    UnixSignals::block();
    prepareQt();
    const QGuiApplication application(argc, argv);
    const UnixSignals unixSignals;
    prepareIcons();

    Compositor compositor(commandLine);
    QObject::connect(&unixSignals, &UnixSignals::terminationRequested, &application, &QCoreApplication::quit);
    QObject::connect(&compositor.busService(), &BusService::disconnected, &application, [] {
        qCritical("the connection to the bus is lost");
        QCoreApplication::exit(cExitFailed);
    });
    QObject::connect(&compositor.scriptPlayer(), &ScriptPlayer::failed, &application, [&compositor] {
        qCritical("%s", qUtf8Printable(compositor.scriptPlayer().error()));
        QCoreApplication::exit(cExitFailed);
    });
    if (!compositor.start()) {
        qCritical("%s", qUtf8Printable(compositor.error()));
        return cExitFailed;
    }
    std::printf("WAYLAND_DISPLAY=%s\n", compositor.socketName().constData());
    std::fflush(stdout);
    return QGuiApplication::exec();
}

} // namespace

int main(int argc, char* argv[])
{
    QStringList arguments;
    for (int i = 1; i < argc; ++i) {
        arguments.append(QString::fromLocal8Bit(argv[i]));
    }
    const CommandLine commandLine(arguments);
    switch (commandLine.task()) {
    case CommandLine::Task::ShowHelp:
        std::fputs(qPrintable(CommandLine::helpText()), stdout);
        return 0;
    case CommandLine::Task::ShowVersion:
        std::puts("telvaro-compositor " TELVARO_VERSION);
        return 0;
    case CommandLine::Task::Refuse:
        std::fprintf(stderr, "telvaro-compositor: %s\nTry \"telvaro-compositor --help\".\n",
                     qPrintable(commandLine.error()));
        return cExitWrongUsage;
    case CommandLine::Task::Run:
        break;
    }
    return run(argc, argv, commandLine);
}
