// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "CommandLine.h"
#include "Compositor.h"
#include "Log.h"
#include "Options.h"
#include "UnixSignals.h"
#include "shell/Keymap.h"

#include <QGuiApplication>
#include <QIcon>
#include <QStandardPaths>

#include <csignal>
#include <cstdio>
#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace {

CommandLine::Text text()
{
    return {QStringLiteral("telvaro-compositor"), QStringLiteral("[options]"),
            QStringLiteral("Shows Wayland applications, one at a time, and publishes their views, the screen's\n"
                           "settings, the global overlay, notifications and screenshots on D-Bus."),
            QStringLiteral("Prints one line WAYLAND_DISPLAY=NAME when everything is up.")};
}

/// Makes freed pictures go back to the system. glibc would raise its threshold to the size of the first one that is
/// freed, take the next ones from the heap, and keep the memory of many clients after they have gone.
void prepareMemory()
{
#ifdef __GLIBC__
    constexpr int largestOnHeap = 128 * 1024;
    mallopt(M_MMAP_THRESHOLD, largestOnHeap);
#endif
}

/// Settings of Qt that must be made before the application object.
void prepareQt()
{
    // A pixel of the output is a pixel of the window, whatever scale factor the desktop has.
    QCoreApplication::setAttribute(Qt::AA_DisableHighDpiScaling);
    // The compositor forwards keys; an input method of its own would swallow them.
    qputenv("QT_IM_MODULE", "none");
    // Qt's own event loop costs less for each frame.
    qputenv("QT_NO_GLIB", "1");
    QCoreApplication::setApplicationName(QStringLiteral("telvaro-compositor"));
    QCoreApplication::setApplicationVersion(QStringLiteral(TELVARO_VERSION));
}

/// Without a desktop Qt knows neither where icons are nor which theme to use.
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

int run(int argc, char* argv[], const Options& options)
{
    prepareMemory();
    std::signal(SIGPIPE, SIG_IGN);
    UnixSignals::block();
    prepareQt();
    const QGuiApplication application(argc, argv);
    const UnixSignals unixSignals;
    prepareIcons();

    Compositor compositor(options);
    QObject::connect(&unixSignals, &UnixSignals::terminationRequested, &application, &QCoreApplication::quit);
    QObject::connect(&compositor.busService(), &BusService::disconnected, &application, [] {
        qCritical("the connection to the bus is lost");
        QCoreApplication::exit(Failed);
    });
    QObject::connect(&compositor.scriptPlayer(), &ScriptPlayer::failed, &application, [](const Error& error) {
        qCritical("%s", qUtf8Printable(error.text));
        QCoreApplication::exit(Failed);
    });
    // Queued, since a first step may end the program before it runs.
    QObject::connect(
        &compositor.scriptPlayer(), &ScriptPlayer::ended, &application,
        [](int status) {
            std::printf("EXIT_STATUS=%d\n", status);
            std::fflush(stdout);
            QCoreApplication::exit(status);
        },
        Qt::QueuedConnection);
    if (const MaybeError error = compositor.start()) {
        qCritical("%s", qUtf8Printable(error->text));
        return Failed;
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
    CommandLine commandLine(CommandLine::Kind::Program, text(), Options::declarations());
    if (const std::optional<ExitStatus> status = commandLine.parse(arguments)) {
        return *status;
    }
    const QStringList words = commandLine.parser().positionalArguments();
    if (!words.isEmpty()) {
        return CommandLine::refuse(text().command, QStringLiteral("unexpected argument '%1'").arg(words.constFirst()));
    }
    Log::install();
    Keymap::checkEnvironment();
    const Result<Options> options = Options::read(commandLine.parser());
    if (const auto* const error = std::get_if<Error>(&options)) {
        return CommandLine::refuse(text().command, error->text);
    }
    return run(argc, argv, std::get<Options>(options));
}
