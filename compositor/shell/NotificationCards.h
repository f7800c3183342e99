// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "shell/SceneLayer.h"
#include "state/Notification.h"

#include <QObject>
#include <QRect>
#include <QVector>

class NotificationCenter;
class Output;
class Scene;

/// The cards on which notifications are shown, the newest at the top, as many as there is room for.
class NotificationCards : public QObject, public SceneLayer
{
    Q_OBJECT

public:
    NotificationCards(const Output& output, NotificationCenter& center, Scene& scene, QObject* parent = nullptr);

    bool contains(const QPoint& position);
    /// True when `position` is on a card: then the press is meant for it.
    bool press(const QPoint& position);
    /// Does what was pressed, if the pointer is still there.
    void release(const QPoint& position);

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
        QVector<Button> buttons;
    };
    struct Target
    {
        quint32 id = 0;
        /// Empty for the card itself.
        QString actionKey;

        bool operator==(const Target& other) const
        {
            return id == other.id && actionKey == other.actionKey;
        }
    };

    /// Changes may come faster than anybody can look: the layout waits until it is needed.
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
    QVector<Card> mCards;
    QRect mRemainingRect;
    int mRemainingCount = 0;
    Target mPressed;
};
