// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <TelvaroTaskSwitcherDBusConnector.h>

#include <QAbstractListModel>
#include <QList>

/// The views as rows that keep their identity: a new list is told as rows that were removed, moved, inserted or
/// changed, by their uuid, so that delegates live on with their views.
class ViewListModel : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(int count READ getCount NOTIFY countChanged)

public:
    using View = TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry;

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
        AttributesRole
    };

    explicit ViewListModel(QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QHash<int, QByteArray> roleNames() const override;

    int getCount() const;

    void setViews(const QList<View>& views);

    /// All roles of a row by their names; empty where there is no such row.
    Q_INVOKABLE QVariantMap get(int row) const;

    /// The row of the view, -1 if there is none.
    Q_INVOKABLE int indexOf(const QString& uuid) const;

Q_SIGNALS:
    void countChanged();

private:
    int findFrom(int first, const QString& uuid) const;
    void removeMissing(const QList<View>& views);
    void change(int row, const View& view);

    QList<View> mViews;
};
