// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QDBusAbstractAdaptor>
#include <QDBusError>
#include <QDBusVariant>
#include <QMetaProperty>
#include <QVariantMap>

/// Implements org.freedesktop.DBus.Properties for an object whose properties its other adaptors describe. Replaces Qt's
/// own implementation, which can neither reject a value nor emit PropertiesChanged: a setter of the object rejects a
/// value by sending an error reply.
class PropertiesAdaptor : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.DBus.Properties")
    // Empty, because QtDBus itself adds this interface to every object's introspection data.
    Q_CLASSINFO("D-Bus Introspection", "")

public:
    /// `object` also derives from QDBusContext.
    explicit PropertiesAdaptor(QObject* object);

    /// Emits PropertiesChanged with the present value of the property `name`.
    void announce(const char* name);

public Q_SLOTS:
    QDBusVariant Get(const QString& interfaceName, const QString& name);
    QVariantMap GetAll(const QString& interfaceName);
    void Set(const QString& interfaceName, const QString& name, const QDBusVariant& value);

Q_SIGNALS:
    void PropertiesChanged(const QString& interfaceName, const QVariantMap& changed, const QStringList& invalidated);

private:
    QList<QDBusAbstractAdaptor*> otherAdaptors() const;
    /// Null when no other adaptor implements the interface.
    const QDBusAbstractAdaptor* adaptorOf(const QString& interfaceName) const;
    /// Returns the property as an adaptor describes it. Sends an error reply, and returns an invalid one, when there is
    /// none.
    QMetaProperty findProperty(const QString& interfaceName, const QString& name) const;
    void refuse(QDBusError::ErrorType type, const QString& text) const;
};
