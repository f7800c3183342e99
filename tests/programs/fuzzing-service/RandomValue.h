// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "GObjectPointer.h"

#include <QStringList>

#include <cstdint>
#include <random>
#include <string>

/// Random values that a bus can carry, determined by the seed.
class RandomValue
{
public:
    explicit RandomValue(std::uint64_t seed);

    /// From 0 to the bound, exclusive.
    int below(int bound);
    /// True with the probability 1 / `count`.
    bool oneIn(int count);

    /// Of any type.
    GVariantPointer any();
    /// An array of views, or nearly one.
    GVariantPointer views();
    /// a{sv}, the keys of which are mostly from the list.
    GVariantPointer properties(const QStringList& keys);
    /// A variant around the value.
    static GVariantPointer variant(const GVariantPointer& content);

    std::string text();

private:
    std::string basicType();
    std::string type(int depth);
    GVariantPointer ofType(const std::string& type, int depth);
    GVariantPointer ofContainerType(const GVariantType* type, int depth);
    std::string objectPath();

    std::mt19937_64 mGenerator;
};
