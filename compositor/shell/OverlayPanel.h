// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "shell/SceneLayer.h"

#include <QObject>
#include <QString>

class Output;
class Scene;

/// The global overlay: a message over all other layers.
class OverlayPanel : public QObject, public SceneLayer
{
    Q_OBJECT

public:
    OverlayPanel(const Output& output, Scene& scene, QObject* parent = nullptr);

    void show(const QString& message);
    void hide();

    QRegion update() override;
    void paint(QPainter* painter) const override;

private:
    void change(bool visible, const QString& message);

    const Output& mOutput;
    Scene& mScene;
    bool mVisible = false;
    bool mHasChanged = false;
    QString mMessage;
};
