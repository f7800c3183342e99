// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <TelvaroScreenDBusConnector.h>
#include <TelvaroTaskSwitcherDBusConnector.h>

#include <QDBusServiceWatcher>
#include <QHash>
#include <QObject>
#include <QString>

/// Prints a line for every view that appears, disappears or becomes current, and disables the screen saver while a view
/// of one application is current.
class ViewLogger : public QObject
{
    Q_OBJECT

public:
    /// With an empty id the screen saver is never disabled.
    explicit ViewLogger(const QString& awakeAppId, QObject* parent = nullptr);
    /// Enables the screen saver again.
    ~ViewLogger() override;

private:
    using View = TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry;

    void update();
    void logDifferences(const QList<View>& views);
    void setAwake(bool awake);

    // Created before the connectors: the slots of a watcher that is created later can run before the connectors know
    // the new owner of the service's name.
    QDBusServiceWatcher mServiceWatcher;
    TelvaroTaskSwitcherDBusConnector mTaskSwitcher;
    TelvaroScreenDBusConnector mScreen;
    QString mAwakeAppId;
    QHash<QString, View> mViews;
    QString mCurrentUuid;
    bool mAwake = false;
};
