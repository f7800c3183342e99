// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "GlobalOverlay.h"

#include "ErrorValue.h"

#include <TelvaroRequests.h>

GlobalOverlay::GlobalOverlay(QObject* parent)
    : TelvaroLiveObject(parent)
{
    connect(this, &TelvaroLiveObject::statusChanged, this, &GlobalOverlay::showIfVisible);
    connect(this, &TelvaroLiveObject::requestFailed, this, [this](const QDBusError& error) {
        Q_EMIT requestFailed(toErrorValue(error));
    });
}

GlobalOverlay::~GlobalOverlay()
{
    if (mVisible) {
        takeAway();
    }
}

bool GlobalOverlay::isAvailable() const
{
    return getStatus() == Ready;
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

// Not before all properties of a declared object are set, whatever their order.
void GlobalOverlay::showIfVisible()
{
    if (mVisible && mComplete && isAvailable()) {
        report(TelvaroRequests::showGlobalOverlay(mText));
    }
}

// What was never shown may be another program's.
void GlobalOverlay::takeAway()
{
    if (mComplete && isAvailable()) {
        report(TelvaroRequests::hideGlobalOverlay());
    }
}
