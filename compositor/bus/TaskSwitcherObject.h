// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "bus/ViewRecord.h"

#include <QDBusContext>
#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

class CallGate;
class ViewList;

/// The task switcher on the bus: which views there are, and which one is current.
class TaskSwitcherObject : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_PROPERTY(ViewRecordList views READ views NOTIFY viewsChanged)
    Q_PROPERTY(QString currentView READ currentView WRITE setCurrentView NOTIFY currentViewChanged)

public:
    TaskSwitcherObject(ViewList& views, CallGate& gate, QObject* parent = nullptr);

    ViewRecordList views() const;
    QString currentView() const;
    /// Answers with an error when there is no such view.
    void setCurrentView(const QString& uuid);

Q_SIGNALS:
    /// One for all changes of a turn of the event loop, and never in quick succession: clients can change their titles
    /// faster than anyone can listen.
    void viewsChanged();
    /// Comes after viewsChanged() when both have changed.
    void currentViewChanged();

private:
    void scheduleViewsChanged();
    void emitViewsChanged();

    ViewList& mViews;
    QTimer mTimer;
    QElapsedTimer mSinceSignal;
};
