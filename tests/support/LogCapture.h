// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QtGlobal>

/// One message of Qt's logging, with the place that it comes from.
struct LogMessage
{
    QtMsgType type;
    QString category;
    QString file;
    int line;
    QString function;
    QString text;
};

/// Keeps every message that is logged while it lives, from any thread, away from the terminal. One at a time.
class LogCapture
{
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    /// The messages since the last time, which are read with it.
    QList<LogMessage> take();

    /// As above, of each its text only.
    QStringList takeTexts();

    /// As above, of each all that can be foretold, "warning default File.cpp Class::operation(arguments) text": the
    /// line is left out where it is positive, blanks within the function's signature and its result type are dropped.
    QStringList takeDescriptions();

    /// A text as it stands in a message to which it was streamed: in double quotes, escaped.
    static QString quoted(const QString& text);

private:
    QtMessageHandler mPrevious;
};
