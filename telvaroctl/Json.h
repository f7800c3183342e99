// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <TelvaroTaskSwitcherDBusConnector.h>

#include <QJsonObject>
#include <QJsonValue>
#include <QString>

class QJsonArray;
class QVariant;

/// Converts a value from the bus; nested arrays, structures (to arrays), dictionaries and variants included.
QJsonValue toJson(const QVariant& value);

QJsonObject toJson(const TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry& view);

void printJson(const QJsonObject& object);
void printJson(const QJsonArray& array);
