// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QDBusContext>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

class CallGate;
class NotificationCenter;

/// The notification server on the bus, according to the Desktop Notifications Specification. The slots and signals are
/// named as the methods and signals of the interface: the generated adaptor uses them by these names.
class NotificationsObject : public QObject, protected QDBusContext
{
    Q_OBJECT

public:
    NotificationsObject(NotificationCenter& center, CallGate& gate, QObject* parent = nullptr);

public Q_SLOTS:
    uint Notify(const QString& appName, uint replacesId, const QString& appIcon, const QString& summary,
                const QString& body, const QStringList& actions, const QVariantMap& hints, int expireTimeout);
    /// Sends an error reply, with an empty text as the Desktop Notifications Specification demands, when there is no
    /// such notification.
    void CloseNotification(uint id);
    QStringList GetCapabilities() const;
    QString GetServerInformation(QString& vendor, QString& version, QString& specificationVersion) const;

Q_SIGNALS:
    void NotificationClosed(uint id, uint reason);
    void ActionInvoked(uint id, const QString& actionKey);

private:
    NotificationCenter& mCenter;
};
