// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/Presentation.h"

#include "state/Limits.h"
#include "wayland/ClientResources.h"
#include "wayland/ServerGlobals.h"
#include "wayland/ServerSurface.h"

#include <presentation-time-server-protocol.h>
#include <wayland-server-protocol.h>

namespace {

constexpr int cVersion = 1;
constexpr clockid_t cClock = CLOCK_MONOTONIC;
constexpr uint32_t cRefreshNanoseconds = Limits::cFrameMilliseconds * 1000000;

void leaveList(wl_resource* feedback)
{
    wl_list_remove(wl_resource_get_link(feedback));
}

void createFeedback(wl_client* client, wl_resource* presentation, wl_resource* surface, uint32_t id)
{
    wl_resource* const feedback =
        wl_resource_create(client, &wp_presentation_feedback_interface, wl_resource_get_version(presentation), id);
    if (feedback == nullptr) {
        wl_client_post_no_memory(client);
        return;
    }
    // The object has no requests.
    wl_resource_set_implementation(feedback, nullptr, nullptr, leaveList);
    qobject_cast<ServerSurface*>(QWaylandSurface::fromResource(surface))->pendingFeedback().add(feedback);
}

void bind(wl_client* client, void*, uint32_t version, uint32_t id)
{
    static const struct wp_presentation_interface requests = {ClientResources::destroy, createFeedback};
    wl_resource* const presentation =
        ClientResources::create(client, wp_presentation_interface, static_cast<int>(version), id, requests, nullptr);
    if (presentation != nullptr) {
        wp_presentation_send_clock_id(presentation, cClock);
    }
}

} // namespace

void Presentation::announce(ServerGlobals& globals)
{
    globals.announce(&wp_presentation_interface, cVersion, nullptr, bind);
}

timespec Presentation::now()
{
    timespec time = {};
    clock_gettime(cClock, &time);
    return time;
}

FeedbackList::FeedbackList()
    : mList()
{
    wl_list_init(&mList);
}

FeedbackList::~FeedbackList()
{
    discard();
}

void FeedbackList::add(wl_resource* feedback)
{
    wl_list_insert(&mList, wl_resource_get_link(feedback));
}

void FeedbackList::take(FeedbackList& other)
{
    wl_list_insert_list(&mList, &other.mList);
    wl_list_init(&other.mList);
}

template <typename Function> void FeedbackList::endAll(const Function& sendEvent)
{
    while (wl_list_empty(&mList) == 0) {
        wl_resource* const feedback = wl_resource_from_link(mList.next);
        sendEvent(feedback);
        wl_resource_destroy(feedback);
    }
}

void FeedbackList::discard()
{
    endAll([](wl_resource* feedback) {
        wp_presentation_feedback_send_discarded(feedback);
    });
}

void FeedbackList::present(const timespec& time)
{
    const Presentation::WireTime wireTime(time);
    endAll([&](wl_resource* feedback) {
        for (wl_resource* output : ClientResources::of(wl_resource_get_client(feedback), wl_output_interface)) {
            wp_presentation_feedback_send_sync_output(feedback, output);
        }
        // Frames are painted by a timer, and no counter of a display's retraces is known: its value and the flags are
        // 0.
        wp_presentation_feedback_send_presented(feedback, wireTime.highSeconds, wireTime.lowSeconds,
                                                wireTime.nanoseconds, cRefreshNanoseconds, 0, 0, 0);
    });
}
