// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "TaskSwitcherBar.h"

#include <QCoreApplication>
#include <QDBusError>
#include <QIcon>
#include <QPainter>
#include <QPixmap>
#include <QVBoxLayout>

namespace {

const int cIconSize = 44;

/// The application's first letter on a colour of its own.
QIcon makeIcon(const QString& appId)
{
    QPixmap picture(cIconSize, cIconSize);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor::fromHsv(static_cast<int>(qHash(appId) % 360), 110, 170));
    painter.drawRoundedRect(picture.rect(), 10, 10);
    painter.setPen(Qt::white);
    QFont font = painter.font();
    font.setPixelSize(cIconSize / 2);
    painter.setFont(font);
    painter.drawText(picture.rect(), Qt::AlignCenter, appId.left(1).toUpper());
    return picture;
}

} // namespace

TaskSwitcherBar::TaskSwitcherBar(QWidget* parent)
    : QWidget(parent)
    , mList(new QListWidget)
    , mMessage(new QLabel)
{
    setWindowTitle(tr("Views"));
    auto* const heading = new QLabel(tr("Views"));
    heading->setObjectName(QStringLiteral("heading"));
    mMessage->setObjectName(QStringLiteral("message"));
    mMessage->setWordWrap(true);
    mList->setIconSize(QSize(cIconSize, cIconSize));
    mList->setSpacing(2);

    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(32, 24, 32, 24);
    layout->setSpacing(12);
    layout->addWidget(heading);
    layout->addWidget(mList);
    layout->addWidget(mMessage);

    connect(mList, &QListWidget::itemClicked, this, &TaskSwitcherBar::switchTo);
    connect(mList, &QListWidget::itemActivated, this, &TaskSwitcherBar::switchTo);
    // A change of the list together with the current view is told by currentViewChanged() only.
    connect(&mTaskSwitcher, &TelvaroTaskSwitcherDBusConnector::viewsChanged, this, &TaskSwitcherBar::showViews);
    connect(&mTaskSwitcher, &TelvaroTaskSwitcherDBusConnector::currentViewChanged, this, &TaskSwitcherBar::showViews);
    showViews();
}

void TaskSwitcherBar::showViews()
{
    mList->clear();
    const QList<View> views = mTaskSwitcher.getViews();
    for (const View& view : views) {
        if (view.pid == QCoreApplication::applicationPid()) {
            continue;
        }
        // Which attributes there are is the service's to say; none is certain.
        const QString title = view.attributes.value(QStringLiteral("title"), view.appId).toString();
        auto* const item = new QListWidgetItem(
            makeIcon(view.appId), QStringLiteral("%1\n%2, %3").arg(title, view.appId, tr("process %1").arg(view.pid)),
            mList);
        item->setData(Qt::UserRole, view.uuid);
    }
    // An empty list is also what a failed read gives.
    if (!mTaskSwitcher.isInterfaceValid()) {
        mMessage->setText(tr("The compositor service is not there."));
    } else {
        mMessage->setText(mList->count() == 0 ? tr("No other application is running.") : QString());
    }
}

void TaskSwitcherBar::switchTo(const QListWidgetItem* item)
{
    View view;
    view.uuid = item->data(Qt::UserRole).toString();
    const QDBusError error = mTaskSwitcher.setCurrentView(view);
    mMessage->setText(error.isValid() ? tr("Cannot switch: %1").arg(error.message()) : QString());
}
