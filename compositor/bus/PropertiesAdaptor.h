// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QDBusAbstractAdaptor>
#include <QDBusError>
#include <QDBusVariant>
#include <QMetaProperty>
#include <QVariantMap>

/// Answers org.freedesktop.DBus.Properties for an object whose properties its other adaptors describe. Unlike Qt's own
/// answers to it, these can refuse a value and tell of changes: an object refuses by sending an error reply from its
/// property's setter, and each notify signal of a property is told to the bus at once.
class PropertiesAdaptor : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.DBus.Properties")
    // Qt adds this interface to every object's introspection data by itself.
    Q_CLASSINFO("D-Bus Introspection", "")

public:
    /// `object` also derives from QDBusContext.
    explicit PropertiesAdaptor(QObject* object);

public Q_SLOTS:
    QDBusVariant Get(const QString& interfaceName, const QString& name);
    QVariantMap GetAll(const QString& interfaceName);
    void Set(const QString& interfaceName, const QString& name, const QDBusVariant& value);

Q_SIGNALS:
    void PropertiesChanged(const QString& interfaceName, const QVariantMap& changed, const QStringList& invalidated);

private:
    QDBusAbstractAdaptor* adaptorOf(const QString& interfaceName) const;
    /// The property as an adaptor describes it; not valid, and the caller is told why, when there is none.
    QMetaProperty findProperty(const QString& interfaceName, const QString& name) const;
    void refuse(QDBusError::ErrorType type, const QString& text) const;
    /// Told by a property's notify signal.
    Q_SLOT void announceChange();
};
