// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QVariantMap>

class QDBusError;

/// The error as QML reads it: an object with the strings "name" and "message".
QVariantMap toErrorValue(const QDBusError& error);
