// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Command.h"

#include <QString>

namespace {

ExitStatus help(const QStringList& arguments)
{
    const QStringList helpOption(QStringLiteral("--help"));
    if (arguments.isEmpty()) {
        return run(helpOption);
    }
    const Command* const command = findCommand(arguments.constFirst());
    return command == nullptr ? unknownCommand(arguments.constFirst()) : execute(*command, helpOption);
}

} // namespace

QList<Command> helpCommands()
{
    return {
        {"help",
         "Prints the help of a command.",
         "",
         "",
         noOptions,
         [](const QCommandLineParser& /*parser*/, const QStringList& arguments) {
             return help(arguments);
         },
         {QStringLiteral("COMMAND")},
         0,
         false},
    };
}
