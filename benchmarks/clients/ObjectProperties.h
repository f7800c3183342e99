// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QDBusInterface>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVariantMap>

/// Emits a signal when properties of one of the service's objects change.
class PropertyWatcher : public QObject
{
    Q_OBJECT

public:
    void watch(const QString& path);

Q_SIGNALS:
    void changed(const QVariantMap& values);

private Q_SLOTS:
    void onPropertiesChanged(const QString& interface, const QVariantMap& values, const QStringList& invalidated);
};

/// The properties of one of the service's objects, as an application follows and uses them that talks to QtDBus itself.
class ObjectProperties : public PropertyWatcher
{
public:
    ObjectProperties(const QString& path, QString interface);

    bool hasOwner() const;
    /// Returns the value as it came, an invalid one if there is no reply.
    QVariant get(const QString& name);
    bool set(const QString& name, const QVariant& value);

private:
    QDBusInterface mProxy;
    QString mInterface;
};
