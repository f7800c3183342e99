// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "CompositorProcess.h"

#include "Sanitized.h"

#include <QDir>
#include <QFile>

#include <csignal>
#include <stdexcept>
#include <unistd.h>

CompositorProcess::CompositorProcess()
    : mEnvironment(QProcessEnvironment::systemEnvironment())
{
    mEnvironment.insert(QStringLiteral("XDG_RUNTIME_DIR"), mDirectory.path());
    mEnvironment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    mEnvironment.remove(QStringLiteral("WAYLAND_DISPLAY"));
    mProcess.setProcessChannelMode(QProcess::SeparateChannels);
}

void CompositorProcess::start(const QStringList& options)
{
    start(QStringLiteral(TELVARO_COMPOSITOR), options);
}

void CompositorProcess::startWithLimit(const QString& command)
{
    start(QStringLiteral("sh"),
          {QStringLiteral("-c"), command + QStringLiteral("; exec \"$0\""), QStringLiteral(TELVARO_COMPOSITOR)});
}

void CompositorProcess::start(const QString& program, const QStringList& arguments)
{
    mProcess.setProcessEnvironment(mEnvironment);
    mProcess.setStandardErrorFile(errorFile());
    mProcess.run(program, arguments);
    try {
        const QByteArray line = mProcess.readOutputLine();
        if (!line.startsWith("WAYLAND_DISPLAY=")) {
            throw std::runtime_error("unexpected line: " + line.toStdString());
        }
        mDisplay = QString::fromLocal8Bit(line.mid(line.indexOf('=') + 1));
    } catch (const std::runtime_error& error) {
        throw std::runtime_error(error.what() + std::string("; ") + errors().toStdString());
    }
}

int CompositorProcess::runToEnd(const QStringList& options)
{
    mProcess.setProcessEnvironment(mEnvironment);
    mProcess.setStandardErrorFile(errorFile());
    mProcess.run(QStringLiteral(TELVARO_COMPOSITOR), options);
    return waitForEnd();
}

void CompositorProcess::signal(int number)
{
    ::kill(static_cast<pid_t>(mProcess.processId()), number);
}

int CompositorProcess::waitForEnd()
{
    if (mProcess.state() != QProcess::NotRunning && !mProcess.waitForFinished(ChildProcess::cDeadline)) {
        throw std::runtime_error("the compositor does not end");
    }
    return mProcess.exitStatus() == QProcess::NormalExit ? mProcess.exitCode() : -mProcess.exitCode();
}

int CompositorProcess::end()
{
    if (isRunning()) {
        signal(SIGTERM);
    }
    return waitForEnd();
}

bool CompositorProcess::isRunning()
{
    mProcess.waitForFinished(0);
    return mProcess.state() == QProcess::Running;
}

QStringList CompositorProcess::sockets() const
{
    return QDir(mDirectory.path()).entryList(QDir::Files | QDir::System, QDir::Name);
}

qint64 CompositorProcess::processorTime() const
{
    QFile file(QStringLiteral("/proc/%1/stat").arg(processId()));
    if (!file.open(QIODevice::ReadOnly)) {
        throw std::runtime_error("the compositor is gone");
    }
    // The command in parentheses may hold blanks; user and system time are the 12th and 13th field after it.
    const QByteArray text = file.readAll();
    const QList<QByteArray> fields = text.mid(text.lastIndexOf(')') + 2).split(' ');
    return (fields.at(11).toLongLong() + fields.at(12).toLongLong()) * 1000 / sysconf(_SC_CLK_TCK);
}

qint64 CompositorProcess::residentMemory() const
{
#ifdef TELVARO_SANITIZED
    // A sanitizer keeps freed memory, and records of accesses.
    return 0;
#else
    QFile file(QStringLiteral("/proc/%1/statm").arg(processId()));
    if (!file.open(QIODevice::ReadOnly)) {
        throw std::runtime_error("the compositor is gone");
    }
    return file.readAll().split(' ').at(1).toLongLong() * sysconf(_SC_PAGESIZE);
#endif
}

qint64 CompositorProcess::anonymousMemory() const
{
    QFile file(QStringLiteral("/proc/%1/smaps_rollup").arg(processId()));
    if (!file.open(QIODevice::ReadOnly)) {
        throw std::runtime_error("the compositor is gone");
    }
    const QByteArray text = file.readAll();
    const QByteArray name = "\nAnonymous:";
    return text.mid(text.indexOf(name) + name.size()).simplified().split(' ').at(0).toLongLong() * 1024;
}

int CompositorProcess::descriptorCount() const
{
    return QDir(QStringLiteral("/proc/%1/fd").arg(processId()))
        .entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System)
        .size();
}

QByteArray CompositorProcess::output()
{
    return mProcess.readAllStandardOutput();
}

QByteArray CompositorProcess::errors() const
{
    QFile file(errorFile());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QProcessEnvironment CompositorProcess::clientEnvironment() const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), mDirectory.path());
    environment.insert(QStringLiteral("WAYLAND_DISPLAY"), mDisplay);
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("wayland"));
    return environment;
}

QString CompositorProcess::errorFile() const
{
    return mErrorDirectory.filePath(QStringLiteral("errors"));
}
