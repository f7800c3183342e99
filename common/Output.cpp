// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Output.h"

#include <QByteArray>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>

#include <poll.h>
#include <unistd.h>

namespace {

/// Returns the number of the error; 0 if there is none.
int writeAll(int descriptor, const QByteArray& bytes)
{
    sigset_t noSignals;
    sigemptyset(&noSignals);
    int position = 0;
    while (position < bytes.size()) {
        // Lets signals through only if it has to wait.
        pollfd room{descriptor, POLLOUT, 0};
        if (::ppoll(&room, 1, nullptr, &noSignals) < 0) {
            continue;
        }
        // A pipe that has room takes this much without blocking.
        const auto size = static_cast<std::size_t>(std::min(bytes.size() - position, PIPE_BUF));
        const ssize_t written = ::write(descriptor, bytes.constData() + position, size);
        if (written < 0 && errno != EINTR && errno != EAGAIN) {
            return errno;
        }
        position += static_cast<int>(std::max<ssize_t>(written, 0));
    }
    return 0;
}

MaybeError toError(int number)
{
    return number == 0 ? MaybeError() : Error{qt_error_string(number)};
}

} // namespace

MaybeError Output::write(int descriptor, const QByteArray& bytes)
{
    return toError(writeAll(descriptor, bytes));
}

MaybeError Output::print(const QByteArray& bytes)
{
    const int error = writeAll(STDOUT_FILENO, bytes);
    MaybeError result = toError(error == EPIPE ? 0 : error);
    if (result) {
        result->text.prepend(QStringLiteral("standard output cannot be written: "));
    }
    return result;
}
