// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QString>

/// Finds the port that a program listens on where the kernel has chosen it. `protocol` is "udp" or "tcp". Throws
/// std::runtime_error if it listens on none.
quint16 listeningPort(qint64 processId, const QString& protocol);
