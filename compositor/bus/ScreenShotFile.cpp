// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "bus/ScreenShotFile.h"

#include <QBuffer>
#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QImage>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr char cInvalidArgs[] = "org.freedesktop.DBus.Error.InvalidArgs";
constexpr char cFileNotFound[] = "org.freedesktop.DBus.Error.FileNotFound";
constexpr char cAccessDenied[] = "org.freedesktop.DBus.Error.AccessDenied";
constexpr char cFailed[] = "org.freedesktop.DBus.Error.Failed";

/// Screenshots of the same millisecond get a number each.
constexpr int cNameAttempts = 1000;

bool writeAll(int descriptor, const QByteArray& data)
{
    const char* next = data.constData();
    const char* const end = next + data.size();
    while (next < end) {
        const ssize_t written = write(descriptor, next, static_cast<std::size_t>(end - next));
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            return false;
        }
        next += written;
    }
    return true;
}

} // namespace

ScreenShotFile::ScreenShotFile(const QString& directory)
    : mDirectory(directory)
{
    if (directory.isEmpty()) {
        fail(cInvalidArgs, QStringLiteral("no directory is named"));
        return;
    }
    if (!directory.startsWith(QLatin1Char('/'))) {
        fail(cInvalidArgs, QStringLiteral("the directory \"%1\" is not an absolute path").arg(directory));
        return;
    }
    while (mDirectory.size() > 1 && mDirectory.endsWith(QLatin1Char('/'))) {
        mDirectory.chop(1);
    }
    mDirectoryDescriptor = open(QFile::encodeName(mDirectory).constData(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    if (mDirectoryDescriptor >= 0) {
        return;
    }
    switch (errno) {
    case ENOENT:
        fail(cFileNotFound, QStringLiteral("the directory \"%1\" does not exist").arg(directory));
        break;
    case ENOTDIR:
        fail(cInvalidArgs, QStringLiteral("\"%1\" is not a directory").arg(directory));
        break;
    default:
        failWith(errno, QStringLiteral("cannot open the directory \"%1\"").arg(directory));
        break;
    }
}

ScreenShotFile::~ScreenShotFile()
{
    if (mDirectoryDescriptor >= 0) {
        close(mDirectoryDescriptor);
    }
}

bool ScreenShotFile::write(const QImage& image)
{
    QByteArray data;
    QBuffer buffer(&data);
    buffer.open(QIODevice::WriteOnly);
    if (!image.save(&buffer, "PNG")) {
        fail(cFailed, QStringLiteral("cannot encode the picture"));
        return false;
    }

    QByteArray name;
    const int descriptor = createFile(&name);
    if (descriptor < 0) {
        failWith(errno, QStringLiteral("cannot create a file in the directory \"%1\"").arg(mDirectory));
        return false;
    }
    int error = writeAll(descriptor, data) ? 0 : errno;
    if (close(descriptor) != 0 && error == 0) {
        error = errno;
    }
    if (error != 0) {
        unlinkat(mDirectoryDescriptor, name.constData(), 0);
        failWith(error, QStringLiteral("cannot write to the directory \"%1\"").arg(mDirectory));
        return false;
    }
    const QString separator = mDirectory.endsWith(QLatin1Char('/')) ? QString() : QStringLiteral("/");
    mPath = mDirectory + separator + QFile::decodeName(name);
    return true;
}

int ScreenShotFile::createFile(QByteArray* name)
{
    const QByteArray time = QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss-zzz")).toLatin1();
    int descriptor = -1;
    for (int attempt = 1; attempt <= cNameAttempts; ++attempt) {
        *name = "screenshot-" + time + (attempt == 1 ? QByteArray() : '-' + QByteArray::number(attempt)) + ".png";
        descriptor =
            openat(mDirectoryDescriptor, name->constData(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0644);
        if (descriptor >= 0 || errno != EEXIST) {
            break;
        }
    }
    return descriptor;
}

void ScreenShotFile::fail(const char* errorName, const QString& text)
{
    mErrorName = QString::fromLatin1(errorName);
    mErrorText = text;
}

void ScreenShotFile::failWith(int number, const QString& text)
{
    const bool isDenied = number == EACCES || number == EPERM || number == EROFS;
    fail(isDenied ? cAccessDenied : cFailed,
         QStringLiteral("%1: %2").arg(text, QString::fromLocal8Bit(std::strerror(number))));
}
