// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Log.h"

#include <QByteArray>
#include <QElapsedTimer>
#include <QString>

#include <wayland-server-core.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <mutex>

namespace {

/// A faulty client can cause a hundred thousand messages a second.
constexpr int cMostLinesPerSecond = 50;

void writeLine(const QByteArray& text)
{
    const QByteArray line = "telvaro-compositor: " + text.trimmed() + '\n';
    std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stderr);
}

void writeBounded(const QByteArray& text)
{
    static std::mutex mutex;
    static QElapsedTimer second;
    static int lines = 0;
    const std::lock_guard<std::mutex> lock(mutex);
    if (!second.isValid() || second.elapsed() >= 1000) {
        if (lines > cMostLinesPerSecond) {
            writeLine(QByteArray::number(lines - cMostLinesPerSecond) + " more messages like these");
        }
        second.start();
        lines = 0;
    }
    if (++lines <= cMostLinesPerSecond) {
        writeLine(text);
    }
}

void handleMessage(QtMsgType type, const QMessageLogContext&, const QString& message)
{
    if (type == QtFatalMsg) {
        writeLine(message.toLocal8Bit());
        std::_Exit(EXIT_FAILURE);
    }
    writeBounded(message.toLocal8Bit());
}

void handleWaylandMessage(const char* format, va_list arguments)
{
    char text[1024];
    std::vsnprintf(text, sizeof(text), format, arguments);
    writeBounded(text);
}

} // namespace

void Log::install()
{
    qInstallMessageHandler(handleMessage);
    wl_log_set_handler_server(handleWaylandMessage);
}
