// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "shell/SceneLayer.h"

#include <QObject>
#include <QString>

class Output;
class Scene;

/// The message over everything.
class OverlayPanel : public QObject, public SceneLayer
{
    Q_OBJECT

public:
    OverlayPanel(const Output& output, Scene& scene, QObject* parent = nullptr);

    void show(const QString& message);
    void hide();

    void paint(QPainter* painter) const override;

private:
    const Output& mOutput;
    Scene& mScene;
    bool mVisible = false;
    QString mMessage;
};
