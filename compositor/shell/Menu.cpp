// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "shell/Menu.h"

#include "shell/DeskCommands.h"
#include "shell/Scene.h"
#include "shell/Theme.h"
#include "shell/WindowStack.h"
#include "state/Output.h"
#include "state/SanitizedText.h"
#include "state/ViewList.h"

#include <QPainter>

#include <algorithm>
#include <utility>

namespace {

constexpr int cWidth = 400;
constexpr int cMargin = 8;
constexpr int cPadding = 6;
constexpr int cTextPadding = 12;
constexpr int cRowHeight = 36;
constexpr int cRadius = 12;
constexpr int cLongestTitle = 400;

} // namespace

Menu::Menu(const Output& output, ViewList& views, WindowStack& stack, const DeskCommands& commands, Scene& scene,
           QObject* parent)
    : QObject(parent)
    , mOutput(output)
    , mViews(views)
    , mStack(stack)
    , mCommands(commands)
    , mScene(scene)
{
    connect(&views, &ViewList::viewsChanged, this, &Menu::refresh);
    const auto keepSelectionVisible = [this] {
        moveSelection(0);
    };
    connect(&output, &Output::geometryChanged, this, keepSelectionVisible);
    connect(&output, &Output::workAreaChanged, this, keepSelectionVisible);
}

void Menu::open(Mode mode)
{
    mMode = mode;
    mSelected = 0;
    mFirst = 0;
    mPressed = {};
    refresh();
}

void Menu::toggle()
{
    if (isOpen()) {
        close();
    } else {
        open(Mode::Everything);
    }
}

void Menu::close()
{
    if (isOpen()) {
        mMode = Mode::Closed;
        mRows.clear();
        changed();
    }
}

void Menu::step(int step)
{
    if (!isOpen()) {
        open(Mode::Switching);
    }
    moveSelection(step);
}

void Menu::finishSwitching()
{
    if (mMode == Mode::Switching) {
        activate(mSelected);
    }
}

/// Rebuilds the rows and keeps the selection where it still exists.
void Menu::refresh()
{
    if (!isOpen()) {
        return;
    }
    const Row selected = mRows.value(mSelected);
    mRows.clear();
    const QStringList uuids = mViews.recent();
    for (const QString& uuid : uuids) {
        const View* const view = std::as_const(mViews).find(uuid);
        Row row;
        row.uuid = uuid;
        row.text = sanitizedText(view->title.isEmpty() ? view->appId : view->title, cLongestTitle);
        row.detail = view->isResponding ? sanitizedText(view->appId, cLongestTitle) : QStringLiteral("not responding");
        row.canClose = mMode == Mode::Everything && mStack.canClose(uuid);
        mRows.append(row);
    }
    for (int i = 0; mMode == Mode::Everything && i < mCommands.commands().size(); ++i) {
        const DeskCommands::Command& command = mCommands.commands().at(i);
        Row row;
        row.command = i;
        row.text = command.label;
        row.detail = command.key.toString();
        mRows.append(row);
    }
    if (mRows.isEmpty()) {
        close();
        return;
    }
    const auto found = std::find_if(mRows.cbegin(), mRows.cend(), [&selected](const Row& row) {
        return row.isSame(selected);
    });
    if (found != mRows.cend()) {
        mSelected = static_cast<int>(found - mRows.cbegin());
    }
    moveSelection(0);
}

void Menu::moveSelection(int rows)
{
    if (!isOpen()) {
        return;
    }
    const int count = mRows.size();
    mSelected = rows == 0 ? std::min(mSelected, count - 1) : ((mSelected + rows) % count + count) % count;
    mFirst = qBound(std::max(0, mSelected - pageSize() + 1), mFirst, mSelected);
    changed();
}

void Menu::changed()
{
    mHasChanged = true;
    mScene.requestFrame();
}

void Menu::pressKey(int key)
{
    if (mMode == Mode::Switching) {
        key &= ~static_cast<int>(Qt::ALT);
    }
    switch (key) {
    case Qt::Key_Escape:
        close();
        break;
    case Qt::Key_Down:
    case Qt::Key_Tab:
        moveSelection(1);
        break;
    case Qt::Key_Up:
    case int{Qt::SHIFT} | Qt::Key_Tab:
        moveSelection(-1);
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        activate(mSelected);
        break;
    case Qt::Key_Delete:
        mStack.close(mRows.at(mSelected).uuid);
        break;
    default:
        if (const DeskCommands::Command* const command = mCommands.find(key)) {
            if (mMode == Mode::Everything) {
                close();
            }
            command->execute();
        }
        break;
    }
}

void Menu::activate(int index)
{
    const Row row = mRows.at(index);
    close();
    if (row.command >= 0) {
        mCommands.commands().at(row.command).execute();
    } else {
        mViews.setCurrent(row.uuid);
    }
}

