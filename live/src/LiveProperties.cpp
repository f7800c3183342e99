// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "LiveProperties.h"

#include "DBusConnection.h"
#include "PropertyReply.h"
#include "ServiceCall.h"

#include <TelvaroDBusDefinitions.h>
#include <TelvaroDeviceDistinction.h>
#include <TelvaroScreenDBusConnector.h>

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QPointer>

#include <algorithm>
#include <optional>

namespace {

const QString& busName()
{
    static const QString cBusName = QStringLiteral("org.freedesktop.DBus");
    return cBusName;
}

const QString& busPath()
{
    static const QString cBusPath = QStringLiteral("/org/freedesktop/DBus");
    return cBusPath;
}

} // namespace

LiveProperties::LiveProperties(const QString& path, const QString& interface, const QStringList& names)
    : mPath(path)
    , mInterface(interface)
{
    for (const QString& name : names) {
        mProperties.push_back({name});
    }
}

void LiveProperties::start(TelvaroLiveObject* object)
{
    setParent(object);
    mObject = object;
    // Subscribed first, so that nothing that happens after the answers goes unseen.
    if (TelvaroDeviceDistinction::isCompositorDevice() && subscribe()) {
        mOwnerQuestion = new QDBusPendingCallWatcher(ServiceCall::ask(busName(), busPath(), busName(),
                                                                      QStringLiteral("GetNameOwner"),
                                                                      {TelvaroDBusDefinitions::getServiceName()}),
                                                     this);
        connect(mOwnerQuestion, &QDBusPendingCallWatcher::finished, this, &LiveProperties::onOwnerNamed);
    }
    mAnnouncedStatus = getStatus();
}

TelvaroLiveObject::Status LiveProperties::getStatus() const
{
    if (mOwner.isEmpty()) {
        return mOwnerQuestion == nullptr ? TelvaroLiveObject::Absent : TelvaroLiveObject::Loading;
    }
    if (findRefused() != nullptr) {
        return TelvaroLiveObject::Failed;
    }
    const bool isComplete = std::all_of(mProperties.begin(), mProperties.end(), [](const Property& property) {
        return property.state == Property::Known;
    });
    return isComplete ? TelvaroLiveObject::Ready : TelvaroLiveObject::Loading;
}

QDBusError LiveProperties::getError() const
{
    const Property* const refused = findRefused();
    return refused == nullptr ? QDBusError() : refused->error;
}

bool LiveProperties::store(const QString& /*name*/, const QVariant& /*value*/, Origin /*origin*/)
{
    return false;
}

void LiveProperties::forget()
{
}

void LiveProperties::publish()
{
}

QDBusPendingCall LiveProperties::write(const QString& name, const QVariant& value) const
{
    return ServiceCall::request(mPath, TelvaroDBusDefinitions::getPropertyInterface(),
                                TelvaroDBusDefinitions::getPropertyMehodSet(),
                                {mInterface, name, QVariant::fromValue(QDBusVariant(value))}, mObject->getTimeout());
}

// Without the names of the senders, whose owners Qt would wait for; the slots compare them.
bool LiveProperties::subscribe()
{
    const bool isFollowed = mProperties.empty()
        || DBusConnection::subscribe(QString(), mPath, TelvaroDBusDefinitions::getPropertyInterface(),
                                     TelvaroScreenDBusConnector::cPropertiesChanged, QStringLiteral("sa{sv}as"), this,
                                     SLOT(onPropertiesChanged(QString, QVariantMap, QStringList, QDBusMessage)));
    return isFollowed
        && DBusConnection::subscribe(QString(), busPath(), busName(), QStringLiteral("NameOwnerChanged"),
                                     QStringLiteral("sss"), this,
                                     SLOT(onNameOwnerChanged(QString, QString, QString, QDBusMessage)),
                                     {TelvaroDBusDefinitions::getServiceName()})
        // The end of the bus changes no owner.
        && DBusConnection::subscribe(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                                     QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"),
                                     QString(), this, SLOT(onDisconnected()));
}

void LiveProperties::onOwnerNamed(QDBusPendingCallWatcher* call)
{
    const QDBusPendingReply<QString> reply = *call;
    followOwner(reply.isError() ? QString() : reply.value());
}

