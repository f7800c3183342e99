// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Command.h"

#include "CommandLine.h"
#include "Console.h"
#include "Service.h"
#include "Suggestion.h"
#include "TimeLimit.h"

#include <QRegularExpression>
#include <QString>

#include <algorithm>
#include <cmath>

namespace {

const QString cJson = QStringLiteral("json");
const QString cTimeout = QStringLiteral("timeout");
const QString cBus = QStringLiteral("bus");
const QString cVerbose = QStringLiteral("verbose");
const QString cAnyNumber = QStringLiteral("...");
const int cDefaultTimeout = 2000;
const double cLongestSeconds = 1e6;

QString typed(const QString& commandName)
{
    return QStringLiteral("telvaroctl %1").arg(commandName);
}

bool isLiteral(const QString& word)
{
    return word != word.toUpper();
}

QString synopsisOf(const Command& command)
{
    QStringList parts;
    if (*command.synopsis != '\0') {
        parts.append(QLatin1String(command.synopsis));
    } else {
        for (int index = 0; index < command.arguments.size(); ++index) {
            QString part = command.arguments.at(index);
            part.replace(QLatin1String("|"), QLatin1String(" | "));
            parts.append(index < command.requiredArguments ? part : QStringLiteral("[%1]").arg(part));
        }
    }
    parts.prepend(QStringLiteral("[options]"));
    return parts.join(QLatin1Char(' '));
}

CommandLine::Text textOf(const Command& command)
{
    const QLatin1String details(command.details);
    CommandLine::Text text;
    text.command = typed(QLatin1String(command.name));
    text.synopsis = synopsisOf(command);
    text.description = QLatin1String(command.summary);
    if (!details.isEmpty()) {
        text.description += QLatin1String("\n\n") + details;
    }
    return text;
}

/// Puts the options first, so that a negative number is an argument and not an option.
QStringList optionsFirst(const QStringList& arguments, const QList<QCommandLineOption>& options)
{
    static const QRegularExpression cNegativeNumber(QStringLiteral("^-[0-9]"));
    QStringList front;
    QStringList back;
    for (int index = 0; index < arguments.size(); ++index) {
        const QString& argument = arguments.at(index);
        if (argument == QLatin1String("--")) {
            back += arguments.mid(index + 1);
            break;
        }
        if (argument.size() < 2 || argument.at(0) != QLatin1Char('-') || cNegativeNumber.match(argument).hasMatch()) {
            back.append(argument);
            continue;
        }
        front.append(argument);
        const bool hasValue =
            std::any_of(options.begin(), options.end(), [&argument](const QCommandLineOption& option) {
                return !option.valueName().isEmpty() && argument == QStringLiteral("--") + option.names().constFirst();
            });
        if (hasValue && index + 1 == arguments.size()) {
            // Nothing may follow that could be taken for the missing value.
            return front;
        }
        if (hasValue) {
            front.append(arguments.at(++index));
        }
    }
    return front + QStringList(QStringLiteral("--")) + back;
}

/// Returns what is wrong with a value, or an empty string.
QString fault(const QString& value, const QString& placeholder)
{
    static const QStringList cNeverEmpty = {QStringLiteral("APP"), QStringLiteral("UUID"), QStringLiteral("PROCESS"),
                                            QStringLiteral("DIRECTORY"), QStringLiteral("FILE")};
    if (value.isEmpty() && cNeverEmpty.contains(placeholder)) {
        return QStringLiteral("%1 is empty").arg(placeholder);
    }
    const QStringList words = wordsOf(placeholder);
    if (words.size() < placeholder.split(QLatin1Char('|')).size() || words.contains(value)) {
        return {};
    }
    const QString others = words.mid(0, words.size() - 1).join(QStringLiteral("', '"));
    return QStringLiteral("'%1' is neither '%2' nor '%3'%4")
        .arg(value, others, words.constLast(), Suggestion::question(value, words));
}

QString faultOf(const Command& command, const QCommandLineParser& parser, const QStringList& arguments)
{
    const bool isOpen = !command.arguments.isEmpty() && command.arguments.constLast().endsWith(cAnyNumber);
    if (arguments.size() > command.arguments.size() && !isOpen) {
        return QStringLiteral("unexpected argument '%1'").arg(arguments.at(command.arguments.size()));
    }
    if (arguments.size() < command.requiredArguments) {
        return QStringLiteral("%1 is missing").arg(command.arguments.at(arguments.size()));
    }
    for (int index = 0; index < arguments.size(); ++index) {
        QString text = fault(arguments.at(index), command.arguments.value(index, command.arguments.constLast()));
        if (!text.isEmpty()) {
            return text;
        }
    }
    const QList<QCommandLineOption> options = command.options();
    for (const QCommandLineOption& option : options) {
        const QString name = option.names().constFirst();
        if (option.valueName().isEmpty() || !parser.isSet(option)) {
            continue;
        }
        if (parser.values(option).size() > 1 && !option.valueName().endsWith(cAnyNumber)) {
            return QStringLiteral("--%1 is given more than once").arg(name);
        }
        const QString text = fault(parser.value(option), option.valueName());
        if (!text.isEmpty()) {
            return QStringLiteral("--%1: %2").arg(name, text);
        }
    }
    return {};
}

/// Returns the milliseconds of a number of seconds.
std::optional<int> toMilliseconds(const QString& seconds)
{
    bool isNumber = false;
    const double number = seconds.toDouble(&isNumber);
    if (!isNumber || !(number > 0) || number > cLongestSeconds) {
        return {};
    }
    return std::max(1, static_cast<int>(std::lround(number * 1000)));
}

/// Applies the options that all commands have, and the limit of the environment to one that `isLimited`. Returns what
/// is wrong with them, or an empty string.
QString applyCommonOptions(const QCommandLineParser& parser, bool isLimited)
{
    const QString environment = QStringLiteral("TELVAROCTL_TIMEOUT");
    const bool isInEnvironment =
        isLimited && !parser.isSet(cTimeout) && !qEnvironmentVariableIsEmpty("TELVAROCTL_TIMEOUT");
    const QString seconds =
        parser.isSet(cTimeout) ? parser.value(cTimeout) : qEnvironmentVariable("TELVAROCTL_TIMEOUT");
    std::optional<int> timeout = cDefaultTimeout;
    if (parser.isSet(cTimeout) || isInEnvironment) {
        timeout = toMilliseconds(seconds);
    }
    if (!timeout) {
        return QStringLiteral("%1: '%2' is not a number of seconds above 0 and up to %3")
            .arg(isInEnvironment ? environment : QStringLiteral("--timeout"), seconds)
            .arg(cLongestSeconds, 0, 'f', 0);
    }
    if (parser.isSet(cBus)) {
        const QString bus = parser.value(cBus);
        const QStringList words = wordsOf(QStringLiteral("session|system"));
        if (!words.contains(bus) && !bus.contains(QLatin1Char(':'))) {
            return QStringLiteral("--bus: '%1' is neither 'session', 'system' nor an address%2")
                .arg(bus, Suggestion::question(bus, words));
        }
        Service::chooseBus(bus);
    }
    setVerbose(parser.isSet(cVerbose));
    TimeLimit::start(*timeout, Service::noAnswer());
    return {};
}

CommandLine::Text programText()
{
    int width = 0;
    for (const Command& command : allCommands()) {
        width = std::max(width, QLatin1String(command.name).size());
    }
    QString list;
    for (const Command& command : allCommands()) {
        list +=
            QStringLiteral("\n  %1  %2").arg(QLatin1String(command.name), -width).arg(QLatin1String(command.summary));
    }
    return {QStringLiteral("telvaroctl"), QStringLiteral("[options] COMMAND [ARGUMENT]..."),
            QStringLiteral("Reads and changes what the compositor service of the device shows.\n\nCommands:") + list,
            QStringLiteral("'telvaroctl help COMMAND' prints the help of a command.\n\n"
                           "Exit status: 0 done, 1 failed, 2 wrong usage.")};
}

} // namespace

