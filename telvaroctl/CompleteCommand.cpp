// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Command.h"
#include "Console.h"
#include "Service.h"
#include "TimeLimit.h"
#include "ViewFields.h"

#include <TelvaroTaskSwitcher.h>

#include <QCommandLineParser>
#include <QFile>
#include <QFileInfo>
#include <QIODevice>
#include <QRegularExpression>
#include <QString>

#include <algorithm>

namespace {

using View = TelvaroViewModel::View;

/// A completion must not hold up the line that is being typed.
const int cTimeout = 300;

struct Candidate
{
    QString word;
    QString description;
};

/// Returns a word for each view; those of views for which the function returns an empty one are left out.
QList<Candidate> viewWords(const std::function<QString(const View&)>& word)
{
    QList<Candidate> candidates;
    Service::withTaskSwitcher([&candidates, &word](const TelvaroTaskSwitcher& switcher) {
        for (const View& view : switcher.getViews()->getViews()) {
            candidates.append({word(view), QStringLiteral("%1: %2").arg(view.appId, ViewFields::title(view))});
        }
        return Done;
    });
    return candidates;
}

/// Returns the name by which the process was started.
QString processName(uint pid)
{
    QFile commandLine(QStringLiteral("/proc/%1/cmdline").arg(pid));
    if (!commandLine.open(QIODevice::ReadOnly)) {
        return {};
    }
    const QByteArray arguments = commandLine.readAll();
    return QFileInfo(QFile::decodeName(arguments.left(arguments.indexOf('\0')))).fileName();
}

QList<Candidate> commandWords()
{
    QList<Candidate> candidates;
    for (const Command& command : allCommands()) {
        candidates.append({QLatin1String(command.name), QLatin1String(command.summary)});
    }
    return candidates;
}

/// What follows is left out of the description of an option.
const QRegularExpression cClauseEnd(QStringLiteral("[.:;] "));

QList<Candidate> optionWords(const QList<QCommandLineOption>& options)
{
    QList<Candidate> candidates;
    for (const QCommandLineOption& option : options) {
        candidates.append(
            {QStringLiteral("--") + option.names().constLast(), option.description().section(cClauseEnd, 0, 0)});
    }
    candidates.append({QStringLiteral("--help"), {}});
    return candidates;
}

/// Returns what may stand for the placeholder. The shells know files and directories themselves.
QList<Candidate> placeholderWords(const QString& placeholder, const QStringList& words)
{
    QList<Candidate> candidates;
    const QStringList literals = wordsOf(placeholder);
    for (const QString& literal : literals) {
        candidates.append({literal, {}});
    }
    if (placeholder == QLatin1String("UUID")) {
        return viewWords([](const View& view) {
            return view.uuid;
        });
    }
    if (placeholder == QLatin1String("APP")) {
        return viewWords([](const View& view) {
            return view.appId;
        });
    }
    if (placeholder == QLatin1String("INDEX")) {
        const int app = words.indexOf(QStringLiteral("--app"));
        const QString appId = app < 0 ? QString() : words.value(app + 1);
        return viewWords([&appId](const View& view) {
            return appId.isEmpty() || view.appId == appId ? QString::number(view.sortIndex) : QString();
        });
    }
    if (placeholder == QLatin1String("PROCESS")) {
        return viewWords([](const View& view) {
            return processName(view.pid);
        });
    }
    if (placeholder == QLatin1String("COMMAND")) {
        return commandWords();
    }
    if (placeholder == QLatin1String("DIRECTORY")) {
        return {{QStringLiteral(":directories"), {}}};
    }
    if (placeholder == QLatin1String("FILE") || placeholder == QLatin1String("ICON")) {
        return {{QStringLiteral(":files"), {}}};
    }
    return candidates;
}

/// Returns the bus that the words name, or an empty string.
QString busOf(const QStringList& words)
{
    const QString option = QStringLiteral("--bus");
    const int position = words.indexOf(option);
    return position < 0 ? words.filter(option + QLatin1Char('=')).value(0).section(QLatin1Char('='), 1)
                        : words.value(position + 1);
}

/// Returns the candidates for the word after the words.
QList<Candidate> candidatesAfter(const QStringList& words, const QString& word)
{
    const Command* command = nullptr;
    QList<QCommandLineOption> options = commonOptions() + jsonOption();
    QString valueName;
    int arguments = 0;
    for (const QString& previous : words) {
        if (!valueName.isEmpty()) {
            valueName.clear();
        } else if (previous.startsWith(QLatin1String("--"))) {
            for (const QCommandLineOption& option : qAsConst(options)) {
                if (option.names().contains(previous.mid(2))) {
                    valueName = option.valueName();
                }
            }
        } else if (command == nullptr) {
            command = findCommand(previous);
            if (command == nullptr) {
                return {};
            }
            options = optionsOf(*command);
        } else {
            ++arguments;
        }
    }
    if (!valueName.isEmpty()) {
        return placeholderWords(valueName, words);
    }
    if (word.startsWith(QLatin1Char('-'))) {
        return optionWords(options);
    }
    return command == nullptr ? commandWords() : placeholderWords(command->arguments.value(arguments), words);
}

ExitStatus complete(const QCommandLineParser& parser, const QStringList& arguments)
{
    TimeLimit::start(requestedTimeout(parser).value_or(cTimeout), Service::noAnswer());
    const QString word = arguments.isEmpty() ? QString() : arguments.constLast();
    const QStringList words = arguments.mid(0, arguments.size() - 1);
    const QString bus = busOf(words);
    if (!bus.isEmpty()) {
        Service::chooseBus(bus);
    }
    // Others would have to be quoted, and nobody expects what they do on a command line.
    static const QRegularExpression cHarmless(QStringLiteral("^[A-Za-z0-9._:/@%+,=-]+$"));
    QStringList lines;
    QStringList offered;
    const QList<Candidate> candidates = candidatesAfter(words, word);
    for (const Candidate& candidate : candidates) {
        const bool isForShell = candidate.word.startsWith(QLatin1Char(':'));
        if ((isForShell || candidate.word.startsWith(word)) && cHarmless.match(candidate.word).hasMatch()
            && !offered.contains(candidate.word)) {
            offered.append(candidate.word);
            lines.append(candidate.description.isEmpty()
                             ? candidate.word
                             : candidate.word + QLatin1Char('\t') + printable(candidate.description));
        }
    }
    if (!lines.isEmpty()) {
        printLine(lines.join(QLatin1Char('\n')));
    }
    return Done;
}

} // namespace

QList<Command> completeCommands()
{
    return {
        {"complete",
         "Prints completions of a command line, for the shells.",
         "-- WORD...",
         "Prints the completions of the last word, which may be empty: one per line, with a tab and a description, or "
         "':files' or ':directories'. The time limit is 0.3 s by default.",
         noOptions,
         complete,
         {QStringLiteral("WORD...")},
         0,
         false},
    };
}