QRect Menu::rect() const
{
    if (!isOpen()) {
        return {};
    }
    const QRect area = mOutput.workArea().adjusted(cMargin, cMargin, -cMargin, -cMargin);
    const int rows = pageSize() + (hasMore() ? 1 : 0);
    return {area.topLeft(), QSize(std::min(cWidth, area.width()), 2 * cPadding + rows * cRowHeight)};
}

int Menu::pageSize() const
{
    const int room = std::max(2, (mOutput.workArea().height() - 2 * cMargin - 2 * cPadding) / cRowHeight);
    return mRows.size() <= room ? mRows.size() : room - 1;
}

QRect Menu::rowRect(int index) const
{
    const QRect inner = rect().adjusted(cPadding, cPadding, -cPadding, -cPadding);
    return {inner.left(), inner.top() + (index - mFirst) * cRowHeight, inner.width(), cRowHeight};
}

QRect Menu::closeRect(int index) const
{
    const QRect row = rowRect(index);
    return mRows.at(index).canClose ? row.adjusted(row.width() - cRowHeight, 0, 0, 0) : QRect();
}

Menu::Target Menu::targetAt(const QPoint& position) const
{
    const int end = std::min(mFirst + pageSize(), mRows.size());
    for (int i = mFirst; i < end; ++i) {
        if (rowRect(i).contains(position)) {
            return {closeRect(i).contains(position) ? Part::CloseButton : Part::Row, i, mRows.at(i)};
        }
    }
    return {rowRect(mFirst + pageSize()).contains(position) && hasMore() ? Part::More : Part::Nothing, -1, Row()};
}

bool Menu::contains(const QPoint&)
{
    return isOpen();
}

void Menu::press(const QPoint& position)
{
    mPressed = targetAt(position);
    if (mPressed.part == Part::Nothing && !rect().contains(position)) {
        close();
    } else if (mPressed.index >= 0) {
        mSelected = mPressed.index;
        changed();
    }
}

void Menu::release(const QPoint& position)
{
    const Target pressed = std::exchange(mPressed, Target());
    const Target target = targetAt(position);
    if (!isOpen() || !(target == pressed)) {
        return;
    }
    switch (target.part) {
    case Part::Row:
        activate(target.index);
        break;
    case Part::CloseButton:
        mStack.close(target.row.uuid);
        break;
    case Part::More:
        mFirst += pageSize();
        if (mFirst >= mRows.size()) {
            mFirst = 0;
        }
        mSelected = mFirst;
        changed();
        break;
    case Part::Nothing:
        break;
    }
}

QRegion Menu::update()
{
    return std::exchange(mHasChanged, false) ? QRegion(mOutput.rect()) : QRegion();
}

void Menu::paint(QPainter* painter) const
{
    if (!isOpen()) {
        return;
    }
    painter->setRenderHint(QPainter::Antialiasing);
    painter->fillRect(mOutput.workArea(), QColor(0, 0, 0, 90));
    const QRect panel = rect();
    Theme::drawShadow(painter, panel, cRadius, 14);
    painter->setPen(Theme::cCardEdge);
    painter->setBrush(Theme::cCard);
    painter->drawRoundedRect(QRectF(panel).adjusted(0.5, 0.5, -0.5, -0.5), cRadius, cRadius);
    const int end = std::min(mFirst + pageSize(), mRows.size());
    for (int i = mFirst; i < end; ++i) {
        paintRow(painter, i);
    }
    if (hasMore()) {
        painter->setPen(Theme::cMutedText);
        Theme::drawText(painter, rowRect(mFirst + pageSize()),
                        QStringLiteral("%1 more").arg(mRows.size() - (end - mFirst)), Theme::font(13),
                        Qt::AlignHCenter | Qt::AlignVCenter, 1);
    }
}

void Menu::paintRow(QPainter* painter, int index) const
{
    const Row& row = mRows.at(index);
    const QRect rect = rowRect(index);
    if (index == mSelected) {
        painter->setPen(Qt::NoPen);
        painter->setBrush(Theme::cButton);
        painter->drawRoundedRect(rect, 8, 8);
    }
    const QRect close = closeRect(index);
    const QRect text = rect.adjusted(cTextPadding, 0, -cTextPadding - close.width(), 0);
    const QFont detailFont = Theme::font(13);
    const int detailWidth = std::min(text.width() / 2, QFontMetrics(detailFont).horizontalAdvance(row.detail) + 1);
    painter->setPen(row.uuid.isEmpty() ? Theme::cMutedText : Theme::cText);
    Theme::drawText(painter, text.adjusted(0, 0, -detailWidth - cTextPadding, 0), row.text,
                    Theme::font(15, row.uuid.isEmpty() ? QFont::Normal : QFont::Medium),
                    Qt::AlignLeft | Qt::AlignVCenter, 1);
    painter->setPen(Theme::cMutedText);
    Theme::drawText(painter, text.adjusted(text.width() - detailWidth, 0, 0, 0), row.detail, detailFont,
                    Qt::AlignRight | Qt::AlignVCenter, 1);
    if (row.canClose) {
        Theme::drawCross(painter, close);
    }
}
