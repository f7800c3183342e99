// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "shell/NotificationCards.h"

#include "shell/Scene.h"
#include "shell/Theme.h"
#include "state/Limits.h"
#include "state/NotificationCenter.h"
#include "state/Output.h"

#include <QPainter>

#include <utility>

namespace {

constexpr int cWidth = 360;
constexpr int cMargin = 12;
constexpr int cPadding = 14;
constexpr int cSpacing = 10;
constexpr int cRadius = 12;
constexpr int cCloseSize = 36;
constexpr int cProgressHeight = 6;
constexpr int cButtonHeight = 36;
constexpr int cButtonsPerRow = 3;
constexpr int cSummaryLines = 2;
constexpr int cBodyLines = 4;
constexpr int cShadowReach = 14;
constexpr int cRemainingHeight = 26;

QFont summaryFont()
{
    return Theme::font(16, QFont::DemiBold);
}

QFont bodyFont()
{
    return Theme::font(14);
}

} // namespace

NotificationCards::NotificationCards(const Output& output, NotificationCenter& center, Scene& scene, QObject* parent)
    : QObject(parent)
    , mOutput(output)
    , mCenter(center)
    , mScene(scene)
{
    connect(&center, &NotificationCenter::changed, this, &NotificationCards::invalidate);
    connect(&output, &Output::geometryChanged, this, &NotificationCards::invalidate);
    connect(&output, &Output::workAreaChanged, this, &NotificationCards::invalidate);
}

void NotificationCards::invalidate()
{
    if (mIsValid) {
        mIsValid = false;
        mScene.requestFrame();
    }
}

QRegion NotificationCards::update()
{
    layOutIfNeeded();
    return std::exchange(mDamage, QRegion());
}

void NotificationCards::layOutIfNeeded()
{
    if (!mIsValid) {
        mIsValid = true;
        layOut();
    }
}

void NotificationCards::layOut()
{
    mDamage |= paintedArea();
    mCards.clear();
    mRemainingRect = QRect();
    mRemainingCount = 0;

    const QRect area = mOutput.workArea().adjusted(cMargin, cMargin, -cMargin, -cMargin);
    const int width = qMin(cWidth, area.width());
    QPoint topLeft(area.right() + 1 - width, area.top());
    const QVector<Notification> notifications = mCenter.notifications();
    for (auto notification = notifications.crbegin(); notification != notifications.crend(); ++notification) {
        const Card card = layOutCard(*notification, topLeft, width);
        const bool isLast = notification + 1 == notifications.crend();
        const int limit = isLast ? area.bottom() : area.bottom() - cSpacing - cRemainingHeight;
        if (!mCards.isEmpty() && card.rect.bottom() > limit) {
            break;
        }
        mCards.append(card);
        topLeft.setY(card.rect.bottom() + 1 + cSpacing);
    }
    mRemainingCount = notifications.size() - mCards.size();
    if (mRemainingCount > 0) {
        mRemainingRect = QRect(topLeft, QSize(width, cRemainingHeight));
    }

    mDamage |= paintedArea();
}

NotificationCards::Card NotificationCards::layOutCard(const Notification& notification, const QPoint& topLeft,
                                                      int width) const
{
    Card card;
    card.notification = notification;

    const QPoint content = topLeft + QPoint(cPadding, cPadding);
    int textLeft = content.x();
    int textWidth = width - 2 * cPadding;
    int bottom = content.y();
    if (!notification.icon.isNull()) {
        card.iconRect = QRect(content, QSize(Limits::cNotificationIconSize, Limits::cNotificationIconSize));
        textLeft += Limits::cNotificationIconSize + cPadding;
        textWidth -= Limits::cNotificationIconSize + cPadding;
        bottom += Limits::cNotificationIconSize;
    }
    card.closeRect = QRect(topLeft.x() + width - cCloseSize, topLeft.y(), cCloseSize, cCloseSize);
    textWidth = qMax(1, textWidth - (cCloseSize - cPadding));

    card.summaryRect = QRect(textLeft, content.y(), textWidth,
                             Theme::textHeight(notification.summary, summaryFont(), textWidth, cSummaryLines));
    const int gap = card.summaryRect.height() > 0 ? 4 : 0;
    card.bodyRect = QRect(textLeft, content.y() + card.summaryRect.height() + gap, textWidth,
                          Theme::textHeight(notification.body, bodyFont(), textWidth, cBodyLines));
    bottom = qMax(bottom, card.bodyRect.top() + card.bodyRect.height());

    if (notification.progress) {
        card.progressRect = QRect(textLeft, bottom + cSpacing, textWidth, cProgressHeight);
        bottom += cSpacing + cProgressHeight;
    }

    QVector<Notification::Action> actions;
    for (const Notification::Action& action : notification.actions) {
        if (action.key != Notification::defaultActionKey()) {
            actions.append(action);
        }
    }
    const int contentWidth = width - 2 * cPadding;
    for (int first = 0; first < actions.size(); first += cButtonsPerRow) {
        const int count = qMin(cButtonsPerRow, actions.size() - first);
        const int buttonWidth = (contentWidth - (count - 1) * cSpacing) / count;
        for (int i = 0; i < count; ++i) {
            const QPoint position(content.x() + i * (buttonWidth + cSpacing), bottom + cSpacing);
            card.buttons.append({actions.at(first + i), QRect(position, QSize(buttonWidth, cButtonHeight))});
        }
        bottom += cSpacing + cButtonHeight;
    }
    card.rect = QRect(topLeft, QPoint(topLeft.x() + width - 1, bottom + cPadding - 1));
    return card;
}

