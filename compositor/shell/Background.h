// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "shell/SceneLayer.h"

class Output;
class ViewList;

/// What is seen where no view is.
class Background : public SceneLayer
{
public:
    Background(const Output& output, const ViewList& views);

    void paint(QPainter* painter) const override;

private:
    const Output& mOutput;
    const ViewList& mViews;
};
