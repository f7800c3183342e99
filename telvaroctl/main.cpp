// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Command.h"
#include "Console.h"

#include <QCoreApplication>
#include <QString>
#include <QStringList>

#include <algorithm>

namespace {

QList<Command> allCommands()
{
    return statusCommands() + viewCommands() + screenCommands() + overlayCommands() + notificationCommands()
        + screenShotCommands() + watchCommands();
}

QString help(const QList<Command>& commands)
{
    int width = 0;
    for (const Command& command : commands) {
        width = std::max(width, QLatin1String(command.name).size());
    }
    QString text = QStringLiteral("Usage: telvaroctl COMMAND [ARGUMENT]...\n\n"
                                  "Reads and changes what the compositor service of the device shows.\n\n"
                                  "Commands:\n");
    for (const Command& command : commands) {
        text += QStringLiteral("  %1  %2\n")
                    .arg(QString(QLatin1String(command.name)).leftJustified(width), QLatin1String(command.summary));
    }
    text += QStringLiteral("\nOptions:\n"
                           "  -h, --help     Shows this help; after a command, that command's.\n"
                           "  -v, --version  Shows the version.\n\n"
                           "Exit status: 0 done, 1 failed, 2 wrong usage.\n");
    return text;
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    installMessageHandler();

    const QList<Command> commands = allCommands();
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    const QString name = arguments.value(0);
    if (name == QLatin1String("-h") || name == QLatin1String("--help")) {
        printText(help(commands));
        return Done;
    }
    if (name == QLatin1String("-v") || name == QLatin1String("--version")) {
        printLine(QStringLiteral("telvaroctl " TELVARO_VERSION));
        return Done;
    }
    const auto command = std::find_if(commands.begin(), commands.end(), [&name](const Command& candidate) {
        return name == QLatin1String(candidate.name);
    });
    if (command == commands.end()) {
        printError(name.isEmpty() ? QStringLiteral("a command is missing")
                                  : QStringLiteral("unknown command '%1'").arg(name));
        printError(QStringLiteral("see 'telvaroctl --help'"));
        return Usage;
    }
    return execute(*command, arguments.mid(1));
}
