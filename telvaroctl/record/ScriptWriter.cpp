// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ScriptWriter.h"

#include "Output.h"

#include <QJsonDocument>

#include <unistd.h>

namespace {

/// Rounds to more than nothing.
constexpr qint64 cSmallestMilliseconds = 5;

const QString cStandardOutput = QStringLiteral("standard output");
const QByteArray cClosing = "\n]\n";

QByteArray toLine(const QJsonObject& step, qint64 milliseconds)
{
    QByteArray line = QJsonDocument(step).toJson(QJsonDocument::Compact);
    // A fault waits for its call, not for a time.
    if (milliseconds >= cSmallestMilliseconds && !step.contains(QStringLiteral("fault"))) {
        const QByteArray seconds = QByteArray::number(static_cast<double>(milliseconds) / 1000, 'f', 2);
        line.replace(0, 1, "{\"at\":" + seconds + ',');
    }
    return line;
}

} // namespace

Result<std::unique_ptr<ScriptWriter>> ScriptWriter::open(const QString& fileName, bool isReplaced)
{
    std::unique_ptr<ScriptWriter> writer(new ScriptWriter);
    QFile& file = writer->mFile;
    const QIODevice::OpenMode mode = QIODevice::WriteOnly | QIODevice::Unbuffered;
    const bool isStandardOutput = fileName == QLatin1String("-");
    file.setFileName(fileName);
    const bool isOpen = isStandardOutput ? file.open(STDOUT_FILENO, mode)
                                         : file.open(mode | (isReplaced ? QIODevice::Truncate : QIODevice::NewOnly));
    if (!isOpen) {
        return QFile::exists(fileName) && !isReplaced
            ? Error{QStringLiteral("%1 exists already; --force replaces it").arg(fileName)}
            : Error{QStringLiteral("%1 cannot be written: %2").arg(fileName, file.errorString())};
    }
    // The start of a file behind standard output may belong to another program.
    writer->mIsStream = isStandardOutput || file.isSequential();
    writer->write("[");
    writer->mEnd = 1;
    if (!writer->append({}, 0)) {
        return *writer->mError;
    }
    return writer;
}

bool ScriptWriter::append(const QVector<QJsonObject>& steps, qint64 milliseconds)
{
    QByteArray bytes;
    for (const QJsonObject& step : steps) {
        bytes += (mCount++ == 0 ? "\n  " : ",\n  ") + toLine(step, milliseconds);
    }
    if (mIsStream) {
        return write(bytes);
    }
    // In one write, so that whoever ends the program leaves all of it or nothing.
    mFile.seek(mEnd);
    mEnd += bytes.size();
    return write(bytes + cClosing);
}

Result<int> ScriptWriter::finish()
{
    if (mIsStream) {
        write(cClosing);
    }
    if (mError) {
        return *mError;
    }
    return mCount;
}

bool ScriptWriter::write(const QByteArray& bytes)
{
    if (mError) {
        return false;
    }
    if (mIsStream) {
        mError = Output::write(mFile.handle(), bytes);
    } else if (mFile.write(bytes) != bytes.size()) {
        mError = Error{mFile.errorString()};
    }
    if (mError) {
        const QString name = mFile.fileName();
        mError->text =
            QStringLiteral("%1 cannot be written: %2").arg(name.isEmpty() ? cStandardOutput : name, mError->text);
    }
    return !mError;
}
