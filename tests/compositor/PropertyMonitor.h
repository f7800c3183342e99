// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QDBusMessage>
#include <QList>
#include <QObject>
#include <QStringList>
#include <QVariant>

/// Records every PropertiesChanged of the compositor, and what its reader finds when it reads at once.
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

    /// All since the last time, after everything that was sent has arrived.
    QList<Change> take();
    /// As above; of each its properties, joined.
    QStringList takeNames();
    /// Waits until a property has changed and drops all that came before; throws std::runtime_error where it does not.
    Change waitFor(const QString& property);

private Q_SLOTS:
    void record(const QString& interface, const QVariantMap& changed, const QStringList& invalidated,
                const QDBusMessage& message);

private:
    QList<Change> mChanges;
};
