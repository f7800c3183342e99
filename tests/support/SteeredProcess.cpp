// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "SteeredProcess.h"

#include <QJsonDocument>

#include <stdexcept>

SteeredProcess::SteeredProcess(const QString& program, const QStringList& arguments)
    : mProgram(program)
    , mArguments(arguments)
{
}

SteeredProcess::~SteeredProcess() = default;

void SteeredProcess::start()
{
    mProcess.end();
    mProcess.run(ChildProcess::serviceProgram(mProgram), mArguments);
    readAnswer();
}

void SteeredProcess::kill()
{
    mProcess.end();
}

void SteeredProcess::freeze()
{
    mProcess.freeze();
}

void SteeredProcess::thaw()
{
    mProcess.thaw();
}

bool SteeredProcess::isRunning()
{
    if (mProcess.state() == QProcess::NotRunning) {
        return false;
    }
    // A process that is ending still has a state, but does not reply.
    send({{QStringLiteral("command"), QStringLiteral("ping")}});
    if (!mProcess.waitForOutputLine()) {
        return false;
    }
    readAnswer();
    return true;
}

QJsonObject SteeredProcess::command(const QJsonObject& command)
{
    send(command);
    return readAnswer();
}

void SteeredProcess::send(const QJsonObject& command)
{
    mProcess.write(QJsonDocument(command).toJson(QJsonDocument::Compact) + '\n');
    while (mProcess.bytesToWrite() > 0 && mProcess.waitForBytesWritten(ChildProcess::cDeadline)) { }
}

QJsonObject SteeredProcess::readAnswer()
{
    const QJsonObject answer = QJsonDocument::fromJson(mProcess.readOutputLine()).object();
    if (answer.contains(QLatin1String("error"))) {
        throw std::runtime_error(mProgram.toStdString() + ": "
                                 + answer.value(QLatin1String("error")).toString().toStdString());
    }
    return answer;
}

bool SteeredProcess::waitForAnswer(int milliseconds)
{
    return mProcess.waitForOutputLine(milliseconds);
}

qint64 SteeredProcess::processId() const
{
    return mProcess.processId();
}
