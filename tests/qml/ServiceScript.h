// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "LogCapture.h"
#include "ScriptedServiceProcess.h"

#include <QObject>
#include <QVariantList>

#include <memory>

/// The service of the tests and this process's log, in the hands of QML tests as "service".
class ServiceScript : public QObject
{
    Q_OBJECT

public:
    explicit ServiceScript(QObject* parent = nullptr);

    /// A plain service that owns its name, without views, and an empty log.
    Q_INVOKABLE void begin();
    /// The log's unread messages.
    Q_INVOKABLE QStringList takeLog();
    /// The method calls since the last time.
    Q_INVOKABLE QStringList takeCalls();

    Q_INVOKABLE void leave();
    Q_INVOKABLE void comeBack();

    /// Views as objects with the names of the roles; attributes are strings.
    Q_INVOKABLE void setViews(const QVariantList& views, const QString& currentView);
    /// Views in GVariant's text format.
    Q_INVOKABLE void setViewsText(const QString& views, const QString& currentView);
    Q_INVOKABLE void notifyViews();
    /// Several notifications that all wait for the event loop when this returns.
    Q_INVOKABLE void notifyViewsTimes(int count);
    /// Both in one notification.
    Q_INVOKABLE void notifyAll();

    /// A service that stores what is written and signals it.
    Q_INVOKABLE void storeWrites();
    Q_INVOKABLE void refuseCurrentView(const QString& error);
    Q_INVOKABLE void setScreen(const QString& property, const QString& valueText);
    Q_INVOKABLE void notifyScreen(const QString& property, const QString& valueText);
    Q_INVOKABLE void invalidateScreen(const QString& property);
    Q_INVOKABLE void refuseScreenShots(const QString& error);

private:
    ScriptedServiceProcess mService;
    std::unique_ptr<LogCapture> mLog;
};
