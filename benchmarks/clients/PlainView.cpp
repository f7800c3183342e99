// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "clients/PlainView.h"

namespace {

struct AsText
{
    std::string operator()(bool value) const
    {
        return value ? "true" : "false";
    }

    std::string operator()(std::int32_t value) const
    {
        return std::to_string(value);
    }

    std::string operator()(const std::string& value) const
    {
        return value;
    }
};

} // namespace

void addTo(Digest& digest, const std::string& text)
{
    digest.add(std::string_view(text));
}

void addTo(Digest& digest, const PlainView& view)
{
    for (const std::string* const field :
         {&view.uuid, &view.appId, &view.info1, &view.info2, &view.info3, &view.info4}) {
        addTo(digest, *field);
    }
    digest.add(std::uint64_t{view.pid});
    digest.add(std::uint64_t{view.sortIndex});
    for (const auto& [key, value] : view.attributes) {
        addTo(digest, key);
        addTo(digest, std::visit(AsText(), value));
    }
}
