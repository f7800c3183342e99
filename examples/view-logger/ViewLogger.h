// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <TelvaroScreen.h>
#include <TelvaroTaskSwitcher.h>
#include <TelvaroTaskSwitcherDBusConnector.h>

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

    TelvaroTaskSwitcher mTaskSwitcher;
    TelvaroScreen mScreen;
    QString mAwakeAppId;
    QHash<QString, View> mViews;
    QString mCurrentUuid;
    bool mAwake = false;
};
