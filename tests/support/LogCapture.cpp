// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "LogCapture.h"

#include <QDebug>
#include <QMessageLogContext>
#include <QMutex>
#include <QMutexLocker>

namespace {

QMutex& mutex()
{
    static QMutex instance;
    return instance;
}

QList<LogMessage>& messages()
{
    static QList<LogMessage> instance;
    return instance;
}

void keep(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    const QMutexLocker locker(&mutex());
    messages().append({type, QString::fromUtf8(context.category), QString::fromUtf8(context.file), context.line,
                       QString::fromUtf8(context.function), text});
}

QString typeName(QtMsgType type)
{
    switch (type) {
    case QtDebugMsg:
        return QStringLiteral("debug");
    case QtWarningMsg:
        return QStringLiteral("warning");
    case QtCriticalMsg:
        return QStringLiteral("critical");
    case QtFatalMsg:
        return QStringLiteral("fatal");
    case QtInfoMsg:
        return QStringLiteral("info");
    }
    return QStringLiteral("unknown");
}

// Compilers differ in the blanks, and in how they spell nested types, which occur here in results and arguments only.
QString functionName(const QString& signature)
{
    const int argumentsStart = signature.indexOf(QLatin1Char('('));
    const int nameStart = signature.lastIndexOf(QLatin1Char(' '), argumentsStart) + 1;
    return signature.mid(nameStart).remove(QLatin1Char(' '));
}

QString description(const LogMessage& message)
{
    const QString place = message.line > 0 ? message.file : message.file + QStringLiteral(" without line");
    return QStringList{typeName(message.type), message.category, place, functionName(message.function), message.text}
        .join(QLatin1Char(' '));
}

} // namespace

LogCapture::LogCapture()
    : mPrevious(qInstallMessageHandler(keep))
{
    take();
}

LogCapture::~LogCapture()
{
    qInstallMessageHandler(mPrevious);
}

QList<LogMessage> LogCapture::take()
{
    const QMutexLocker locker(&mutex());
    QList<LogMessage> taken;
    taken.swap(messages());
    return taken;
}

QStringList LogCapture::takeTexts()
{
    QStringList texts;
    for (const LogMessage& message : take()) {
        texts.append(message.text);
    }
    return texts;
}

QStringList LogCapture::takeDescriptions()
{
    QStringList descriptions;
    for (const LogMessage& message : take()) {
        descriptions.append(description(message));
    }
    return descriptions;
}

QString LogCapture::quoted(const QString& text)
{
    QString result;
    QDebug(&result) << text;
    return result.chopped(1);
}
