// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "clients/BindingClient.h"

#include <cstdint>
#include <map>
#include <string>
#include <variant>
#include <vector>

using PlainAttribute = std::variant<bool, std::int32_t, std::string>;

/// A view as an application without Qt declares it.
struct PlainView
{
    std::string uuid;
    std::string appId;
    std::string info1;
    std::string info2;
    std::string info3;
    std::string info4;
    std::uint32_t pid = 0;
    std::uint32_t sortIndex = 0;
    std::map<std::string, PlainAttribute> attributes;
};
using PlainViews = std::vector<PlainView>;
using PlainClient = BindingClient<PlainView, PlainViews>;

void addTo(Digest& digest, const std::string& text);
void addTo(Digest& digest, const PlainView& view);
