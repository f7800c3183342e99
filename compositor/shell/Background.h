// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "shell/SceneLayer.h"

class Output;
class ViewList;

/// The lowest layer: visible where no view is, and with the product's name while there is none at all.
class Background : public SceneLayer
{
public:
    Background(const Output& output, const ViewList& views);

    QRegion update() override;
    void paint(QPainter* painter) const override;

private:
    const Output& mOutput;
    const ViewList& mViews;
    bool mHasView = false;
};
