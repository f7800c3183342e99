// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Console.h"

#include <QByteArray>
#include <QMessageLogContext>

#include <atomic>
#include <cstdio>

#include <sys/ioctl.h>
#include <unistd.h>

namespace {

std::atomic<int> warnings{0};

/// The sources of libTelvaro bear its name, and its messages carry their file in every build; those of Qt and its
/// plugins do not. A compiler cache may have put a relative directory before the name.
bool isLibrarys(const QMessageLogContext& context)
{
    const QByteArray path(context.file);
    return path.mid(path.lastIndexOf('/') + 1).startsWith("Telvaro");
}

void handleMessage(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if (type != QtDebugMsg && type != QtInfoMsg && isLibrarys(context)) {
        ++warnings;
    }
    printError(message);
}

} // namespace

void installMessageHandler()
{
    qInstallMessageHandler(handleMessage);
}

int warningCount()
{
    return warnings;
}

void printText(const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stdout);
    std::fflush(stdout);
}

void printLine(const QString& line)
{
    printText(line + QLatin1Char('\n'));
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
