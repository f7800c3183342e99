// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "WireMessage.h"

#include <QByteArray>
#include <QMap>
#include <QRect>
#include <QSize>
#include <QString>
#include <QVector>

/// A Wayland client on the bare socket, which can send requests that no library would. Objects are their wire ids.
/// Pings are answered, all other events only recorded.
class WireClient
{
public:
    struct Event
    {
        quint32 object;
        quint16 opcode;
        QByteArray arguments;

        quint32 number(int index) const;
    };

    /// Connects; throws std::runtime_error on a failure.
    explicit WireClient(const QString& socketPath);
    ~WireClient();
    WireClient(const WireClient&) = delete;
    WireClient& operator=(const WireClient&) = delete;

    /// Does nothing once the compositor has disconnected the client.
    void send(const WireMessage& message);
    void sendBytes(const QByteArray& bytes, const QVector<int>& descriptors = {});
    /// Returns an id that wl_display.delete_id has freed, or the next one.
    quint32 newId();
    /// Binds the global as a new object.
    quint32 bind(const QByteArray& interface, quint32 version = 1);

    /// Returns true once the compositor has handled all requests, and false if it has disconnected the client. Throws
    /// std::runtime_error on a timeout.
    bool synchronise();
    /// The code of the wl_display.error that ended the connection, -1 for none.
    int errorCode() const
    {
        return mErrorCode;
    }
    QByteArray errorText() const
    {
        return mErrorText;
    }
    /// The events of an object so far, by opcode.
    QVector<Event> events(quint32 object, quint16 opcode) const;
    /// All events of an object so far.
    QVector<Event> events(quint32 object) const;
    /// Their opcodes.
    QVector<quint16> opcodes(quint32 object) const;
    /// Closes the socket without destroying anything, as a killed client.
    void disconnect();

    quint32 createSurface();
    void attach(quint32 surface, quint32 buffer);
    void damage(quint32 surface, const QRect& rect);
    void commit(quint32 surface);
    /// Acknowledges the last configure event, if there is one.
    void acknowledge(quint32 xdgSurface);
    /// Makes the initial commit, and acknowledges the configure event that follows.
    void configure(quint32 surface, quint32 xdgSurface);
    /// Shows the buffer on a surface with an xdg_surface, after configure().
    void show(quint32 surface, quint32 buffer);
    quint32 createSubsurface(quint32 surface, quint32 parent);
    quint32 createXdgSurface(quint32 surface);
    quint32 createToplevel(quint32 xdgSurface);
    /// With the size and anchor rectangle that it must have.
    quint32 createPositioner(const QSize& size);
    quint32 createPopup(quint32 xdgSurface, quint32 parentXdgSurface, quint32 positioner);
    /// A wl_shm_pool over `size` bytes that claims to have `claimedSize`.
    quint32 createPool(qint64 size, qint32 claimedSize);
    /// The memory of the latest pool.
    int memory() const
    {
        return mMemory;
    }
    quint32 createBuffer(quint32 pool, qint32 width, qint32 height, qint32 stride, quint32 format = 0);
    /// A white wl_buffer in its own pool.
    quint32 createBuffer(const QSize& size);

    struct Window
    {
        quint32 surface;
        quint32 xdgSurface;
        quint32 toplevel;
    };
    /// An xdg_toplevel without a buffer.
    Window createWindow();
    /// A mapped window.
    Window openWindow(const QByteArray& title);

private:
    bool receive();
    void handle(const Event& event);
    /// The object bound first, or a new one.
    quint32 global(const QByteArray& interface, quint32 version = 1);

    int mSocket;
    quint32 mNextId = 2;
    QVector<quint32> mFreeIds;
    quint32 mRegistry;
    QByteArray mInput;
    QVector<Event> mEvents;
    QMap<QByteArray, quint32> mGlobals;
    QMap<QByteArray, quint32> mBound;
    /// The xdg_surface of each surface.
    QMap<quint32, quint32> mXdgSurfaces;
    bool mIsConnected = true;
    int mErrorCode = -1;
    QByteArray mErrorText;
    int mMemory = -1;
};
