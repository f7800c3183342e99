// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "LineClient.h"

#include <csignal>
#include <stdexcept>

LineClient::LineClient(const QString& program, const QProcessEnvironment& environment, const QStringList& arguments)
{
    mProcess.setProcessEnvironment(environment);
    mProcess.setProcessChannelMode(QProcess::SeparateChannels);
    mProcess.setStandardErrorFile(QProcess::nullDevice());
    mProcess.run(program, arguments);
}

void LineClient::send(const QByteArray& line)
{
    mProcess.write(line + '\n');
    if (!mProcess.waitForBytesWritten(ChildProcess::cDeadline)) {
        throw std::runtime_error("the client takes no command: " + line.toStdString());
    }
}

QByteArray LineClient::waitFor(const QByteArray& beginning)
{
    for (;;) {
        const QByteArray event = takeNext();
        if (event.startsWith(beginning)) {
            return event.mid(beginning.size()).trimmed();
        }
    }
}

QByteArray LineClient::takeNext()
{
    for (read(); mEvents.isEmpty(); read()) {
        if (!mProcess.waitForReadyRead(ChildProcess::cDeadline)) {
            throw std::runtime_error("the client prints no more");
        }
    }
    return mEvents.takeFirst();
}

QList<QByteArray> LineClient::takeEventsUntil(const QByteArray& event)
{
    QList<QByteArray> events;
    do {
        events.append(takeNext());
    } while (events.last() != event);
    return events;
}

QList<QByteArray> LineClient::takeEvents()
{
    mProcess.waitForReadyRead(0);
    read();
    return std::exchange(mEvents, {});
}

void LineClient::read()
{
    while (mProcess.canReadLine()) {
        mEvents.append(mProcess.readLine().chopped(1));
    }
}

qint64 LineClient::processId() const
{
    return mProcess.processId();
}

bool LineClient::isRunning()
{
    mProcess.waitForFinished(0);
    return mProcess.state() == QProcess::Running;
}

int LineClient::waitForEnd()
{
    mProcess.closeWriteChannel();
    if (mProcess.state() != QProcess::NotRunning && !mProcess.waitForFinished(ChildProcess::cDeadline)) {
        throw std::runtime_error("the client does not end");
    }
    return mProcess.exitCode();
}

void LineClient::kill()
{
    mProcess.end();
}

void LineClient::freeze()
{
    ::kill(static_cast<pid_t>(mProcess.processId()), SIGSTOP);
}

void LineClient::thaw()
{
    ::kill(static_cast<pid_t>(mProcess.processId()), SIGCONT);
}
