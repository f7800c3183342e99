// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "shell/InputLayer.h"

#include <algorithm>

InputLayer* InputLayer::at(const QVector<InputLayer*>& layers, const QPointF& position)
{
    const auto found = std::find_if(layers.cbegin(), layers.cend(), [&position](InputLayer* layer) {
        return layer->contains(position.toPoint());
    });
    return found == layers.cend() ? nullptr : *found;
}
