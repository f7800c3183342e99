// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "ExitStatus.h"

#include <QCommandLineOption>
#include <QList>
#include <QStringList>

#include <functional>

class QCommandLineParser;
class QString;

/// One subcommand of the tool.
struct Command
{
    const char* name;
    /// One line for the list of commands.
    const char* summary;
    /// Positional arguments as the usage line shows them.
    const char* synopsis;
    /// Printed below the summary in the help of the command; may be empty.
    const char* details;
    /// Returns the options beside `--help`.
    std::function<QList<QCommandLineOption>()> options;
    /// Receives the parsed options and the positional arguments that follow the command's name.
    std::function<ExitStatus(const QCommandLineParser&, const QStringList&)> run;
};

/// Parses the arguments that follow the command's name and runs the command.
ExitStatus execute(const Command& command, const QStringList& arguments);

/// For commands without options of their own.
QList<QCommandLineOption> noOptions();

/// `--json`, for commands that print data.
QList<QCommandLineOption> jsonOption();
bool isJsonWanted(const QCommandLineParser& parser);

/// Prints to standard error what is wrong with the arguments and where the help is.
ExitStatus usageError(const char* command, const QString& message);
ExitStatus wrongArgumentCount(const char* command);

/// On a device without the compositor the library is silent and does nothing, so a command asks first. Where this is
/// not a compositor device, prints so to standard error.
bool isOnCompositorDevice();

/// Returns Done, or Failed if the library has warned: it does so in operations that report failure by an empty result,
/// or not at all.
ExitStatus doneUnlessWarned();

QList<Command> statusCommands();
QList<Command> viewCommands();
QList<Command> overlayCommands();
QList<Command> screenCommands();
QList<Command> notificationCommands();
QList<Command> screenShotCommands();
QList<Command> watchCommands();
QList<Command> recordCommands();
