// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "TelvaroViewModel.h"

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

TelvaroViewModel::TelvaroViewModel(QObject* parent)
    : QAbstractListModel(parent)
{
}

int TelvaroViewModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : mViews.size();
}

QVariant TelvaroViewModel::data(const QModelIndex& index, int role) const
{
    return checkIndex(index, CheckIndexOption::IndexIsValid) ? valueOf(mViews.at(index.row()), role) : QVariant();
}

QHash<int, QByteArray> TelvaroViewModel::roleNames() const
{
    return {{UuidRole, "uuid"},           {AppIdRole, "appId"},     {TitleRole, "title"},          {Info1Role, "info1"},
            {Info2Role, "info2"},         {Info3Role, "info3"},     {Info4Role, "info4"},          {PidRole, "pid"},
            {SortIndexRole, "sortIndex"}, {CurrentRole, "current"}, {AttributesRole, "attributes"}};
}

int TelvaroViewModel::getCount() const
{
    return mViews.size();
}

int TelvaroViewModel::getCurrentRow() const
{
    return mCurrentView.isEmpty() ? -1 : rowOf(mCurrentView);
}

const QList<TelvaroViewModel::View>& TelvaroViewModel::getViews() const
{
    return mViews;
}

TelvaroViewModel::View TelvaroViewModel::getView(const QString& uuid) const
{
    const int row = rowOf(uuid);
    return row < 0 ? View() : mViews.at(row);
}

int TelvaroViewModel::rowOf(const QString& uuid) const
{
    return findFrom(0, uuid);
}

QVariantMap TelvaroViewModel::get(int row) const
{
    QVariantMap values;
    if (row >= 0 && row < mViews.size()) {
        const QHash<int, QByteArray> names = roleNames();
        for (auto name = names.cbegin(); name != names.cend(); ++name) {
            values.insert(QString::fromLatin1(name.value()), valueOf(mViews.at(row), name.key()));
        }
    }
    return values;
}

int TelvaroViewModel::indexOf(const QString& uuid) const
{
    return rowOf(uuid);
}

// Every step looks at the rows anew and ends with its signals, so that a slot may delete the model, or run an event
// loop in which a newer list is shown.
void TelvaroViewModel::show(const QList<View>& views, const QString& currentView)
{
    const QPointer<TelvaroViewModel> self(this);
    const QString formerView = mCurrentView;
    mTarget = views;
    mCurrentView = currentView;
    if (!haveSameSequence(mViews, mTarget)) {
        removeOthers();
    }
    for (int row = 0; self && row < mTarget.size();) {
        const int found = findFrom(row, mTarget.at(row).uuid);
        if (found > row) {
            beginMoveRows({}, found, found, {}, row);
            mViews.move(found, row);
            endMoveRows();
            continue;
        }
        if (found == row) {
            changeRow(row, formerView);
        } else {
            beginInsertRows({}, row, row);
            mViews.insert(row, mTarget.at(row));
            endInsertRows();
        }
        ++row;
    }
    // Rows of a uuid that the list had more often before.
    while (self && mViews.size() > mTarget.size()) {
        removeView(mViews.size() - 1);
    }
    if (self && mAnnouncedCount != getCount()) {
        mAnnouncedCount = getCount();
        Q_EMIT countChanged();
    }
    if (self && mAnnouncedRow != getCurrentRow()) {
        mAnnouncedRow = getCurrentRow();
        Q_EMIT currentRowChanged();
    }
}

void TelvaroViewModel::removeOthers()
{
    const QPointer<TelvaroViewModel> self(this);
    QSet<QString> wanted;
    for (const View& view : qAsConst(mTarget)) {
        wanted.insert(view.uuid);
    }
    for (int row = mViews.size() - 1; self && row >= 0; --row) {
        if (row < mViews.size() && !wanted.contains(mViews.at(row).uuid)) {
            removeView(row);
        }
    }
}

void TelvaroViewModel::removeView(int row)
{
    beginRemoveRows({}, row, row);
    mViews.removeAt(row);
    endRemoveRows();
}

void TelvaroViewModel::changeRow(int row, const QString& formerView)
{
    const View& view = mTarget.at(row);
    QVector<int> roles = changedRoles(mViews.at(row), view);
    const bool wasCurrent = !formerView.isEmpty() && view.uuid == formerView;
    if (wasCurrent != isCurrent(view)) {
        roles.append(CurrentRole);
    }
    if (!roles.isEmpty()) {
        mViews[row] = view;
        Q_EMIT dataChanged(index(row), index(row), roles);
    }
}

int TelvaroViewModel::findFrom(int first, const QString& uuid) const
{
    const auto found =
        std::find_if(mViews.cbegin() + std::min(first, mViews.size()), mViews.cend(), [&uuid](const View& view) {
            return view.uuid == uuid;
        });
    return found == mViews.cend() ? -1 : static_cast<int>(found - mViews.cbegin());
}

bool TelvaroViewModel::isCurrent(const View& view) const
{
    return !mCurrentView.isEmpty() && view.uuid == mCurrentView;
}

QVariant TelvaroViewModel::valueOf(const View& view, int role) const
{
    switch (role) {
    case UuidRole:
        return view.uuid;
    case AppIdRole:
        return view.appId;
    case Qt::DisplayRole:
    case TitleRole:
        return titleOf(view);
    case Info1Role:
        return view.info1;
    case Info2Role:
        return view.info2;
    case Info3Role:
        return view.info3;
    case Info4Role:
        return view.info4;
    case PidRole:
        return view.pid;
    case SortIndexRole:
        return view.sortIndex;
    case AttributesRole:
        return view.attributes;
    case CurrentRole:
        return isCurrent(view);
    default:
        return {};
    }
}
