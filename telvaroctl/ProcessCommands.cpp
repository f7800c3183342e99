// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Command.h"
#include "Console.h"
#include "Json.h"
#include "Service.h"

#include <TelvaroTaskSwitcher.h>
#include <TelvaroTaskSwitcherDBusConnector.h>

#include <QDBusPendingReply>
#include <QJsonObject>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QString>
#include <QStringList>

#include <algorithm>
#include <cstdint>
#include <optional>

namespace {

using View = TelvaroViewModel::View;

const QString cPidOf = QStringLiteral("pidof");

/// Returns the ids of the processes of that name, or prints why there are none.
QStringList processIds(const QString& name)
{
    if (name.startsWith(QLatin1Char('-'))) {
        printError(QStringLiteral("%1 takes '%2' for an option").arg(cPidOf, name));
        return {};
    }
    const uint32_t pid = TelvaroTaskSwitcherDBusConnector().processNameToPid(name);
    if (pid == UINT32_MAX) {
        printError(QStandardPaths::findExecutable(cPidOf).isEmpty()
                       ? QStringLiteral("there is no program %1, which finds processes").arg(cPidOf)
                       : QStringLiteral("no process is called '%1'").arg(name));
        return {};
    }
    if (pid == 0) {
        // The library says only in its log which ones.
        static const QRegularExpression cNoNumber(QStringLiteral("[^0-9]+"));
        return lastWarning().split(cNoNumber, Qt::SkipEmptyParts);
    }
    return {QString::number(pid)};
}

/// Returns the id of the one process of that name, or prints why there is none.
std::optional<uint32_t> processId(const QString& name)
{
    const QStringList pids = processIds(name);
    if (pids.size() > 1) {
        printError(QStringLiteral("several processes are called '%1': %2").arg(name, pids.join(QLatin1Char(' '))));
    }
    return pids.size() == 1 ? std::optional<uint32_t>(pids.constFirst().toUInt()) : std::nullopt;
}

uint32_t currentProcess(const TelvaroTaskSwitcher& switcher)
{
    return switcher.getViews()->getView(switcher.getCurrentView()).pid;
}

ExitStatus bringToTop(const QString& name)
{
    if (!Service::connect()) {
        return Failed;
    }
    const std::optional<uint32_t> pid = processId(name);
    if (!pid) {
        return Failed;
    }
    const ExitStatus status = Service::withTaskSwitcher([&name, pid](TelvaroTaskSwitcher& switcher) {
        const QList<View>& views = switcher.getViews()->getViews();
        const auto view = std::find_if(views.begin(), views.end(), [pid](const View& candidate) {
            return candidate.pid == *pid;
        });
        if (view == views.end()) {
            printError(QStringLiteral("the process '%1' (%2) has no view").arg(name).arg(*pid));
            return Failed;
        }
        return Service::waitFor(switcher.switchTo(view->uuid)) ? Done : Failed;
    });
    if (status != Done) {
        return status;
    }
    // Reads again: a service that accepts need not follow.
    return Service::withTaskSwitcher([&name, pid](const TelvaroTaskSwitcher& switcher) {
        if (currentProcess(switcher) != *pid) {
            printError(QStringLiteral("the service did not make a view of '%1' the current one").arg(name));
            return Failed;
        }
        return Done;
    });
}

ExitStatus isCurrent(const QString& name)
{
    if (!Service::connect()) {
        return Failed;
    }
    const QStringList pids = processIds(name);
    if (pids.isEmpty()) {
        return Failed;
    }
    return Service::withTaskSwitcher([&pids](const TelvaroTaskSwitcher& switcher) {
        return pids.contains(QString::number(currentProcess(switcher))) ? Done : Failed;
    });
}

ExitStatus showPid(const QCommandLineParser& parser, const QStringList& arguments)
{
    const std::optional<uint32_t> pid = processId(arguments.constFirst());
    if (!pid) {
        return Failed;
    }
    if (isJsonWanted(parser)) {
        printJson(QJsonObject{{QStringLiteral("pid"), static_cast<qint64>(*pid)}});
    } else {
        printLine(QString::number(*pid));
    }
    return Done;
}

} // namespace

QList<Command> processCommands()
{
    const QStringList process(QStringLiteral("PROCESS"));
    return {
        {"top", "Makes the view of a process, given by its name, the current one.", "",
         "Reads the current view back and exits with 1 if it is not one of that process.", noOptions,
         [](const QCommandLineParser& /*parser*/, const QStringList& arguments) {
             return bringToTop(arguments.constFirst());
         },
         process, 1},
        {"is-current", "Tests whether the current view belongs to a process of a name.", "",
         "Prints nothing; exits with 0 if it does, else with 1.", noOptions,
         [](const QCommandLineParser& /*parser*/, const QStringList& arguments) {
             return isCurrent(arguments.constFirst());
         },
         process, 1},
        {"pid", "Prints the process id of the one running process of a name.", "", "", jsonOption, showPid, process, 1},
    };
}
