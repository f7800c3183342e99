// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "TelvaroLiveObject.h"

#include <QDBusError>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <vector>

class QDBusMessage;
class QDBusPendingCall;
class QDBusPendingCallWatcher;
class QVariant;

/// Follows properties of one object of the service without waiting for anything: subscribes, asks who owns the
/// service's name, reads every property once from that owner, and from then on takes what its notifications say.
///
/// Values are first stored, all that came together, and then published, so that listeners never see half a change and
/// may do what they like, delete the object included.
class LiveProperties : public QObject
{
    Q_OBJECT

public:
    /// Follows the presence of the service only.
    LiveProperties() = default;
    LiveProperties(const QString& path, const QString& interface, const QStringList& names);

    /// Begins to follow, on behalf of the object, which becomes the parent.
    void start(TelvaroLiveObject* object);

    TelvaroLiveObject::Status getStatus() const;
    QDBusError getError() const;

protected:
    enum class Origin
    {
        Notification,
        Read
    };

    /// Keeps the value, and returns whether it could: a value of a wrong type is not kept, nor one from a notification
    /// that may stand in for the true one, which is then read.
    virtual bool store(const QString& name, const QVariant& value, Origin origin);

    /// Replaces all values by empty ones.
    virtual void forget();

    /// Signals where the values differ from those that were signalled last.
    virtual void publish();

    /// Sends a request to write the property.
    QDBusPendingCall write(const QString& name, const QVariant& value) const;

    TelvaroLiveObject* mObject = nullptr;

private Q_SLOTS:
    void onNameOwnerChanged(const QString& name, const QString& oldOwner, const QString& newOwner,
                            const QDBusMessage& message);
    void onDisconnected();
    void onPropertiesChanged(const QString& interface, const QVariantMap& changed, const QStringList& invalidated,
                             const QDBusMessage& message);

private:
    struct Property
    {
        enum State
        {
            Awaited,
            Known,
            Refused
        };

        QString name;
        State state = Awaited;
        /// The one read that is under way. Its answer counts if the value is still awaited by then, and nothing has
        /// been notified since it was sent.
        QDBusPendingCallWatcher* read = nullptr;
        bool isReadOutdated = false;
        QDBusError error = {};
    };

    bool subscribe();
    void onOwnerNamed(QDBusPendingCallWatcher* call);
    void followOwner(const QString& owner);
    void setOwner(const QString& owner);
    void read(Property& property);
    void onRead(QDBusPendingCallWatcher* call);
    const Property* findRefused() const;
    void announce();

    QString mPath;
    QString mInterface;
    std::vector<Property> mProperties;
    QString mOwner;
    int mOwnerChanges = 0;
    QDBusPendingCallWatcher* mOwnerQuestion = nullptr;
    TelvaroLiveObject::Status mAnnouncedStatus = TelvaroLiveObject::Absent;
};
