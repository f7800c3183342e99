// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "TelvaroTaskSwitcherDBusConnector.h"

#include <QList>
#include <QString>
#include <QStringList>

/// Values in GVariant's text format.
namespace ValueText {

QString string(const QString& value);
QString strings(const QStringList& values);
QString variant(const QString& value);

/// A structure (ssssssuua{sv}) with attributes of type QString only.
QString view(const TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry& entry);
/// An array of such structures, typed even if empty.
QString views(const QList<TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry>& entries);

} // namespace ValueText
