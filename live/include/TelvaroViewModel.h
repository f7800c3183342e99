// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "TelvaroLiveExport.h"

#include <TelvaroTaskSwitcherDBusConnector.h>

#include <QAbstractListModel>
#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>
#include <QVariant>
#include <QVariantMap>

class LiveViews;

/// The views of the task switcher as rows, in the service's order; a part of TelvaroTaskSwitcher.
///
/// A row stays the row of its view, by uuid, as long as the view is there: the model signals removed, moved, inserted
/// and changed rows, these with their roles, and is never reset, so that selections, persistent indexes and delegates
/// live on.
///
/// The attributes of a view are plain values: D-Bus arrays and structures are lists, dictionaries are maps, variants
/// are the values in them, object paths and signatures are strings. Of a key that came twice the last value is kept.
///
/// Slots may delete the task switcher, but, as with any Qt model, not in a signal about rows that are about to change.
class TELVARO_LIVE_EXPORT TelvaroViewModel : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(int count READ getCount NOTIFY countChanged)
    Q_PROPERTY(int currentRow READ getCurrentRow NOTIFY currentRowChanged)

public:
    using View = TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry;

    enum Role
    {
        UuidRole = Qt::UserRole,
        AppIdRole,
        /// The attribute "title", or the appId where it is missing or empty; also Qt::DisplayRole.
        TitleRole,
        Info1Role,
        Info2Role,
        Info3Role,
        Info4Role,
        PidRole,
        SortIndexRole,
        AttributesRole,
        /// Whether the view is the current one.
        CurrentRole
    };
    Q_ENUM(Role)

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    /// "uuid", "appId", "title", "info1" to "info4", "pid", "sortIndex", "attributes", "current".
    QHash<int, QByteArray> roleNames() const override;

    int getCount() const;

    /// The row of the current view; -1 if there is none, or it is not among the views.
    int getCurrentRow() const;

    const QList<View>& getViews() const;

    /// The view with the uuid; a default-constructed one, with an empty uuid, if there is none.
    View getView(const QString& uuid) const;

    /// The row of the view with the uuid, -1 if there is none.
    int rowOf(const QString& uuid) const;

    /// For QML: all roles of a row by their names; empty where there is no such row.
    Q_INVOKABLE QVariantMap get(int row) const;

    /// For QML: as rowOf().
    Q_INVOKABLE int indexOf(const QString& uuid) const;

Q_SIGNALS:
    /// Both follow the signals about the rows.
    void countChanged();
    void currentRowChanged();

private:
    friend class LiveViews;

    Q_DECL_HIDDEN explicit TelvaroViewModel(const LiveViews& views);

    const LiveViews& mViews;
};
