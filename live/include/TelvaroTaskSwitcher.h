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

/// The views (application surfaces) of the compositor's task switcher, and which of them is current. Like every live
/// object it never blocks, and it holds the service's values while its status is Ready; see TelvaroLiveObject.
///
/// When the service notifies of both, the views and the current one are up to date before the first signal about
/// either.
///
/// switchTo(), switchToView(), next() and previous() are requests: they return at once, and the current view changes
/// when the service says so. At most one call is sent for each.
///
/// D-Bus: object "/taskswitcher", interface "de.Telvaro.taskswitcher"; the properties "views" (a(ssssssuua{sv})) and
/// "currentView" (s, a view's uuid) are read once from each service (Get, ss), then followed by PropertiesChanged
/// (sa{sv}as); a property that a notification names without its value, or with an empty or unreadable one, is read
/// again. "currentView" is written by Set (ssv) of "org.freedesktop.DBus.Properties".
class TELVARO_LIVE_EXPORT TelvaroTaskSwitcher : public TelvaroLiveObject
{
    Q_OBJECT
    /// See getViews().
    Q_PROPERTY(TelvaroViewModel* views READ getViews CONSTANT)
    /// See getCurrentView(); writing it is switchTo().
    Q_PROPERTY(QString currentView READ getCurrentView WRITE switchTo NOTIFY currentViewChanged)

public:
    /// Asks the service for the views and the current one. The status begins as Loading, or as Absent where there is
    /// nobody to ask.
    explicit TelvaroTaskSwitcher(QObject* parent = nullptr);
    ~TelvaroTaskSwitcher() override;

    /// The views; lives as long as this object.
    TelvaroViewModel* getViews() const;

    /// The uuid of the current view, as the service names it; empty while unknown and where no view is current. May
    /// name a view that is not among the views.
    QString getCurrentView() const;

    /// Makes the view with the uuid the current one. The reply carries the service's error, or QDBusError::InvalidArgs
    /// for an empty uuid, which is not sent.
    QDBusPendingReply<> switchTo(const QString& uuid);

    /// Makes the view of the application with that sort index the current one, the first of them if there are several.
    /// As switchTo(); QDBusError::InvalidArgs, and nothing sent, if there is no such view.
    QDBusPendingReply<> switchToView(const QString& appId, uint32_t sortIndex);

    /// Makes the next view of the current view's application the current one, in the order of sortIndex and from the
    /// last on to the first.
    ///
    /// Quick steps add up: a step begins at the view that was asked for last by this object until the service has
    /// answered and names a current view, or has refused.
    ///
    /// The reply carries the service's error, or QDBusError::InvalidArgs if the view to step from is not among the
    /// views. If the application has no other view, nothing is sent and the reply is a success.
    QDBusPendingReply<> next();

    /// As next(), in the other direction.
    QDBusPendingReply<> previous();

Q_SIGNALS:
    /// Another view is current, or none is. Follows the signals about the rows of the views.
    void currentViewChanged();

private:
    LiveTaskSwitcher* const mTaskSwitcher;
};
