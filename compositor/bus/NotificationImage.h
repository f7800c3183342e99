// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QImage>
#include <QString>
#include <QVariant>

/// Loads the pictures of notifications, scaled down to the size at which they are painted.
class NotificationImage
{
public:
    /// `source` is an icon name, an absolute path or a file:// URL. Returns a null image when there is no such picture.
    static QImage load(const QString& source, int size);
    /// `hint` is the structure (iiibiiay) of the hint "image-data". Returns a null image when it has another type or
    /// its sizes do not fit together.
    static QImage fromHint(const QVariant& hint, int size);
};
