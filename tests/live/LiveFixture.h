// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "TaskSwitcherFixture.h"

#include <TelvaroLiveObject.h>
#include <TelvaroViewModel.h>

#include <QCoreApplication>
#include <QDBusPendingReply>
#include <QList>
#include <QMetaType>
#include <QStringList>
#include <QTest>

/// Waits until the expression holds, and fails the test where it does not in time.
#define TRY_VERIFY(expression) QTRY_VERIFY_WITH_TIMEOUT(expression, ChildProcess::cDeadline)
#define TRY_COMPARE(actual, expected) QTRY_COMPARE_WITH_TIMEOUT(actual, expected, ChildProcess::cDeadline)

/// A test of the live layer on a bus with the scripted service on it.
class LiveFixture : public TaskSwitcherFixture
{
    Q_OBJECT

protected:
    using Status = TelvaroLiveObject::Status;

    /// Views "a", "b", ... of one application, in the order of their sortIndex.
    static QList<TaskSwitcherEntry> makeViews(int count);
    /// The uuids of the rows that are current.
    static QStringList currentRows(const TelvaroViewModel& views);

    /// The calls that this process would send for a read of each property.
    static QStringList taskSwitcherReads();
    static QStringList screenReads();

    void emitScreenChanged(const QString& changed, const QStringList& invalidated = {});

    template <typename... Types> static bool waitFor(const QDBusPendingReply<Types...>& reply)
    {
        const bool isFinished = QTest::qWaitFor(
            [&reply] {
                return reply.isFinished();
            },
            ChildProcess::cDeadline);
        // Those who watch it hear of it by an event.
        QCoreApplication::sendPostedEvents();
        return isFinished;
    }
};

/// Keeps what an object's status became with each of its signals.
class StatusRecorder : public QObject
{
    Q_OBJECT

public:
    explicit StatusRecorder(const TelvaroLiveObject& object);

    /// All of them since the last clear().
    const QList<TelvaroLiveObject::Status>& getStatuses() const;
    void clear();

private:
    QList<TelvaroLiveObject::Status> mStatuses;
};

Q_DECLARE_METATYPE(QList<TelvaroLiveObject::Status>)
