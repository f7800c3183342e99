// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "GlobalOverlay.h"

GlobalOverlay::GlobalOverlay(QObject* parent)
    : ServiceObject(parent)
{
}

GlobalOverlay::~GlobalOverlay()
{
    if (mVisible) {
        takeAway();
    }
}

QString GlobalOverlay::getText() const
{
    return mText;
}

void GlobalOverlay::setText(const QString& text)
{
    if (text == mText) {
        return;
    }
    mText = text;
    showIfVisible();
    Q_EMIT textChanged();
}

bool GlobalOverlay::isVisible() const
{
    return mVisible;
}

void GlobalOverlay::setVisible(bool visible)
{
    if (visible == mVisible) {
        return;
    }
    mVisible = visible;
    if (visible) {
        showIfVisible();
    } else {
        takeAway();
    }
    Q_EMIT visibleChanged();
}

void GlobalOverlay::show(const QString& text)
{
    setText(text);
    setVisible(true);
}

void GlobalOverlay::hide()
{
    setVisible(false);
}

void GlobalOverlay::classBegin()
{
    mComplete = false;
}

void GlobalOverlay::componentComplete()
{
    mComplete = true;
    showIfVisible();
}

void GlobalOverlay::onServiceChanged()
{
    showIfVisible();
}

// Not before all properties of a declared object are set, whatever their order.
void GlobalOverlay::showIfVisible()
{
    if (mVisible && mComplete && isAvailable()) {
        mConnector.showGlobalOverlay(mText);
    }
}

// What was never shown may be another program's.
void GlobalOverlay::takeAway()
{
    if (mComplete && isAvailable()) {
        mConnector.hideGlobalOverlay();
    }
}
