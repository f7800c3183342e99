// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Console.h"

#include <QByteArray>
#include <QChar>
#include <QMessageLogContext>

#include <atomic>
#include <cstdio>

#include <sys/ioctl.h>
#include <unistd.h>

namespace {

std::atomic<int> warnings{0};

void handleMessage(QtMsgType type, const QMessageLogContext& /*context*/, const QString& message)
{
    if (type != QtDebugMsg && type != QtInfoMsg) {
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

QString printable(const QString& text)
{
    QString result = text;
    for (QChar& character : result) {
        // Control and format characters: escape sequences, line breaks, changes of direction.
        const QChar::Category category = character.category();
        if (category == QChar::Other_Control || category == QChar::Other_Format) {
            character = QChar(QChar::ReplacementCharacter);
        }
    }
    return result;
}

int terminalWidth()
{
    winsize size{};
    return ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}
