// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QColor>
#include <QFont>

class QPainter;
class QRect;
class QRectF;
class QString;
class QTextLayout;

/// The colours, fonts and shapes of the compositor's own layers.
namespace Theme {

inline const QColor cBackgroundTop{0x22, 0x2e, 0x3c};
inline const QColor cBackgroundBottom{0x12, 0x19, 0x21};
inline const QColor cBar{0x17, 0x1f, 0x29};
inline const QColor cCard{0x29, 0x36, 0x45};
inline const QColor cCardEdge{0xff, 0xff, 0xff, 0x1e};
inline const QColor cButton{0xff, 0xff, 0xff, 0x1c};
inline const QColor cText{0xee, 0xf3, 0xf8};
inline const QColor cMutedText{0xb4, 0xc2, 0xd0};
inline const QColor cFaintText{0x5b, 0x6c, 0x7e};
inline const QColor cAccent{0x4f, 0xa8, 0xe8};
inline const QColor cAlert{0xf0, 0x7a, 0x5c};

QFont font(int pixelSize, QFont::Weight weight = QFont::Normal);

/// Breaks the text into lines of at most `width` and returns the height of the first `maximumLines` of them.
qreal layOutLines(QTextLayout* layout, qreal width, int maximumLines);

/// Draws `text` in `rect`, broken into at most `maximumLines` lines; what does not fit ends in an ellipsis.
void drawText(QPainter* painter, const QRectF& rect, const QString& text, const QFont& font, Qt::Alignment alignment,
              int maximumLines);

/// Returns the height that drawText() needs.
int textHeight(const QString& text, const QFont& font, int width, int maximumLines);

/// Draws the sign of a button that closes something, in the middle of `rect`.
void drawCross(QPainter* painter, const QRect& rect);

void drawShadow(QPainter* painter, const QRectF& rect, qreal radius, int reach);

} // namespace Theme
