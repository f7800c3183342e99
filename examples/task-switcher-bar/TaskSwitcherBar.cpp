// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "TaskSwitcherBar.h"

#include <QListView>
#include <QVBoxLayout>

TaskSwitcherBar::TaskSwitcherBar(QWidget* parent)
    : QWidget(parent)
    , mMessage(new QLabel)
{
    setWindowTitle(tr("Views"));
    auto* const heading = new QLabel(tr("Views"));
    heading->setObjectName(QStringLiteral("heading"));
    mMessage->setObjectName(QStringLiteral("message"));
    mMessage->setWordWrap(true);

    // The model keeps itself up to date, and its rows outlive changes: nothing has to be filled in here, now or later.
    mViews.setSourceModel(mTaskSwitcher.getViews());
    auto* const list = new QListView;
    list->setModel(&mViews);
    list->setSpacing(2);

    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(32, 24, 32, 24);
    layout->setSpacing(12);
    layout->addWidget(heading);
    layout->addWidget(list);
    layout->addWidget(mMessage);

    connect(list, &QListView::clicked, this, &TaskSwitcherBar::switchTo);
    connect(list, &QListView::activated, this, &TaskSwitcherBar::switchTo);
    connect(&mTaskSwitcher, &TelvaroTaskSwitcher::requestFailed, this, [this](const QDBusError& error) {
        mMessage->setText(tr("Cannot switch: %1").arg(error.message()));
    });
    connect(&mTaskSwitcher, &TelvaroTaskSwitcher::statusChanged, this, &TaskSwitcherBar::showState);
    connect(&mTaskSwitcher, &TelvaroTaskSwitcher::viewsChanged, this, &TaskSwitcherBar::showState);
    connect(&mTaskSwitcher, &TelvaroTaskSwitcher::currentViewChanged, this, &TaskSwitcherBar::showState);
    showState();
}

void TaskSwitcherBar::showState()
{
    switch (mTaskSwitcher.getStatus()) {
    case TelvaroTaskSwitcher::Absent:
        mMessage->setText(tr("The compositor service is not there."));
        break;
    case TelvaroTaskSwitcher::Loading:
        mMessage->setText(tr("Waiting for the compositor service"));
        break;
    case TelvaroTaskSwitcher::Ready:
        mMessage->setText(mViews.rowCount() == 0 ? tr("No other application is running.") : QString());
        break;
    case TelvaroTaskSwitcher::Failed:
        mMessage->setText(tr("The views cannot be read: %1").arg(mTaskSwitcher.getError().message()));
        break;
    }
}

void TaskSwitcherBar::switchTo(const QModelIndex& view)
{
    // Returns at once. The list shows the switch when the service has made it.
    mTaskSwitcher.switchTo(view.data(TelvaroViewModel::UuidRole).toString());
}
