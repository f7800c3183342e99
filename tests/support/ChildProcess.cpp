// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ChildProcess.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <sys/prctl.h>

#include <csignal>
#include <stdexcept>

namespace {

bool isStopped(qint64 processId)
{
    QFile status(QStringLiteral("/proc/%1/stat").arg(processId));
    if (!status.open(QIODevice::ReadOnly)) {
        return false;
    }
    const QByteArray line = status.readAll();
    // The state follows the name, which stands in parentheses and may hold anything.
    return line.mid(line.lastIndexOf(')')).startsWith(") T");
}

} // namespace

ChildProcess::ChildProcess(QObject* parent)
    : QProcess(parent)
{
    setProcessChannelMode(QProcess::ForwardedErrorChannel);
}

ChildProcess::~ChildProcess()
{
    end();
}

QString ChildProcess::serviceProgram(const QString& name)
{
    return QDir(qEnvironmentVariable("TELVARO_SERVICE_PROGRAMS", QStringLiteral(TELVARO_SERVICE_PROGRAMS)))
        .filePath(name);
}

void ChildProcess::run(const QString& program, const QStringList& arguments)
{
    start(program, arguments);
    if (!waitForStarted(cDeadline)) {
        throw std::runtime_error("cannot start " + program.toStdString() + ": " + errorString().toStdString());
    }
}

bool ChildProcess::waitForOutputLine(int milliseconds)
{
    while (!canReadLine()) {
        if (!waitForReadyRead(milliseconds)) {
            return false;
        }
    }
    return true;
}

QByteArray ChildProcess::readOutputLine()
{
    if (!waitForOutputLine()) {
        throw std::runtime_error(program().toStdString() + " printed no further line: " + errorString().toStdString());
    }
    return readLine().chopped(1);
}

void ChildProcess::end()
{
    if (state() != QProcess::NotRunning) {
        kill();
        waitForFinished(cDeadline);
    }
}

void ChildProcess::freeze()
{
    const qint64 id = processId();
    ::kill(static_cast<pid_t>(id), SIGSTOP);
    if (!QTest::qWaitFor(
            [id] {
                return isStopped(id);
            },
            cDeadline)) {
        throw std::runtime_error(program().toStdString() + " does not stop");
    }
}

void ChildProcess::thaw()
{
    ::kill(static_cast<pid_t>(processId()), SIGCONT);
}

void ChildProcess::setupChildProcess()
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
}
