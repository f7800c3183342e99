// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "WireClient.h"

#include "ChildProcess.h"

#include <QElapsedTimer>
#include <QFile>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <poll.h>
#include <stdexcept>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <wayland-client-protocol.h>
#include <xdg-shell-client-protocol.h>

namespace {

constexpr quint32 cDisplay = 1;
constexpr int cHeaderSize = 8;
constexpr int cPixelSize = 4;

int connectTo(const QString& path)
{
    const QByteArray name = QFile::encodeName(path);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, name.constData(), sizeof(address.sun_path) - 1);
    const int descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (descriptor < 0 || connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
        throw std::runtime_error("cannot connect to " + path.toStdString() + ": " + std::strerror(errno));
    }
    return descriptor;
}

} // namespace

quint32 WireClient::Event::number(int index) const
{
    quint32 value = 0;
    const int offset = index * static_cast<int>(sizeof(value));
    if (offset + static_cast<int>(sizeof(value)) <= arguments.size()) {
        std::memcpy(&value, arguments.constData() + offset, sizeof(value));
    }
    return value;
}

WireClient::WireClient(const QString& socketPath)
    : mSocket(connectTo(socketPath))
    , mRegistry(newId())
{
    send(WireMessage(cDisplay, WL_DISPLAY_GET_REGISTRY).number(mRegistry));
    if (!synchronise()) {
        throw std::runtime_error("the compositor wants no client");
    }
}

WireClient::~WireClient()
{
    disconnect();
    if (mMemory >= 0) {
        close(mMemory);
    }
}

void WireClient::disconnect()
{
    if (mSocket >= 0) {
        close(mSocket);
        mSocket = -1;
    }
    mIsConnected = false;
}

void WireClient::send(const WireMessage& message)
{
    sendBytes(message.bytes(), message.descriptors());
}

