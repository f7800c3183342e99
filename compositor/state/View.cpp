// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "state/View.h"

namespace {

template <typename Value, typename Target> void replace(Target& target, const std::optional<Value>& value)
{
    if (value) {
        target = *value;
    }
}

} // namespace

void ViewChange::applyTo(View& view) const
{
    replace(view.appId, appId);
    replace(view.title, title);
    replace(view.processName, processName);
    replace(view.pid, pid);
    replace(view.sortIndex, sortIndex);
    replace(view.attributes, attributes);
    for (std::size_t i = 0; i < record.infos.size(); ++i) {
        replace(view.record.infos[i], record.infos[i]);
    }
    replace(view.record.attributes, record.attributes);
}
