// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "shell/SceneLayer.h"

#include <QObject>
#include <QTimer>

class Output;
class Scene;
class ViewList;

/// The bar at the top: the current view's title and the time.
class StatusBar : public QObject, public SceneLayer
{
    Q_OBJECT

public:
    StatusBar(const Output& output, const ViewList& views, Scene& scene, QObject* parent = nullptr);

    QRegion update() override;
    void paint(QPainter* painter) const override;

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
};
