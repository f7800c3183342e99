// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <cstdint>
#include <ctime>
#include <wayland-server-core.h>

class ServerGlobals;

/// The wp_presentation global: clients learn when the content of a commit was shown.
namespace Presentation {

void announce(ServerGlobals& globals);
/// Returns the time of the clock that clients are sent times of.
timespec now();

/// A time as events carry it.
struct WireTime
{
    explicit WireTime(const timespec& time)
        : highSeconds(static_cast<uint32_t>(static_cast<uint64_t>(time.tv_sec) >> 32))
        , lowSeconds(static_cast<uint32_t>(time.tv_sec))
        , nanoseconds(static_cast<uint32_t>(time.tv_nsec))
    {
    }

    uint32_t highSeconds;
    uint32_t lowSeconds;
    uint32_t nanoseconds;
};

} // namespace Presentation

/// The wp_presentation_feedback objects of one content of a surface.
class FeedbackList
{
public:
    FeedbackList();
    /// Discards.
    ~FeedbackList();
    FeedbackList(const FeedbackList&) = delete;
    FeedbackList& operator=(const FeedbackList&) = delete;

    void add(wl_resource* feedback);
    /// Moves the objects of `other` to this list.
    void take(FeedbackList& other);
    /// The content is not shown: another content or nothing takes its place.
    void discard();
    /// The content has been shown at `time`.
    void present(const timespec& time);

private:
    template <typename Function> void endAll(const Function& sendEvent);

    /// Of wl_resource_get_link(): an object that is destroyed leaves it.
    wl_list mList;
};
