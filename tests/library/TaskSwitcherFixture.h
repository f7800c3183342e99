// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "ConnectorFixture.h"
#include "TelvaroTaskSwitcherDBusConnector.h"

#include <QString>
#include <QStringList>

using TaskSwitcherEntry = TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry;

/// A test on the task switcher, with the calls that reach the service and the messages that are logged as texts.
class TaskSwitcherFixture : public ConnectorFixture
{
    Q_OBJECT

protected:
    static TaskSwitcherEntry makeView(const QString& uuid, const QString& appId, quint32 sortIndex = 0,
                                      quint32 pid = 0);
    static QStringList uuids(const QList<TaskSwitcherEntry>& entries);
    static bool isEmpty(const TaskSwitcherEntry& entry);

    /// A warning of the connector's operation, whose signature is given without blanks.
    static QString warning(const QString& operation, const QString& text);

    static QString getViewsCall();
    static QString getCurrentViewCall();
    static QString setCurrentViewCall(const QString& uuid);

    void setViews(const QList<TaskSwitcherEntry>& entries, const QString& currentView = {});
    void emitPropertiesChanged(const QString& changed, const QStringList& invalidated = {});

    /// Script the service's behaviour for Get of one property, and for Set of the current view.
    void scriptViews(const QList<Behaviour>& behaviours);
    void scriptCurrentView(const QList<Behaviour>& behaviours);
    void scriptSetCurrentView(const QList<Behaviour>& behaviours);
};
