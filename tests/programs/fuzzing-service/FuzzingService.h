// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "BusService.h"
#include "Introspection.h"
#include "RandomValue.h"

#include <QJsonObject>
#include <QString>

/// A service that sends random replies and random notifications, reproducible by the seed.
class FuzzingService : public BusService
{
public:
    /// Connects to the bus at the address. Throws std::runtime_error on a failure.
    FuzzingService(const QString& address, const QString& interfaceDirectory, std::uint64_t seed);

    /// The command "own" acquires the name; "status" returns the number of replies and, for the last reply to a Get of
    /// the views, its type and size, or nothing if it had no value.
    QJsonObject handle(const QJsonObject& command);

private:
    void receive(GDBusMessage* call) override;
    void answer(GDBusMessage* call);
    GVariantPointer property(const QString& name);
    void emitNotification();

    Introspection mIntrospection;
    RandomValue mRandom;
    int mReplies = 0;
    QString mViewsType;
    int mViewsCount = 0;
};