void WireClient::sendBytes(const QByteArray& bytes, const QVector<int>& descriptors)
{
    int sent = 0;
    QElapsedTimer timer;
    timer.start();
    while (mIsConnected && sent < bytes.size()) {
        iovec data = {const_cast<char*>(bytes.constData()) + sent, static_cast<std::size_t>(bytes.size() - sent)};
        msghdr header = {};
        header.msg_iov = &data;
        header.msg_iovlen = 1;
        QByteArray control;
        if (sent == 0 && !descriptors.isEmpty()) {
            const std::size_t size = static_cast<std::size_t>(descriptors.size()) * sizeof(int);
            control.fill('\0', static_cast<int>(CMSG_SPACE(size)));
            header.msg_control = control.data();
            header.msg_controllen = static_cast<std::size_t>(control.size());
            cmsghdr* const first = CMSG_FIRSTHDR(&header);
            first->cmsg_level = SOL_SOCKET;
            first->cmsg_type = SCM_RIGHTS;
            first->cmsg_len = CMSG_LEN(size);
            std::memcpy(CMSG_DATA(first), descriptors.constData(), size);
        }
        const ssize_t count = sendmsg(mSocket, &header, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (count > 0) {
            sent += static_cast<int>(count);
            continue;
        }
        if (errno != EAGAIN || timer.elapsed() > ChildProcess::cDeadline) {
            // Events sent before the disconnection can still be read.
            while (receive()) { }
            return;
        }
        pollfd descriptor = {mSocket, POLLIN | POLLOUT, 0};
        poll(&descriptor, 1, 100);
        if ((descriptor.revents & POLLIN) != 0) {
            receive();
        }
    }
}

bool WireClient::receive()
{
    char buffer[65536];
    const ssize_t count = mIsConnected ? recv(mSocket, buffer, sizeof(buffer), MSG_DONTWAIT) : 0;
    if (count <= 0) {
        if (count == 0 || errno != EAGAIN) {
            mIsConnected = false;
        }
        return false;
    }
    mInput.append(buffer, static_cast<int>(count));
    int begin = 0;
    while (mInput.size() - begin >= cHeaderSize) {
        quint32 header[2];
        std::memcpy(header, mInput.constData() + begin, sizeof(header));
        const int size = static_cast<int>(header[1] >> 16);
        if (mInput.size() - begin < size) {
            break;
        }
        const Event event = {header[0], static_cast<quint16>(header[1]),
                             mInput.mid(begin + cHeaderSize, size - cHeaderSize)};
        begin += size;
        handle(event);
    }
    mInput.remove(0, begin);
    return true;
}

void WireClient::handle(const Event& event)
{
    if (event.object == cDisplay && event.opcode == 0) {
        mErrorCode = static_cast<int>(event.number(1));
        mErrorText = event.arguments.mid(12).constData();
        return;
    }
    if (event.object == cDisplay) {
        mFreeIds.append(event.number(0));
        return;
    }
    if (event.object == mRegistry && event.opcode == 0) {
        mGlobals.insert(QByteArray(event.arguments.constData() + 8), event.number(0));
    } else if (event.object == mBound.value("xdg_wm_base") && event.opcode == 0) {
        send(WireMessage(event.object, XDG_WM_BASE_PONG).number(event.number(0)));
    } else {
        mEvents.append(event);
    }
}

quint32 WireClient::newId()
{
    if (mFreeIds.isEmpty()) {
        return mNextId++;
    }
    const quint32 id = mFreeIds.takeLast();
    const auto isOld = [id](const Event& event) {
        return event.object == id;
    };
    mEvents.erase(std::remove_if(mEvents.begin(), mEvents.end(), isOld), mEvents.end());
    return id;
}

quint32 WireClient::bind(const QByteArray& interface, quint32 version)
{
    if (!mGlobals.contains(interface)) {
        throw std::runtime_error("there is no " + interface.toStdString());
    }
    const quint32 id = newId();
    send(WireMessage(mRegistry, WL_REGISTRY_BIND)
             .number(mGlobals.value(interface))
             .text(interface)
             .number(version)
             .number(id));
    mBound.insert(interface, id);
    return id;
}

quint32 WireClient::global(const QByteArray& interface, quint32 version)
{
    return mBound.contains(interface) ? mBound.value(interface) : bind(interface, version);
}

bool WireClient::synchronise()
{
    const quint32 callback = newId();
    send(WireMessage(cDisplay, WL_DISPLAY_SYNC).number(callback));
    QElapsedTimer timer;
    timer.start();
    while (mIsConnected && events(callback, 0).isEmpty()) {
        if (timer.elapsed() > ChildProcess::cDeadline) {
            throw std::runtime_error("the compositor does not answer");
        }
        pollfd descriptor = {mSocket, POLLIN, 0};
        poll(&descriptor, 1, 100);
        receive();
    }
    return mIsConnected;
}

QVector<WireClient::Event> WireClient::events(quint32 object, quint16 opcode) const
{
    QVector<Event> events;
    for (const Event& event : mEvents) {
        if (event.object == object && event.opcode == opcode) {
            events.append(event);
        }
    }
    return events;
}

QVector<WireClient::Event> WireClient::events(quint32 object) const
{
    QVector<Event> events;
    std::copy_if(mEvents.cbegin(), mEvents.cend(), std::back_inserter(events), [object](const Event& event) {
        return event.object == object;
    });
    return events;
}

QVector<quint16> WireClient::opcodes(quint32 object) const
{
    QVector<quint16> opcodes;
    for (const Event& event : events(object)) {
        opcodes.append(event.opcode);
    }
    return opcodes;
}

quint32 WireClient::createSurface()
{
    const quint32 compositor = global("wl_compositor", 3);
    const quint32 id = newId();
    send(WireMessage(compositor, WL_COMPOSITOR_CREATE_SURFACE).number(id));
    return id;
}

void WireClient::attach(quint32 surface, quint32 buffer)
{
    send(WireMessage(surface, WL_SURFACE_ATTACH).number(buffer).number(0U).number(0U));
}

void WireClient::damage(quint32 surface, const QRect& rect)
{
    send(WireMessage(surface, WL_SURFACE_DAMAGE)
             .number(rect.x())
             .number(rect.y())
             .number(rect.width())
             .number(rect.height()));
}

void WireClient::commit(quint32 surface)
{
    send(WireMessage(surface, WL_SURFACE_COMMIT));
}

void WireClient::acknowledge(quint32 xdgSurface)
{
    const QVector<Event> configures = events(xdgSurface, 0);
    if (!configures.isEmpty()) {
        send(WireMessage(xdgSurface, XDG_SURFACE_ACK_CONFIGURE).number(configures.last().number(0)));
    }
}

void WireClient::configure(quint32 surface, quint32 xdgSurface)
{
    commit(surface);
    synchronise();
    acknowledge(xdgSurface);
}

void WireClient::show(quint32 surface, quint32 buffer)
{
    configure(surface, mXdgSurfaces.value(surface));
    attach(surface, buffer);
    commit(surface);
}

quint32 WireClient::createSubsurface(quint32 surface, quint32 parent)
{
    const quint32 subcompositor = global("wl_subcompositor");
    const quint32 id = newId();
    send(WireMessage(subcompositor, WL_SUBCOMPOSITOR_GET_SUBSURFACE).number(id).number(surface).number(parent));
    return id;
}

quint32 WireClient::createXdgSurface(quint32 surface)
{
    const quint32 shell = global("xdg_wm_base");
    const quint32 id = newId();
    send(WireMessage(shell, XDG_WM_BASE_GET_XDG_SURFACE).number(id).number(surface));
    mXdgSurfaces.insert(surface, id);
    return id;
}

quint32 WireClient::createToplevel(quint32 xdgSurface)
{
    const quint32 id = newId();
    send(WireMessage(xdgSurface, XDG_SURFACE_GET_TOPLEVEL).number(id));
    return id;
}

quint32 WireClient::createPositioner(const QSize& size)
{
    const quint32 shell = global("xdg_wm_base");
    const quint32 id = newId();
    send(WireMessage(shell, XDG_WM_BASE_CREATE_POSITIONER).number(id));
    send(WireMessage(id, XDG_POSITIONER_SET_SIZE).number(size.width()).number(size.height()));
    send(WireMessage(id, XDG_POSITIONER_SET_ANCHOR_RECT).number(0U).number(0U).number(10U).number(10U));
    return id;
}

quint32 WireClient::createPopup(quint32 xdgSurface, quint32 parentXdgSurface, quint32 positioner)
{
    const quint32 id = newId();
    send(WireMessage(xdgSurface, XDG_SURFACE_GET_POPUP).number(id).number(parentXdgSurface).number(positioner));
    return id;
}

quint32 WireClient::createPool(qint64 size, qint32 claimedSize)
{
    if (mMemory >= 0) {
        close(mMemory);
    }
    mMemory = memfd_create("wire-client", MFD_CLOEXEC);
    if (mMemory < 0 || ftruncate(mMemory, size) != 0) {
        throw std::runtime_error("no memory");
    }
    const quint32 shared = global("wl_shm");
    const quint32 id = newId();
    send(WireMessage(shared, WL_SHM_CREATE_POOL).number(id).descriptor(mMemory).number(claimedSize));
    return id;
}

quint32 WireClient::createBuffer(quint32 pool, qint32 width, qint32 height, qint32 stride, quint32 format)
{
    const quint32 id = newId();
    send(WireMessage(pool, WL_SHM_POOL_CREATE_BUFFER)
             .number(id)
             .number(0U)
             .number(width)
             .number(height)
             .number(stride)
             .number(format));
    return id;
}

quint32 WireClient::createBuffer(const QSize& size)
{
    const qint32 bytes = size.width() * size.height() * cPixelSize;
    const quint32 pool = createPool(bytes, bytes);
    const QByteArray white(bytes, '\xff');
    if (pwrite(mMemory, white.constData(), static_cast<std::size_t>(bytes), 0) != bytes) {
        throw std::runtime_error("cannot paint");
    }
    return createBuffer(pool, size.width(), size.height(), size.width() * cPixelSize);
}

WireClient::Window WireClient::createWindow()
{
    Window window = {};
    window.surface = createSurface();
    window.xdgSurface = createXdgSurface(window.surface);
    window.toplevel = createToplevel(window.xdgSurface);
    return window;
}

WireClient::Window WireClient::openWindow(const QByteArray& title)
{
    const Window window = createWindow();
    send(WireMessage(window.toplevel, XDG_TOPLEVEL_SET_TITLE).text(title));
    configure(window.surface, window.xdgSurface);
    attach(window.surface, createBuffer(QSize(300, 200)));
    damage(window.surface, QRect(0, 0, 300, 200));
    commit(window.surface);
    return window;
}
