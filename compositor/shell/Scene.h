// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QImage>
#include <QObject>
#include <QRegion>
#include <QVector>

class Output;
class QPainter;
class SceneLayer;
class ScreenSaver;

/// What the output shows: its layers, turned as the output is, or nothing while the screen saver is active.
class Scene : public QObject
{
    Q_OBJECT

public:
    Scene(const Output& output, const ScreenSaver& screenSaver, QObject* parent = nullptr);

    /// Adds a layer above those that are there already. The layer must outlive the scene.
    void addLayer(const SceneLayer* layer)
    {
        mLayers.append(layer);
    }

    /// To be called with the changed part of the output, which may be empty when only a new frame is wanted.
    void damage(const QRegion& region);
    void damageAll();

    /// Lets the layers take in what they have got since the last frame.
    void update()
    {
        Q_EMIT aboutToPaint();
    }
    /// The changed part, in the window's coordinates; nothing is changed any more after that.
    QRegion takeDamage();
    /// Paints on a device of the window's size.
    void paint(QPainter* painter) const;
    QImage toImage();

Q_SIGNALS:
    void frameNeeded();
    void aboutToPaint();

private:
    const Output& mOutput;
    const ScreenSaver& mScreenSaver;
    QVector<const SceneLayer*> mLayers;
    QRegion mDamage;
};
