// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "LiveViews.h"

#include <QPointer>
#include <QSet>
#include <QVector>

#include <algorithm>

namespace {

using View = TelvaroViewModel::View;

QString titleOf(const View& view)
{
    const QString title = view.attributes.value(QStringLiteral("title")).toString();
    return title.isEmpty() ? view.appId : title;
}

QVector<int> changedRoles(const View& before, const View& after)
{
    QVector<int> roles;
    const auto compare = [&](int role, auto View::*member) {
        if (before.*member != after.*member) {
            roles.append(role);
        }
    };
    compare(TelvaroViewModel::AppIdRole, &View::appId);
    compare(TelvaroViewModel::Info1Role, &View::info1);
    compare(TelvaroViewModel::Info2Role, &View::info2);
    compare(TelvaroViewModel::Info3Role, &View::info3);
    compare(TelvaroViewModel::Info4Role, &View::info4);
    compare(TelvaroViewModel::PidRole, &View::pid);
    compare(TelvaroViewModel::SortIndexRole, &View::sortIndex);
    compare(TelvaroViewModel::AttributesRole, &View::attributes);
    // The title is made of others of them.
    if (!roles.isEmpty() && titleOf(before) != titleOf(after)) {
        roles += {TelvaroViewModel::TitleRole, Qt::DisplayRole};
    }
    return roles;
}

bool haveSameSequence(const QList<View>& left, const QList<View>& right)
{
    return std::equal(left.cbegin(), left.cend(), right.cbegin(), right.cend(), [](const View& one, const View& other) {
        return one.uuid == other.uuid;
    });
}

} // namespace

TelvaroViewModel* LiveViews::getModel()
{
    return &mModel;
}

const QList<View>& LiveViews::getViews() const
{
    return mViews;
}

int LiveViews::getCurrentRow() const
{
    return mCurrentView.isEmpty() ? -1 : rowOf(mCurrentView);
}

int LiveViews::rowOf(const QString& uuid) const
{
    return findFrom(0, uuid);
}

QVariant LiveViews::valueOf(const View& view, int role) const
{
    switch (role) {
    case TelvaroViewModel::UuidRole:
        return view.uuid;
    case TelvaroViewModel::AppIdRole:
        return view.appId;
    case Qt::DisplayRole:
    case TelvaroViewModel::TitleRole:
        return titleOf(view);
    case TelvaroViewModel::Info1Role:
        return view.info1;
    case TelvaroViewModel::Info2Role:
        return view.info2;
    case TelvaroViewModel::Info3Role:
        return view.info3;
    case TelvaroViewModel::Info4Role:
        return view.info4;
    case TelvaroViewModel::PidRole:
        return view.pid;
    case TelvaroViewModel::SortIndexRole:
        return view.sortIndex;
    case TelvaroViewModel::AttributesRole:
        return view.attributes;
    case TelvaroViewModel::CurrentRole:
        return isCurrent(view);
    default:
        return {};
    }
}

bool LiveViews::show(const QList<View>& views, const QString& currentView)
{
    const QPointer<TelvaroViewModel> self(&mModel);
    const QString formerView = mCurrentView;
    const quint64 formerChanges = mChanges;
    mTarget = views;
    mCurrentView = currentView;
    if (!haveSameSequence(mViews, mTarget)) {
        removeOthers();
    }
    for (int row = 0; self && row < mTarget.size();) {
        const int found = findFrom(row, mTarget.at(row).uuid);
        if (found > row) {
            mModel.beginMoveRows({}, found, found, {}, row);
            mViews.move(found, row);
            ++mChanges;
            mModel.endMoveRows();
            continue;
        }
        if (found == row) {
            change(row, formerView);
        } else {
            mModel.beginInsertRows({}, row, row);
            mViews.insert(row, mTarget.at(row));
            ++mChanges;
            mModel.endInsertRows();
        }
        ++row;
    }
    // Rows of a uuid that the list had more often before.
    while (self && mViews.size() > mTarget.size()) {
        remove(mViews.size() - 1);
    }
    if (self && mAnnouncedCount != mViews.size()) {
        mAnnouncedCount = mViews.size();
        Q_EMIT mModel.countChanged();
    }
    if (self && mAnnouncedRow != getCurrentRow()) {
        mAnnouncedRow = getCurrentRow();
        Q_EMIT mModel.currentRowChanged();
    }
    return self && mChanges != formerChanges;
}

void LiveViews::removeOthers()
{
    const QPointer<TelvaroViewModel> self(&mModel);
    QSet<QString> wanted;
    for (const View& view : qAsConst(mTarget)) {
        wanted.insert(view.uuid);
    }
    for (int row = mViews.size() - 1; self && row >= 0; --row) {
        if (row < mViews.size() && !wanted.contains(mViews.at(row).uuid)) {
            remove(row);
        }
    }
}

void LiveViews::remove(int row)
{
    mModel.beginRemoveRows({}, row, row);
    mViews.removeAt(row);
    ++mChanges;
    mModel.endRemoveRows();
}

void LiveViews::change(int row, const QString& formerView)
{
    const View& view = mTarget.at(row);
    QVector<int> roles = changedRoles(mViews.at(row), view);
    mChanges += roles.isEmpty() ? 0 : 1;
    const bool wasCurrent = !formerView.isEmpty() && view.uuid == formerView;
    if (wasCurrent != isCurrent(view)) {
        roles.append(TelvaroViewModel::CurrentRole);
    }
    if (!roles.isEmpty()) {
        mViews[row] = view;
        Q_EMIT mModel.dataChanged(mModel.index(row), mModel.index(row), roles);
    }
}

int LiveViews::findFrom(int first, const QString& uuid) const
{
    const auto found =
        std::find_if(mViews.cbegin() + std::min(first, mViews.size()), mViews.cend(), [&uuid](const View& view) {
            return view.uuid == uuid;
        });
    return found == mViews.cend() ? -1 : static_cast<int>(found - mViews.cbegin());
}

bool LiveViews::isCurrent(const View& view) const
{
    return !mCurrentView.isEmpty() && view.uuid == mCurrentView;
}
