// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QByteArray>
#include <QJsonObject>

#include <glib.h>

#include <functional>

/// Commands on standard input and replies on standard output, one JSON object per line, apart from the bus under test.
/// The reply to "ping" is the command itself.
class CommandChannel
{
public:
    using Handler = std::function<QJsonObject(const QJsonObject& command)>;

    /// Announces that it is ready and runs a main loop in which the handler replies to commands until standard input
    /// ends.
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
