// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QList>
#include <QStringList>

#include <functional>

class QCommandLineParser;
class QString;

enum ExitStatus
{
    Done = 0,
    Failed = 1,
    Usage = 2
};

/// One subcommand of the tool.
struct Command
{
    const char* name;
    /// One line for the list of commands.
    const char* summary;
    /// Positional arguments as the usage line shows them.
    const char* synopsis;
    /// What the help of the command says beyond the summary; may be empty.
    const char* details;
    /// Declares the options.
    std::function<void(QCommandLineParser&)> declare;
    /// Gets the parsed options and the positional arguments that follow the command's name.
    std::function<ExitStatus(const QCommandLineParser&, const QStringList&)> run;
};

/// Parses the arguments that follow the command's name and runs the command.
ExitStatus execute(const Command& command, const QStringList& arguments);

/// For commands without options of their own.
void noOptions(QCommandLineParser& parser);

/// "--json", for commands that print data.
void jsonOption(QCommandLineParser& parser);
bool isJsonWanted(const QCommandLineParser& parser);

/// Says on standard error what is wrong with the arguments and where help is.
ExitStatus usageError(const char* command, const QString& message);
ExitStatus wrongArgumentCount(const char* command);

/// On a device without the compositor the library is silent and does nothing, so a command asks first. Says so on
/// standard error where it is not a compositor device.
bool isOnCompositorDevice();

/// Done, unless the library has warned: operations that report failure by an empty result, or not at all, do.
ExitStatus doneUnlessWarned();

QList<Command> statusCommands();
QList<Command> viewCommands();
QList<Command> overlayCommands();
QList<Command> screenCommands();
QList<Command> notificationCommands();
QList<Command> screenShotCommands();
QList<Command> watchCommands();
