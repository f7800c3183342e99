// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QDBusArgument>
#include <QList>
#include <QMetaType>
#include <QString>
#include <QVariantMap>

class ViewList;

/// A view on the bus: the structure (ssssssuua{sv}).
struct ViewRecord
{
    QString uuid;
    QString appId;
    QString info1;
    QString info2;
    QString info3;
    QString info4;
    quint32 pid = 0;
    quint32 sortIndex = 0;
    QVariantMap attributes;
};
using ViewRecordList = QList<ViewRecord>;

ViewRecordList viewRecordsOf(const ViewList& views);

QDBusArgument& operator<<(QDBusArgument& argument, const ViewRecord& record);
const QDBusArgument& operator>>(const QDBusArgument& argument, ViewRecord& record);

Q_DECLARE_METATYPE(ViewRecord)
