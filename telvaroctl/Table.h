// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

/// Text in aligned columns.
class Table
{
public:
    explicit Table(const QStringList& header);

    void addRow(const QStringList& cells);

    /// Returns the table with its columns aligned. The last column is cut to fit `width`; 0 is no limit.
    QString toText(int width) const;

private:
    QList<QStringList> mRows;
};
