// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "shell/Scene.h"

#include "shell/SceneLayer.h"
#include "state/ScreenSaver.h"
#include "wayland/Screencopy.h"

#include <QPainter>

Scene::Scene(const Output& output, const ScreenSaver& screenSaver, QObject* parent)
    : QObject(parent)
    , mOutput(output)
    , mScreenSaver(screenSaver)
{
    connect(&output, &Output::geometryChanged, this, &Scene::repaint);
    connect(&output, &Output::workAreaChanged, this, &Scene::repaint);
    connect(&screenSaver, &ScreenSaver::activeChanged, this, &Scene::repaint);
}

void Scene::repaint()
{
    addDamage(mOutput.rect());
    requestFrame();
}

void Scene::updateLayers()
{
    for (SceneLayer* layer : qAsConst(mLayers)) {
        addDamage(layer->update());
    }
}

void Scene::addDamage(const QRegion& region)
{
    if (!region.isEmpty()) {
        mDamage |= region;
        Q_EMIT damaged(region);
    }
}

QRegion Scene::update()
{
    updateLayers();
    const QRegion damage = std::exchange(mDamage, QRegion()).intersected(mOutput.rect());
    return mOutput.toWindow().map(damage);
}

void Scene::paint(QPainter* painter, const QSize& size, const QTransform& transform) const
{
    if (mScreenSaver.isActive()) {
        painter->fillRect(QRect(QPoint(), size), Qt::black);
        return;
    }
    painter->setTransform(transform, true);
    QRegion visible = painter->hasClipping() ? painter->clipRegion() : mOutput.rect();
    int lowest = mLayers.size();
    while (lowest > 0 && !visible.isEmpty()) {
        visible -= mLayers.at(--lowest)->opaqueRegion();
    }
    for (int i = lowest; i < mLayers.size(); ++i) {
        painter->save();
        mLayers.at(i)->paint(painter);
        painter->restore();
    }
}

QImage Scene::toImage()
{
    updateLayers();
    QImage image(mOutput.physicalSize(), QImage::Format_RGB32);
    QPainter painter(&image);
    paint(&painter, mOutput.physicalSize(), mOutput.toDisplay());
    return image;
}

void Scene::feed(Screencopy& screencopy)
{
    screencopy.setSource(
        [this] {
            updateLayers();
        },
        [this] {
            return toImage();
        });
    connect(this, &Scene::frameRequested, &screencopy, &Screencopy::noteChange);
    connect(this, &Scene::damaged, &screencopy, &Screencopy::addDamage);
}
