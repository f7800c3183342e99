// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "bus/ViewRecord.h"

#include <QDBusContext>
#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

class CallGate;
class PropertiesAdaptor;
class ViewList;

/// The task switcher on the bus: the list of views and the current one.
class TaskSwitcherObject : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_PROPERTY(ViewRecordList views READ views)
    Q_PROPERTY(QString currentView READ currentView WRITE setCurrentView)

public:
    TaskSwitcherObject(ViewList& views, CallGate& gate, QObject* parent = nullptr);

    ViewRecordList views() const;
    QString currentView() const;
    /// Sends an error reply when there is no such view.
    void setCurrentView(const QString& uuid);

private:
    /// Coalesces the changes of a turn of the event loop and limits the rate. A change of the current view is announced
    /// after the change of the list that belongs to it.
    void announceViewsSoon();
    void announceViews();

    ViewList& mViews;
    PropertiesAdaptor* mProperties;
    QTimer mTimer;
    QElapsedTimer mSinceSignal;
};
