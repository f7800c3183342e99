// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "ExitStatus.h"

#include <QCommandLineOption>
#include <QList>
#include <QStringList>

#include <functional>
#include <optional>

class QCommandLineParser;
class QString;

/// One subcommand of the tool. Help, usage errors, suggestions and completions are derived from it.
///
/// The values of options and arguments are named by placeholders: words that are divided by "|", of which those in
/// lower case are meant literally. A placeholder without one in upper case accepts no other word. An option may be
/// repeated if its placeholder ends with "...".
struct Command
{
    const char* name;
    /// One line for the list of commands.
    const char* summary;
    /// Positional arguments as the usage line shows them; empty if they follow from `arguments`.
    const char* synopsis;
    /// Printed below the summary in the help of the command; may be empty.
    const char* details;
    /// Returns the options beside those that all commands have.
    std::function<QList<QCommandLineOption>()> options;
    /// Receives the parsed options and the positional arguments that follow the command's name.
    std::function<ExitStatus(const QCommandLineParser&, const QStringList&)> run;
    /// The placeholders of the positional arguments. One that ends with "..." at the end stands for any number.
    QStringList arguments = {};
    /// How many of them must be there.
    int requiredArguments = 0;
    /// Whether the time limit of the environment applies.
    bool isLimited = true;
};

/// Every command, in the order of the help.
const QList<Command>& allCommands();
/// Returns nullptr if there is no command of that name.
const Command* findCommand(const QString& name);
QStringList commandNames();

/// The options that all commands have, and that may also stand before the command.
QList<QCommandLineOption> commonOptions();
/// Those and the command's own.
QList<QCommandLineOption> optionsOf(const Command& command);

/// Returns the words of a placeholder that are meant literally.
QStringList wordsOf(const QString& placeholder);

/// Parses the arguments of the program and runs the command among them.
ExitStatus run(const QStringList& arguments);
/// Parses the arguments that follow the command's name and runs the command.
ExitStatus execute(const Command& command, const QStringList& arguments);

/// For commands without options of their own.
QList<QCommandLineOption> noOptions();

/// `--json`, for commands that print data.
QList<QCommandLineOption> jsonOption();
bool isJsonWanted(const QCommandLineParser& parser);

/// Prints to standard error what is wrong with the arguments and where the help is.
ExitStatus usageError(const QString& command, const QString& message);
ExitStatus unknownCommand(const QString& name);

/// Returns the number of a whole number from `minimum` to `maximum`, or prints what is wrong.
std::optional<qint64> toNumber(const QString& command, const QString& text, qint64 minimum, qint64 maximum);

/// Returns the time limit in milliseconds that was asked for on the command line.
std::optional<int> requestedTimeout(const QCommandLineParser& parser);

QList<Command> statusCommands();
QList<Command> viewCommands();
QList<Command> processCommands();
QList<Command> overlayCommands();
QList<Command> screenCommands();
QList<Command> notificationCommands();
QList<Command> screenShotCommands();
QList<Command> inputCommands();
QList<Command> waitCommands();
QList<Command> watchCommands();
QList<Command> recordCommands();
QList<Command> helpCommands();
QList<Command> completeCommands();
