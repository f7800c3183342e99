// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "ServiceObject.h"
#include "ViewListModel.h"

#include <TelvaroTaskSwitcherDBusConnector.h>

#include <QList>
#include <QString>

/// The views of the compositor's task switcher, and which of them is current.
class TaskSwitcher : public ServiceObject
{
    Q_OBJECT
    Q_PROPERTY(ViewListModel* views READ getViews CONSTANT)
    /// The uuid of the current view, empty where there is none. A write asks the service for another one, as
    /// switchTo(); the property changes when the service says so.
    Q_PROPERTY(QString currentView READ getCurrentView WRITE switchTo NOTIFY currentViewChanged)
    /// The row of the current view, -1 where there is none.
    Q_PROPERTY(int currentIndex READ getCurrentIndex NOTIFY currentIndexChanged)

public:
    explicit TaskSwitcher(QObject* parent = nullptr);

    ViewListModel* getViews();
    QString getCurrentView() const;
    int getCurrentIndex() const;

    // Each blocks until the service has answered and returns whether it accepted.

    Q_INVOKABLE bool switchTo(const QString& uuid);
    /// To the view of the application with that sort index.
    Q_INVOKABLE bool switchToView(const QString& appId, uint sortIndex = 0);
    /// To the next view of the current view's application, from the last on to the first.
    Q_INVOKABLE bool next();
    Q_INVOKABLE bool previous();

    /// Makes the view of the named process current. Failures are logged only.
    Q_INVOKABLE void surfaceToTop(const QString& processName);

Q_SIGNALS:
    void currentViewChanged();
    void currentIndexChanged();
    /// The service refused switchTo() or a write of currentView.
    void switchFailed(const QString& error);

protected:
    void onServiceChanged() override;

private:
    void onCurrentViewNotified(const QString& uuid);
    void scheduleUpdate();
    void readAll();
    void update();
    QList<ViewListModel::View> readViews();
    void show(const QList<ViewListModel::View>& views);

    TelvaroTaskSwitcherDBusConnector mConnector;
    ViewListModel mViews;
    QString mCurrentView;
    int mCurrentIndex = -1;
    QString mNotifiedView;
    bool mUpdateScheduled = false;
};
