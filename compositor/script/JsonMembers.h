// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "script/JsonReader.h"

#include <QJsonObject>

/// Takes the members of a JSON object one by one; finish() rejects what is left over.
class JsonMembers
{
public:
    explicit JsonMembers(const JsonReader& object);

    bool has(const QString& key) const
    {
        return mMembers.contains(key);
    }
    JsonReader take(const QString& key);
    void require(const QStringList& keys) const;
    /// Returns which of `keys` the object has; it must be exactly one.
    QString choose(const QStringList& keys) const;
    void finish() const;

private:
    JsonReader mObject;
    QJsonObject mMembers;
};
