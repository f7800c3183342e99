// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "TelvaroDBusConnectorBase.h"
#include "TelvaroExport.h"

#include <QDBusArgument>
#include <QDBusError>
#include <QList>
#include <QMetaType>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <cstdint>

/// Reads the views (application surfaces) of the compositor's task switcher, makes another one current, and tells when
/// they change.
///
/// D-Bus: object "/taskswitcher", interface "de.Telvaro.taskswitcher", whose properties "views" (a(ssssssuua{sv})) and
/// "currentView" (s, a view's uuid) are read and written through Get (ss) and Set (ssv) of
/// "org.freedesktop.DBus.Properties"; its signal PropertiesChanged (sa{sv}as) is followed.
///
/// Every operation reads the bus anew; nothing is kept between calls. Each of its calls blocks until the service has
/// answered, up to 25 seconds with a service that hangs. Operations are not atomic against the service: the views may
/// change between the reads of one operation.
class TELVARO_EXPORT TelvaroTaskSwitcherDBusConnector : public TelvaroDBusConnectorBase
{
    Q_OBJECT

public:
    /// One view. A default-constructed one, recognised by its empty uuid, is the empty entry that operations return
    /// when they find nothing.
    struct TaskSwitcherEntry
    {
        /// Unique id of the view.
        QString uuid;
        /// Id of the application that owns the view.
        QString appId;
        /// Text of the service, carried unchanged.
        QString info1;
        /// As info1.
        QString info2;
        /// As info1.
        QString info3;
        /// As info1.
        QString info4;
        /// Process that shows the view.
        uint32_t pid = 0;
        /// Position among the views of the same application.
        uint32_t sortIndex = 0;
        /// Further data of the service, carried unchanged. A key that the service sent twice is there twice.
        QVariantMap attributes;
    };

    /// "currentView"
    static const QString cCurrentViewProperty;
    /// "views"
    static const QString cViewsProperty;
    /// "PropertiesChanged", the signal that is followed.
    static const QString cPropertiesChanged;

    /// Registers TaskSwitcherEntry with Qt's meta-type system and D-Bus marshalling, and subscribes to the service's
    /// change notifications. If that fails, logs `Failed to connect to PropertiesChanged signal`: the operations work,
    /// but no signal is ever emitted.
    explicit TelvaroTaskSwitcherDBusConnector(QObject* parent = nullptr);
    ~TelvaroTaskSwitcherDBusConnector() override;

    /// All views, in the service's order. One call to the service, without the presence query of isInterfaceValid().
    ///
    /// Returns an empty list on failure, with one of the warnings
    /// - `Invalid DBus interface!`: the proxy is not valid;
    /// - `Unable to read views!`: the service answered with an error, without a value, or not at all;
    /// - `Unable to parse dbus-reply to dbus-argument`: the value is not an array of views. Read are structures that
    ///   begin with six strings (or object paths), two integers of any width and a dictionary a{sv}, and empty arrays
    ///   of anything but strings or bytes.
    QList<TaskSwitcherEntry> getViews();

    /// The current view. Reads the views first and the current view's uuid then: two calls to the service and one
    /// query to the bus daemon.
    ///
    /// Returns the empty entry on failure, after the warnings of getViews() with that of isInterfaceValid() or one of
    /// - `Unable to read current view!`: the service answered with an error, without a value, or not at all;
    /// - `Unable to parse dbus-reply to dbus-argument`: the value does not convert to a string;
    /// - `current view not found in all views list`: there is no view with that uuid; so also when no view is current,
    ///   or when the views changed between the two reads.
    TaskSwitcherEntry getCurrentView();

    /// Makes the view with the entry's uuid the current one; the other fields are ignored. One call to the service and
    /// one query to the bus daemon.
    ///
    /// Returns an invalid QDBusError when the service accepted; otherwise the service's error, or
    /// - QDBusError::UnknownInterface, "Invalid QDBus Interface", if isInterfaceValid() is false; it has logged why,
    ///   except on another device;
    /// - QDBusError::InvalidArgs, "uuid should not be empty"; the service is not called.
    ///
    /// Logs nothing itself and does not wait for currentViewChanged().
    QDBusError setCurrentView(const TaskSwitcherEntry& entry);

