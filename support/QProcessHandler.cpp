// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "QProcessHandler.h"

#include <QByteArray>
#include <QProcess>
#include <QStringList>

namespace {

// Passes the size, because fromLocal8Bit() without it stops at the first NUL.
QString decode(const QByteArray& output)
{
    return QString::fromLocal8Bit(output.constData(), output.size());
}

} // namespace

int QProcessHandler::startProcess(const QString& program, const QStringList& arguments)
{
    mStandardOutput.clear();
    mStandardError.clear();

    QProcess process;
    process.setStandardInputFile(QProcess::nullDevice());
    process.start(program, arguments, QIODevice::ReadOnly);
    process.waitForFinished(-1);
    // Qt warns when a channel is read that was never opened.
    if (process.error() == QProcess::FailedToStart) {
        return -1;
    }

    mStandardOutput = decode(process.readAllStandardOutput());
    mStandardError = decode(process.readAllStandardError());
    const bool ended = process.error() == QProcess::UnknownError && process.exitStatus() == QProcess::NormalExit;
    return ended ? process.exitCode() : -1;
}

QString QProcessHandler::getStandardOutput() const
{
    return mStandardOutput;
}

QString QProcessHandler::getStandardError() const
{
    return mStandardError;
}
