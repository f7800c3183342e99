// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QString>
#include <QStringList>

/// Suggestions for a misspelled word of the command line.
namespace Suggestion {

/// Returns "; did you mean 'CANDIDATE'?" with the candidate that is nearest to the word, or an empty string if none is
/// near.
QString question(const QString& word, const QStringList& candidates);

} // namespace Suggestion
