// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/Screencopy.h"

#include "state/Output.h"
#include "wayland/ClientResources.h"
#include "wayland/ScreencopyFrame.h"
#include "wayland/ServerGlobals.h"

#include <algorithm>
#include <wlr-screencopy-unstable-v1-server-protocol.h>

namespace {

constexpr int cVersion = 3;
/// Beyond this the damage of a manager is simplified to its bounding rectangle.
constexpr int cMostRects = 16;

} // namespace

struct Screencopy::Manager
{
    Screencopy& screencopy;
    /// Shared with its frames, which may outlive it.
    std::shared_ptr<QRegion> damage;
};

Screencopy::Screencopy(ServerGlobals& globals, const Output& output)
    : mOutput(output)
{
    connect(&mTimer, &FrameTimer::due, this, &Screencopy::captureFrames);
    globals.announce(&zwlr_screencopy_manager_v1_interface, cVersion, this, bind);
}

void Screencopy::bind(wl_client* client, void* data, uint32_t version, uint32_t id)
{
    static const struct zwlr_screencopy_manager_v1_interface requests = {captureOutput, captureOutputRegion,
                                                                         ClientResources::destroy};
    auto* const self = static_cast<Screencopy*>(data);
    // The first copy with damage is not preceded by any, so everything is damaged.
    auto* const manager = new Manager{*self, std::make_shared<QRegion>(QRect(QPoint(), self->mOutput.physicalSize()))};
    if (ClientResources::create(client, zwlr_screencopy_manager_v1_interface, static_cast<int>(version), id, requests,
                                manager, ClientResources::deleteObject<Manager>)
        == nullptr) {
        delete manager;
        return;
    }
    std::vector<std::weak_ptr<QRegion>>& damages = self->mDamages;
    damages.erase(std::remove_if(damages.begin(), damages.end(),
                                 [](const std::weak_ptr<QRegion>& damage) {
                                     return damage.expired();
                                 }),
                  damages.end());
    damages.push_back(manager->damage);
}

void Screencopy::captureOutput(wl_client*, wl_resource* manager, uint32_t id, int32_t, wl_resource*)
{
    capture(manager, id, static_cast<Manager*>(wl_resource_get_user_data(manager))->screencopy.mOutput.rect());
}

void Screencopy::captureOutputRegion(wl_client*, wl_resource* manager, uint32_t id, int32_t, wl_resource*, int32_t x,
                                     int32_t y, int32_t width, int32_t height)
{
    const QRect output = static_cast<Manager*>(wl_resource_get_user_data(manager))->screencopy.mOutput.rect();
    // As floating-point numbers, of which no sum overflows.
    const bool hasArea = width > 0 && height > 0;
    capture(manager, id, hasArea ? (QRectF(x, y, width, height) & output).toRect() : QRect());
}

void Screencopy::capture(wl_resource* manager, uint32_t id, const QRect& rect)
{
    const auto& [self, damage] = *static_cast<Manager*>(wl_resource_get_user_data(manager));
    ScreencopyFrame::create(manager, id, self, self.mOutput, rect, damage);
}

void Screencopy::noteChange()
{
    if (!mFrames.isEmpty()) {
        mTimer.request();
    }
}

void Screencopy::addDamage(const QRegion& region)
{
    const QRegion onDisplay = mOutput.toDisplay().map(region);
    for (const std::weak_ptr<QRegion>& weak : mDamages) {
        if (const std::shared_ptr<QRegion> damage = weak.lock()) {
            *damage |= onDisplay;
            if (damage->rectCount() > cMostRects) {
                *damage = damage->boundingRect();
            }
        }
    }
}

void Screencopy::add(ScreencopyFrame* frame)
{
    mFrames.append(frame);
    mTimer.request();
}

void Screencopy::remove(ScreencopyFrame* frame)
{
    mFrames.removeOne(frame);
}

void Screencopy::captureFrames()
{
    if (mFrames.isEmpty()) {
        return;
    }
    mUpdate();
    QImage picture;
    QVector<const wl_client*> clients;
    const QVector<ScreencopyFrame*> frames = mFrames;
    for (ScreencopyFrame* frame : frames) {
        if (!frame->isDue()) {
            continue;
        }
        if (clients.contains(frame->client())) {
            mTimer.request();
            continue;
        }
        if (picture.isNull()) {
            picture = mDraw();
        }
        clients.append(frame->client());
        remove(frame);
        frame->finish(picture);
    }
}
