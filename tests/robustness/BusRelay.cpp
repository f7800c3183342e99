// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "BusRelay.h"

#include "PrivateBus.h"

#include <QtEndian>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string>

namespace {

/// The fixed part of a message's header, which ends with the length of the header fields.
const int cFixedHeader = 16;
const char cMemberField = 3;

std::runtime_error failure(const std::string& action)
{
    return std::runtime_error("cannot " + action + ": " + std::strerror(errno));
}

sockaddr_un socketAddress(const QByteArray& path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= static_cast<int>(sizeof address.sun_path)) {
        throw std::runtime_error("too long for a socket: " + path.toStdString());
    }
    std::memcpy(address.sun_path, path.constData(), static_cast<std::size_t>(path.size()));
    return address;
}

int makeSocket()
{
    return ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
}

QByteArray socketPath(const QByteArray& busAddress)
{
    const QByteArray prefix = "unix:path=";
    if (!busAddress.startsWith(prefix)) {
        throw std::runtime_error("no path in " + busAddress.toStdString());
    }
    const int end = busAddress.indexOf(',');
    return busAddress.mid(prefix.size(), end < 0 ? -1 : end - prefix.size());
}

/// Empty if the peer has disconnected.
QByteArray receive(int socket)
{
    std::array<char, 65536> chunk;
    ssize_t size = 0;
    do {
        size = ::recv(socket, chunk.data(), chunk.size(), 0);
    } while (size < 0 && errno == EINTR);
    return QByteArray(chunk.data(), size < 0 ? 0 : static_cast<int>(size));
}

/// False if the peer has disconnected.
bool send(int socket, const QByteArray& bytes)
{
    int sent = 0;
    while (sent < bytes.size()) {
        const ssize_t size =
            ::send(socket, bytes.constData() + sent, static_cast<std::size_t>(bytes.size() - sent), MSG_NOSIGNAL);
        if (size < 0 && errno != EINTR) {
            return false;
        }
        sent += size < 0 ? 0 : static_cast<int>(size);
    }
    return true;
}

quint32 number(const QByteArray& message, int offset)
{
    const char* const bytes = message.constData() + offset;
    return message.front() == 'l' ? qFromLittleEndian<quint32>(bytes) : qFromBigEndian<quint32>(bytes);
}

int aligned(int offset, int alignment)
{
    return (offset + alignment - 1) / alignment * alignment;
}

int headerSize(const QByteArray& message)
{
    return aligned(cFixedHeader + static_cast<int>(number(message, cFixedHeader - 4)), 8);
}

int messageSize(const QByteArray& message)
{
    return headerSize(message) + static_cast<int>(number(message, 4));
}

/// Empty for a message without one, such as a reply.
QString member(const QByteArray& message)
{
    // Each field is its code, the signature of its value, and the value: a text, a signature or a number.
    int offset = cFixedHeader;
    const int end = cFixedHeader + static_cast<int>(number(message, cFixedHeader - 4));
    while (offset < end) {
        const char code = message.at(offset);
        const char type = message.at(offset + 2);
        const int value = offset + 4;
        if (type == 'g') {
            offset = value + 1 + message.at(value) + 1;
        } else if (type == 'u') {
            offset = value + 4;
        } else {
            const int length = static_cast<int>(number(message, value));
            if (code == cMemberField) {
                return QString::fromLatin1(message.mid(value + 4, length));
            }
            offset = value + 4 + length + 1;
        }
        offset = aligned(offset, 8);
    }
    return {};
}

} // namespace

BusRelay::Descriptor::Descriptor(int number)
    : mNumber(number)
{
    if (number < 0) {
        throw failure("make a socket");
    }
}

BusRelay::Descriptor::~Descriptor()
{
    ::close(mNumber);
}

int BusRelay::Descriptor::get() const
{
    return mNumber;
}

BusRelay::BusRelay()
    : mBusAddress(PrivateBus::address().toLatin1())
    , mListener(makeSocket())
    , mBus(makeSocket())
{
    const QByteArray path = mDirectory.filePath(QStringLiteral("relay")).toLocal8Bit();
    const sockaddr_un own = socketAddress(path);
    const sockaddr_un bus = socketAddress(socketPath(mBusAddress));
    if (::bind(mListener.get(), reinterpret_cast<const sockaddr*>(&own), sizeof own) != 0
        || ::listen(mListener.get(), 1) != 0) {
        throw failure("listen at " + path.toStdString());
    }
    if (::connect(mBus.get(), reinterpret_cast<const sockaddr*>(&bus), sizeof bus) != 0) {
        throw failure("connect to " + mBusAddress.toStdString());
    }
    PrivateBus::setAddress("unix:path=" + path);
    mThread = std::thread([this] {
        run();
    });
}

BusRelay::~BusRelay()
{
    // Wakes the thread from poll().
    ::shutdown(mListener.get(), SHUT_RDWR);
    mThread.join();
    PrivateBus::setAddress(mBusAddress);
}

QStringList BusRelay::takeMessages()
{
    const std::lock_guard<std::mutex> lock(mMutex);
    QStringList messages;
    messages.swap(mMessages);
    return messages;
}

void BusRelay::endAt(int number)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    mRemaining = number;
}

bool BusRelay::hasEnded()
{
    const std::lock_guard<std::mutex> lock(mMutex);
    return mHasEnded;
}

void BusRelay::run()
{
    const int accepted = ::accept4(mListener.get(), nullptr, nullptr, SOCK_CLOEXEC);
    if (accepted < 0) {
        return;
    }
    const Descriptor application(accepted);
    bool isPassing = true;
    while (isPassing) {
        std::array<pollfd, 3> sides{{{application.get(), POLLIN, 0}, {mBus.get(), POLLIN, 0}, {mListener.get(), 0, 0}}};
        const int ready = ::poll(sides.data(), sides.size(), -1);
        isPassing = (ready > 0 || errno == EINTR) && sides[2].revents == 0
            && (sides[0].revents == 0 || passOnFromApplication(application.get()))
            && (sides[1].revents == 0 || passOnFromBus(application.get()));
    }
    ::shutdown(mBus.get(), SHUT_RDWR);
}

bool BusRelay::passOnFromBus(int application) const
{
    const QByteArray bytes = receive(mBus.get());
    return !bytes.isEmpty() && send(application, bytes);
}

bool BusRelay::passOnFromApplication(int application)
{
    const QByteArray received = receive(application);
    if (received.isEmpty()) {
        return false;
    }
    mPending += received;
    // The authentication is a NUL and lines of text, the last of which is this one.
    const QByteArray lastLine = "BEGIN\r\n";
    while (!mIsAuthenticated && mPending.contains('\n')) {
        const QByteArray line = mPending.left(mPending.indexOf('\n') + 1);
        mPending.remove(0, line.size());
        mIsAuthenticated = line == lastLine;
        if (!send(mBus.get(), line)) {
            return false;
        }
    }
    while (mIsAuthenticated && mPending.size() >= cFixedHeader && mPending.size() >= messageSize(mPending)) {
        const QByteArray message = mPending.left(messageSize(mPending));
        mPending.remove(0, message.size());
        if (!mayPass(message) || !send(mBus.get(), message)) {
            return false;
        }
    }
    return true;
}

bool BusRelay::mayPass(const QByteArray& message)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    mMessages.append(member(message));
    mHasEnded = mRemaining == 1;
    mRemaining -= mRemaining > 0 ? 1 : 0;
    return !mHasEnded;
}
