// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "bus/ViewRecord.h"

#include "state/ViewList.h"

namespace {

QString stateOf(const View& view, bool isCurrent)
{
    const QString state = isCurrent ? QStringLiteral("current") : QStringLiteral("background");
    return view.isResponding ? state : state + QStringLiteral(" unresponsive");
}

} // namespace

ViewRecordList viewRecordsOf(const ViewList& views)
{
    ViewRecordList records;
    for (const View& view : views.views()) {
        ViewRecord record;
        record.uuid = view.uuid;
        record.appId = view.appId;
        record.info1 = view.title;
        record.info2 = view.processName;
        record.info3 = stateOf(view, view.uuid == views.current());
        record.info4 = view.isDialog ? QStringLiteral("dialog") : QStringLiteral("window");
        record.pid = view.pid;
        record.sortIndex = view.sortIndex;
        record.attributes = {
            {QStringLiteral("title"), view.title},
            {QStringLiteral("processName"), view.processName},
            {QStringLiteral("current"), view.uuid == views.current()},
            {QStringLiteral("responding"), view.isResponding},
            {QStringLiteral("dialog"), view.isDialog},
            {QStringLiteral("width"), view.size.width()},
            {QStringLiteral("height"), view.size.height()},
        };
        for (auto attribute = view.attributes.cbegin(); attribute != view.attributes.cend(); ++attribute) {
            record.attributes.insert(attribute.key(), attribute.value());
        }
        records.append(record);
    }
    return records;
}

QDBusArgument& operator<<(QDBusArgument& argument, const ViewRecord& record)
{
    argument.beginStructure();
    argument << record.uuid << record.appId << record.info1 << record.info2 << record.info3 << record.info4
             << record.pid << record.sortIndex << record.attributes;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, ViewRecord& record)
{
    argument.beginStructure();
    argument >> record.uuid >> record.appId >> record.info1 >> record.info2 >> record.info3 >> record.info4
        >> record.pid >> record.sortIndex >> record.attributes;
    argument.endStructure();
    return argument;
}
