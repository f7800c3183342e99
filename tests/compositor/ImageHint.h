// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QDBusArgument>
#include <QImage>
#include <QMetaType>

/// The structure (iiibiiay) of the notification hint "image-data".
struct ImageHint
{
    int width = 0;
    int height = 0;
    int rowStride = 0;
    bool hasAlpha = false;
    int bitsPerSample = 8;
    int channels = 3;
    QByteArray data;

    static ImageHint filled(int width, int height, const QColor& color);
};
Q_DECLARE_METATYPE(ImageHint)

QDBusArgument& operator<<(QDBusArgument& argument, const ImageHint& hint);
const QDBusArgument& operator>>(const QDBusArgument& argument, ImageHint& hint);
