// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Table.h"

#include "Console.h"

#include <QTextBoundaryFinder>
#include <QVector>

#include <algorithm>
#include <cwchar>

namespace {

/// Returns the columns of a terminal that the text takes.
int columnsOf(const QString& text)
{
    int columns = 0;
    const QVector<uint> characters = text.toUcs4();
    for (const uint character : characters) {
        const int width = ::wcwidth(static_cast<wchar_t>(character));
        // The locale does not know every character.
        columns += width < 0 ? 1 : width;
    }
    return columns;
}

QString padded(const QString& text, int columns)
{
    return text + QString(columns - columnsOf(text), QLatin1Char(' '));
}

/// Returns the whole characters that fit into one column less, and an ellipsis.
QString cut(const QString& text, int columns)
{
    QTextBoundaryFinder boundaries(QTextBoundaryFinder::Grapheme, text);
    int end = 0;
    int next = boundaries.toNextBoundary();
    while (next > 0 && columnsOf(text.left(next)) < columns) {
        end = next;
        next = boundaries.toNextBoundary();
    }
    return text.left(end) + QChar(0x2026);
}

} // namespace

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
            widths[column] = std::max(widths.at(column), columnsOf(row.at(column)));
        }
    }

    QString text;
    for (const QStringList& row : mRows) {
        QString line;
        for (int column = 0; column < lastColumn; ++column) {
            line += padded(row.at(column), widths.at(column) + gap);
        }
        const QString& last = row.at(lastColumn);
        const int room = width - columnsOf(line);
        line += room > 0 && columnsOf(last) > room ? cut(last, room) : last;
        while (line.endsWith(QLatin1Char(' '))) {
            line.chop(1);
        }
        text += line + QLatin1Char('\n');
    }
    return text;
}
