// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QObject>
#include <QRect>
#include <QSize>
#include <QString>
#include <QStringList>
#include <QTransform>

/// The geometry of the one output: its physical size, the rotation of its contents, and the work area that the status
/// bar, the panel and the on-screen keyboard leave to the views. All rectangles are in the coordinates of the rotated
/// contents; only physicalSize() is the window's.
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

    /// Turns the window instead of its contents, so that these stand upright on the desktop.
    void setWindowTurning(bool isTurning)
    {
        mTurnsWindow = isTurning;
    }
    QSize windowSize() const
    {
        return mTurnsWindow ? size() : mPhysicalSize;
    }
    void setWindowSize(const QSize& size)
    {
        setPhysicalSize(mTurnsWindow && mRotation % 180 != 0 ? size.transposed() : size);
    }

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
    /// Hides the status bar, regardless of isFullScreen().
    void setStatusBarHidden(bool isHidden);

    QSize size() const;
    QRect rect() const
    {
        return {QPoint(), size()};
    }
    /// Empty while the status bar is hidden.
    QRect statusBarRect() const;
    /// The strip of an application at an edge; of no thickness while there is none.
    QRect panelRect() const;
    void setPanel(Qt::Edge edge, int thickness);
    /// Empty while the on-screen keyboard is closed.
    QRect keyboardRect() const;
    void setKeyboardOpen(bool isOpen);
    QRect workArea() const;
    /// Returns the work area of a view that is not full screen, even while the status bar is hidden for one that is.
    QRect maximizedArea() const;
    /// Returns the work area of a view that is full screen.
    QRect fullScreenArea() const;

    /// From the contents to the display of the device.
    QTransform toDisplay() const;
    QTransform toWindow() const
    {
        return mTurnsWindow ? QTransform() : toDisplay();
    }
    QPointF fromWindow(const QPointF& position) const
    {
        return toWindow().inverted().map(position);
    }

Q_SIGNALS:
    /// Implies another work area.
    void geometryChanged();
    /// Only the work area has changed.
    void workAreaChanged();
    void orientationChanged();
    void fullScreenChanged();

private:
    int statusBarHeight() const;
    /// Returns what the panel leaves of `area`.
    QRect withoutPanel(const QRect& area) const;
    /// Returns what the panel and the keyboard leave of `area`.
    QRect withoutStrips(const QRect& area) const;

    QSize mPhysicalSize;
    int mRotation = 0;
    bool mFullScreen = false;
    bool mStatusBarIsHidden = false;
    bool mTurnsWindow = false;
    Qt::Edge mPanelEdge = Qt::BottomEdge;
    int mPanelThickness = 0;
    bool mIsKeyboardOpen = false;
};
