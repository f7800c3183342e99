// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <TelvaroViewModel.h>

#include <QList>
#include <QString>
#include <QVariant>

/// Values to compare the live objects by.
namespace LiveValues {

/// The current view as the service sends it, read by a call that blocks, without a connector: that returns only a view
/// that is among the views. Invalid if the service refuses.
QVariant readCurrentView();

/// The members of each view.
QVariantList fromViews(const QList<TelvaroViewModel::View>& views);

/// Describes the value for a failure.
QString text(const QVariant& value);

} // namespace LiveValues
