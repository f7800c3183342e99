// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <TelvaroViewModel.h>

#include <QString>
#include <QStringList>
#include <QVariantMap>

/// What the commands print of a view.
namespace ViewFields {

/// The names of the fields of a template.
QStringList names();
QVariantMap of(const TelvaroViewModel::View& view, bool isCurrent);

/// The attribute "title", or info1 if it is missing.
QString title(const TelvaroViewModel::View& view);

} // namespace ViewFields