const QList<Command>& allCommands()
{
    static const QList<Command> cCommands = statusCommands() + viewCommands() + processCommands() + screenCommands()
        + overlayCommands() + notificationCommands() + screenShotCommands() + inputCommands() + waitCommands()
        + watchCommands() + recordCommands() + helpCommands() + completeCommands();
    return cCommands;
}

const Command* findCommand(const QString& name)
{
    const QList<Command>& commands = allCommands();
    const auto command = std::find_if(commands.begin(), commands.end(), [&name](const Command& candidate) {
        return name == QLatin1String(candidate.name);
    });
    return command == commands.end() ? nullptr : &*command;
}

QStringList commandNames()
{
    QStringList names;
    for (const Command& command : allCommands()) {
        names.append(QLatin1String(command.name));
    }
    return names;
}

QList<QCommandLineOption> commonOptions()
{
    return {
        {cTimeout, QStringLiteral("Fails after this time; 2 s by default, but unlimited for commands that wait."),
         QStringLiteral("SECONDS")},
        {cBus, QStringLiteral("The bus of the service, if it is not the one that the library was built for."),
         QStringLiteral("session|system|ADDRESS")},
        {cVerbose, QStringLiteral("Prints what the library logs.")},
    };
}

QList<QCommandLineOption> optionsOf(const Command& command)
{
    return command.options() + commonOptions();
}

