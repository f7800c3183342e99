// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "shell/Background.h"

#include "shell/Theme.h"
#include "state/Output.h"
#include "state/ViewList.h"

#include <QLinearGradient>
#include <QPainter>

#include <utility>

Background::Background(const Output& output, const ViewList& views)
    : mOutput(output)
    , mViews(views)
{
}

QRegion Background::update()
{
    const bool hasView = mViews.currentView() != nullptr;
    return std::exchange(mHasView, hasView) == hasView ? QRegion() : mOutput.rect();
}

void Background::paint(QPainter* painter) const
{
    const QRect rect = mOutput.rect();
    QLinearGradient gradient(rect.topLeft(), rect.bottomLeft());
    gradient.setColorAt(0, Theme::cBackgroundTop);
    gradient.setColorAt(1, Theme::cBackgroundBottom);
    painter->fillRect(rect, gradient);

    if (mHasView) {
        return;
    }
    QFont font = Theme::font(qBound(18, rect.width() / 16, 64), QFont::Light);
    font.setLetterSpacing(QFont::PercentageSpacing, 125);
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setFont(font);
    painter->setPen(Theme::cFaintText);
    painter->drawText(mOutput.workArea(), Qt::AlignCenter, QStringLiteral("Telvaro"));
}
