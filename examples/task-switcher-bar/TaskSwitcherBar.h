// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <TelvaroTaskSwitcherDBusConnector.h>

#include <QLabel>
#include <QListWidget>
#include <QWidget>

/// Lists the views of all other applications; a click on one makes it current.
class TaskSwitcherBar : public QWidget
{
    Q_OBJECT

public:
    explicit TaskSwitcherBar(QWidget* parent = nullptr);

private:
    using View = TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry;

    void showViews();
    void switchTo(const QListWidgetItem* item);

    TelvaroTaskSwitcherDBusConnector mTaskSwitcher;
    QListWidget* const mList;
    QLabel* const mMessage;
};
