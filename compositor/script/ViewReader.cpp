// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "script/ViewReader.h"

#include "script/JsonMembers.h"

#include <QMetaType>
#include <QSet>

namespace {

const QString cUuid = QStringLiteral("uuid");
const QString cAppId = QStringLiteral("appId");
const QString cPid = QStringLiteral("pid");

/// Returns a text that may be empty.
QString readAnyText(const JsonReader& reader)
{
    return reader.readValue(QMetaType::QString).toString();
}

void takeRecord(JsonMembers& members, ViewChange& change)
{
    const QString key = QStringLiteral("record");
    const QString sortIndex = QStringLiteral("sortIndex");
    const QString attributes = QStringLiteral("attributes");
    if (!members.has(key)) {
        return;
    }
    JsonMembers record(members.take(key));
    int number = 0;
    for (std::optional<QString>& info : change.record.infos) {
        const QString name = QStringLiteral("info%1").arg(++number);
        if (record.has(name)) {
            info = readAnyText(record.take(name));
        }
    }
    if (record.has(sortIndex)) {
        change.sortIndex = record.take(sortIndex).readNumber<quint32>(0);
    }
    if (record.has(attributes)) {
        change.record.attributes = record.take(attributes).readScalars();
    }
    record.finish();
}

ViewChange takeChange(JsonMembers& members)
{
    const QString title = QStringLiteral("title");
    const QString processName = QStringLiteral("processName");
    const QString attributes = QStringLiteral("attributes");
    ViewChange change;
    if (members.has(cAppId)) {
        change.appId = readAnyText(members.take(cAppId));
    }
    if (members.has(cPid)) {
        change.pid = members.take(cPid).readNumber<quint32>(0);
    }
    if (members.has(title)) {
        change.title = members.take(title).readText();
    }
    if (members.has(processName)) {
        change.processName = members.take(processName).readText();
    }
    if (members.has(attributes)) {
        change.attributes = members.take(attributes).readScalars();
    }
    takeRecord(members, change);
    members.finish();
    return change;
}

} // namespace

Script::AddView ViewReader::readView(const JsonReader& reader)
{
    JsonMembers members(reader);
    View view;
    view.size = QSize(0, 0);
    view.uuid = members.take(cUuid).readText();
    members.require({cAppId, cPid});
    const ViewChange change = takeChange(members);
    view.title = *change.appId;
    view.processName = *change.appId;
    change.applyTo(view);
    return {view, change.sortIndex};
}

Script::ChangeView ViewReader::readChange(const JsonReader& reader)
{
    JsonMembers members(reader);
    const QString uuid = members.take(cUuid).readText();
    return {uuid, takeChange(members)};
}

Script::OrderViews ViewReader::readOrder(const JsonReader& reader)
{
    const QStringList uuids = reader.readTexts();
    if (QSet<QString>(uuids.cbegin(), uuids.cend()).size() != uuids.size()) {
        reader.reject(QStringLiteral("every view is expected only once"));
    }
    return {uuids};
}

Script::AnnounceCurrentView ViewReader::readCurrent(const JsonReader& reader)
{
    return {readAnyText(reader)};
}
