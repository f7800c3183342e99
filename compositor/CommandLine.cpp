// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "CommandLine.h"

#include "script/ScriptFile.h"
#include "state/Limits.h"

#include <QRegularExpression>

namespace {

constexpr int cSmallestEdge = 64;

} // namespace

CommandLine::CommandLine(const QStringList& arguments)
{
    using Setter = void (CommandLine::*)(const QString&);
    const auto setterOf = [](const QString& option) -> Setter {
        if (option == QLatin1String("--size")) {
            return &CommandLine::setSize;
        }
        if (option == QLatin1String("--socket")) {
            return &CommandLine::setSocketName;
        }
        if (option == QLatin1String("--screensaver-timeout")) {
            return &CommandLine::setScreenSaverTimeout;
        }
        if (option == QLatin1String("--script")) {
            return &CommandLine::setScript;
        }
        return nullptr;
    };

    for (int i = 0; i < arguments.size() && mTask != Task::Refuse; ++i) {
        const QString argument = arguments.at(i);
        if (argument == QLatin1String("--help") || argument == QLatin1String("-h")) {
            mTask = Task::ShowHelp;
            return;
        }
        if (argument == QLatin1String("--version")) {
            mTask = Task::ShowVersion;
            return;
        }
        if (argument == QLatin1String("--fullscreen-window")) {
            mFullScreenWindow = true;
            continue;
        }

        const int equals = argument.indexOf(QLatin1Char('='));
        const QString option = argument.left(equals);
        const Setter setter = setterOf(option);
        if (setter == nullptr) {
            refuse(QStringLiteral("unknown argument \"%1\"").arg(argument));
        } else if (equals >= 0) {
            (this->*setter)(argument.mid(equals + 1));
        } else if (i + 1 < arguments.size()) {
            (this->*setter)(arguments.at(++i));
        } else {
            refuse(QStringLiteral("option %1 needs a value").arg(option));
        }
    }
}

QString CommandLine::helpText()
{
    return QStringLiteral("Usage: telvaro-compositor [options]\n"
                          "\n"
                          "Shows Wayland applications, one at a time, and publishes their views, the screen's\n"
                          "settings, the global overlay, notifications and screenshots on D-Bus.\n"
                          "\n"
                          "Options:\n"
                          "  --socket NAME                  name of the Wayland socket (default: the first free\n"
                          "                                 one of wayland-1, wayland-2, ...)\n"
                          "  --size WIDTHxHEIGHT            size of the output in pixels (default: 1024x600)\n"
                          "  --fullscreen-window            fill the desktop's screen, whatever its size\n"
                          "  --screensaver-timeout SECONDS  seconds without input until the screen saver starts,\n"
                          "                                 0 for never (default: 300)\n"
                          "  --script FILE                  play the script: views that come and go, calls that\n"
                          "                                 fail, and more, at given times\n"
                          "  -h, --help                     print this text and exit\n"
                          "  --version                      print the version and exit\n"
                          "\n"
                          "When everything is up, one line WAYLAND_DISPLAY=<name> is printed.\n");
}

void CommandLine::refuse(const QString& error)
{
    mTask = Task::Refuse;
    mError = error;
}

void CommandLine::setSize(const QString& text)
{
    static const QRegularExpression pattern(QStringLiteral("^([0-9]{1,5})x([0-9]{1,5})$"));
    const QRegularExpressionMatch match = pattern.match(text);
    const QSize size(match.captured(1).toInt(), match.captured(2).toInt());
    if (!match.hasMatch() || size.boundedTo({Limits::cLargestEdge, Limits::cLargestEdge}) != size
        || size.expandedTo({cSmallestEdge, cSmallestEdge}) != size) {
        refuse(QStringLiteral("\"%1\" is not a size: WIDTHxHEIGHT is expected, each from %2 to %3")
                   .arg(text)
                   .arg(cSmallestEdge)
                   .arg(Limits::cLargestEdge));
        return;
    }
    mSize = size;
}

void CommandLine::setSocketName(const QString& text)
{
    if (text.isEmpty() || text.contains(QLatin1Char('/')) || text.startsWith(QLatin1Char('.'))) {
        refuse(QStringLiteral("\"%1\" is not a socket name: a plain file name is expected").arg(text));
        return;
    }
    mSocketName = text.toLocal8Bit();
}

void CommandLine::setScreenSaverTimeout(const QString& text)
{
    bool isNumber = false;
    const int seconds = text.toInt(&isNumber);
    if (!isNumber || seconds < 0) {
        refuse(QStringLiteral("\"%1\" is not a number of seconds from 0").arg(text));
        return;
    }
    mScreenSaverTimeoutSeconds = seconds;
}

void CommandLine::setScript(const QString& fileName)
{
    const auto script = ScriptFile::read(fileName);
    if (const auto* const error = std::get_if<ScriptFile::Error>(&script)) {
        refuse(error->text);
        return;
    }
    mScript = std::get<Script::Plan>(script);
}
