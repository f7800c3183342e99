// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "clients/ViewRecord.h"

QDBusArgument& operator<<(QDBusArgument& argument, const ViewRecord& view)
{
    argument.beginStructure();
    argument << view.uuid << view.appId << view.info1 << view.info2 << view.info3 << view.info4 << view.pid
             << view.sortIndex << view.attributes;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, ViewRecord& view)
{
    argument.beginStructure();
    argument >> view.uuid >> view.appId >> view.info1 >> view.info2 >> view.info3 >> view.info4 >> view.pid
        >> view.sortIndex >> view.attributes;
    argument.endStructure();
    return argument;
}
