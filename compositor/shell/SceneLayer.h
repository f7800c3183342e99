// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

class QPainter;

/// One of the things that the output shows, painted in the output's coordinates.
class SceneLayer
{
public:
    virtual ~SceneLayer() = default;

    virtual void paint(QPainter* painter) const = 0;

protected:
    SceneLayer() = default;
    SceneLayer(const SceneLayer&) = default;
    SceneLayer& operator=(const SceneLayer&) = default;
};
