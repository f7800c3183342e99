// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "ChildProcess.h"
#include "CompositorProcess.h"
#include "VirtualDesktop.h"

#include <TelvaroScreenShotDBusConnector.h>
#include <TelvaroTaskSwitcherDBusConnector.h>

#include <QColor>
#include <QImage>
#include <QPoint>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>
#include <optional>

/// The compositor on a virtual desktop, and clients of it.
class Desk
{
public:
    Desk();

    /// Starts a program as a client of the compositor without waiting for its view.
    std::unique_ptr<ChildProcess> start(const QString& program, const QStringList& arguments = {});

    /// Returns once the view of the application is current, and throws std::runtime_error on a timeout.
    TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry waitForCurrent(const QString& appId);

    void click(const QPoint& position);
    /// A key's name in X, with modifiers: "alt+f".
    void press(const QString& key);

    /// The screen's picture.
    QImage picture();
    /// The middle of the topmost row of pixels with this colour and length.
    std::optional<QPoint> findRow(const QColor& color, int length);
    /// Returns once there is such a row, and throws std::runtime_error on a timeout.
    QPoint waitForRow(const QColor& color, int length);

private:
    VirtualDesktop mDesktop;
    CompositorProcess mCompositor;
    QTemporaryDir mPictures;
    std::unique_ptr<TelvaroTaskSwitcherDBusConnector> mTaskSwitcher;
    std::unique_ptr<TelvaroScreenShotDBusConnector> mScreenShot;
};
