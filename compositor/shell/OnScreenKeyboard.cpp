// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "shell/OnScreenKeyboard.h"

#include "shell/Scene.h"
#include "shell/Theme.h"
#include "state/Output.h"

#include <QPainter>
#include <QPainterPath>

#include <utility>

using KeyboardPage::Key;
using KeyboardPage::Page;

namespace {

constexpr int cMargin = 4;
constexpr int cGap = 3;
constexpr int cRadius = 8;

/// Returns the key of Qt that is pressed as long as a finger is on `kind`; 0 for a key that acts when it is released.
int heldKey(Key::Kind kind)
{
    switch (kind) {
    case Key::Kind::Backspace:
        return Qt::Key_Backspace;
    case Key::Kind::Return:
        return Qt::Key_Return;
    case Key::Kind::Left:
        return Qt::Key_Left;
    case Key::Kind::Up:
        return Qt::Key_Up;
    case Key::Kind::Down:
        return Qt::Key_Down;
    case Key::Kind::Right:
        return Qt::Key_Right;
    default:
        return 0;
    }
}

/// Returns the sign of a key in a square from -1 to 1; empty for a key with a text.
QPainterPath signOf(Key::Kind kind)
{
    QPainterPath arrow;
    arrow.moveTo(-0.8, 0);
    arrow.lineTo(0.8, 0);
    arrow.moveTo(0.3, -0.5);
    arrow.lineTo(0.8, 0);
    arrow.lineTo(0.3, 0.5);
    QPainterPath path;
    switch (kind) {
    case Key::Kind::Left:
        return QTransform().rotate(180).map(arrow);
    case Key::Kind::Up:
        return QTransform().rotate(-90).map(arrow);
    case Key::Kind::Down:
        return QTransform().rotate(90).map(arrow);
    case Key::Kind::Right:
        return arrow;
    case Key::Kind::Backspace:
        path.addPolygon(QPolygonF({{-1.1, 0}, {-0.5, -0.7}, {1, -0.7}, {1, 0.7}, {-0.5, 0.7}, {-1.1, 0}}));
        path.moveTo(-0.1, -0.3);
        path.lineTo(0.5, 0.3);
        path.moveTo(-0.1, 0.3);
        path.lineTo(0.5, -0.3);
        return path;
    case Key::Kind::Return:
        path.addPolygon(QPolygonF({{0.9, -0.6}, {0.9, 0.2}, {-0.8, 0.2}}));
        path.addPolygon(QPolygonF({{-0.3, -0.3}, {-0.8, 0.2}, {-0.3, 0.7}}));
        return path;
    case Key::Kind::Shift:
        path.addPolygon(
            QPolygonF({{0, -0.9}, {0.9, 0}, {0.4, 0}, {0.4, 0.7}, {-0.4, 0.7}, {-0.4, 0}, {-0.9, 0}, {0, -0.9}}));
        return path;
    case Key::Kind::Close:
        path.addPolygon(QPolygonF({{-0.8, -0.3}, {0, 0.5}, {0.8, -0.3}}));
        return path;
    case Key::Kind::Character:
    case Key::Kind::Symbols:
        break;
    }
    return path;
}

} // namespace

OnScreenKeyboard::OnScreenKeyboard(Output& output, Scene& scene, QObject* parent)
    : QObject(parent)
    , mOutput(output)
    , mScene(scene)
{
    connect(&output, &Output::geometryChanged, this, &OnScreenKeyboard::layOut);
    connect(&output, &Output::workAreaChanged, this, &OnScreenKeyboard::layOut);
}

bool OnScreenKeyboard::isOpen() const
{
    return !mOutput.keyboardRect().isEmpty();
}

void OnScreenKeyboard::setNumeric(bool isNumeric)
{
    if (isNumeric != mIsNumeric) {
        mIsNumeric = isNumeric;
        show(isNumeric ? Page::Symbols : Page::Letters);
    }
}

void OnScreenKeyboard::open()
{
    if (!isOpen()) {
        show(mIsNumeric ? Page::Symbols : Page::Letters);
        mOutput.setKeyboardOpen(true);
        Q_EMIT openChanged();
    }
}

void OnScreenKeyboard::close()
{
    if (isOpen()) {
        mOutput.setKeyboardOpen(false);
        Q_EMIT openChanged();
    }
}

void OnScreenKeyboard::show(Page page)
{
    mPage = page;
    mIsLocked = false;
    layOut();
}

void OnScreenKeyboard::layOut()
{
    // The client repeats a held key until it is released.
    release({-1, -1});
    mKeys.clear();
    if (isOpen()) {
        mKeys = KeyboardPage::keysOf(mPage, *mKeymap,
                                     mOutput.keyboardRect().adjusted(cMargin, cMargin, -cMargin, -cMargin));
        changed();
    }
}

