// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QDBusArgument>
#include <QList>
#include <QMetaType>
#include <QString>
#include <QVariantMap>

/// A view as an application without the library declares it.
struct ViewRecord
{
    QString uuid;
    QString appId;
    QString info1;
    QString info2;
    QString info3;
    QString info4;
    uint pid = 0;
    uint sortIndex = 0;
    QVariantMap attributes;
};
using ViewRecordList = QList<ViewRecord>;

Q_DECLARE_METATYPE(ViewRecord)

QDBusArgument& operator<<(QDBusArgument& argument, const ViewRecord& view);
const QDBusArgument& operator>>(const QDBusArgument& argument, ViewRecord& view);
