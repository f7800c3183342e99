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

/// Model of the task switcher's views, in the service's order; belongs to a TelvaroTaskSwitcher.
///
/// A row belongs to the view with its uuid as long as that view exists. The model removes, moves, inserts and changes
/// rows, the latter with their roles, and is never reset, so selections, persistent indexes and delegates survive.
///
/// The attributes of a view are plain values: D-Bus arrays and structures become lists, dictionaries become maps,
/// variants become the values in them, object paths and signatures become strings, and file descriptors, which are not
/// kept open, become invalid values. Of a repeated key the last value is kept.
///
/// Slots may delete the task switcher, but, as with any Qt model, not slots of signals about rows that are about to
/// change.
class TELVARO_LIVE_EXPORT TelvaroViewModel : public QAbstractListModel
{
    Q_OBJECT
    /// The number of views.
    Q_PROPERTY(int count READ getCount NOTIFY countChanged)
    /// The row of the current view, or -1.
    Q_PROPERTY(int currentRow READ getCurrentRow NOTIFY currentRowChanged)

public:
    /// One view, the same type as that of the connector.
    using View = TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry;

    /// Roles of a row, one per member of View, and two more.
    enum Role
    {
        UuidRole = Qt::UserRole,
        AppIdRole,
        /// The attribute "title", or the appId if it is missing or empty; also Qt::DisplayRole.
        TitleRole,
        Info1Role,
        Info2Role,
        Info3Role,
        Info4Role,
        PidRole,
        SortIndexRole,
        AttributesRole,
        /// Whether the view is current.
        CurrentRole
    };
    Q_ENUM(Role)

    /// Returns the number of views.
    int rowCount(const QModelIndex& parent = {}) const override;
    /// Returns the value of a Role or of Qt::DisplayRole, or an invalid QVariant for any other role.
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    /// Returns "uuid", "appId", "title", "info1" to "info4", "pid", "sortIndex", "attributes", "current".
    QHash<int, QByteArray> roleNames() const override;

    /// Returns the number of views.
    int getCount() const;

    /// Returns the row of the current view, or -1 if there is none or it is not among the views.
    int getCurrentRow() const;

    /// Returns all views in the order of the rows. The reference is valid as long as the model, its contents until
    /// control returns to the event loop.
    const QList<View>& getViews() const;

    /// Returns the view with the uuid, or a default-constructed one, whose uuid is empty, if there is none.
    View getView(const QString& uuid) const;

    /// Returns the row of the view with the uuid, or -1 if there is none.
    int rowOf(const QString& uuid) const;

    /// Returns all roles of a row by their names, for QML; empty if there is no such row.
    Q_INVOKABLE QVariantMap get(int row) const;

    /// Returns the row of the view with the uuid, or -1, for QML.
    Q_INVOKABLE int indexOf(const QString& uuid) const;

Q_SIGNALS:
    /// Emitted when the number of views has changed, after the signals about the rows.
    void countChanged();
    /// Emitted when the current view is in another row, after the signals about the rows.
    void currentRowChanged();

private:
    friend class LiveViews;

    Q_DECL_HIDDEN explicit TelvaroViewModel(const LiveViews& views);

    const LiveViews& mViews;
};
