// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "shell/OverlayPanel.h"

#include "shell/Scene.h"
#include "shell/Theme.h"
#include "state/Output.h"
#include "state/SanitizedText.h"

#include <QPainter>
#include <QTextLayout>

#include <utility>

namespace {

constexpr int cLargestFont = 44;
constexpr int cSmallestFont = 13;
constexpr int cRadius = 18;
/// More than any output has room for.
constexpr int cLongestMessage = 8000;

struct Fit
{
    QFont font;
    int lines = 1;
    QSizeF size;
};

/// Returns the largest font in which the whole message fits, or the smallest with as many lines as there is room for.
Fit fit(const QString& message, const QSizeF& room)
{
    for (int pixelSize = cLargestFont;; pixelSize -= pixelSize > 24 ? 4 : 2) {
        const QFont font = Theme::font(qMax(pixelSize, cSmallestFont), QFont::Medium);
        const qreal lineHeight = QFontMetricsF(font).height();
        const int lines = qMax(1, static_cast<int>(room.height() / lineHeight));
        QTextLayout layout(message, font);
        const qreal height = Theme::layOutLines(&layout, room.width(), lines);
        if (layout.lineCount() <= lines || pixelSize <= cSmallestFont) {
            qreal width = 0;
            for (int i = 0; i < qMin(lines, layout.lineCount()); ++i) {
                width = qMax(width, layout.lineAt(i).naturalTextWidth());
            }
            return {font, lines, QSizeF(qMin(width, room.width()), height)};
        }
    }
}

} // namespace

OverlayPanel::OverlayPanel(const Output& output, Scene& scene, QObject* parent)
    : QObject(parent)
    , mOutput(output)
    , mScene(scene)
{
}

void OverlayPanel::show(const QString& message)
{
    change(true, sanitizedText(message, cLongestMessage));
}

void OverlayPanel::hide()
{
    change(false, QString());
}

void OverlayPanel::change(bool visible, const QString& message)
{
    if (visible != mVisible || message != mMessage) {
        mVisible = visible;
        mMessage = message;
        mHasChanged = true;
        mScene.requestFrame();
    }
}

QRegion OverlayPanel::update()
{
    return std::exchange(mHasChanged, false) ? QRegion(mOutput.rect()) : QRegion();
}

void OverlayPanel::paint(QPainter* painter) const
{
    if (!mVisible) {
        return;
    }
    const QRectF output = mOutput.rect();
    const qreal padding = qBound<qreal>(8, qMin(output.width(), output.height()) / 16, 40);
    const QSizeF room(output.width() * 0.86 - 2 * padding, output.height() * 0.86 - 2 * padding);
    const Fit text = fit(mMessage, room);

    // At least as wide as looks well around a short message in a single line.
    const QSizeF wanted(qMax(text.size.width() + 1, qMin(room.width(), output.width() * 0.4)), text.size.height());
    QRectF textRect(QPointF(), wanted);
    textRect.moveCenter(output.center());
    const QRectF panel = textRect.adjusted(-padding, -padding, padding, padding);

    painter->setRenderHint(QPainter::Antialiasing);
    painter->fillRect(output, QColor(0, 0, 0, 120));
    Theme::drawShadow(painter, panel, cRadius, 20);
    painter->setPen(QPen(Theme::cCardEdge, 1));
    painter->setBrush(QColor(0x10, 0x16, 0x1d, 0xe6));
    painter->drawRoundedRect(panel, cRadius, cRadius);
    painter->setPen(Theme::cText);
    Theme::drawText(painter, textRect, mMessage, text.font, Qt::AlignHCenter | Qt::AlignVCenter, text.lines);
}
