// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "state/NotificationCenter.h"

#include <algorithm>
#include <limits>

NotificationCenter::NotificationCenter(QObject* parent)
    : QObject(parent)
{
    mClock.start();
    mTimer.setSingleShot(true);
    connect(&mTimer, &QTimer::timeout, this, &NotificationCenter::expire);
}

QVector<Notification> NotificationCenter::notifications() const
{
    QVector<Notification> notifications;
    notifications.reserve(mEntries.size());
    for (const Entry& entry : mEntries) {
        notifications.append(entry.notification);
    }
    return notifications;
}

quint32 NotificationCenter::notify(Notification notification, quint32 replacesId)
{
    const qint64 deadline =
        notification.timeoutMilliseconds <= 0 ? 0 : mClock.elapsed() + notification.timeoutMilliseconds;
    const int replaced = indexOf(replacesId);
    const quint32 id = replaced < 0 ? takeId() : replacesId;
    notification.id = id;
    if (replaced >= 0) {
        mEntries[replaced] = {notification, deadline};
    } else {
        mEntries.append({notification, deadline});
    }
    Q_EMIT changed();
    if (mEntries.size() > cMaximumCount) {
        close(mEntries.first().notification.id, CloseReason::Undefined);
    }
    armTimer();
    return id;
}

bool NotificationCenter::close(quint32 id, CloseReason reason)
{
    const int index = indexOf(id);
    if (index < 0) {
        return false;
    }
    mEntries.removeAt(index);
    armTimer();
    Q_EMIT changed();
    Q_EMIT closed(id, reason);
    return true;
}

void NotificationCenter::invokeAction(quint32 id, const QString& key)
{
    const int index = indexOf(id);
    if (index < 0) {
        return;
    }
    const bool isResident = mEntries.at(index).notification.isResident;
    Q_EMIT actionInvoked(id, key);
    if (!isResident) {
        close(id, CloseReason::Dismissed);
    }
}

int NotificationCenter::indexOf(quint32 id) const
{
    const auto found = std::find_if(mEntries.cbegin(), mEntries.cend(), [id](const Entry& entry) {
        return entry.notification.id == id;
    });
    return found == mEntries.cend() ? -1 : static_cast<int>(found - mEntries.cbegin());
}

quint32 NotificationCenter::takeId()
{
    do {
        ++mLastId;
    } while (mLastId == 0 || indexOf(mLastId) >= 0);
    return mLastId;
}

void NotificationCenter::expire()
{
    QVector<quint32> expired;
    for (const Entry& entry : qAsConst(mEntries)) {
        if (entry.deadline != 0 && entry.deadline <= mClock.elapsed()) {
            expired.append(entry.notification.id);
        }
    }
    for (const quint32 id : qAsConst(expired)) {
        close(id, CloseReason::Expired);
    }
    armTimer();
}

void NotificationCenter::armTimer()
{
    qint64 next = std::numeric_limits<qint64>::max();
    for (const Entry& entry : qAsConst(mEntries)) {
        if (entry.deadline != 0) {
            next = std::min(next, entry.deadline);
        }
    }
    if (next == std::numeric_limits<qint64>::max()) {
        mTimer.stop();
    } else {
        mTimer.start(static_cast<int>(qBound<qint64>(0, next - mClock.elapsed(), std::numeric_limits<int>::max())));
    }
}
