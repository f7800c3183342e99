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

QVariantMap attributesOf(const View& view, bool isCurrent)
{
    QVariantMap attributes{
        {QStringLiteral("title"), view.title},          {QStringLiteral("processName"), view.processName},
        {QStringLiteral("current"), isCurrent},         {QStringLiteral("responding"), view.isResponding},
        {QStringLiteral("dialog"), view.isDialog},      {QStringLiteral("width"), view.size.width()},
        {QStringLiteral("height"), view.size.height()},
    };
    for (auto attribute = view.attributes.cbegin(); attribute != view.attributes.cend(); ++attribute) {
        attributes.insert(attribute.key(), attribute.value());
    }
    return attributes;
}

} // namespace

ViewRecordList viewRecordsOf(const ViewList& views)
{
    ViewRecordList records;
    for (const View& view : views.views()) {
        ViewRecord record;
        record.uuid = view.uuid;
        record.appId = view.appId;
        const bool isCurrent = view.uuid == views.current();
        const auto& infos = view.record.infos;
        record.info1 = infos[0].value_or(view.title);
        record.info2 = infos[1].value_or(view.processName);
        record.info3 = infos[2].value_or(stateOf(view, isCurrent));
        record.info4 = infos[3].value_or(view.isDialog ? QStringLiteral("dialog") : QStringLiteral("window"));
        record.pid = view.pid;
        record.sortIndex = view.sortIndex;
        record.attributes = view.record.attributes ? *view.record.attributes : attributesOf(view, isCurrent);
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
