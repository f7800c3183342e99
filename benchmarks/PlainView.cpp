// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "PlainView.h"

#include "Digest.h"

namespace {

struct AsText
{
    std::string operator()(bool value) const
    {
        return value ? "true" : "false";
    }

    std::string operator()(std::uint32_t value) const
    {
        return std::to_string(value);
    }

    std::string operator()(const std::string& value) const
    {
        return value;
    }
};

} // namespace

void PlainView::addTo(Digest& digest) const
{
    for (const std::string* const field : {&uuid, &appId, &info1, &info2, &info3, &info4}) {
        digest.add(std::string_view(*field));
    }
    digest.add(std::uint64_t{pid});
    digest.add(std::uint64_t{sortIndex});
    for (const auto& [key, value] : attributes) {
        digest.add(std::string_view(key));
        digest.add(std::string_view(std::visit(AsText(), value)));
    }
}
