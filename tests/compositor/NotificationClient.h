// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QList>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

/// Sends notifications and records the signals about them.
class NotificationClient : public QObject
{
    Q_OBJECT

public:
    struct Content
    {
        QString appIcon = {};
        QString summary = QStringLiteral("Summary");
        QString body = {};
        QStringList actions = {};
        QVariantMap hints = {};
        int expireTimeout = 0;
        uint replacesId = 0;
    };

    NotificationClient();

    /// Returns the id; throws std::runtime_error on an error.
    static uint notify(const Content& content);
    /// Returns the error, empty for none.
    static QString close(uint id);

    /// "closed <id> <reason>" and "action <id> <key>", in order, after synchronising with the bus.
    QStringList takeEvents();
    /// Waits for the next event.
    QString waitForEvent();

private Q_SLOTS:
    void recordClosed(uint id, uint reason);
    void recordAction(uint id, const QString& key);

private:
    QStringList mEvents;
};
