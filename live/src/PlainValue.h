// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

class QVariant;

/// The value without D-Bus types: arrays and structures are lists, dictionaries are maps, variants are what they hold,
/// object paths and signatures are strings, and a file descriptor is an invalid value. JavaScript can use it, and it
/// can be compared.
QVariant toPlainValue(const QVariant& value);
