// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Command.h"

#include "CommandLine.h"
#include "Console.h"
#include "ManifestAdvice.h"

#include <TelvaroDeviceDistinction.h>

#include <QString>

namespace {

const QString cJson = QStringLiteral("json");

CommandLine::Text textOf(const Command& command)
{
    const QLatin1String synopsis(command.synopsis);
    const QLatin1String details(command.details);
    CommandLine::Text text;
    text.command = QStringLiteral("telvaroctl %1").arg(QLatin1String(command.name));
    text.synopsis = QStringLiteral("[options]") + (synopsis.isEmpty() ? QString() : QLatin1Char(' ') + synopsis);
    text.description = QLatin1String(command.summary);
    if (!details.isEmpty()) {
        text.description += QLatin1String("\n\n") + details;
    }
    return text;
}

} // namespace

ExitStatus execute(const Command& command, const QStringList& arguments)
{
    CommandLine commandLine(CommandLine::Kind::Subcommand, textOf(command), command.options());
    if (const std::optional<ExitStatus> status = commandLine.parse(arguments)) {
        return *status;
    }
    return command.run(commandLine.parser(), commandLine.parser().positionalArguments());
}

QList<QCommandLineOption> noOptions()
{
    return {};
}

QList<QCommandLineOption> jsonOption()
{
    return {{cJson, QStringLiteral("Prints JSON.")}};
}

bool isJsonWanted(const QCommandLineParser& parser)
{
    return parser.isSet(cJson);
}

ExitStatus usageError(const char* command, const QString& message)
{
    return CommandLine::refuse(QStringLiteral("telvaroctl %1").arg(QLatin1String(command)), message);
}

ExitStatus wrongArgumentCount(const char* command)
{
    return usageError(command, QStringLiteral("wrong number of arguments"));
}

bool isOnCompositorDevice()
{
    if (!TelvaroDeviceDistinction::isCompositorDevice()) {
        printError(QStringLiteral("this is not a compositor device: %1").arg(manifestAdvice()));
        return false;
    }
    return true;
}

ExitStatus doneUnlessWarned()
{
    return warningCount() == 0 ? Done : Failed;
}
