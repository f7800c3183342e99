// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <algorithm>
#include <iterator>
#include <stdexcept>

/// Returns the view after the current one among those of its application, the first one after the last.
template <typename View, typename Views> View nextView(const Views& views, const View& current)
{
    Views ofApplication;
    std::copy_if(views.begin(), views.end(), std::back_inserter(ofApplication), [&current](const View& view) {
        return view.appId == current.appId;
    });
    if (ofApplication.empty()) {
        throw std::runtime_error("the application has no view");
    }
    std::sort(ofApplication.begin(), ofApplication.end(), [](const View& left, const View& right) {
        return left.sortIndex < right.sortIndex;
    });
    auto next = std::find_if(ofApplication.begin(), ofApplication.end(), [&current](const View& view) {
        return view.uuid == current.uuid;
    });
    if (next == ofApplication.end() || ++next == ofApplication.end()) {
        next = ofApplication.begin();
    }
    return *next;
}

/// Returns the view with the uuid, an empty one if there is none.
template <typename View, typename Views, typename Text> View findView(const Views& views, const Text& uuid)
{
    const auto found = std::find_if(views.begin(), views.end(), [&uuid](const View& view) {
        return view.uuid == uuid;
    });
    return found != views.end() ? *found : View();
}
