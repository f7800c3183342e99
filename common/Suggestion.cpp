// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Suggestion.h"

#include <QVector>

#include <algorithm>
#include <numeric>

namespace {

/// The Levenshtein distance: the least number of characters to insert, remove or replace.
int distance(const QString& from, const QString& to)
{
    QVector<int> row(to.size() + 1);
    std::iota(row.begin(), row.end(), 0);
    for (int i = 0; i < from.size(); ++i) {
        int diagonal = row.at(0);
        row[0] = i + 1;
        for (int j = 0; j < to.size(); ++j) {
            const int replaced = diagonal + (from.at(i) == to.at(j) ? 0 : 1);
            diagonal = row.at(j + 1);
            row[j + 1] = std::min({replaced, row.at(j) + 1, diagonal + 1});
        }
    }
    return row.constLast();
}

} // namespace

QString Suggestion::question(const QString& word, const QStringList& candidates)
{
    QString nearest;
    // A third of the word may be wrong.
    int nearestDistance = word.size() / 3 + 2;
    for (const QString& candidate : candidates) {
        const bool isBeginning = word.size() > 1 && candidate.startsWith(word);
        const int candidateDistance = isBeginning ? 1 : distance(word, candidate);
        if (candidateDistance < nearestDistance) {
            nearest = candidate;
            nearestDistance = candidateDistance;
        }
    }
    return nearest.isEmpty() ? QString() : QStringLiteral("; did you mean '%1'?").arg(nearest);
}
