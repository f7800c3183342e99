// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "PropertyMonitor.h"

#include "ChildProcess.h"
#include "CompositorBus.h"
#include "PrivateBus.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <stdexcept>

PropertyMonitor::PropertyMonitor()
{
    const bool isConnected =
        PrivateBus::connection().connect(QStringLiteral(TELVARO_SERVICE_NAME), QString(), CompositorBus::cProperties,
                                         QStringLiteral("PropertiesChanged"), QStringLiteral("sa{sv}as"), this,
                                         SLOT(record(QString, QVariantMap, QStringList, QDBusMessage)));
    if (!isConnected) {
        throw std::runtime_error("cannot follow PropertiesChanged");
    }
    // Ensures that QtDBus knows a new compositor as the name's owner.
    PrivateBus::deliver();
}

QList<PropertyMonitor::Change> PropertyMonitor::take()
{
    // Replies and signals are ordered, so this reply follows all signals caused by earlier calls.
    CompositorBus::currentView();
    PrivateBus::deliver();
    return std::exchange(mChanges, {});
}

QStringList PropertyMonitor::takeNames()
{
    QStringList names;
    for (const Change& change : take()) {
        names.append(change.properties.join(QLatin1Char('+')));
    }
    return names;
}

PropertyMonitor::Change PropertyMonitor::waitFor(const QString& property)
{
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < ChildProcess::cDeadline) {
        while (!mChanges.isEmpty()) {
            const Change change = mChanges.takeFirst();
            if (change.properties.contains(property)) {
                return change;
            }
        }
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    }
    throw std::runtime_error("no change of " + property.toStdString());
}

void PropertyMonitor::record(const QString& interface, const QVariantMap& changed, const QStringList& invalidated,
                             const QDBusMessage& message)
{
    mChanges.append({message.path(), interface, changed.keys(), changed, invalidated, CompositorBus::currentView()});
}
