// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ShellWord.h"

#include <QRegularExpression>

QString shellWord(const QString& text)
{
    static const QRegularExpression cSpecial(QStringLiteral("[^A-Za-z0-9_@%+=:,./-]"));
    if (!text.contains(cSpecial)) {
        return text;
    }
    QString escaped = text;
    escaped.replace(QLatin1Char('\''), QStringLiteral("'\\''"));
    return QStringLiteral("'%1'").arg(escaped);
}
