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
class ClientWatch : public QObject
{
    Q_OBJECT

public:
    ClientWatch(QWaylandXdgShell* shell, QWaylandClient* client, QObject* parent);

    bool isResponding() const
    {
        return mResponding;
    }

    /// Asks the client for a sign of life, unless it was asked just before.
    void ping();

Q_SIGNALS:
    void respondingChanged();

private:
    void handlePong(uint serial);
    void setResponding(bool responding);

    QWaylandXdgShell* mShell;
    QPointer<QWaylandClient> mClient;
    bool mWaiting = false;
    bool mResponding = true;
    uint mSerial = 0;
    QElapsedTimer mSincePing;
    QTimer mDeadline;
};
