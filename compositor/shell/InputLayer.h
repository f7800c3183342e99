// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "shell/SceneLayer.h"

#include <QPointF>
#include <QVector>

/// A layer that receives presses, of the pointer or of a finger, before the clients do.
class InputLayer : public SceneLayer
{
public:
    /// Returns whether a press at `position` is for this layer.
    virtual bool contains(const QPoint& position) = 0;
    virtual void press(const QPoint& position) = 0;
    /// Ends a press; triggers what was pressed if `position` is still on it.
    virtual void release(const QPoint& position) = 0;
    /// Returns whether the popups of clients stay open on a press.
    virtual bool keepsPopups() const
    {
        return false;
    }

    /// Returns the first of `layers` that contains `position`; null when none does.
    static InputLayer* at(const QVector<InputLayer*>& layers, const QPointF& position);
};
