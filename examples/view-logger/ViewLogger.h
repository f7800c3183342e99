// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <TelvaroScreenDBusConnector.h>
#include <TelvaroTaskSwitcherDBusConnector.h>

#include <QDBusServiceWatcher>
#include <QHash>
#include <QObject>
#include <QString>

/// Writes a line for every view that appears, leaves or becomes current, and keeps the screen saver away while one
/// application is current.
class ViewLogger : public QObject
{
    Q_OBJECT

public:
    /// An empty id leaves the screen saver alone.
    explicit ViewLogger(const QString& awakeAppId, QObject* parent = nullptr);
    /// Allows the screen saver again.
    ~ViewLogger() override;

private:
    using View = TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry;

    void update();
    void logDifferences(const QList<View>& views);
    void setAwake(bool awake);

    TelvaroTaskSwitcherDBusConnector mTaskSwitcher;
    TelvaroScreenDBusConnector mScreen;
    QDBusServiceWatcher mServiceWatcher;
    QString mAwakeAppId;
    QHash<QString, View> mViews;
    QString mCurrentUuid;
    bool mAwake = false;
};
