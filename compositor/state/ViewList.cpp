// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "state/ViewList.h"

#include <algorithm>
#include <iterator>

const View* ViewList::find(const QString& uuid) const
{
    const auto found = std::find_if(mViews.cbegin(), mViews.cend(), [&uuid](const View& view) {
        return view.uuid == uuid;
    });
    return found == mViews.cend() ? nullptr : &*found;
}

View* ViewList::find(const QString& uuid)
{
    const auto found = std::find_if(mViews.begin(), mViews.end(), [&uuid](const View& view) {
        return view.uuid == uuid;
    });
    return found == mViews.end() ? nullptr : &*found;
}

QStringList ViewList::recent() const
{
    QStringList uuids = mRecent;
    std::reverse(uuids.begin(), uuids.end());
    return uuids;
}

QString ViewList::neighbour(int step) const
{
    const View* const current = currentView();
    if (current == nullptr) {
        return {};
    }
    QVector<View> siblings;
    std::copy_if(mViews.cbegin(), mViews.cend(), std::back_inserter(siblings), [current](const View& view) {
        return view.appId == current->appId;
    });
    std::sort(siblings.begin(), siblings.end(), [](const View& left, const View& right) {
        return left.sortIndex < right.sortIndex;
    });
    const auto position = std::find_if(siblings.cbegin(), siblings.cend(), [current](const View& view) {
        return view.uuid == current->uuid;
    });
    const int count = siblings.size();
    const int index = static_cast<int>(position - siblings.cbegin());
    return siblings.at((index + step + count) % count).uuid;
}

bool ViewList::setCurrent(const QString& uuid)
{
    if (uuid.isEmpty() || !mRecent.contains(uuid)) {
        return false;
    }
    if (uuid != current()) {
        mAnnounced.reset();
        mRecent.removeOne(uuid);
        mRecent.append(uuid);
        Q_EMIT viewsChanged();
        Q_EMIT currentChanged();
    }
    return true;
}

void ViewList::announceAsCurrent(const QString& text)
{
    if (!setCurrent(text) && text != current()) {
        mAnnounced = text;
        Q_EMIT viewsChanged();
        Q_EMIT currentChanged();
    }
}

void ViewList::add(View view, const std::optional<quint32>& sortIndex)
{
    view.sortIndex = sortIndex ? *sortIndex : nextSortIndex(view.appId);
    mAnnounced.reset();
    mViews.append(view);
    mRecent.append(view.uuid);
    Q_EMIT viewsChanged();
    Q_EMIT currentChanged();
}

void ViewList::addWindow(const View& view)
{
    if (wantsPanel(view.appId) && !view.isDialog) {
        mPanel = view;
        Q_EMIT panelChanged();
    } else {
        add(view);
    }
}

void ViewList::remove(const QString& uuid)
{
    if (uuid == mPanel.uuid && !uuid.isEmpty()) {
        mPanel = {};
        Q_EMIT panelChanged();
        return;
    }
    const QString oldCurrent = current();
    const auto found = std::find_if(mViews.begin(), mViews.end(), [&uuid](const View& view) {
        return view.uuid == uuid;
    });
    if (found == mViews.end()) {
        return;
    }
    mViews.erase(found);
    mRecent.removeOne(uuid);
    Q_EMIT viewsChanged();
    if (current() != oldCurrent) {
        Q_EMIT currentChanged();
    }
}

void ViewList::change(const QString& uuid, const ViewChange& change)
{
    if (View* const view = find(uuid)) {
        change.applyTo(*view);
        Q_EMIT viewsChanged();
    }
}

void ViewList::arrange(const QStringList& uuids)
{
    QVector<View> arranged;
    for (const QString& uuid : uuids) {
        arranged.append(*find(uuid));
    }
    auto next = arranged.cbegin();
    for (View& view : mViews) {
        if (uuids.contains(view.uuid)) {
            view = *next++;
        }
    }
    Q_EMIT viewsChanged();
}

void ViewList::setAppId(const QString& uuid, const QString& appId)
{
    View* view = find(uuid);
    if (view != nullptr && view->appId != appId) {
        const quint32 sortIndex = nextSortIndex(appId);
        view->appId = appId;
        view->sortIndex = sortIndex;
        Q_EMIT viewsChanged();
    }
}

void ViewList::setTitle(const QString& uuid, const QString& title)
{
    assign(uuid, &View::title, title);
}

void ViewList::setSize(const QString& uuid, const QSize& size)
{
    if (uuid == mPanel.uuid && size != mPanel.size) {
        mPanel.size = size;
        Q_EMIT panelChanged();
    }
    assign(uuid, &View::size, size);
}

void ViewList::setDialog(const QString& uuid, bool isDialog)
{
    assign(uuid, &View::isDialog, isDialog);
}

void ViewList::setResponding(const QString& uuid, bool isResponding)
{
    assign(uuid, &View::isResponding, isResponding);
}

quint32 ViewList::nextSortIndex(const QString& appId) const
{
    quint32 next = 0;
    for (const View& view : mViews) {
        if (view.appId == appId) {
            next = std::max(next, view.sortIndex + 1);
        }
    }
    return next;
}

template <typename Value> void ViewList::assign(const QString& uuid, Value View::*member, const Value& value)
{
    View* view = find(uuid);
    if (view != nullptr && view->*member != value) {
        view->*member = value;
        Q_EMIT viewsChanged();
    }
}
