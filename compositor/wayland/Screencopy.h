// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "state/FrameTimer.h"

#include <QImage>
#include <QObject>
#include <QRegion>
#include <QVector>

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

class Output;
class ScreencopyFrame;
class ServerGlobals;
struct wl_client;
struct wl_resource;

/// The zwlr_screencopy_manager_v1 global: clients capture what the display of the device shows. All frames that are
/// captured at the same time get one picture, and at most one is captured of each client in 16 ms.
class Screencopy : public QObject
{
    Q_OBJECT

public:
    /// Updates the contents of the output, with a call of addDamage() if they have changed.
    using UpdateFunction = std::function<void()>;
    /// Draws the picture of the display.
    using DrawFunction = std::function<QImage()>;

    Screencopy(ServerGlobals& globals, const Output& output);

    void setSource(const UpdateFunction& update, const DrawFunction& draw)
    {
        mUpdate = update;
        mDraw = draw;
    }
    /// To be called when the contents may have changed, for the frames that wait for damage.
    void noteChange();
    /// Notes a change in the output's coordinates.
    void addDamage(const QRegion& region);

    /// Adds a frame that is to be captured.
    void add(ScreencopyFrame* frame);
    /// Removes a frame; does nothing for one that was not added.
    void remove(ScreencopyFrame* frame);

private:
    struct Manager;

    static void bind(wl_client* client, void* data, uint32_t version, uint32_t id);
    static void captureOutput(wl_client* client, wl_resource* manager, uint32_t id, int32_t overlayCursor,
                              wl_resource* output);
    static void captureOutputRegion(wl_client* client, wl_resource* manager, uint32_t id, int32_t overlayCursor,
                                    wl_resource* output, int32_t x, int32_t y, int32_t width, int32_t height);
    /// `rect` is in the output's coordinates, and within it.
    static void capture(wl_resource* manager, uint32_t id, const QRect& rect);

    void captureFrames();

    const Output& mOutput;
    UpdateFunction mUpdate;
    DrawFunction mDraw;
    FrameTimer mTimer;
    QVector<ScreencopyFrame*> mFrames;
    /// Of each manager: what has changed since it was captured last, in the display's coordinates.
    std::vector<std::weak_ptr<QRegion>> mDamages;
};
