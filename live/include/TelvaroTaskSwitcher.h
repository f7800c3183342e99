// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "TelvaroLiveExport.h"
#include "TelvaroLiveObject.h"
#include "TelvaroViewModel.h"

#include <QDBusPendingReply>
#include <QObject>
#include <QString>

#include <cstdint>

class LiveTaskSwitcher;

/// Views (application surfaces) of the compositor's task switcher, and the current one, kept up to date. Like every
/// live object it never blocks, and holds the service's values while its status is Ready; see TelvaroLiveObject.
///
/// If one notification changes both the views and the current view, both are up to date before the first signal is
/// emitted.
///
/// switchTo(), switchToView(), next() and previous() are requests: they return at once, send at most one call, and the
/// current view changes when the service signals it.
///
/// D-Bus: object "/taskswitcher", interface "de.Telvaro.taskswitcher". The properties "views" (a(ssssssuua{sv})) and
/// "currentView" (s, a view's uuid) are read once from each service (Get, ss), then followed by PropertiesChanged
/// (sa{sv}as). A property that is invalidated, or signalled with an empty or unreadable value, is read again.
/// "currentView" is written by Set (ssv) of "org.freedesktop.DBus.Properties". A "currentView" that is a number or a
/// bool is taken as its text; the list is read like that of TelvaroTaskSwitcherDBusConnector::getViews().
class TELVARO_LIVE_EXPORT TelvaroTaskSwitcher : public TelvaroLiveObject
{
    Q_OBJECT
    /// The views as a model.
    Q_PROPERTY(TelvaroViewModel* views READ getViews CONSTANT)
    /// The uuid of the current view. Writing it is switchTo().
    Q_PROPERTY(QString currentView READ getCurrentView WRITE switchTo NOTIFY currentViewChanged)

public:
    /// Subscribes and sends the reads; returns at once. The status starts as Loading, or as Absent without a bus or on
    /// another device.
    explicit TelvaroTaskSwitcher(QObject* parent = nullptr);
    ~TelvaroTaskSwitcher() override;

    /// Returns the views as a model, which lives as long as this object.
    TelvaroViewModel* getViews() const;

    /// Returns the uuid of the current view as the service sends it; empty while unknown and if no view is current. The
    /// uuid may be that of none of the views.
    QString getCurrentView() const;

    /// Makes the view with the uuid current. The reply carries the service's error, or QDBusError::InvalidArgs for an
    /// empty uuid, which is not sent.
    QDBusPendingReply<> switchTo(const QString& uuid);

    /// Makes the first view with that application id and sort index current. The reply carries the service's error, or
    /// QDBusError::InvalidArgs if there is no such view; nothing is sent then.
    QDBusPendingReply<> switchToView(const QString& appId, uint32_t sortIndex);

    /// Makes the next view of the current view's application current, in the order of sortIndex and wrapping around.
    ///
    /// Quick steps add up: a step starts from the view that this object has requested last, until the service has
    /// replied and signalled a current view, or has refused.
    ///
    /// The reply carries the service's error, or QDBusError::InvalidArgs if the view to step from is not among the
    /// views. If the application has no other view, nothing is sent and the reply is a success.
    QDBusPendingReply<> next();

    /// Makes the previous view current; otherwise like next().
    QDBusPendingReply<> previous();

Q_SIGNALS:
    /// Emitted once when the views have changed, be it their number, their order or their data, after the signals of
    /// the model. That another view is current is no change of the views.
    void viewsChanged();

    /// Emitted when another view or none has become current, after viewsChanged() and the signals of the model.
    void currentViewChanged();

private:
    LiveTaskSwitcher* const mTaskSwitcher;
};
