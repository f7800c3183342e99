// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Command.h"
#include "Console.h"
#include "Json.h"

#include <TelvaroScreenShotDBusConnector.h>

#include <QDir>
#include <QJsonObject>
#include <QString>

namespace {

ExitStatus captureScreenShot(const QCommandLineParser& parser, const QStringList& arguments)
{
    if (arguments.size() != 1) {
        return wrongArgumentCount("screenshot");
    }
    if (!isOnCompositorDevice()) {
        return Failed;
    }
    // The path is made absolute here, because the service has a working directory of its own.
    const std::optional<QString> answer =
        TelvaroScreenShotDBusConnector().captureScreenShot(QDir(arguments.constFirst()).absolutePath());
    if (!answer) {
        return Failed;
    }
    if (isJsonWanted(parser)) {
        printJson(QJsonObject{{QStringLiteral("path"), *answer}});
    } else {
        printLine(*answer);
    }
    return Done;
}

} // namespace

QList<Command> screenShotCommands()
{
    return {
        {"screenshot", "Stores a screenshot in a directory and prints the path that the service returns.", "DIR", "",
         jsonOption, captureScreenShot},
    };
}
