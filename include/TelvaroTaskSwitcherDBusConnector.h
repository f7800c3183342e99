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

/// Views (application surfaces) of the compositor's task switcher: reads them, switches between them, and emits signals
/// when they change.
///
/// D-Bus: object "/taskswitcher", interface "de.Telvaro.taskswitcher". Its properties "views" (a(ssssssuua{sv})) and
/// "currentView" (s, a view's uuid) are read and written through Get (ss) and Set (ssv) of
/// "org.freedesktop.DBus.Properties"; the connector subscribes to PropertiesChanged (sa{sv}as).
///
/// Every operation reads from the service; nothing is cached between calls. Each call blocks until the service replies,
/// for up to 25 seconds if it hangs. Operations are not atomic: the views may change between the reads of one
/// operation.
///
/// No signal reports that the service has started or stopped. To follow restarts, create a QDBusServiceWatcher for
/// TelvaroDBusDefinitions::getServiceName() before the connector: the slots of a watcher that is created later can run
/// before the connector knows the new owner.
class TELVARO_EXPORT TelvaroTaskSwitcherDBusConnector : public TelvaroDBusConnectorBase
{
    Q_OBJECT

public:
    /// One view. Operations that find none return the empty entry: a default-constructed one, whose uuid is empty.
    struct TaskSwitcherEntry
    {
        /// Unique id of the view.
        QString uuid;
        /// Id of the application that owns the view.
        QString appId;
        /// Text from the service, passed on unchanged.
        QString info1;
        /// As info1.
        QString info2;
        /// As info1.
        QString info3;
        /// As info1.
        QString info4;
        /// Id of the process that shows the view.
        uint32_t pid = 0;
        /// Position among the views of the same application.
        uint32_t sortIndex = 0;
        /// Further data from the service, passed on unchanged. Holds both values of a key that the service sent twice.
        QVariantMap attributes;
    };

    /// "currentView"
    static const QString cCurrentViewProperty;
    /// "views"
    static const QString cViewsProperty;
    /// "PropertiesChanged", the D-Bus signal that the connector subscribes to.
    static const QString cPropertiesChanged;

    /// Registers TaskSwitcherEntry with Qt's meta-type system and with Qt D-Bus, and subscribes to PropertiesChanged.
    /// If the subscription fails, logs `Failed to connect to PropertiesChanged signal`: the operations work, but no
    /// signal is ever emitted.
    explicit TelvaroTaskSwitcherDBusConnector(QObject* parent = nullptr);
    ~TelvaroTaskSwitcherDBusConnector() override;

    /// Returns all views, in the service's order. Makes one call to the service, without the NameHasOwner query of
    /// isInterfaceValid().
    ///
    /// Returns an empty list on failure, with one of the warnings
    /// - `Invalid DBus interface!`: the proxy is not valid;
    /// - `Unable to read views!`: the service replied with an error or without a value, or did not reply;
    /// - `Unable to parse dbus-reply to dbus-argument`: the value is not an array of views. Accepted are arrays of
    ///   structures that begin with six strings (or object paths), two integers of any width and an a{sv}, and empty
    ///   arrays of any type except strings and bytes.
    QList<TaskSwitcherEntry> getViews();

    /// Returns the current view. Reads the views, then the current view's uuid: two calls to the service and one query
    /// to the bus daemon.
    ///
    /// Returns the empty entry on failure. The warnings are those of getViews(), then that of isInterfaceValid() or one
    /// of
    /// - `Unable to read current view!`: the service replied with an error or without a value, or did not reply;
    /// - `Unable to parse dbus-reply to dbus-argument`: the value does not convert to a string;
    /// - `current view not found in all views list`: no view has that uuid, because no view is current or because the
    ///   views changed between the two reads.
    TaskSwitcherEntry getCurrentView();

    /// Makes the view with the entry's uuid current; ignores the other fields. Makes one call to the service and one
    /// query to the bus daemon.
    ///
    /// Returns an invalid QDBusError if the service accepted, otherwise the service's error or
    /// - QDBusError::UnknownInterface, "Invalid QDBus Interface", if isInterfaceValid() returns false; it has logged
    /// the
    ///   reason, except on another device;
    /// - QDBusError::InvalidArgs, "uuid should not be empty", without calling the service.
    ///
    /// Logs nothing itself and does not wait for currentViewChanged().
    QDBusError setCurrentView(const TaskSwitcherEntry& entry);

