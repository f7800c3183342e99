// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "LiveRequests.h"
#include "LogCapture.h"
#include "Operations.h"

#include <QSet>
#include <QString>
#include <QStringList>
#include <QVariant>

/// Compares the live objects with what is read of a service at rest.
class LiveComparison
{
public:
    LiveComparison(const LiveObjects& live, Operations& operations, LogCapture& log);

    /// Waits until the live objects equal the service: each property that the service has a value of the right type for
    /// has that value; an object is Ready if that is each of its properties, and otherwise Failed. Returns what still
    /// differs at the deadline. Appends what is logged to the messages.
    QStringList waitForEquality(QStringList& messages);

    /// Returns what no comparison has met so far: an object that is Ready, one that is Failed, or a property with a
    /// value other than the empty one.
    QStringList missing() const;

private:
    void compare(QStringList& messages);
    void compareTaskSwitcher(QStringList& messages);
    void compareScreen();
    void compareValue(const QString& name, const QVariant& live, const QVariant& sent);
    void compareStatus(const QString& name, const TelvaroLiveObject& object);
    void fail(const QString& name, const QString& live, const QString& expected);

    const LiveObjects& mLive;
    Operations& mOperations;
    LogCapture& mLog;
    /// Of the last comparison.
    QStringList mDifferences;
    bool mIsReadable = true;
    QSet<QString> mMet;
};
