// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QJsonObject>
#include <QJsonValue>
#include <QVariantMap>

class QJsonArray;
class QVariant;

/// Converts a plain value of the live layer.
QJsonValue toJson(const QVariant& value);
QJsonObject toJson(const QVariantMap& map);

void printJson(const QJsonObject& object);
void printJson(const QJsonArray& array);
