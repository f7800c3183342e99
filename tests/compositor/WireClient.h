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

/// A Wayland client without a library between it and the socket: what it sends may be as wrong as no library would make
/// it. Objects are the numbers that they have on the wire. Pings are answered, all other events are only recorded.
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

    /// Connects; throws std::runtime_error where it cannot.
    explicit WireClient(const QString& socketPath);
    ~WireClient();
    WireClient(const WireClient&) = delete;
    WireClient& operator=(const WireClient&) = delete;

    /// Sends nothing where the compositor has ended the connection.
    void send(const WireMessage& message);
    void sendBytes(const QByteArray& bytes, const QVector<int>& descriptors = {});
    /// The number of an object that is gone for both sides, or the next one.
    quint32 newId();
    /// Makes an object that nobody has heard of yet.
    quint32 bind(const QByteArray& interface, quint32 version = 1);

    /// True when the compositor has done everything that was sent; false when it has ended the connection instead.
    /// Throws std::runtime_error where it does neither.
    bool synchronise();
    /// Why the compositor has ended the connection: the number of the error, -1 where it gave none.
    int errorCode() const
    {
        return mErrorCode;
    }
    QByteArray errorText() const
    {
        return mErrorText;
    }
    /// The events of an object until now, with that opcode.
    QVector<Event> events(quint32 object, quint16 opcode) const;
    /// All events of an object until now.
    QVector<Event> events(quint32 object) const;
    /// Goes without a word, as one that is killed.
    void disconnect();

    quint32 createSurface();
    void attach(quint32 surface, quint32 buffer);
    void damage(quint32 surface, const QRect& rect);
    void commit(quint32 surface);
    quint32 createXdgSurface(quint32 surface);
    quint32 createToplevel(quint32 xdgSurface);
    /// With all that it must have.
    quint32 createPositioner(const QSize& size);
    quint32 createPopup(quint32 xdgSurface, quint32 parentXdgSurface, quint32 positioner);
    /// A pool over memory of that many bytes, of which so many are told.
    quint32 createPool(qint64 size, qint32 toldSize);
    /// The memory of the last pool.
    int memory() const
    {
        return mMemory;
    }
    quint32 createBuffer(quint32 pool, qint32 width, qint32 height, qint32 stride, quint32 format = 0);
    /// A white buffer in a pool of its own.
    quint32 createBuffer(const QSize& size);

    struct Window
    {
        quint32 surface;
        quint32 xdgSurface;
        quint32 toplevel;
    };
    /// A window that is not mapped.
    Window createWindow();
    /// A mapped one.
    Window openWindow(const QByteArray& title);

private:
    bool receive();
    void handle(const Event& event);

    int mSocket;
    quint32 mNextId = 2;
    QVector<quint32> mFreeIds;
    quint32 mRegistry;
    QByteArray mInput;
    QVector<Event> mEvents;
    QMap<QByteArray, quint32> mGlobals;
    QMap<QByteArray, quint32> mBound;
    bool mIsConnected = true;
    int mErrorCode = -1;
    QByteArray mErrorText;
    int mMemory = -1;
};
