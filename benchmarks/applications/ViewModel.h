// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QAbstractListModel>
#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>
#include <QVariant>
#include <QVector>

#include <algorithm>

/// The views and the current one as rows, for applications that have no such model from a library. Signals the changed
/// roles of the changed rows.
template <typename View> class ViewModel : public QAbstractListModel
{
public:
    int rowCount(const QModelIndex& parent = {}) const override
    {
        return parent.isValid() ? 0 : mViews.size();
    }

    QVariant data(const QModelIndex& index, int role) const override
    {
        const View& view = mViews.at(index.row());
        switch (role) {
        case UuidRole:
            return view.uuid;
        case AppIdRole:
            return view.appId;
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
            return view.uuid == mCurrentView;
        default:
            return {};
        }
    }

    QHash<int, QByteArray> roleNames() const override
    {
        return {
            {UuidRole, "uuid"},           {AppIdRole, "appId"},           {TitleRole, "title"},    {Info1Role, "info1"},
            {Info2Role, "info2"},         {Info3Role, "info3"},           {Info4Role, "info4"},    {PidRole, "pid"},
            {SortIndexRole, "sortIndex"}, {AttributesRole, "attributes"}, {CurrentRole, "current"}};
    }

    void show(const QList<View>& views, const QString& currentView)
    {
        const auto hasSameUuid = [](const View& left, const View& right) {
            return left.uuid == right.uuid;
        };
        const QString formerView = mCurrentView;
        mCurrentView = currentView;
        if (!std::equal(mViews.cbegin(), mViews.cend(), views.cbegin(), views.cend(), hasSameUuid)) {
            replaceRows(views);
            return;
        }
        for (int row = 0; row < views.size(); ++row) {
            const View& view = views.at(row);
            QVector<int> roles = changedRoles(mViews.at(row), view);
            if ((view.uuid == formerView) != (view.uuid == currentView)) {
                roles.append(CurrentRole);
            }
            if (!roles.isEmpty()) {
                mViews[row] = view;
                Q_EMIT dataChanged(index(row), index(row), roles);
            }
        }
    }

private:
    enum Role
    {
        UuidRole = Qt::UserRole,
        AppIdRole,
        TitleRole,
        Info1Role,
        Info2Role,
        Info3Role,
        Info4Role,
        PidRole,
        SortIndexRole,
        AttributesRole,
        CurrentRole
    };

    static QString titleOf(const View& view)
    {
        const QString title = view.attributes.value(QStringLiteral("title")).toString();
        return title.isEmpty() ? view.appId : title;
    }

    static QVector<int> changedRoles(const View& before, const View& after)
    {
        QVector<int> roles;
        const auto compare = [&](int role, auto View::*member) {
            if (before.*member != after.*member) {
                roles.append(role);
            }
        };
        compare(AppIdRole, &View::appId);
        compare(Info1Role, &View::info1);
        compare(Info2Role, &View::info2);
        compare(Info3Role, &View::info3);
        compare(Info4Role, &View::info4);
        compare(PidRole, &View::pid);
        compare(SortIndexRole, &View::sortIndex);
        compare(AttributesRole, &View::attributes);
        if (!roles.isEmpty() && titleOf(before) != titleOf(after)) {
            roles.append(TitleRole);
        }
        return roles;
    }

    void replaceRows(const QList<View>& views)
    {
        if (!mViews.isEmpty()) {
            beginRemoveRows({}, 0, mViews.size() - 1);
            mViews.clear();
            endRemoveRows();
        }
        if (!views.isEmpty()) {
            beginInsertRows({}, 0, views.size() - 1);
            mViews = views;
            endInsertRows();
        }
    }

    QList<View> mViews;
    QString mCurrentView;
};
