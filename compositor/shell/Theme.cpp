// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "shell/Theme.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <QTextLayout>
#include <QtMath>

QFont Theme::font(int pixelSize, QFont::Weight weight)
{
    QFont font(QStringLiteral("Noto Sans"));
    font.setStyleHint(QFont::SansSerif);
    font.setPixelSize(pixelSize);
    font.setWeight(weight);
    return font;
}

qreal Theme::layOutLines(QTextLayout* layout, qreal width, int maximumLines)
{
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout->setTextOption(option);
    layout->setCacheEnabled(true);
    qreal height = 0;
    layout->beginLayout();
    // Lays out one line more, by which the caller sees that the text continues.
    for (int i = 0; i <= maximumLines; ++i) {
        QTextLine line = layout->createLine();
        if (!line.isValid()) {
            break;
        }
        line.setLineWidth(width);
        if (i < maximumLines) {
            line.setPosition(QPointF(0, height));
            height += line.height();
        }
    }
    layout->endLayout();
    return height;
}

void Theme::drawText(QPainter* painter, const QRectF& rect, const QString& text, const QFont& font,
                     Qt::Alignment alignment, int maximumLines)
{
    QTextLayout layout(text, font);
    const qreal height = layOutLines(&layout, rect.width(), maximumLines);
    const qreal top = alignment & Qt::AlignVCenter ? rect.top() + (rect.height() - height) / 2 : rect.top();
    const int count = qMin(layout.lineCount(), maximumLines);
    for (int i = 0; i < count; ++i) {
        const QTextLine line = layout.lineAt(i);
        QString lineText = text.mid(line.textStart(), line.textLength()).remove(QChar::LineSeparator);
        if (i == count - 1 && layout.lineCount() > count) {
            lineText = QFontMetricsF(font).elidedText(lineText.trimmed() + QChar(0x2026), Qt::ElideRight, rect.width());
        }
        painter->setFont(font);
        painter->drawText(QRectF(rect.left(), top + line.y(), rect.width(), line.height()),
                          static_cast<int>(alignment & Qt::AlignHorizontal_Mask) | Qt::AlignVCenter | Qt::TextSingleLine
                              | Qt::TextDontClip,
                          lineText.trimmed());
    }
}

int Theme::textHeight(const QString& text, const QFont& font, int width, int maximumLines)
{
    QTextLayout layout(text, font);
    return text.isEmpty() ? 0 : qCeil(layOutLines(&layout, width, maximumLines));
}

void Theme::drawCross(QPainter* painter, const QRect& rect)
{
    constexpr qreal cReach = 4.5;
    const QPointF center = QRectF(rect).center();
    painter->setPen(QPen(cMutedText, 1.5, Qt::SolidLine, Qt::RoundCap));
    painter->drawLine(center + QPointF(-cReach, -cReach), center + QPointF(cReach, cReach));
    painter->drawLine(center + QPointF(-cReach, cReach), center + QPointF(cReach, -cReach));
}

void Theme::drawShadow(QPainter* painter, const QRectF& rect, qreal radius, int reach)
{
    painter->setPen(Qt::NoPen);
    for (int i = reach; i > 0; --i) {
        const int strength = 2 + 10 * (reach - i) / reach;
        painter->setBrush(QColor(0, 0, 0, strength));
        painter->drawRoundedRect(rect.translated(0, reach / 4.0).adjusted(-i, -i, i, i), radius + i, radius + i);
    }
}