QStringList wordsOf(const QString& placeholder)
{
    QStringList words = placeholder.split(QLatin1Char('|'));
    words.erase(std::remove_if(words.begin(), words.end(),
                               [](const QString& word) {
                                   return !isLiteral(word);
                               }),
                words.end());
    return words;
}

ExitStatus execute(const Command& command, const QStringList& arguments)
{
    const QList<QCommandLineOption> options = optionsOf(command);
    CommandLine commandLine(CommandLine::Kind::Subcommand, textOf(command), options);
    if (const std::optional<ExitStatus> status = commandLine.parse(optionsFirst(arguments, options))) {
        return *status;
    }
    const QCommandLineParser& parser = commandLine.parser();
    const QString name = QLatin1String(command.name);
    QString fault = faultOf(command, parser, parser.positionalArguments());
    if (fault.isEmpty()) {
        fault = applyCommonOptions(parser, command.isLimited);
    }
    return fault.isEmpty() ? command.run(parser, parser.positionalArguments()) : usageError(name, fault);
}

ExitStatus run(const QStringList& arguments)
{
    const CommandLine::Text text = programText();
    CommandLine commandLine(CommandLine::Kind::Program, text, commonOptions() + jsonOption());
    if (const std::optional<ExitStatus> status = commandLine.parse(arguments)) {
        return *status;
    }
    const QStringList rest = commandLine.parser().positionalArguments();
    if (rest.isEmpty()) {
        return CommandLine::refuse(text.command, QStringLiteral("a command is missing"));
    }
    const Command* const command = findCommand(rest.constFirst());
    if (command == nullptr) {
        return unknownCommand(rest.constFirst());
    }
    QStringList leading = arguments.mid(0, arguments.size() - rest.size());
    leading.removeAll(QStringLiteral("--"));
    return execute(*command, leading + rest.mid(1));
}

ExitStatus unknownCommand(const QString& name)
{
    return CommandLine::refuse(
        QStringLiteral("telvaroctl"),
        QStringLiteral("unknown command '%1'%2").arg(name, Suggestion::question(name, commandNames())));
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

ExitStatus usageError(const QString& command, const QString& message)
{
    return CommandLine::refuse(typed(command), message);
}

std::optional<qint64> toNumber(const QString& command, const QString& text, qint64 minimum, qint64 maximum)
{
    bool isNumber = false;
    const qint64 number = text.toLongLong(&isNumber);
    if (!isNumber || number < minimum || number > maximum) {
        usageError(command, QStringLiteral("'%1' is not a number from %2 to %3").arg(text).arg(minimum).arg(maximum));
        return {};
    }
    return number;
}

std::optional<int> requestedTimeout(const QCommandLineParser& parser)
{
    return parser.isSet(cTimeout) ? toMilliseconds(parser.value(cTimeout)) : std::nullopt;
}
