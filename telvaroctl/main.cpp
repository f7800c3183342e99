// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Command.h"
#include "CommandLine.h"
#include "Console.h"

#include <QCoreApplication>
#include <QString>
#include <QStringList>

#include <algorithm>

namespace {

QList<Command> allCommands()
{
    return statusCommands() + viewCommands() + screenCommands() + overlayCommands() + notificationCommands()
        + screenShotCommands() + watchCommands() + recordCommands();
}

CommandLine::Text textOf(const QList<Command>& commands)
{
    int width = 0;
    for (const Command& command : commands) {
        width = std::max(width, QLatin1String(command.name).size());
    }
    QString list;
    for (const Command& command : commands) {
        list +=
            QStringLiteral("\n  %1  %2").arg(QLatin1String(command.name), -width).arg(QLatin1String(command.summary));
    }
    return {QStringLiteral("telvaroctl"), QStringLiteral("[options] COMMAND [ARGUMENT]..."),
            QStringLiteral("Reads and changes what the compositor service of the device shows.\n\nCommands:") + list,
            QStringLiteral("'telvaroctl COMMAND --help' prints the help of a command.\n\n"
                           "Exit status: 0 done, 1 failed, 2 wrong usage.")};
}

} // namespace

int main(int argc, char* argv[])
{
    installMessageHandler();
    const QCoreApplication application(argc, argv);

    const QList<Command> commands = allCommands();
    const CommandLine::Text text = textOf(commands);
    CommandLine commandLine(CommandLine::Kind::Program, text, {});
    if (const std::optional<ExitStatus> status = commandLine.parse(QCoreApplication::arguments().mid(1))) {
        return *status;
    }
    const QStringList arguments = commandLine.parser().positionalArguments();
    if (arguments.isEmpty()) {
        return CommandLine::refuse(text.command, QStringLiteral("a command is missing"));
    }
    const QString& name = arguments.constFirst();
    const auto command = std::find_if(commands.begin(), commands.end(), [&name](const Command& candidate) {
        return name == QLatin1String(candidate.name);
    });
    if (command == commands.end()) {
        return CommandLine::refuse(text.command, QStringLiteral("unknown command '%1'").arg(name));
    }
    return execute(*command, arguments.mid(1));
}
