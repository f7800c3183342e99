// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "ExitStatus.h"

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

/// The command line of a program or of one of its subcommands: parses it, prints the help, the version and what is
/// wrong with the arguments. Needs no application object.
class CommandLine
{
public:
    struct Text
    {
        /// What is typed before the arguments: "telvaroctl views".
        QString command;
        /// The arguments as the usage line shows them.
        QString synopsis;
        QString description;
        /// Printed below the options; may be empty.
        QString notes;
    };
    enum class Kind
    {
        Program,
        /// Has no `--version`.
        Subcommand
    };

    CommandLine(Kind kind, const Text& text, const QList<QCommandLineOption>& options);

    /// Parses the arguments that follow the command. Returns the exit status when nothing is left to do: after
    /// `--help` and `--version`, and on wrong usage. Options end at the first argument that is none in a program, and
    /// may stand anywhere in a subcommand.
    std::optional<ExitStatus> parse(const QStringList& arguments);

    const QCommandLineParser& parser() const
    {
        return mParser;
    }

    /// Prints to standard error what is wrong with the arguments of `command` and where its help is; returns Usage.
    static ExitStatus refuse(const QString& command, const QString& message);

private:
    ExitStatus print(const QString& text) const;
    QString problem() const;
    QString helpText() const;

    Kind mKind;
    Text mText;
    QList<QCommandLineOption> mOptions;
    QCommandLineParser mParser;
};
