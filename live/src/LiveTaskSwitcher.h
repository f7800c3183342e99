// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "LiveProperties.h"
#include "LiveViews.h"

#include <QDBusPendingCall>
#include <QList>
#include <QString>

/// The properties of the task switcher, and the steps between its views.
class LiveTaskSwitcher : public LiveProperties
{
    Q_OBJECT

public:
    LiveTaskSwitcher();

    TelvaroViewModel* getModel();
    QString getCurrentView() const;

    QDBusPendingCall switchTo(const QString& uuid);
    QDBusPendingCall switchToView(const QString& appId, uint32_t sortIndex);
    QDBusPendingCall step(bool backward);

protected:
    bool store(const QString& name, const QVariant& value, Origin origin) override;
    void forget() override;
    void publish() override;

private:
    void onRequestAnswered(bool isRefused);

    LiveViews mRows;
    QList<TelvaroViewModel::View> mViews;
    QString mCurrentView;
    QString mPublishedCurrentView;

    /// The view that was asked for last, from which a step begins, for as long as it may become the current one.
    QString mRequestedView;
    /// The number of the request for it, and whether that has been answered.
    quint64 mRequest = 0;
    bool mIsRequestAnswered = true;
    /// Whether the service named the view as the current one before it answered. Earlier requests may be why, so that
    /// the answer is to be awaited all the same.
    bool mIsRequestedViewNamed = false;
};
