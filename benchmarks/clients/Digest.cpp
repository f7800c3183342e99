// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "clients/Digest.h"

#include <iomanip>
#include <sstream>

void Digest::add(std::string_view text)
{
    const std::uint64_t prime = 0x100000001b3;
    for (const char byte : text) {
        mHash = (mHash ^ static_cast<unsigned char>(byte)) * prime;
    }
    // Separates the text from the next one.
    mHash *= prime;
}

void Digest::add(std::uint64_t number)
{
    add(std::string_view(std::to_string(number)));
}

std::string Digest::toHex() const
{
    std::ostringstream text;
    text << std::hex << std::setw(16) << std::setfill('0') << mHash;
    return text.str();
}
