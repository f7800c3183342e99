// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Printable.h"

#include <QChar>

QString printable(const QString& text)
{
    QString result = text;
    for (QChar& character : result) {
        const QChar::Category category = character.category();
        if (category == QChar::Other_Control || category == QChar::Other_Format) {
            character = QChar(QChar::ReplacementCharacter);
        }
    }
    return result;
}
