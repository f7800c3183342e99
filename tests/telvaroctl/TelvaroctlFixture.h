// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "ConnectorFixture.h"

#include <TelvaroTaskSwitcherDBusConnector.h>

#include <QList>
#include <QString>
#include <QStringList>

#include <memory>

/// A test that runs telvaroctl on a bus with the scripted service.
class TelvaroctlFixture : public ConnectorFixture
{
    Q_OBJECT

protected:
    using View = TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry;

    struct Result
    {
        int status;
        QString output;
        QString errors;
    };

    /// Sets a generous time limit for telvaroctl.
    TelvaroctlFixture();

    static QString program();
    /// Starts telvaroctl with its output and its errors apart.
    static void start(ChildProcess& process, const QStringList& arguments);
    /// Waits for the end of a program that start() has started. The status is -1 if it crashed.
    static Result finish(ChildProcess& process);
    static Result telvaroctl(const QStringList& arguments, const QString& directory = QString());
    static Result telvaroctl(const char* line);

    static QStringList words(const char* line);
    static View view(const char* uuid, const char* appId, uint32_t pid, uint32_t sortIndex, const char* title);
    /// The text as telvaroctl prints it to standard error.
    static QString message(const QString& text);
    static QString message(const char* text);
    static QString notOnTheBus();

    /// The service is absent during the lifetime of the returned object.
    std::shared_ptr<void> releaseName();
    /// "u-1" and "u-2" of the application "notes", the first of which is current.
    void setTwoViews();
    void emitViews(const QList<View>& views);
    void emitCurrentView(const char* uuid);
    /// Takes the calls that change something.
    QStringList takeWrites();
    static QString taskSwitcherSet(const char* uuid);
};
