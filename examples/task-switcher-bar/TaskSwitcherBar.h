// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "OtherViews.h"

#include <TelvaroTaskSwitcher.h>

#include <QLabel>
#include <QWidget>

/// Lists the views of all other applications; a click on one makes it current.
class TaskSwitcherBar : public QWidget
{
    Q_OBJECT

public:
    explicit TaskSwitcherBar(QWidget* parent = nullptr);

private:
    void showState();
    void switchTo(const QModelIndex& view);

    TelvaroTaskSwitcher mTaskSwitcher;
    OtherViews mViews;
    QLabel* const mMessage;
};
