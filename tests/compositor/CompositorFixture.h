// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "CompositorProcess.h"
#include "LineClient.h"
#include "PropertyMonitor.h"
#include "WireClient.h"

#include <QImage>
#include <QObject>
#include <QTest>

#include <memory>

/// QTRY_* with the deadline of all tests, since other programs may keep the machine busy.
#define TRY_VERIFY(statement) QTRY_VERIFY_WITH_TIMEOUT(statement, ChildProcess::cDeadline)
#define TRY_COMPARE(actual, expected) QTRY_COMPARE_WITH_TIMEOUT(actual, expected, ChildProcess::cDeadline)

/// A test with a compositor. Every test function gets a new process, which must still run at the function's end, exit
/// with status 0 and have logged nothing.
class CompositorFixture : public QObject
{
    Q_OBJECT

protected Q_SLOTS:
    void init();
    void cleanup();

protected:
    virtual void startCompositor();
    /// For a test function with misbehaving clients: allows a log line for each of them, up to a limit.
    void expectComplaints(int mostLines);

    std::unique_ptr<LineClient> testClient();
    std::unique_ptr<LineClient> protocolClient();
    std::unique_ptr<WireClient> wireClient() const;
    /// A client that is not part of the tests.
    std::unique_ptr<LineClient> foreignClient(const QString& program);

    /// The output's picture.
    QImage screenShot();
    /// The bounding rectangle of the pixels that differ.
    static QRect difference(const QImage& one, const QImage& other);

    std::unique_ptr<CompositorProcess> mCompositor;
    std::unique_ptr<PropertyMonitor> mMonitor;

private:
    int mMostComplaints = 0;
    QTemporaryDir mPictures;
};
