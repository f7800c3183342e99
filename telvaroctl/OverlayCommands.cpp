// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Command.h"
#include "Service.h"

#include <TelvaroRequests.h>

#include <QString>

namespace {

ExitStatus overlay(const QStringList& arguments)
{
    const QString command = QStringLiteral("overlay");
    const bool isShow = arguments.constFirst() == QLatin1String("show");
    if (isShow && arguments.size() < 2) {
        return usageError(command, QStringLiteral("TEXT is missing"));
    }
    if (!isShow && arguments.size() > 1) {
        return usageError(command, QStringLiteral("unexpected argument '%1'").arg(arguments.at(1)));
    }
    const bool isDone = Service::connect()
        && Service::waitFor(isShow ? TelvaroRequests::showGlobalOverlay(arguments.at(1))
                                   : TelvaroRequests::hideGlobalOverlay());
    return isDone ? Done : Failed;
}

} // namespace

QList<Command> overlayCommands()
{
    return {
        {"overlay",
         "Shows a message over everything on the screen, or hides it.",
         "show TEXT | hide",
         "",
         noOptions,
         [](const QCommandLineParser& /*parser*/, const QStringList& arguments) {
             return overlay(arguments);
         },
         {QStringLiteral("show|hide"), QStringLiteral("TEXT")},
         1},
    };
}
