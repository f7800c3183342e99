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

bool JsonMembers::has(const QString& key)
{
    if (!mKnown.contains(key)) {
        mKnown.append(key);
    }
    return mMembers.contains(key);
}

JsonReader JsonMembers::take(const QString& key)
{
    require({key});
    return mObject.part(JsonReader::quoted(key), mMembers.take(key));
}

void JsonMembers::require(const QStringList& keys)
{
    for (const QString& key : keys) {
        if (!has(key)) {
            mObject.reject(QStringLiteral("%1 is missing").arg(JsonReader::quoted(key)));
        }
    }
}

QString JsonMembers::choose(const QStringList& keys)
{
    QStringList found;
    for (const QString& key : keys) {
        if (mMembers.contains(key)) {
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
    has(found.constFirst());
    return found.constFirst();
}

void JsonMembers::finish() const
{
    if (!mMembers.isEmpty()) {
        mObject.reject(QStringLiteral("unknown key %1; the keys here are %2")
                           .arg(JsonReader::quoted(mMembers.begin().key()), JsonReader::quotedList(mKnown)));
    }
}
