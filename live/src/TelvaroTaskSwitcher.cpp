// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "TelvaroTaskSwitcher.h"

#include "LiveTaskSwitcher.h"

TelvaroTaskSwitcher::TelvaroTaskSwitcher(QObject* parent)
    : TelvaroLiveObject(new LiveTaskSwitcher, parent)
{
}

TelvaroTaskSwitcher::~TelvaroTaskSwitcher() = default;

TelvaroViewModel* TelvaroTaskSwitcher::getViews() const
{
    return getProperties().getModel();
}

QString TelvaroTaskSwitcher::getCurrentView() const
{
    return getProperties().getCurrentView();
}

QDBusPendingReply<> TelvaroTaskSwitcher::switchTo(const QString& uuid)
{
    return report(getProperties().switchTo(uuid));
}

QDBusPendingReply<> TelvaroTaskSwitcher::switchToView(const QString& appId, uint32_t sortIndex)
{
    return report(getProperties().switchToView(appId, sortIndex));
}

QDBusPendingReply<> TelvaroTaskSwitcher::next()
{
    return report(getProperties().step(false));
}

QDBusPendingReply<> TelvaroTaskSwitcher::previous()
{
    return report(getProperties().step(true));
}

LiveTaskSwitcher& TelvaroTaskSwitcher::getProperties() const
{
    return static_cast<LiveTaskSwitcher&>(*mProperties);
}
