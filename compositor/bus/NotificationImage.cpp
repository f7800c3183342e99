// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "bus/NotificationImage.h"

#include "state/Limits.h"

#include <QDBusArgument>
#include <QFileInfo>
#include <QIcon>
#include <QImageReader>
#include <QPainter>
#include <QUrl>

namespace {

constexpr qint64 cLargestFile = 16 * 1024 * 1024;

QImage scaled(const QImage& image, int size)
{
    if (image.isNull() || (image.width() <= size && image.height() <= size)) {
        return image;
    }
    return image.scaled(size, size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

QImage loadFile(const QString& path, int size)
{
    // Only regular files with a size: reading a FIFO, a device or a file in /proc may block or never end.
    const QFileInfo file(path);
    if (!file.isFile() || file.size() == 0 || file.size() > cLargestFile) {
        return {};
    }
    QImageReader reader(path);
    const QSize full = reader.size();
    if (!full.isValid() || full.width() > Limits::cLargestEdge || full.height() > Limits::cLargestEdge) {
        return {};
    }
    if (full.width() > size || full.height() > size) {
        reader.setScaledSize(full.scaled(size, size, Qt::KeepAspectRatio).expandedTo({1, 1}));
    }
    return reader.read();
}

/// Paints a symbolic icon, which has one colour for the user to choose, in white.
QImage tinted(QImage image)
{
    QPainter painter(&image);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), Qt::white);
    return image;
}

} // namespace

QImage NotificationImage::load(const QString& source, int size)
{
    if (source.isEmpty()) {
        return {};
    }
    if (source.startsWith(QLatin1String("file://"))) {
        return loadFile(QUrl(source).toLocalFile(), size);
    }
    if (source.startsWith(QLatin1Char('/'))) {
        return loadFile(source, size);
    }
    if (source.contains(QLatin1Char('/'))) {
        return {};
    }
    // Falls back to the symbolic icon: many themes have no coloured one of that name any more.
    const QString symbolic = QStringLiteral("-symbolic");
    const bool isSymbolic = source.endsWith(symbolic) || !QIcon::hasThemeIcon(source);
    const QString name = isSymbolic && !source.endsWith(symbolic) ? source + symbolic : source;
    const QImage image = QIcon::fromTheme(name).pixmap(size, size).toImage();
    return isSymbolic && !image.isNull() ? tinted(image.convertToFormat(QImage::Format_ARGB32_Premultiplied)) : image;
}

QImage NotificationImage::fromHint(const QVariant& hint, int size)
{
    if (hint.userType() != qMetaTypeId<QDBusArgument>()) {
        return {};
    }
    const auto argument = hint.value<QDBusArgument>();
    if (argument.currentSignature() != QLatin1String("(iiibiiay)")) {
        return {};
    }
    int width = 0;
    int height = 0;
    int rowStride = 0;
    bool hasAlpha = false;
    int bitsPerSample = 0;
    int channels = 0;
    QByteArray data;
    argument.beginStructure();
    argument >> width >> height >> rowStride >> hasAlpha >> bitsPerSample >> channels >> data;
    argument.endStructure();

    const bool isPlausible = width > 0 && width <= Limits::cLargestEdge && height > 0 && height <= Limits::cLargestEdge
        && bitsPerSample == 8 && channels == (hasAlpha ? 4 : 3) && rowStride >= width * channels;
    // The last row may come without its padding.
    if (!isPlausible || data.size() < qint64(rowStride) * (height - 1) + qint64(width) * channels) {
        return {};
    }
    const auto format = hasAlpha ? QImage::Format_RGBA8888 : QImage::Format_RGB888;
    const QImage image(reinterpret_cast<const uchar*>(data.constData()), width, height, rowStride, format);
    return scaled(image.convertToFormat(QImage::Format_ARGB32_Premultiplied), size);
}
