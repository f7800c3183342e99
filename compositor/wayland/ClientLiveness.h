// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QWaylandClient>
#include <QWaylandXdgShell>

/// Finds out whether a client still takes part: it is asked from time to time, when there is an occasion, and has to
/// answer.
class ClientLiveness : public QObject
{
    Q_OBJECT

public:
    ClientLiveness(QWaylandXdgShell* shell, QWaylandClient* client, QObject* parent);

    bool isResponding() const
    {
        return mResponding;
    }

    /// Asks the client for a sign of life, unless it owes one already.
    void ping();
    /// To be called before an event that may come in any number. False when the client has left so many unread that
    /// it must not be sent: its connection would fill, and the compositor's end of it would cut it.
    bool admitEvent();

Q_SIGNALS:
    void respondingChanged();
    /// The client has read again after events were held back from it.
    void caughtUp();

private:
    void handlePong(uint serial);
    void setResponding(bool responding);

    QWaylandXdgShell* mShell;
    QPointer<QWaylandClient> mClient;
    bool mWaiting = false;
    bool mResponding = true;
    uint mSerial = 0;
    /// Events that the client has not shown to have read, and those of them that came after the last ping.
    int mUnconfirmed = 0;
    int mSincePingCount = 0;
    bool mHeldBack = false;
    QElapsedTimer mSincePing;
    QTimer mDeadline;
};
