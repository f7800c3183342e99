// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "state/SanitizedText.h"

QString sanitizedText(const QString& text, int length)
{
    QString result = text.left(length);
    for (QChar& character : result) {
        if (character == QLatin1Char('\n') || character == QChar::ParagraphSeparator) {
            character = QChar::LineSeparator;
        } else if (character.category() == QChar::Other_Control) {
            character = QLatin1Char(' ');
        }
    }
    // The cut may have split a surrogate pair.
    if (!result.isEmpty() && result.at(result.size() - 1).isHighSurrogate()) {
        result.chop(1);
    }
    return result;
}
