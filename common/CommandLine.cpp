// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "CommandLine.h"

#include "Output.h"
#include "Printable.h"
#include "Suggestion.h"

#include <QTextStream>

#include <algorithm>

namespace {

const QString cHelp = QStringLiteral("help");
const QString cVersion = QStringLiteral("version");

/// Returns the option as the help shows it: "-h, --help" or "--size WIDTHxHEIGHT".
QString syntaxOf(const QCommandLineOption& option)
{
    QStringList names;
    const QStringList optionNames = option.names();
    for (const QString& name : optionNames) {
        names.append((name.size() == 1 ? QStringLiteral("-") : QStringLiteral("--")) + name);
    }
    const QString syntax = names.join(QStringLiteral(", "));
    return option.valueName().isEmpty() ? syntax : syntax + QLatin1Char(' ') + option.valueName();
}

/// Breaks the lines of a text that starts in column `indent`, so that they fit into a terminal of 80 columns.
QString wrapped(const QString& text, int indent = 0)
{
    constexpr int terminalWidth = 80;
    QStringList lines;
    const QStringList paragraphs = text.split(QLatin1Char('\n'));
    for (const QString& paragraph : paragraphs) {
        QStringList words = paragraph.split(QLatin1Char(' '));
        QString line = words.takeFirst();
        for (const QString& word : qAsConst(words)) {
            if (indent + line.size() + 1 + word.size() > terminalWidth) {
                lines.append(line);
                line = word;
            } else {
                line += QLatin1Char(' ') + word;
            }
        }
        lines.append(line);
    }
    return lines.join(QLatin1Char('\n') + QString(indent, QLatin1Char(' ')));
}

} // namespace

CommandLine::CommandLine(Kind kind, const Text& text, const QList<QCommandLineOption>& options)
    : mKind(kind)
    , mText(text)
    , mOptions(options)
{
    mOptions.append({{QStringLiteral("h"), cHelp}, QStringLiteral("Prints this help and exits.")});
    if (kind == Kind::Program) {
        mOptions.append({{QStringLiteral("v"), cVersion}, QStringLiteral("Prints the version and exits.")});
        mParser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    }
    mParser.addOptions(mOptions);
}

std::optional<ExitStatus> CommandLine::parse(const QStringList& arguments)
{
    if (!mParser.parse(QStringList(mText.command) + arguments)) {
        return refuse(mText.command, problem());
    }
    if (mParser.isSet(cHelp)) {
        return print(helpText());
    }
    if (mKind == Kind::Program && mParser.isSet(cVersion)) {
        return print(QStringLiteral("%1 " TELVARO_VERSION "\n").arg(mText.command));
    }
    return {};
}

ExitStatus CommandLine::refuse(const QString& command, const QString& message)
{
    const QString program = command.section(QLatin1Char(' '), 0, 0);
    QTextStream(stderr) << program << ": " << printable(message) << '\n'
                        << program << ": see '" << command << " --help'\n";
    return Usage;
}

ExitStatus CommandLine::print(const QString& text) const
{
    const MaybeError error = Output::print(text.toUtf8());
    if (error) {
        QTextStream(stderr) << mText.command.section(QLatin1Char(' '), 0, 0) << ": " << error->text << '\n';
    }
    return error ? Failed : Done;
}

QString CommandLine::problem() const
{
    QString text = mParser.errorText();
    const QStringList unknown = mParser.unknownOptionNames();
    if (unknown.isEmpty()) {
        return text;
    }
    QStringList names;
    for (const QCommandLineOption& option : mOptions) {
        names.append(QStringLiteral("--") + option.names().constLast());
    }
    const QString question = Suggestion::question(QStringLiteral("--") + unknown.constFirst(), names);
    return question.isEmpty() ? text : text.chopped(1) + question;
}

QString CommandLine::helpText() const
{
    // Longer ones have a line of their own.
    const int longest = 32;
    int width = 0;
    for (const QCommandLineOption& option : mOptions) {
        const int size = syntaxOf(option).size();
        width = std::max(width, size > longest ? 0 : size);
    }
    const QString usage = QStringLiteral("Usage: %1 ").arg(mText.command);
    QString text = usage
        + QStringLiteral("%1\n\n%2\n\nOptions:\n")
              .arg(wrapped(mText.synopsis, usage.size()), wrapped(mText.description));
    const int column = width + 4;
    const QString nextLine = QLatin1Char('\n') + QString(column, QLatin1Char(' '));
    for (const QCommandLineOption& option : mOptions) {
        const QString syntax = syntaxOf(option);
        text += QStringLiteral("  %1%2%3\n")
                    .arg(syntax.leftJustified(width), syntax.size() > width ? nextLine : QStringLiteral("  "),
                         wrapped(option.description(), column));
    }
    return mText.notes.isEmpty() ? text : text + QLatin1Char('\n') + wrapped(mText.notes) + QLatin1Char('\n');
}
