// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "BusService.h"
#include "Introspection.h"
#include "RandomValue.h"

#include <QJsonObject>
#include <QString>

/// A service that answers every call with something, and sends notifications of anything. The same calls get the same
/// answers from the same seed.
class FuzzingService : public BusService
{
public:
    /// Connects to the bus at the address. Throws std::runtime_error where it cannot.
    FuzzingService(const QString& address, const QString& interfaceDirectory, std::uint64_t seed);

    /// The command "own" takes the name; "status" tells how many replies there were and what the last one to a read of
    /// the views was: its type and size, or nothing where it was no value.
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
