// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

class QString;
class QVariant;

/// Strict conversions of property values read from the bus: accept the requested type and values that plainly mean the
/// same, and reject everything else.
class VariantConversionTools
{
public:
    /// Converts a bool, an integer (any but 0 is true), or one of the words "true", "false", "1" and "0". Returns false
    /// and leaves `result` unchanged for every other value, including an invalid one.
    static bool toBool(const QVariant& value, bool& result);

    /// Converts an integer of any width that an int can hold. Returns false and leaves `result` unchanged for every
    /// other value, including an invalid one.
    static bool toInt(const QVariant& value, int& result);

    /// Converts a string, a number, or a bool ("true" or "false"). Returns false and leaves `result` unchanged for
    /// every other value, including an invalid one.
    static bool toString(const QVariant& value, QString& result);
};
