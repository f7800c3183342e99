// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QImage>
#include <QString>
#include <QVariant>

/// The pictures that notifications name or bring along, made small and safe to keep.
class NotificationImage
{
public:
    /// `source` is a name of the icon theme, an absolute path or a file:// address. Null when there is no such
    /// picture.
    static QImage load(const QString& source, int size);
    /// `hint` is the structure (iiibiiay) of the hint "image-data". Null when it is something else or contradicts
    /// itself.
    static QImage fromHint(const QVariant& hint, int size);
};
