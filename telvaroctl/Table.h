// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

/// Rows of text in columns.
class Table
{
public:
    explicit Table(const QStringList& header);

    void addRow(const QStringList& cells);

    /// The table with its columns aligned. Where a width is given (0 is none), the last column is cut to fit it.
    QString toText(int width) const;

private:
    QList<QStringList> mRows;
};
