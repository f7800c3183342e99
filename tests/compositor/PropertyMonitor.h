// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QDBusMessage>
#include <QList>
#include <QObject>
#include <QStringList>
#include <QVariant>

/// Records every PropertiesChanged of the compositor, and the current view as read within the handler.
class PropertyMonitor : public QObject
{
    Q_OBJECT

public:
    struct Change
    {
        QString path;
        QString interface;
        QStringList properties;
        QVariantMap values;
        QStringList invalidated;
        /// The current view as it is read within the handler.
        QString currentView;
    };

    PropertyMonitor();

    /// Takes all signals since the last call, after synchronising with the bus.
    QList<Change> take();
    /// As above, only the names of the properties, joined.
    QStringList takeNames();
    /// Waits until the property has changed and drops all signals before; throws std::runtime_error on a timeout.
    Change waitFor(const QString& property);

private Q_SLOTS:
    void record(const QString& interface, const QVariantMap& changed, const QStringList& invalidated,
                const QDBusMessage& message);

private:
    QList<Change> mChanges;
};
