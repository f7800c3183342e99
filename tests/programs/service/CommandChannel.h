// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QByteArray>
#include <QJsonObject>

#include <glib.h>

#include <functional>

/// Commands on standard input, answers on standard output: one JSON object per line. The bus under observation carries
/// none of it. The command "ping" is answered with itself.
class CommandChannel
{
public:
    using Handler = std::function<QJsonObject(const QJsonObject& command)>;

    /// Tells that it is ready, runs a main loop, and has the handler answer the commands until standard input ends.
    static void serve(Handler handler);

    static void answer(const QJsonObject& answer);

private:
    CommandChannel(GMainLoop* loop, Handler handler);
    ~CommandChannel();
    CommandChannel(const CommandChannel&) = delete;
    CommandChannel& operator=(const CommandChannel&) = delete;

    static gboolean onReadable(gint descriptor, GIOCondition condition, gpointer channel);
    bool read();

    GMainLoop* mLoop;
    Handler mHandler;
    QByteArray mBuffer;
    guint mSource;
};
