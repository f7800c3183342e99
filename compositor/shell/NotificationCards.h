// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "shell/InputLayer.h"
#include "state/Notification.h"

#include <QObject>
#include <QRect>
#include <QVector>

class NotificationCenter;
class Output;
class Scene;

/// The cards of the notifications, the newest at the top, as many as fit.
class NotificationCards : public QObject, public InputLayer
{
    Q_OBJECT

public:
    NotificationCards(const Output& output, NotificationCenter& center, Scene& scene, QObject* parent = nullptr);

    bool contains(const QPoint& position) override;
    void press(const QPoint& position) override;
    void release(const QPoint& position) override;
    QRegion update() override;
    void paint(QPainter* painter) const override;

private:
    struct Button
    {
        Notification::Action action;
        QRect rect;
    };
    struct Card
    {
        Notification notification;
        QRect rect;
        QRect iconRect;
        QRect summaryRect;
        QRect bodyRect;
        /// Empty without a progress.
        QRect progressRect;
        QRect closeRect;
        QVector<Button> buttons;
    };
    struct Target
    {
        quint32 id = 0;
        /// Empty for the card outside its buttons.
        QString actionKey;
        bool isCloseButton = false;

        bool operator==(const Target& other) const
        {
            return id == other.id && actionKey == other.actionKey && isCloseButton == other.isCloseButton;
        }
    };

    /// Notifications may change faster than frames are painted: the layout waits until it is needed.
    void invalidate();
    void layOutIfNeeded();
    void layOut();
    Card layOutCard(const Notification& notification, const QPoint& topLeft, int width) const;
    Target targetAt(const QPoint& position);
    QRect paintedArea() const;
    void paintCard(QPainter* painter, const Card& card) const;
    void paintButton(QPainter* painter, const Button& button) const;
    void paintRemaining(QPainter* painter) const;

    const Output& mOutput;
    NotificationCenter& mCenter;
    Scene& mScene;
    bool mIsValid = true;
    /// What the layouts since the last frame have changed.
    QRegion mDamage;
    QVector<Card> mCards;
    QRect mRemainingRect;
    int mRemainingCount = 0;
    Target mPressed;
};
