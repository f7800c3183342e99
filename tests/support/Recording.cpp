// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Recording.h"

#include <QFile>
#include <QJsonDocument>
#include <QTest>

#include <csignal>
#include <stdexcept>

Recording::Recording(const QString& telvaroctl, const QStringList& options)
{
    mProcess.setProcessChannelMode(QProcess::SeparateChannels);
    const QString limit = QString::number(ChildProcess::cDeadline / 1000);
    mProcess.run(telvaroctl,
                 QStringList{QStringLiteral("record"), QStringLiteral("--timeout"), limit} + options
                     + QStringList{fileName()});
    mProcess.setReadChannel(QProcess::StandardError);
    QByteArray line = mProcess.readOutputLine();
    while (line != "telvaroctl: recording " TELVARO_SERVICE_NAME) {
        mWarnings.append(line);
        line = mProcess.readOutputLine();
    }
}

QByteArray Recording::content() const
{
    QFile file(fileName());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QJsonArray Recording::steps() const
{
    const QByteArray bytes = content();
    const QJsonDocument document = QJsonDocument::fromJson(bytes);
    if (!document.isArray()) {
        throw std::runtime_error("not a script: " + bytes.toStdString());
    }
    return document.array();
}

void Recording::waitFor(const QByteArray& text, int times) const
{
    const auto isThere = [this, &text, times] {
        return content().count(text) >= times;
    };
    if (!QTest::qWaitFor(isThere, ChildProcess::cDeadline)) {
        throw std::runtime_error(text.toStdString() + " is not in " + content().toStdString());
    }
}

QJsonArray Recording::finish()
{
    ::kill(static_cast<pid_t>(mProcess.processId()), SIGTERM);
    if (!mProcess.waitForFinished(ChildProcess::cDeadline) || mProcess.exitStatus() != QProcess::NormalExit
        || mProcess.exitCode() != 0) {
        throw std::runtime_error("the recording fails: " + errors().toStdString());
    }
    return steps();
}

QString Recording::errors()
{
    return QString::fromUtf8(mProcess.readAllStandardError());
}
