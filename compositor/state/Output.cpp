// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "state/Output.h"

namespace {

constexpr int cStatusBarHeight = 34;
constexpr int cLargestKeyboardHeight = 320;

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
    Q_EMIT workAreaChanged();
}

QSize Output::size() const
{
    return mRotation % 180 == 0 ? mPhysicalSize : mPhysicalSize.transposed();
}

QRect Output::statusBarRect() const
{
    return mStatusBarIsHidden ? QRect() : QRect(0, 0, size().width(), statusBarHeight());
}

void Output::setPanel(Qt::Edge edge, int thickness)
{
    if (edge != mPanelEdge || thickness != mPanelThickness) {
        mPanelEdge = edge;
        mPanelThickness = thickness;
        Q_EMIT workAreaChanged();
    }
}

QRect Output::panelRect() const
{
    QRect area = rect().adjusted(0, statusBarRect().height(), 0, 0);
    const int height = qMin(mPanelThickness, area.height() / 2);
    const int width = qMin(mPanelThickness, area.width() / 2);
    switch (mPanelEdge) {
    case Qt::TopEdge:
        area.setHeight(height);
        break;
    case Qt::LeftEdge:
        area.setWidth(width);
        break;
    case Qt::RightEdge:
        area.setLeft(area.left() + area.width() - width);
        break;
    case Qt::BottomEdge:
        area.setTop(area.top() + area.height() - height);
        break;
    }
    return area;
}

void Output::setKeyboardOpen(bool isOpen)
{
    if (isOpen != mIsKeyboardOpen) {
        mIsKeyboardOpen = isOpen;
        Q_EMIT workAreaChanged();
    }
}

QRect Output::keyboardRect() const
{
    const QSize room = size();
    const int height =
        mIsKeyboardOpen ? qMin(qMin(room.height() * 2 / 5, room.width() / 2), cLargestKeyboardHeight) : 0;
    const QRect area = withoutPanel(rect());
    return {area.left(), area.top() + area.height() - height, area.width(), height};
}

QRect Output::workArea() const
{
    return withoutStrips(rect().adjusted(0, statusBarRect().height(), 0, 0));
}

QRect Output::withoutPanel(const QRect& area) const
{
    const QRect panel = panelRect();
    QRect rest = area;
    switch (mPanelEdge) {
    case Qt::TopEdge:
        rest.setTop(rest.top() + panel.height());
        break;
    case Qt::LeftEdge:
        rest.setLeft(rest.left() + panel.width());
        break;
    case Qt::RightEdge:
        rest.setWidth(rest.width() - panel.width());
        break;
    case Qt::BottomEdge:
        rest.setHeight(rest.height() - panel.height());
        break;
    }
    return rest;
}

QRect Output::withoutStrips(const QRect& area) const
{
    return withoutPanel(area).adjusted(0, 0, 0, -keyboardRect().height());
}

QRect Output::maximizedArea() const
{
    return withoutStrips(rect().adjusted(0, statusBarHeight(), 0, 0));
}

QRect Output::fullScreenArea() const
{
    return withoutStrips(rect());
}

int Output::statusBarHeight() const
{
    return mFullScreen ? 0 : qMin(cStatusBarHeight, size().height() / 2);
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
