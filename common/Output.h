// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "Result.h"

class QByteArray;

namespace Output {

/// Writes all of the bytes to the descriptor of a stream. Blocks while a pipe is full; signals then end the process
/// even if they are blocked. Returns why not everything could be written.
MaybeError write(int descriptor, const QByteArray& bytes);

/// As above, to standard output. That nobody reads it any more is no error.
MaybeError print(const QByteArray& bytes);

} // namespace Output
