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
    /// See getCount().
    Q_PROPERTY(int count READ getCount NOTIFY countChanged)
    /// See getCurrentRow().
    Q_PROPERTY(int currentRow READ getCurrentRow NOTIFY currentRowChanged)

public:
    /// One view; its fields are documented there.
    using View = TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry;

    /// What data() returns of a view: the field of that name, or as noted.
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

    /// The number of views; 0 below a view.
    int rowCount(const QModelIndex& parent = {}) const override;
    /// A value of the view in the row, by Role; invalid for other roles and for an index that is not of this model.
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    /// "uuid", "appId", "title", "info1" to "info4", "pid", "sortIndex", "attributes", "current".
    QHash<int, QByteArray> roleNames() const override;

    /// The number of views.
    int getCount() const;

    /// The row of the current view; -1 if there is none, or it is not among the views.
    int getCurrentRow() const;

    /// The views in the order of the rows. The reference holds as long as the model, its contents until control returns
    /// to the event loop.
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
    /// The number of views changed; follows the signals about the rows.
    void countChanged();

    /// The current view has another row, or none; follows the signals about the rows.
    void currentRowChanged();

private:
    friend class LiveViews;

    Q_DECL_HIDDEN explicit TelvaroViewModel(const LiveViews& views);

    const LiveViews& mViews;
};
