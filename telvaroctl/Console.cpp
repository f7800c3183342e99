// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Console.h"

#include "Output.h"
#include "TimeLimit.h"

#include <QByteArray>
#include <QMessageLogContext>

#include <cstdio>

#include <sys/ioctl.h>
#include <unistd.h>

namespace {

bool isVerbose = false;
bool isLost = false;
// Of the main thread, the only one in which the library is used.
QString warning;

/// The sources of libTelvaro bear its name, and its messages carry their file in every build; those of Qt and its
/// plugins do not. A compiler cache may have put a relative directory before the name.
bool isLibrarys(const QMessageLogContext& context)
{
    const QByteArray path(context.file);
    return path.mid(path.lastIndexOf('/') + 1).startsWith("Telvaro");
}

void handleMessage(QtMsgType /*type*/, const QMessageLogContext& context, const QString& message)
{
    const bool isFromLibrary = isLibrarys(context);
    if (isFromLibrary) {
        warning = message;
    }
    if (!isFromLibrary || isVerbose) {
        printError(message);
    }
}

} // namespace

void installMessageHandler()
{
    qInstallMessageHandler(handleMessage);
}

void setVerbose(bool verbose)
{
    isVerbose = verbose;
}

QString lastWarning()
{
    return warning;
}

bool printText(const QString& text)
{
    // What is printed has come in time, and the reader of a pipe may take its time.
    TimeLimit::lift();
    const MaybeError error = Output::print(text.toUtf8());
    if (error && !isLost) {
        isLost = true;
        printError(error->text);
    }
    return !error;
}

bool printLine(const QString& line)
{
    return printText(line + QLatin1Char('\n'));
}

bool isOutputLost()
{
    return isLost;
}

void printError(const QString& message)
{
    std::fprintf(stderr, "telvaroctl: %s\n", qUtf8Printable(printable(message)));
}

int terminalWidth()
{
    winsize size{};
    return ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}
