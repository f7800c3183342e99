// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "TelvaroViewModel.h"

#include "LiveViews.h"

TelvaroViewModel::TelvaroViewModel(const LiveViews& views)
    : mViews(views)
{
}

int TelvaroViewModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : getCount();
}

QVariant TelvaroViewModel::data(const QModelIndex& index, int role) const
{
    return checkIndex(index, CheckIndexOption::IndexIsValid) ? mViews.valueOf(getViews().at(index.row()), role)
                                                             : QVariant();
}

QHash<int, QByteArray> TelvaroViewModel::roleNames() const
{
    return {{UuidRole, "uuid"},           {AppIdRole, "appId"},     {TitleRole, "title"},          {Info1Role, "info1"},
            {Info2Role, "info2"},         {Info3Role, "info3"},     {Info4Role, "info4"},          {PidRole, "pid"},
            {SortIndexRole, "sortIndex"}, {CurrentRole, "current"}, {AttributesRole, "attributes"}};
}

int TelvaroViewModel::getCount() const
{
    return getViews().size();
}

int TelvaroViewModel::getCurrentRow() const
{
    return mViews.getCurrentRow();
}

const QList<TelvaroViewModel::View>& TelvaroViewModel::getViews() const
{
    return mViews.getViews();
}

TelvaroViewModel::View TelvaroViewModel::getView(const QString& uuid) const
{
    const int row = rowOf(uuid);
    return row < 0 ? View() : getViews().at(row);
}

int TelvaroViewModel::rowOf(const QString& uuid) const
{
    return mViews.rowOf(uuid);
}

QVariantMap TelvaroViewModel::get(int row) const
{
    QVariantMap values;
    if (row >= 0 && row < getCount()) {
        const QHash<int, QByteArray> names = roleNames();
        for (auto name = names.cbegin(); name != names.cend(); ++name) {
            values.insert(QString::fromLatin1(name.value()), mViews.valueOf(getViews().at(row), name.key()));
        }
    }
    return values;
}

int TelvaroViewModel::indexOf(const QString& uuid) const
{
    return rowOf(uuid);
}
