// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ViewLogger.h"

#include <TelvaroDeviceDistinction.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QSocketNotifier>
#include <QTextStream>

#include <csignal>
#include <cstdlib>

#include <sys/signalfd.h>

namespace {

/// Returns a signalfd that becomes readable on SIGINT and SIGTERM, so that the program can quit in an orderly way.
int makeInterruptDescriptor()
{
    sigset_t interrupts;
    sigemptyset(&interrupts);
    sigaddset(&interrupts, SIGINT);
    sigaddset(&interrupts, SIGTERM);
    // Must run before any thread is started, since threads inherit the mask.
    pthread_sigmask(SIG_BLOCK, &interrupts, nullptr);
    return signalfd(-1, &interrupts, SFD_CLOEXEC);
}

} // namespace

int main(int argc, char** argv)
{
    const int interruptDescriptor = makeInterruptDescriptor();
    QCoreApplication application(argc, argv);
    QSocketNotifier interruptNotifier(interruptDescriptor, QSocketNotifier::Read);
    QObject::connect(&interruptNotifier, &QSocketNotifier::activated, &application, &QCoreApplication::quit);

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Prints a line for every change of the compositor's views."));
    parser.addHelpOption();
    const QCommandLineOption awakeOption(
        QStringLiteral("keep-awake"),
        QStringLiteral("Disable the screen saver while a view of this application is current."),
        QStringLiteral("application id"));
    parser.addOption(awakeOption);
    parser.process(application);

    // On any other device the library silently does nothing, and this program would wait for ever.
    if (!TelvaroDeviceDistinction::isCompositorDevice()) {
        QTextStream(stderr) << "view-logger: this is not a device with the compositor service\n";
        return EXIT_FAILURE;
    }
    const ViewLogger logger(parser.value(awakeOption));
    return QCoreApplication::exec();
}
