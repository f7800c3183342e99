// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "TelvaroTaskSwitcher.h"

#include "LiveTaskSwitcher.h"

TelvaroTaskSwitcher::TelvaroTaskSwitcher(QObject* parent)
    : TelvaroLiveObject(new LiveTaskSwitcher, parent)
    , mTaskSwitcher(static_cast<LiveTaskSwitcher*>(mProperties))
{
}

TelvaroTaskSwitcher::~TelvaroTaskSwitcher() = default;

TelvaroViewModel* TelvaroTaskSwitcher::getViews() const
{
    return mTaskSwitcher->getModel();
}

QString TelvaroTaskSwitcher::getCurrentView() const
{
    return mTaskSwitcher->getCurrentView();
}

QDBusPendingReply<> TelvaroTaskSwitcher::switchTo(const QString& uuid)
{
    return report(mTaskSwitcher->switchTo(uuid));
}

QDBusPendingReply<> TelvaroTaskSwitcher::switchToView(const QString& appId, uint32_t sortIndex)
{
    return report(mTaskSwitcher->switchToView(appId, sortIndex));
}

QDBusPendingReply<> TelvaroTaskSwitcher::next()
{
    return report(mTaskSwitcher->step(false));
}

QDBusPendingReply<> TelvaroTaskSwitcher::previous()
{
    return report(mTaskSwitcher->step(true));
}
