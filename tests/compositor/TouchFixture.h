// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "CompositorFixture.h"
#include "TuioSender.h"
#include "WireClient.h"

#include <QMap>
#include <QPointF>
#include <QSize>

#include <memory>

/// A test with fingers, put on the compositor by a program: nothing but Qt's own plugin stands between.
class TouchFixture : public CompositorFixture
{
    Q_OBJECT

protected:
    static constexpr QSize cOutput{1024, 600};
    static constexpr int cStatusBar = 34;

    void startCompositor() override
    {
        startWithFingers({});
    }
    void startWithFingers(const QStringList& options);
    /// Positions are in the window's pixels.
    void put(const QMap<int, QPointF>& fingers);
    void tap(const QPointF& position);
    /// Maps a window that fills the work area, and waits until it is painted: then it takes input.
    WireClient::Window openWindow(WireClient& client, const QByteArray& title);

private:
    std::unique_ptr<TuioSender> mFingers;
    int mTaps = 100;
};
