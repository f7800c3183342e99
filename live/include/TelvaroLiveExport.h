// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QtGlobal>

#if defined(TELVARO_LIVE_LIBRARY)
#define TELVARO_LIVE_EXPORT Q_DECL_EXPORT
#else
#define TELVARO_LIVE_EXPORT Q_DECL_IMPORT
#endif