    /// The first view of the process. Calls: as getViews().
    ///
    /// Returns the empty entry if there is none or the views cannot be read, with the warning
    /// `pid not matched with a view, return empty TaskSwitcherEntry`.
    TaskSwitcherEntry pidToTaskSwitcherEntry(uint32_t pid);

    /// The first view of the application with that sort index; appId is compared case-sensitively. Calls: as
    /// getViews().
    ///
    /// Returns the empty entry if there is none or the views cannot be read, with the warning
    /// `app Id and sortIndex not matched with a view, return empty TaskSwitcherEntry`.
    TaskSwitcherEntry idsToTaskSwitcherEntry(const QString& appId, uint32_t sortIndex);

    /// Makes the view of the application with that sort index the current one. Calls: one read of the views and those
    /// of setCurrentView(), which refuses when there is no such view.
    ///
    /// Returns whether the service accepted; if not, logs `switch view failed` and the error.
    bool switchToView(const QString& appId, uint32_t sortIndex);

    /// Makes the next view, or with backward the previous one, of the current view's application the current one, in
    /// the order of sortIndex and from the last on to the first. Calls: getViews(), getCurrentView() and, for the step,
    /// setCurrentView().
    ///
    /// Returns true when the service accepted, and when the application has no other view, which sends no write.
    /// Returns false with one of the warnings
    /// - `iterate view failed: no view is in the view list with current appID`, also when the views cannot be read;
    /// - `iterateViews failed:` and the error, if the service refused.
    ///
    /// A current view that cannot be read counts as one of an empty appId, and one that is no longer in the list as the
    /// first of its application.
    bool iterateViews(bool backward);

    /// The process id of the running program with that name, as the device's program "pidof" tells it. Blocks until
    /// that has ended. Uses no bus.
    ///
    /// Returns
    /// - 4294967295 when pidof fails, as it does when no process has the name, with the warning
    ///   `Unable to find process with name "<name>" "<pidof's error output>"`;
    /// - 0 when its output is not exactly one number, as with two processes of the name, with the warning
    ///   `Unable to covert string ( "<output>" ) to integer`.
    uint32_t processNameToPid(const QString& processName) const;

    /// Makes the first view of the named process the current one. Calls: those of processNameToPid(),
    /// pidToTaskSwitcherEntry() and setCurrentView(), whose warnings are the only report of a failure.
    void surfaceToTop(const QString& processName);

    /// Whether the current view belongs to the named process. Calls: those of processNameToPid() and getCurrentView().
    ///
    /// Compares process ids without a check: a name that processNameToPid() reads as 0 equals a current view that
    /// cannot be read, and the answer is true.
    bool isCurrentView(const QString& processName);

Q_SIGNALS:
    /// Another view became current. Carries the uuid that getCurrentView() returns when the notification is handled
    /// (its calls block): the current view's, or an empty string when that fails. Not emitted, with the warning
    /// `Unable to convert current view to string!`, if the notified value does not convert to a string.
    ///
    /// Signals need a running event loop in the thread that owns the connector.
    void currentViewChanged(const QString& newViewUuid);

    /// The list of views changed; read it with getViews(). A single notification that names both properties is
    /// signalled by currentViewChanged() only. Properties that are only invalidated are ignored.
    void viewsChanged();

private Q_SLOTS:
    void onPropertiesChanged(const QString& name, const QVariantMap& map, const QStringList& list);
};

Q_DECLARE_METATYPE(TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry)

/// Writes one view, D-Bus signature (ssssssuua{sv}). An attribute that holds an invalid QVariant ends the process when
/// the argument is sent; D-Bus has no such value.
TELVARO_EXPORT QDBusArgument& operator<<(QDBusArgument& argument,
                                         const TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry& entry);

/// Reads one view, replacing every field. Checks nothing: an argument of another signature is undefined and may end the
/// process.
TELVARO_EXPORT const QDBusArgument& operator>>(const QDBusArgument& argument,
                                               TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry& entry);

/// Reads an array of views, replacing the list. Checks nothing, as above.
TELVARO_EXPORT const QDBusArgument& operator>>(const QDBusArgument& argument,
                                               QList<TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry>& entries);
