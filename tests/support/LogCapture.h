// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QtGlobal>

/// A message of Qt's logging with its context.
struct LogMessage
{
    QtMsgType type;
    QString category;
    QString file;
    int line;
    QString function;
    QString text;
};

/// A Qt message handler that records the messages of all threads during its lifetime. One instance at a time.
class LogCapture
{
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    /// Takes the messages since the last time.
    QList<LogMessage> take();

    /// As above, only the texts.
    QStringList takeTexts();

    /// As above, with the predictable part of the context, "warning default File.cpp Class::operation(arguments) text":
    /// without the line number if it is positive, and without the result type and blanks in the signature.
    QStringList takeDescriptions();

    /// A text as QDebug prints it, in double quotes and escaped.
    static QString quoted(const QString& text);

private:
    QtMessageHandler mPrevious;
};
