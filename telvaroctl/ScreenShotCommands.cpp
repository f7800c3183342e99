// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Command.h"
#include "Console.h"
#include "Json.h"
#include "Service.h"
#include "TimeLimit.h"

#include <TelvaroRequests.h>

#include <QDBusPendingReply>
#include <QDir>
#include <QJsonObject>
#include <QString>

namespace {

ExitStatus captureScreenShot(const QCommandLineParser& parser, const QStringList& arguments)
{
    // The service has a working directory of its own.
    const QString directory = QDir(arguments.constFirst()).absolutePath();
    if (!QDir(directory).exists()) {
        printError(QStringLiteral("there is no directory '%1'").arg(directory));
        return Failed;
    }
    if (!Service::connect()) {
        return Failed;
    }
    const QDBusPendingReply<QString> reply = TelvaroRequests::captureScreenShot(directory, TimeLimit::beyond());
    if (!Service::waitFor(reply)) {
        return Failed;
    }
    if (isJsonWanted(parser)) {
        printJson(QJsonObject{{QStringLiteral("path"), reply.value()}});
    } else {
        printLine(reply.value());
    }
    return Done;
}

} // namespace

QList<Command> screenShotCommands()
{
    return {
        {"screenshot",
         "Stores a screenshot in a directory and prints its path.",
         "",
         "",
         jsonOption,
         captureScreenShot,
         {QStringLiteral("DIRECTORY")},
         1},
    };
}
