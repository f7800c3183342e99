// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Printable.h"

#include <QChar>

QString printable(const QString& text)
{
    QString result = text;
    // Without these, words of some scripts are spelled otherwise, and emoji come apart.
    const QString joiners = QStringLiteral("\u200c\u200d");
    for (QChar& character : result) {
        const QChar::Category category = character.category();
        if (category == QChar::Other_Control || (category == QChar::Other_Format && !joiners.contains(character))) {
            character = QChar(QChar::ReplacementCharacter);
        }
    }
    return result;
}
