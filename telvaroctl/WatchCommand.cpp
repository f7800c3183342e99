// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Command.h"
#include "Console.h"

#include <TelvaroDBusDefinitions.h>
#include <TelvaroScreenDBusConnector.h>
#include <TelvaroTaskSwitcherDBusConnector.h>

#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>
#include <QSocketNotifier>
#include <QString>
#include <QTimer>

#include <csignal>

#include <sys/signalfd.h>
#include <unistd.h>

namespace {

/// A descriptor that becomes readable when the user or the system asks the program to end, instead of ending it.
class InterruptDescriptor
{
public:
    InterruptDescriptor()
    {
        sigset_t interrupts;
        sigemptyset(&interrupts);
        for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
            sigaddset(&interrupts, signal);
        }
        // Before Qt's D-Bus thread starts, which inherits the mask.
        ::pthread_sigmask(SIG_BLOCK, &interrupts, nullptr);
        mDescriptor = ::signalfd(-1, &interrupts, SFD_CLOEXEC);
    }

    ~InterruptDescriptor()
    {
        ::close(mDescriptor);
    }

    Q_DISABLE_COPY(InterruptDescriptor)

    int get() const
    {
        return mDescriptor;
    }

private:
    int mDescriptor;
};

void report(bool asJson, const char* signal, const QJsonValue& value)
{
    if (asJson) {
        QJsonObject object{{QStringLiteral("signal"), QLatin1String(signal)}};
        if (!value.isUndefined()) {
            object.insert(QStringLiteral("value"), value);
        }
        printLine(QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact)));
        return;
    }
    const QString text = printable(value.toVariant().toString());
    printLine(text.isEmpty() ? QString(QLatin1String(signal)) : QLatin1String(signal) + QLatin1Char(' ') + text);
}

ExitStatus watch(const QCommandLineParser& parser, const QStringList& arguments)
{
    if (!arguments.isEmpty()) {
        return wrongArgumentCount("watch");
    }
    if (!isOnCompositorDevice()) {
        return Failed;
    }
    const InterruptDescriptor interrupt;
    QSocketNotifier interruptNotifier(interrupt.get(), QSocketNotifier::Read);
    QObject::connect(&interruptNotifier, &QSocketNotifier::activated, QCoreApplication::instance(),
                     &QCoreApplication::quit);

    const bool asJson = isJsonWanted(parser);
    const TelvaroTaskSwitcherDBusConnector taskSwitcher;
    QObject::connect(&taskSwitcher, &TelvaroTaskSwitcherDBusConnector::currentViewChanged,
                     [asJson](const QString& newViewUuid) {
                         report(asJson, "currentViewChanged", newViewUuid);
                     });
    QObject::connect(&taskSwitcher, &TelvaroTaskSwitcherDBusConnector::viewsChanged, [asJson]() {
        report(asJson, "viewsChanged", QJsonValue::Undefined);
    });
    const TelvaroScreenDBusConnector screen;
    QObject::connect(&screen, &TelvaroScreenDBusConnector::screenSaverActiveChanged, [asJson](bool isActive) {
        report(asJson, "screenSaverActiveChanged", isActive);
    });
    QObject::connect(&screen, &TelvaroScreenDBusConnector::screenOrientationChanged,
                     [asJson](const QString& orientation) {
                         report(asJson, "screenOrientationChanged", orientation);
                     });
    QObject::connect(&screen, &TelvaroScreenDBusConnector::fullScreenChanged, [asJson](bool isFullScreen) {
        report(asJson, "fullScreenChanged", isFullScreen);
    });

    // Said from the event loop, since Qt holds signals back until that runs, and after a blocking query, since the bus
    // knows the subscriptions then.
    QTimer::singleShot(0, &taskSwitcher, [&taskSwitcher]() {
        taskSwitcher.isInterfaceValid();
        printError(QStringLiteral("watching %1").arg(TelvaroDBusDefinitions::getServiceName()));
    });
    QCoreApplication::exec();
    return Done;
}

} // namespace

QList<Command> watchCommands()
{
    return {
        {"watch", "Prints each change signal as it comes, until interrupted.", "",
         "Says 'watching' on standard error once it listens. A service that is not there yet\nis waited for.",
         jsonOption, watch},
    };
}
