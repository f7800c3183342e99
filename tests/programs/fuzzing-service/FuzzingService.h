// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "BusService.h"
#include "Introspection.h"
#include "RandomValue.h"

#include <QJsonObject>
#include <QString>

#include <map>
#include <string>
#include <vector>

/// A service that sends random replies and random notifications, reproducible by the seed.
///
/// Some replies to a Get are held back and sent out of turn, but not to callers by the well-known name: they may be
/// blocked until they have their reply.
class FuzzingService : public BusService
{
public:
    /// Connects to the bus at the address. Throws std::runtime_error on a failure.
    FuzzingService(const QString& address, const QString& interfaceDirectory, std::uint64_t seed);

    /// The command "own" acquires the name; "status" returns the number of replies and, for the last reply to a Get of
    /// the views, its type and size, or nothing if it had no value.
    ///
    /// "rest" gives every property one value, or none, and notifies the listeners of each; after that it sends the
    /// replies that were held back, which are outdated then. Until "resume" every Get of a property returns its one
    /// value or is refused, nothing is notified, and no reply counts.
    QJsonObject handle(const QJsonObject& command);

private:
    struct Object;
    static const std::vector<Object>& objects();

    void receive(GDBusMessage* call) override;
    void answer(GDBusMessage* call);
    void answerAtRest(GDBusMessage* call, const QString& name);
    void sendOrHold(GDBusMessage* call, GObjectPointer<GDBusMessage> reply);
    void release();
    GVariantPointer property(const QString& name);
    std::string recurringUuid();
    GVariantPointer recurringViews();
    GVariantPointer likelyValue(const QString& name);

    void rest();
    void notifyRest(const Object& object);
    void emitNotification();
    void emitPropertiesChanged(const char* path, const std::vector<GVariantPointer>& arguments);

    Introspection mIntrospection;
    RandomValue mRandom;
    bool mIsAtRest = false;
    /// The values at rest; null where a Get is refused.
    std::map<QString, GVariantPointer> mValues;
    std::vector<GObjectPointer<GDBusMessage>> mHeldReplies;
    int mReplies = 0;
    QString mViewsType;
    int mViewsCount = 0;
};
