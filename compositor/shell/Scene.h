// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "state/Output.h"

#include <QImage>
#include <QObject>
#include <QRegion>
#include <QVector>

class QPainter;
class SceneLayer;
class Screencopy;
class ScreenSaver;

/// The contents of the output: its layers, rotated with the output, or black while the screen saver is active.
class Scene : public QObject
{
    Q_OBJECT

public:
    Scene(const Output& output, const ScreenSaver& screenSaver, QObject* parent = nullptr);

    /// Adds a layer above those that are there already. The layer must outlive the scene.
    void addLayer(SceneLayer* layer)
    {
        mLayers.append(layer);
    }

    /// Called by a layer that has changed. What has changed, it returns from its update().
    void requestFrame()
    {
        Q_EMIT frameRequested();
    }
    /// Requests a frame that paints everything.
    void repaint();

    /// Updates the layers and returns what has changed since the last call, in the window's coordinates.
    QRegion update();
    /// Paints on a device of the window's size.
    void paint(QPainter* painter) const
    {
        paint(painter, mOutput.windowSize(), mOutput.toWindow());
    }
    /// Returns what the display of the device shows.
    QImage toImage();
    /// Lets clients capture the scene.
    void feed(Screencopy& screencopy);

Q_SIGNALS:
    void frameRequested();
    /// The region looks different now; in the output's coordinates.
    void damaged(const QRegion& region);

private:
    void updateLayers();
    void addDamage(const QRegion& region);
    void paint(QPainter* painter, const QSize& size, const QTransform& transform) const;

    const Output& mOutput;
    const ScreenSaver& mScreenSaver;
    QVector<SceneLayer*> mLayers;
    /// In the output's coordinates.
    QRegion mDamage;
};