void OnScreenKeyboard::changed()
{
    mHasChanged = true;
    mScene.requestFrame();
}

bool OnScreenKeyboard::contains(const QPoint& position)
{
    return mOutput.keyboardRect().contains(position);
}

int OnScreenKeyboard::keyAt(const QPoint& position) const
{
    for (int i = 0; i < mKeys.size(); ++i) {
        if (mKeys.at(i).rect.contains(position)) {
            return i;
        }
    }
    return -1;
}

void OnScreenKeyboard::press(const QPoint& position)
{
    mPressed = keyAt(position);
    changed();
    if (mPressed >= 0 && heldKey(mKeys.at(mPressed).kind) != 0) {
        Q_EMIT keyPressed(heldKey(mKeys.at(mPressed).kind));
    }
}

void OnScreenKeyboard::release(const QPoint& position)
{
    const int pressed = std::exchange(mPressed, -1);
    if (pressed < 0) {
        return;
    }
    changed();
    const Key key = mKeys.at(pressed);
    if (const int held = heldKey(key.kind)) {
        Q_EMIT keyReleased(held);
    } else if (keyAt(position) == pressed) {
        trigger(key);
    }
}

void OnScreenKeyboard::trigger(const Key& key)
{
    switch (key.kind) {
    case Key::Kind::Character:
        if (mPage == Page::CapitalLetters && !mIsLocked) {
            show(Page::Letters);
        }
        Q_EMIT characterTyped(key.text);
        break;
    case Key::Kind::Shift:
        if (mPage == Page::CapitalLetters && !mIsLocked) {
            mIsLocked = true;
        } else if (mPage == Page::Letters || mPage == Page::Symbols) {
            show(mPage == Page::Letters ? Page::CapitalLetters : Page::MoreSymbols);
        } else {
            show(mPage == Page::CapitalLetters ? Page::Letters : Page::Symbols);
        }
        break;
    case Key::Kind::Symbols:
        show(mPage == Page::Letters || mPage == Page::CapitalLetters ? Page::Symbols : Page::Letters);
        break;
    case Key::Kind::Close:
        close();
        break;
    default:
        break;
    }
}

QRegion OnScreenKeyboard::update()
{
    return std::exchange(mHasChanged, false) ? QRegion(mOutput.keyboardRect()) : QRegion();
}

void OnScreenKeyboard::paint(QPainter* painter) const
{
    if (!isOpen()) {
        return;
    }
    painter->fillRect(mOutput.keyboardRect(), Theme::cBar);
    painter->setRenderHint(QPainter::Antialiasing);
    for (int i = 0; i < mKeys.size(); ++i) {
        paintKey(painter, i);
    }
}

void OnScreenKeyboard::paintKey(QPainter* painter, int index) const
{
    const Key& key = mKeys.at(index);
    const QRect rect = key.rect.adjusted(cGap, cGap, -cGap, -cGap);
    const bool isShifted =
        key.kind == Key::Kind::Shift && (mPage == Page::CapitalLetters || mPage == Page::MoreSymbols);
    painter->setPen(Qt::NoPen);
    painter->setBrush(index == mPressed                      ? Theme::cAccent
                          : key.kind == Key::Kind::Character ? Theme::cCard
                                                             : Theme::cButton);
    painter->drawRoundedRect(rect, cRadius, cRadius);

    const int size = qBound(9, rect.height() / 3, 24);
    const QPainterPath sign = signOf(key.kind);
    if (!sign.isEmpty()) {
        QPen pen(Theme::cText, size / 10.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
        pen.setCosmetic(true);
        const QPointF center = QRectF(rect).center();
        painter->save();
        painter->translate(center);
        painter->scale(size / 2.0, size / 2.0);
        painter->setPen(pen);
        painter->setBrush(isShifted ? QBrush(mIsLocked ? Theme::cAccent : Theme::cText) : QBrush(Qt::NoBrush));
        painter->drawPath(sign);
        painter->restore();
        return;
    }
    const bool hasLetters = mPage == Page::Letters || mPage == Page::CapitalLetters;
    const QString text = key.kind != Key::Kind::Symbols ? key.text
        : hasLetters                                    ? QStringLiteral("?123")
                                                        : QStringLiteral("ABC");
    painter->setPen(Theme::cText);
    painter->setFont(Theme::font(key.kind == Key::Kind::Symbols ? size * 3 / 4 : size, QFont::Medium));
    painter->drawText(rect, Qt::AlignCenter, text);
}
