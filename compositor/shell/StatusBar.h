// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "shell/InputLayer.h"

#include <QObject>
#include <QTimer>

class Output;
class Scene;
class ViewList;

/// The bar at the top: the current view's title and the time. It opens the menu.
class StatusBar : public QObject, public InputLayer
{
    Q_OBJECT

public:
    StatusBar(const Output& output, const ViewList& views, Scene& scene, QObject* parent = nullptr);

    bool contains(const QPoint& position) override;
    void press(const QPoint& position) override;
    void release(const QPoint& position) override;
    QRegion update() override;
    void paint(QPainter* painter) const override;
    QRegion opaqueRegion() const override;

Q_SIGNALS:
    void clicked();

private:
    void waitForNextMinute();
    QString title() const;

    const Output& mOutput;
    const ViewList& mViews;
    Scene& mScene;
    QTimer mClock;
    /// The texts that are painted.
    QString mTitle;
    QString mTime;
    /// Whether the texts may be others by now.
    bool mIsStale = true;
};
