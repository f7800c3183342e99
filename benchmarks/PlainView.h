// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <variant>

class Digest;

using PlainAttribute = std::variant<bool, std::uint32_t, std::string>;

/// One view, without Qt.
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

    void addTo(Digest& digest) const;
};
