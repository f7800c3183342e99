// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "TaskSwitcher.h"

#include "ErrorValue.h"

TaskSwitcher::TaskSwitcher(QObject* parent)
    : TelvaroTaskSwitcher(parent)
{
    connect(getViews(), &TelvaroViewModel::currentRowChanged, this, &TaskSwitcher::currentIndexChanged);
    connect(this, &TelvaroLiveObject::requestFailed, this, [this](const QDBusError& error) {
        Q_EMIT requestFailed(toErrorValue(error));
    });
}

bool TaskSwitcher::isAvailable() const
{
    return getStatus() == Ready;
}

int TaskSwitcher::getCurrentIndex() const
{
    return getViews()->getCurrentRow();
}

void TaskSwitcher::switchTo(const QString& uuid)
{
    TelvaroTaskSwitcher::switchTo(uuid);
}

void TaskSwitcher::switchToView(const QString& appId, uint sortIndex)
{
    TelvaroTaskSwitcher::switchToView(appId, sortIndex);
}

void TaskSwitcher::next()
{
    TelvaroTaskSwitcher::next();
}

void TaskSwitcher::previous()
{
    TelvaroTaskSwitcher::previous();
}