void LiveProperties::onNameOwnerChanged(const QString& /*name*/, const QString& /*oldOwner*/, const QString& newOwner,
                                        const QDBusMessage& message)
{
    if (message.service() == busName()) {
        followOwner(newOwner);
    }
}

void LiveProperties::onDisconnected()
{
    followOwner(QString());
}

void LiveProperties::followOwner(const QString& owner)
{
    const int change = ++mOwnerChanges;
    const QPointer<LiveProperties> self(this);
    if (!mOwner.isEmpty() && !owner.isEmpty()) {
        // Listeners hear of the end of the one before they hear of the other.
        setOwner(QString());
    }
    // They may have run an event loop that named yet another one.
    if (self && change == mOwnerChanges) {
        setOwner(owner);
    }
}

// Start, restart, replacement and end: no value of another owner is ever kept.
void LiveProperties::setOwner(const QString& owner)
{
    if (mOwnerQuestion != nullptr) {
        mOwnerQuestion->deleteLater();
        mOwnerQuestion->disconnect(this);
        mOwnerQuestion = nullptr;
    }
    mOwner = owner;
    for (Property& property : mProperties) {
        delete property.read;
        property.read = nullptr;
        property.state = Property::Awaited;
        if (!owner.isEmpty()) {
            read(property);
        }
    }
    forget();
    announce();
}

void LiveProperties::onPropertiesChanged(const QString& interface, const QVariantMap& changed,
                                         const QStringList& invalidated, const QDBusMessage& message)
{
    if (message.service() != mOwner) {
        return;
    }
    for (Property& property : mProperties) {
        const auto value = changed.constFind(property.name);
        const bool isChanged = value != changed.constEnd();
        if (!isChanged && !invalidated.contains(property.name)) {
            continue;
        }
        property.isReadOutdated = true;
        // A value under the name of another interface is not believed either: it may be another property's.
        if (isChanged && interface == mInterface && store(property.name, *value, Origin::Notification)) {
            property.state = Property::Known;
        } else {
            property.state = Property::Awaited;
            if (property.read == nullptr) {
                read(property);
            }
        }
    }
    announce();
}

void LiveProperties::read(Property& property)
{
    property.isReadOutdated = false;
    property.read = new QDBusPendingCallWatcher(
        ServiceCall::ask(mOwner, mPath, TelvaroDBusDefinitions::getPropertyInterface(),
                         TelvaroDBusDefinitions::getPropertyMehodGet(), {mInterface, property.name}),
        this);
    connect(property.read, &QDBusPendingCallWatcher::finished, this, &LiveProperties::onRead);
}

void LiveProperties::onRead(QDBusPendingCallWatcher* call)
{
    const auto property = std::find_if(mProperties.begin(), mProperties.end(), [call](const Property& candidate) {
        return candidate.read == call;
    });
    property->read = nullptr;
    call->deleteLater();
    if (property->state != Property::Awaited) {
        return;
    }
    if (property->isReadOutdated) {
        read(*property);
        return;
    }
    const QDBusMessage reply = call->reply();
    const std::optional<QVariant> value = PropertyReply::getValue(reply);
    if (value && store(property->name, *value, Origin::Read)) {
        property->state = Property::Known;
    } else {
        property->state = Property::Refused;
        property->error = reply.type() == QDBusMessage::ErrorMessage
            ? QDBusError(reply)
            : QDBusError(QDBusError::InvalidSignature,
                         QStringLiteral("The property \"%1\" has no value of its type").arg(property->name));
    }
    announce();
}

const LiveProperties::Property* LiveProperties::findRefused() const
{
    const auto refused = std::find_if(mProperties.begin(), mProperties.end(), [](const Property& property) {
        return property.state == Property::Refused;
    });
    return refused == mProperties.end() ? nullptr : &*refused;
}

void LiveProperties::announce()
{
    const QPointer<LiveProperties> self(this);
    publish();
    if (!self) {
        return;
    }
    const TelvaroLiveObject::Status status = getStatus();
    if (status != mAnnouncedStatus) {
        mAnnouncedStatus = status;
        Q_EMIT mObject->statusChanged();
    }
}
