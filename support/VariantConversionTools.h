// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

class QString;
class QVariant;

/// Strict conversions of property values read from the bus: a value of the requested type and what is plainly the same
/// thing; everything else is a failure, not a guess.
class VariantConversionTools
{
public:
    /// Accepts a bool, an integer (any but 0 is true), and the words "true", "false", "1" and "0".
    /// Returns false and leaves result as it is for every other value, an invalid one included.
    static bool toBool(const QVariant& value, bool& result);

    /// Accepts an integer that an int can hold.
    /// Returns false and leaves result as it is for every other value, an invalid one included.
    static bool toInt(const QVariant& value, int& result);

    /// Accepts a string, a number, and a bool ("true" or "false").
    /// Returns false and leaves result as it is for every other value, an invalid one included.
    static bool toString(const QVariant& value, QString& result);
};
