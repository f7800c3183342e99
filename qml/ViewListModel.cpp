// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ViewListModel.h"

#include "PlainValue.h"

#include <QHash>
#include <QVector>

#include <algorithm>

namespace {

QVariant valueOf(const ViewListModel::View& view, int role)
{
    switch (role) {
    case ViewListModel::UuidRole:
        return view.uuid;
    case ViewListModel::AppIdRole:
        return view.appId;
    case Qt::DisplayRole:
    case ViewListModel::TitleRole: {
        const QString title = view.attributes.value(QStringLiteral("title")).toString();
        return title.isEmpty() ? view.appId : title;
    }
    case ViewListModel::Info1Role:
        return view.info1;
    case ViewListModel::Info2Role:
        return view.info2;
    case ViewListModel::Info3Role:
        return view.info3;
    case ViewListModel::Info4Role:
        return view.info4;
    case ViewListModel::PidRole:
        return view.pid;
    case ViewListModel::SortIndexRole:
        return view.sortIndex;
    case ViewListModel::AttributesRole:
        return view.attributes;
    default:
        return {};
    }
}

QList<ViewListModel::View> withPlainAttributes(QList<ViewListModel::View> views)
{
    for (ViewListModel::View& view : views) {
        QVariantMap attributes;
        for (auto attribute = view.attributes.cbegin(); attribute != view.attributes.cend(); ++attribute) {
            // A JavaScript object has every key once. Of values with the same key, the one sent last comes first.
            if (!attributes.contains(attribute.key())) {
                attributes.insert(attribute.key(), toPlainValue(attribute.value()));
            }
        }
        view.attributes = attributes;
    }
    return views;
}

} // namespace

ViewListModel::ViewListModel(QObject* parent)
    : QAbstractListModel(parent)
{
}

int ViewListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : mViews.size();
}

QVariant ViewListModel::data(const QModelIndex& index, int role) const
{
    return checkIndex(index, CheckIndexOption::IndexIsValid) ? valueOf(mViews.at(index.row()), role) : QVariant();
}

QHash<int, QByteArray> ViewListModel::roleNames() const
{
    return {{UuidRole, "uuid"},           {AppIdRole, "appId"},          {TitleRole, "title"}, {Info1Role, "info1"},
            {Info2Role, "info2"},         {Info3Role, "info3"},          {Info4Role, "info4"}, {PidRole, "pid"},
            {SortIndexRole, "sortIndex"}, {AttributesRole, "attributes"}};
}

int ViewListModel::getCount() const
{
    return mViews.size();
}

void ViewListModel::setViews(const QList<View>& views)
{
    const int countBefore = mViews.size();
    const QList<View> target = withPlainAttributes(views);
    removeMissing(target);
    for (int row = 0; row < target.size(); ++row) {
        const View& view = target.at(row);
        const int found = findFrom(row, view.uuid);
        if (found < 0) {
            beginInsertRows({}, row, row);
            mViews.insert(row, view);
            endInsertRows();
            continue;
        }
        if (found != row) {
            beginMoveRows({}, found, found, {}, row);
            mViews.move(found, row);
            endMoveRows();
        }
        change(row, view);
    }
    if (mViews.size() != countBefore) {
        Q_EMIT countChanged();
    }
}

QVariantMap ViewListModel::get(int row) const
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

int ViewListModel::indexOf(const QString& uuid) const
{
    return findFrom(0, uuid);
}

int ViewListModel::findFrom(int first, const QString& uuid) const
{
    const auto found = std::find_if(mViews.cbegin() + first, mViews.cend(), [&uuid](const View& view) {
        return view.uuid == uuid;
    });
    return found == mViews.cend() ? -1 : static_cast<int>(found - mViews.cbegin());
}

// Counted, since nothing keeps a service from sending the same uuid twice.
void ViewListModel::removeMissing(const QList<View>& views)
{
    QHash<QString, int> wanted;
    for (const View& view : views) {
        ++wanted[view.uuid];
    }
    for (int row = 0; row < mViews.size();) {
        if (wanted[mViews.at(row).uuid]-- > 0) {
            ++row;
        } else {
            beginRemoveRows({}, row, row);
            mViews.removeAt(row);
            endRemoveRows();
        }
    }
}

void ViewListModel::change(int row, const View& view)
{
    QVector<int> roles;
    const QHash<int, QByteArray> names = roleNames();
    for (auto name = names.cbegin(); name != names.cend(); ++name) {
        if (valueOf(mViews.at(row), name.key()) != valueOf(view, name.key())) {
            roles.append(name.key());
        }
    }
    if (roles.isEmpty()) {
        return;
    }
    if (roles.contains(TitleRole)) {
        roles.append(Qt::DisplayRole);
    }
    mViews[row] = view;
    Q_EMIT dataChanged(index(row), index(row), roles);
}