    /// Returns the first view of the process. Makes the call of getViews().
    ///
    /// Returns the empty entry if there is no such view or the views cannot be read, with the warning
    /// `pid not matched with a view, return empty TaskSwitcherEntry`.
    TaskSwitcherEntry pidToTaskSwitcherEntry(uint32_t pid);

    /// Returns the first view with that application id, compared case-sensitively, and sort index. Makes the call of
    /// getViews().
    ///
    /// Returns the empty entry if there is no such view or the views cannot be read, with the warning
    /// `app Id and sortIndex not matched with a view, return empty TaskSwitcherEntry`.
    TaskSwitcherEntry idsToTaskSwitcherEntry(const QString& appId, uint32_t sortIndex);

    /// Makes the view with that application id and sort index current. Makes the calls of idsToTaskSwitcherEntry() and
    /// setCurrentView(), which rejects the empty entry if there is no such view.
    ///
    /// Returns whether the service accepted; otherwise logs `switch view failed` and the error.
    bool switchToView(const QString& appId, uint32_t sortIndex);

    /// Makes the next view of the current view's application current, or the previous one if `backward` is true, in the
    /// order of sortIndex and wrapping around at both ends. Makes the calls of getViews(), getCurrentView() and, for
    /// the step, setCurrentView().
    ///
    /// Returns true if the service accepted, or if the application has no other view, in which case nothing is written.
    /// Returns false with one of the warnings
    /// - `iterate view failed: no view is in the view list with current appID`, also if the views cannot be read;
    /// - `iterateViews failed:` and the error, if the service refused.
    ///
    /// A current view that cannot be read counts as a view with an empty appId. A current view that is no longer in the
    /// list counts as the first one of its application.
    bool iterateViews(bool backward);

    /// Returns the id of the process with that name, as printed by the device's program "pidof". Blocks until pidof has
    /// exited. Sends nothing on the bus.
    ///
    /// On failure returns
    /// - 4294967295 if pidof fails, for example because no process has the name, with the warning
    ///   `Unable to find process with name "<name>" "<pidof's error output>"`;
    /// - 0 if pidof does not print exactly one number, for example because two processes have the name, with the
    ///   warning `Unable to covert string ( "<output>" ) to integer`.
    uint32_t processNameToPid(const QString& processName) const;

    /// Makes the first view of the named process current. Makes the calls of processNameToPid(),
    /// pidToTaskSwitcherEntry() and setCurrentView(); their warnings are the only report of a failure.
    void surfaceToTop(const QString& processName);

    /// Returns whether the current view belongs to the named process. Makes the calls of processNameToPid() and
    /// getCurrentView().
    ///
    /// Compares process ids unchecked: if processNameToPid() returns 0 and the current view cannot be read, its pid is
    /// 0 as well and the result is true.
    bool isCurrentView(const QString& processName);

Q_SIGNALS:
    /// Emitted when a PropertiesChanged signal names the current view. Carries the uuid of the view that
    /// getCurrentView() returns at that time (its calls block), which is an empty string if that fails. If the notified
    /// value does not convert to a string, logs `Unable to convert current view to string!` instead.
    ///
    /// Signals need a running event loop in the connector's thread.
    void currentViewChanged(const QString& newViewUuid);

    /// Emitted when the list of views changes; read it with getViews(). A PropertiesChanged signal that names both
    /// properties emits currentViewChanged() only. Invalidated properties are ignored.
    void viewsChanged();

private Q_SLOTS:
    void onPropertiesChanged(const QString& name, const QVariantMap& map, const QStringList& list);
};

Q_DECLARE_METATYPE(TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry)

/// Marshals one view, D-Bus signature (ssssssuua{sv}). An attribute that holds an invalid QVariant aborts the process
/// when the argument is sent: D-Bus has no such value.
TELVARO_EXPORT QDBusArgument& operator<<(QDBusArgument& argument,
                                         const TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry& entry);

/// Demarshals one view, replacing every field. Does not check the signature: reading an argument of any other is
/// undefined and may abort the process.
TELVARO_EXPORT const QDBusArgument& operator>>(const QDBusArgument& argument,
                                               TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry& entry);

/// Demarshals an array of views, replacing the list. Does not check the signature, as above.
TELVARO_EXPORT const QDBusArgument& operator>>(const QDBusArgument& argument,
                                               QList<TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry>& entries);
