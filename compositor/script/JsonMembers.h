// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "script/JsonReader.h"

#include <QJsonObject>

/// Takes the members of a JSON object one by one; finish() rejects the others.
class JsonMembers
{
public:
    explicit JsonMembers(const JsonReader& object);

    bool has(const QString& key);
    JsonReader take(const QString& key);
    void require(const QStringList& keys);
    /// Returns which of `keys` the object has; it must be exactly one.
    QString choose(const QStringList& keys);
    void finish() const;

private:
    JsonReader mObject;
    QJsonObject mMembers;
    /// The keys that the object could have.
    QStringList mKnown;
};
