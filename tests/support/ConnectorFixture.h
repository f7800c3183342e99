// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "LogCapture.h"
#include "ScriptedServiceProcess.h"

#include <QObject>

#include <memory>

/// A test on a bus with the scripted service on it. Every test function begins with a plain service that owns its name
/// and an empty log, and fails if it ends with log messages that it has not read.
class ConnectorFixture : public QObject
{
    Q_OBJECT

protected Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

protected:
    /// Starts or restarts the service and delivers its NameOwnerChanged.
    void startService();

    /// The warnings of isInterfaceValid(), as LogCapture describes them.
    static QString notRegistered(const QString& serviceName = QStringLiteral(TELVARO_SERVICE_NAME));
    static QString invalidInterface();

    ScriptedServiceProcess mService;
    std::unique_ptr<LogCapture> mLog;
};
