// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "script/JsonMembers.h"

JsonMembers::JsonMembers(const JsonReader& object)
    : mObject(object)
    , mMembers(object.value().toObject())
{
    if (!object.value().isObject()) {
        object.reject(QStringLiteral("an object is expected"));
    }
}

JsonReader JsonMembers::take(const QString& key)
{
    require({key});
    return mObject.part(JsonReader::quoted(key), mMembers.take(key));
}

void JsonMembers::require(const QStringList& keys) const
{
    for (const QString& key : keys) {
        if (!has(key)) {
            mObject.reject(QStringLiteral("%1 is missing").arg(JsonReader::quoted(key)));
        }
    }
}

QString JsonMembers::choose(const QStringList& keys) const
{
    QStringList found;
    for (const QString& key : keys) {
        if (has(key)) {
            found.append(key);
        }
    }
    if (found.isEmpty()) {
        const QStringList unknown = mMembers.keys();
        mObject.reject(
            QStringLiteral("one of %1 is expected%2")
                .arg(JsonReader::quotedList(keys),
                     unknown.isEmpty() ? QString() : QStringLiteral(", not %1").arg(JsonReader::quotedList(unknown))));
    }
    if (found.size() > 1) {
        mObject.reject(QStringLiteral("only one of %1 is expected").arg(JsonReader::quotedList(found)));
    }
    return found.constFirst();
}

void JsonMembers::finish() const
{
    if (!mMembers.isEmpty()) {
        mObject.reject(QStringLiteral("unknown key %1").arg(JsonReader::quoted(mMembers.begin().key())));
    }
}
