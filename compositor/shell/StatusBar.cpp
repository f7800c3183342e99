// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "shell/StatusBar.h"

#include "shell/Scene.h"
#include "shell/Theme.h"
#include "state/Output.h"
#include "state/SanitizedText.h"
#include "state/ViewList.h"

#include <QPainter>
#include <QTime>

#include <utility>

namespace {

constexpr int cMargin = 14;
constexpr int cClockWidth = 60;
constexpr int cMenuSignWidth = 16;
constexpr int cLongestTitle = 400;

} // namespace

StatusBar::StatusBar(const Output& output, const ViewList& views, Scene& scene, QObject* parent)
    : QObject(parent)
    , mOutput(output)
    , mViews(views)
    , mScene(scene)
{
    mClock.setSingleShot(true);
    connect(&mClock, &QTimer::timeout, this, [this] {
        mIsStale = true;
        mScene.requestFrame();
        waitForNextMinute();
    });
    connect(&output, &Output::geometryChanged, this, &StatusBar::waitForNextMinute);
    connect(&output, &Output::workAreaChanged, this, &StatusBar::waitForNextMinute);
    const auto requestFrameForTitle = [this] {
        if (mTitle != title()) {
            mIsStale = true;
            mScene.requestFrame();
        }
    };
    connect(&views, &ViewList::viewsChanged, this, requestFrameForTitle);
    connect(&views, &ViewList::currentChanged, this, requestFrameForTitle);
    waitForNextMinute();
}

void StatusBar::waitForNextMinute()
{
    if (mOutput.statusBarRect().isEmpty()) {
        mClock.stop();
        return;
    }
    mIsStale = true;
    const QTime now = QTime::currentTime();
    mClock.start(60000 - now.second() * 1000 - now.msec());
}

QRegion StatusBar::update()
{
    if (!std::exchange(mIsStale, false)) {
        return {};
    }
    const QString newTitle = title();
    const QString newTime = QTime::currentTime().toString(QStringLiteral("HH:mm"));
    if (newTitle == mTitle && newTime == mTime) {
        return {};
    }
    mTitle = newTitle;
    mTime = newTime;
    return mOutput.statusBarRect();
}

QString StatusBar::title() const
{
    const View* const view = mViews.currentView();
    if (view == nullptr) {
        return {};
    }
    const QString title = sanitizedText(view->title.isEmpty() ? view->appId : view->title, cLongestTitle);
    return view->isResponding ? title : QStringLiteral("%1 (not responding)").arg(title);
}

bool StatusBar::contains(const QPoint& position)
{
    return mOutput.statusBarRect().contains(position);
}

void StatusBar::press(const QPoint&)
{
}

void StatusBar::release(const QPoint& position)
{
    if (contains(position)) {
        Q_EMIT clicked();
    }
}

QRegion StatusBar::opaqueRegion() const
{
    return mOutput.statusBarRect();
}

void StatusBar::paint(QPainter* painter) const
{
    const QRect bar = mOutput.statusBarRect();
    if (bar.isEmpty() || (painter->hasClipping() && !painter->clipBoundingRect().intersects(bar))) {
        return;
    }
    painter->fillRect(bar, Theme::cBar);
    painter->fillRect(bar.adjusted(0, bar.height() - 1, 0, 0), Theme::cCardEdge);

    painter->setPen(Theme::cText);
    const QFont font = Theme::font(15, QFont::Medium);
    for (int line = -1; line <= 1; ++line) {
        painter->fillRect(cMargin, bar.center().y() + 5 * line, cMenuSignWidth, 2, Theme::cMutedText);
    }
    Theme::drawText(painter, bar.adjusted(2 * cMargin + cMenuSignWidth, 0, -2 * cMargin - cClockWidth, 0), mTitle, font,
                    Qt::AlignLeft | Qt::AlignVCenter, 1);
    painter->setPen(Theme::cMutedText);
    painter->setFont(font);
    painter->drawText(bar.adjusted(0, 0, -cMargin, 0), Qt::AlignRight | Qt::AlignVCenter, mTime);
}
