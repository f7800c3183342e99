// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/WaylandSocketName.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

constexpr int cNumberedNames = 64;

/// Locks a socket's lock file as libwayland does, and unlocks it. Returns 0 or the error number. The file stays:
/// removing it here could remove it from under a compositor that has locked it in between.
int tryLock(const QByteArray& socketPath)
{
    const QByteArray lockPath = socketPath + ".lock";
    const int descriptor = open(lockPath.constData(), O_CREAT | O_RDWR | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (descriptor < 0) {
        return errno;
    }
    const int error = flock(descriptor, LOCK_EX | LOCK_NB) == 0 ? 0 : errno;
    close(descriptor);
    return error;
}

Error errorFor(const QByteArray& directory, const QByteArray& name, int number)
{
    if (number == EWOULDBLOCK) {
        return {QStringLiteral("the Wayland socket \"%1\" is in use by another compositor")
                    .arg(QString::fromLocal8Bit(name))};
    }
    return {QStringLiteral("cannot open the Wayland socket \"%1\" in XDG_RUNTIME_DIR (\"%2\"): %3")
                .arg(QString::fromLocal8Bit(name), QString::fromLocal8Bit(directory),
                     QString::fromLocal8Bit(std::strerror(number)))};
}

} // namespace

Result<QByteArray> WaylandSocketName::choose(const QByteArray& wanted)
{
    const QByteArray directory = qgetenv("XDG_RUNTIME_DIR");
    if (directory.isEmpty()) {
        return Error{QStringLiteral("XDG_RUNTIME_DIR is not set; there is no place for the Wayland socket")};
    }
    const QString directoryName = QFile::decodeName(directory);
    if (QFileInfo(directoryName).isRelative()) {
        return Error{QStringLiteral("XDG_RUNTIME_DIR (\"%1\") is not an absolute path").arg(directoryName)};
    }
    if (!QFileInfo(directoryName).isDir()) {
        return Error{QStringLiteral("XDG_RUNTIME_DIR (\"%1\") is not a directory").arg(directoryName)};
    }

    if (!wanted.isEmpty()) {
        const QByteArray path = directory + '/' + wanted;
        if (static_cast<std::size_t>(path.size()) >= sizeof(sockaddr_un::sun_path)) {
            return errorFor(directory, wanted, ENAMETOOLONG);
        }
        const int number = tryLock(path);
        if (number != 0) {
            return errorFor(directory, wanted, number);
        }
        return wanted;
    }

    // wayland-0 is the default of clients without WAYLAND_DISPLAY: it is left to the desktop.
    for (int i = 1; i <= cNumberedNames; ++i) {
        const QByteArray name = "wayland-" + QByteArray::number(i);
        const QByteArray path = directory + '/' + name;
        if (static_cast<std::size_t>(path.size()) >= sizeof(sockaddr_un::sun_path)) {
            return errorFor(directory, name, ENAMETOOLONG);
        }
        const int number = tryLock(path);
        if (number == 0) {
            return name;
        }
        if (number != EWOULDBLOCK) {
            return errorFor(directory, name, number);
        }
    }
    return Error{QStringLiteral("all %1 Wayland socket names in XDG_RUNTIME_DIR (\"%2\") are in use")
                     .arg(cNumberedNames)
                     .arg(directoryName)};
}
