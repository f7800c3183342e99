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
    /// The method calls since the last time, up to now.
    Q_INVOKABLE QStringList takeCalls();

    Q_INVOKABLE void leave();
    Q_INVOKABLE void comeBack();

    /// Views as objects with the names of the roles; attributes are strings.
    Q_INVOKABLE void setViews(const QVariantList& views, const QString& currentView);
    /// Views in GVariant's text format.
    Q_INVOKABLE void setViewsText(const QString& views, const QString& currentView);
    /// Notifies of the views, of both in one notification, or of their names only.
    Q_INVOKABLE void notifyViews();
    Q_INVOKABLE void notifyAll();
    Q_INVOKABLE void invalidateAll();

    /// A service that stores what is written and signals it.
    Q_INVOKABLE void storeWrites();
    Q_INVOKABLE void refuseCurrentView(const QString& error);
    Q_INVOKABLE void refuseScreen(const QString& property, const QString& error);
    Q_INVOKABLE void setScreen(const QString& property, const QString& valueText);
    Q_INVOKABLE void notifyScreen(const QString& property, const QString& valueText);
    Q_INVOKABLE void invalidateScreen(const QString& property);
    Q_INVOKABLE void refuseOverlays(const QString& error);
    Q_INVOKABLE void giveNotificationId(uint id);
    Q_INVOKABLE void refuseNotifications(const QString& error);
    Q_INVOKABLE void refuseScreenShots(const QString& error);
    /// The service does nothing until thaw().
    Q_INVOKABLE void freeze();
    Q_INVOKABLE void thaw();

private:
    ScriptedServiceProcess mService;
    std::unique_ptr<LogCapture> mLog;
    QString mViews;
    QString mCurrentView;
};
