// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "CommandChannel.h"

#include <QJsonDocument>
#include <QString>

#include <glib-unix.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <exception>
#include <utility>

CommandChannel::CommandChannel(GMainLoop* loop, Handler handler)
    : mLoop(loop)
    , mHandler(std::move(handler))
    , mSource(g_unix_fd_add(STDIN_FILENO, static_cast<GIOCondition>(G_IO_IN | G_IO_HUP), onReadable, this))
{
}

CommandChannel::~CommandChannel()
{
    if (mSource != 0) {
        g_source_remove(mSource);
    }
}

void CommandChannel::serve(Handler handler)
{
    GMainLoop* const loop = g_main_loop_new(nullptr, FALSE);
    {
        const CommandChannel channel(loop, std::move(handler));
        answer({{QStringLiteral("ready"), true}});
        g_main_loop_run(loop);
    }
    g_main_loop_unref(loop);
}

void CommandChannel::answer(const QJsonObject& answer)
{
    const QByteArray line = QJsonDocument(answer).toJson(QJsonDocument::Compact) + '\n';
    std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stdout);
    std::fflush(stdout);
}

gboolean CommandChannel::onReadable(gint, GIOCondition, gpointer channel)
{
    auto* const self = static_cast<CommandChannel*>(channel);
    if (self->read()) {
        return G_SOURCE_CONTINUE;
    }
    self->mSource = 0;
    g_main_loop_quit(self->mLoop);
    return G_SOURCE_REMOVE;
}

bool CommandChannel::read()
{
    std::array<char, 65536> chunk;
    const ssize_t count = ::read(STDIN_FILENO, chunk.data(), chunk.size());
    if (count <= 0) {
        return count < 0 && errno == EINTR;
    }
    const int searchFrom = mBuffer.size();
    mBuffer.append(chunk.data(), static_cast<int>(count));

    int lineStart = 0;
    for (int lineEnd = mBuffer.indexOf('\n', searchFrom); lineEnd >= 0; lineEnd = mBuffer.indexOf('\n', lineStart)) {
        const QByteArray line = mBuffer.mid(lineStart, lineEnd - lineStart);
        lineStart = lineEnd + 1;
        try {
            const QJsonObject command = QJsonDocument::fromJson(line).object();
            const bool isPing = command.value(QLatin1String("command")) == QLatin1String("ping");
            const QJsonObject reply = isPing ? command : mHandler(command);
            // With an empty object the handler replies later.
            if (!reply.isEmpty()) {
                answer(reply);
            }
        } catch (const std::exception& error) {
            answer({{QStringLiteral("error"), QString::fromUtf8(error.what())}});
        }
    }
    mBuffer.remove(0, lineStart);
    return true;
}
