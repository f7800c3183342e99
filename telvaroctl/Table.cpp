// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Table.h"

#include "Console.h"

#include <QVector>

#include <algorithm>

Table::Table(const QStringList& header)
    : mRows{header}
{
}

void Table::addRow(const QStringList& cells)
{
    QStringList row;
    for (const QString& cell : cells) {
        row.append(printable(cell));
    }
    mRows.append(row);
}

QString Table::toText(int width) const
{
    const int lastColumn = mRows.constFirst().size() - 1;
    const int gap = 2;
    QVector<int> widths(lastColumn, 0);
    for (const QStringList& row : mRows) {
        for (int column = 0; column < lastColumn; ++column) {
            widths[column] = std::max(widths.at(column), row.at(column).size());
        }
    }

    QString text;
    for (const QStringList& row : mRows) {
        QString line;
        for (int column = 0; column < lastColumn; ++column) {
            line += row.at(column).leftJustified(widths.at(column) + gap);
        }
        const QString& last = row.at(lastColumn);
        const int room = width - line.size();
        const bool isCut = room > 0 && last.size() > room;
        line += isCut ? last.left(room - 1) + QChar(0x2026) : last;
        while (line.endsWith(QLatin1Char(' '))) {
            line.chop(1);
        }
        text += line + QLatin1Char('\n');
    }
    return text;
}
