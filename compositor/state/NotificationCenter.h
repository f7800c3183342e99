// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "state/Notification.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>
#include <QVector>

/// The open notifications, until they expire or are closed. Their number is bounded: the oldest is closed when there
/// are too many.
class NotificationCenter : public QObject
{
    Q_OBJECT

public:
    enum class CloseReason : quint32
    {
        Expired = 1,
        Dismissed = 2,
        Requested = 3,
        Undefined = 4
    };

    static constexpr int cMaximumCount = 100;

    explicit NotificationCenter(QObject* parent = nullptr);

    /// The oldest first.
    QVector<Notification> notifications() const;

    /// Replaces the notification `replacesId` if that is still open; otherwise adds one. Returns its id.
    quint32 notify(Notification notification, quint32 replacesId);
    /// Returns false when there is no such notification.
    bool close(quint32 id, CloseReason reason);
    void invokeAction(quint32 id, const QString& key);

Q_SIGNALS:
    void changed();
    void closed(quint32 id, CloseReason reason);
    void actionInvoked(quint32 id, const QString& key);

private:
    struct Entry
    {
        Notification notification;
        /// On mClock; 0 is never.
        qint64 deadline;
    };

    int indexOf(quint32 id) const;
    quint32 takeId();
    void expire();
    void armTimer();

    QVector<Entry> mEntries;
    quint32 mLastId = 0;
    QElapsedTimer mClock;
    QTimer mTimer;
};