QRect NotificationCards::paintedArea() const
{
    QRect area = mRemainingRect;
    for (const Card& card : mCards) {
        area |= card.rect.adjusted(-2 * cShadowReach, -2 * cShadowReach, 2 * cShadowReach, 2 * cShadowReach);
    }
    return area;
}

NotificationCards::Target NotificationCards::targetAt(const QPoint& position)
{
    layOutIfNeeded();
    for (const Card& card : qAsConst(mCards)) {
        if (!card.rect.contains(position)) {
            continue;
        }
        for (const Button& button : card.buttons) {
            if (button.rect.contains(position)) {
                return {card.notification.id, button.action.key, false};
            }
        }
        return {card.notification.id, QString(), card.closeRect.contains(position)};
    }
    return {};
}

bool NotificationCards::contains(const QPoint& position)
{
    return targetAt(position).id != 0;
}

void NotificationCards::press(const QPoint& position)
{
    mPressed = targetAt(position);
}

void NotificationCards::release(const QPoint& position)
{
    const Target pressed = std::exchange(mPressed, Target());
    if (pressed.id == 0 || !(targetAt(position) == pressed)) {
        return;
    }
    if (pressed.isCloseButton) {
        mCenter.close(pressed.id, NotificationCenter::CloseReason::Dismissed);
        return;
    }
    if (!pressed.actionKey.isEmpty()) {
        mCenter.invokeAction(pressed.id, pressed.actionKey);
        return;
    }
    for (const Card& card : qAsConst(mCards)) {
        if (card.notification.id == pressed.id) {
            if (card.notification.hasDefaultAction()) {
                mCenter.invokeAction(pressed.id, Notification::defaultActionKey());
            } else {
                mCenter.close(pressed.id, NotificationCenter::CloseReason::Dismissed);
            }
            return;
        }
    }
}

void NotificationCards::paint(QPainter* painter) const
{
    painter->setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    for (const Card& card : mCards) {
        paintCard(painter, card);
    }
    if (mRemainingCount > 0) {
        paintRemaining(painter);
    }
}

void NotificationCards::paintCard(QPainter* painter, const Card& card) const
{
    Theme::drawShadow(painter, card.rect, cRadius, cShadowReach);
    painter->setPen(
        QPen(card.notification.isCritical ? Theme::cAlert : Theme::cCardEdge, card.notification.isCritical ? 1.5 : 1));
    painter->setBrush(Theme::cCard);
    painter->drawRoundedRect(QRectF(card.rect).adjusted(0.5, 0.5, -0.5, -0.5), cRadius, cRadius);

    if (!card.iconRect.isEmpty()) {
        QRect target(QPoint(), card.notification.icon.size().scaled(card.iconRect.size(), Qt::KeepAspectRatio));
        target.moveCenter(card.iconRect.center());
        painter->drawImage(target, card.notification.icon);
    }
    painter->setPen(Theme::cText);
    Theme::drawText(painter, card.summaryRect, card.notification.summary, summaryFont(), Qt::AlignLeft, cSummaryLines);
    painter->setPen(Theme::cMutedText);
    Theme::drawText(painter, card.bodyRect, card.notification.body, bodyFont(), Qt::AlignLeft, cBodyLines);
    Theme::drawCross(painter, card.closeRect);
    if (card.notification.progress) {
        painter->setPen(Qt::NoPen);
        QRectF bar = card.progressRect;
        painter->setBrush(Theme::cButton);
        painter->drawRoundedRect(bar, bar.height() / 2, bar.height() / 2);
        bar.setWidth(bar.width() * *card.notification.progress / 100);
        painter->setBrush(Theme::cAccent);
        painter->drawRoundedRect(bar, bar.height() / 2, bar.height() / 2);
    }
    for (const Button& button : card.buttons) {
        paintButton(painter, button);
    }
}

void NotificationCards::paintButton(QPainter* painter, const Button& button) const
{
    painter->setPen(Qt::NoPen);
    painter->setBrush(Theme::cButton);
    painter->drawRoundedRect(button.rect, 8, 8);
    if (!button.action.icon.isNull()) {
        QRect target(0, 0, Limits::cActionIconSize, Limits::cActionIconSize);
        target.moveCenter(button.rect.center());
        painter->drawImage(target, button.action.icon);
        return;
    }
    painter->setPen(Theme::cText);
    Theme::drawText(painter, button.rect.adjusted(8, 0, -8, 0), button.action.label, Theme::font(14, QFont::Medium),
                    Qt::AlignHCenter | Qt::AlignVCenter, 1);
}

void NotificationCards::paintRemaining(QPainter* painter) const
{
    const QRectF pill(mRemainingRect.center().x() - 48, mRemainingRect.top(), 96, mRemainingRect.height());
    painter->setPen(Qt::NoPen);
    painter->setBrush(Theme::cCard);
    painter->drawRoundedRect(pill, pill.height() / 2, pill.height() / 2);
    painter->setPen(Theme::cMutedText);
    painter->setFont(Theme::font(13));
    painter->drawText(pill, Qt::AlignCenter, QStringLiteral("%1 more").arg(mRemainingCount));
}
