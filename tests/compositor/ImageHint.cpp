// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ImageHint.h"

#include <QColor>

ImageHint ImageHint::filled(int width, int height, const QColor& color)
{
    ImageHint hint;
    hint.width = width;
    hint.height = height;
    hint.rowStride = width * 3;
    const char pixel[] = {static_cast<char>(color.red()), static_cast<char>(color.green()),
                          static_cast<char>(color.blue())};
    for (int i = 0; i < width * height; ++i) {
        hint.data.append(pixel, sizeof(pixel));
    }
    return hint;
}

QDBusArgument& operator<<(QDBusArgument& argument, const ImageHint& hint)
{
    argument.beginStructure();
    argument << hint.width << hint.height << hint.rowStride << hint.hasAlpha << hint.bitsPerSample << hint.channels
             << hint.data;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, ImageHint& hint)
{
    argument.beginStructure();
    argument >> hint.width >> hint.height >> hint.rowStride >> hint.hasAlpha >> hint.bitsPerSample >> hint.channels
        >> hint.data;
    argument.endStructure();
    return argument;
}
