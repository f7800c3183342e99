// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// A checksum (FNV-1a, 64 bits) over a sequence of texts and numbers.
class Digest
{
public:
    void add(std::string_view text);
    void add(std::uint64_t number);
    std::string toHex() const;

private:
    std::uint64_t mHash = 0xcbf29ce484222325;
};
