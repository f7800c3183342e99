// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QRegion>

class QPainter;

/// One layer of the scene, painted in the output's coordinates.
class SceneLayer
{
public:
    virtual ~SceneLayer() = default;

    /// Prepares the layer for paint(): takes in what has changed since the last call and returns the region that
    /// looks different now. Called before each frame.
    virtual QRegion update() = 0;
    virtual void paint(QPainter* painter) const = 0;
    /// Returns the region that paint() covers with opaque pixels, so that no layer below is seen there.
    virtual QRegion opaqueRegion() const
    {
        return {};
    }

protected:
    SceneLayer() = default;
    SceneLayer(const SceneLayer&) = default;
    SceneLayer& operator=(const SceneLayer&) = default;
};
