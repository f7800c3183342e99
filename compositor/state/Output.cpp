// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "state/Output.h"

namespace {

constexpr int cStatusBarHeight = 34;

} // namespace

Output::Output(const QSize& physicalSize, QObject* parent)
    : QObject(parent)
    , mPhysicalSize(physicalSize)
{
}

void Output::setPhysicalSize(const QSize& size)
{
    if (size.isEmpty() || size == mPhysicalSize) {
        return;
    }
    mPhysicalSize = size;
    Q_EMIT geometryChanged();
}

bool Output::setOrientation(const QString& orientation)
{
    if (!orientations().contains(orientation)) {
        return false;
    }
    const int rotation = orientation.toInt();
    if (rotation != mRotation) {
        mRotation = rotation;
        Q_EMIT geometryChanged();
        Q_EMIT orientationChanged();
    }
    return true;
}

QStringList Output::orientations()
{
    return {QStringLiteral("0"), QStringLiteral("90"), QStringLiteral("180"), QStringLiteral("270")};
}

void Output::setFullScreen(bool fullScreen)
{
    if (fullScreen == mFullScreen) {
        return;
    }
    mFullScreen = fullScreen;
    Q_EMIT geometryChanged();
    Q_EMIT fullScreenChanged();
}

void Output::setStatusBarHidden(bool isHidden)
{
    if (isHidden == mStatusBarIsHidden) {
        return;
    }
    mStatusBarIsHidden = isHidden;
    Q_EMIT geometryChanged();
}

QSize Output::size() const
{
    return mRotation % 180 == 0 ? mPhysicalSize : mPhysicalSize.transposed();
}

QRect Output::statusBarRect() const
{
    return mStatusBarIsHidden ? QRect() : QRect(0, 0, size().width(), maximizedArea().top());
}

QRect Output::workArea() const
{
    return rect().adjusted(0, statusBarRect().height(), 0, 0);
}

QRect Output::maximizedArea() const
{
    return rect().adjusted(0, mFullScreen ? 0 : qMin(cStatusBarHeight, size().height() / 2), 0, 0);
}

QTransform Output::toDisplay() const
{
    QTransform transform;
    switch (mRotation) {
    case 90:
        transform.translate(mPhysicalSize.width(), 0);
        break;
    case 180:
        transform.translate(mPhysicalSize.width(), mPhysicalSize.height());
        break;
    case 270:
        transform.translate(0, mPhysicalSize.height());
        break;
    default:
        break;
    }
    return transform.rotate(mRotation);
}
