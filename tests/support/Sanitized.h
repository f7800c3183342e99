// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QtGlobal>

// Whether the memory of a process is a sanitizer's, too. Qt defines __has_feature for compilers that do not.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || __has_feature(address_sanitizer)                  \
    || __has_feature(thread_sanitizer)
#define TELVARO_SANITIZED
#endif
