// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QObject>
#include <QRect>
#include <QSize>
#include <QString>
#include <QStringList>
#include <QTransform>

/// The geometry of the one output: its physical size, the rotation of its contents, and the work area that is left to
/// the views. All rectangles are in the coordinates of the rotated contents; only physicalSize() is the window's.
class Output : public QObject
{
    Q_OBJECT

public:
    explicit Output(const QSize& physicalSize, QObject* parent = nullptr);

    QSize physicalSize() const
    {
        return mPhysicalSize;
    }
    void setPhysicalSize(const QSize& size);

    /// Clockwise, in degrees.
    int rotation() const
    {
        return mRotation;
    }
    QString orientation() const
    {
        return QString::number(mRotation);
    }
    /// Returns false when `orientation` is none of orientations().
    bool setOrientation(const QString& orientation);
    static QStringList orientations();

    bool isFullScreen() const
    {
        return mFullScreen;
    }
    void setFullScreen(bool fullScreen);

    QSize size() const;
    QRect rect() const
    {
        return {QPoint(), size()};
    }
    QRect statusBarRect() const;
    QRect workArea() const;

    QTransform toWindow() const;
    QPointF fromWindow(const QPointF& position) const
    {
        return toWindow().inverted().map(position);
    }

Q_SIGNALS:
    void geometryChanged();
    void orientationChanged();
    void fullScreenChanged();

private:
    QSize mPhysicalSize;
    int mRotation = 0;
    bool mFullScreen = false;
};
