// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "CompositorProcess.h"
#include "LineClient.h"
#include "PropertyMonitor.h"

#include <QImage>
#include <QObject>
#include <QTest>

#include <memory>

/// Qt's macros with the deadline of everything here: other programs may keep the machine busy.
#define TRY_VERIFY(statement) QTRY_VERIFY_WITH_TIMEOUT(statement, ChildProcess::cDeadline)
#define TRY_COMPARE(actual, expected) QTRY_COMPARE_WITH_TIMEOUT(actual, expected, ChildProcess::cDeadline)

/// A test with a compositor. Every test function gets a new one; it must still be there at the function's end, end as
/// it should, and have complained of nothing.
class CompositorFixture : public QObject
{
    Q_OBJECT

protected Q_SLOTS:
    void init();
    void cleanup();

protected:
    virtual void startCompositor();
    /// For a test function whose clients are worth a complaint: each of them gets its line, but no flood of them.
    void expectComplaints(int mostLines);

    std::unique_ptr<LineClient> testClient();
    std::unique_ptr<LineClient> protocolClient();
    /// A program with a window that nobody here wrote.
    std::unique_ptr<LineClient> foreignClient(const QString& program);

    /// What the output shows.
    QImage screenShot();

    std::unique_ptr<CompositorProcess> mCompositor;
    std::unique_ptr<PropertyMonitor> mMonitor;

private:
    int mMostComplaints = 0;
    QTemporaryDir mPictures;
};
