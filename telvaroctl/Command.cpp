// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Command.h"

#include "Console.h"

#include <TelvaroDeviceDistinction.h>

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QString>

#include <cstring>

namespace {

const QString cJson = QStringLiteral("json");

QString help(const Command& command, const QCommandLineParser& parser)
{
    QString text = QStringLiteral("Usage: telvaroctl %1 [options]").arg(QLatin1String(command.name));
    if (std::strlen(command.synopsis) > 0) {
        text += QLatin1Char(' ') + QLatin1String(command.synopsis);
    }
    text += QLatin1String("\n\n") + QLatin1String(command.summary) + QLatin1Char('\n');
    if (std::strlen(command.details) > 0) {
        text += QLatin1Char('\n') + QLatin1String(command.details) + QLatin1Char('\n');
    }
    // The parser's own text begins with a usage line that knows no subcommands.
    const QString parserText = parser.helpText();
    return text + QLatin1Char('\n') + parserText.mid(parserText.indexOf(QLatin1String("Options:"))).trimmed()
        + QLatin1Char('\n');
}

} // namespace

ExitStatus execute(const Command& command, const QStringList& arguments)
{
    QCommandLineParser parser;
    const QCommandLineOption helpOption({QStringLiteral("h"), QStringLiteral("help")},
                                        QStringLiteral("Shows this help."));
    parser.addOption(helpOption);
    command.declare(parser);

    if (!parser.parse(QStringList(QLatin1String(command.name)) + arguments)) {
        return usageError(command.name, parser.errorText());
    }
    if (parser.isSet(helpOption)) {
        printText(help(command, parser));
        return Done;
    }
    return command.run(parser, parser.positionalArguments());
}

void noOptions(QCommandLineParser& /*parser*/)
{
}

void jsonOption(QCommandLineParser& parser)
{
    parser.addOption(QCommandLineOption(cJson, QStringLiteral("Prints JSON.")));
}

bool isJsonWanted(const QCommandLineParser& parser)
{
    return parser.isSet(cJson);
}

ExitStatus usageError(const char* command, const QString& message)
{
    printError(message);
    printError(QStringLiteral("see 'telvaroctl %1 --help'").arg(QLatin1String(command)));
    return Usage;
}

ExitStatus wrongArgumentCount(const char* command)
{
    return usageError(command, QStringLiteral("wrong number of arguments"));
}

bool isOnCompositorDevice()
{
    if (!TelvaroDeviceDistinction::isCompositorDevice()) {
        printError(QStringLiteral("this is not a compositor device by its manifest"));
        return false;
    }
    return true;
}

ExitStatus doneUnlessWarned()
{
    return warningCount() == 0 ? Done : Failed;
}
