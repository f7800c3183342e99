// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "TelvaroGlobalOverlayDBusConnector.h"
#include "TelvaroNotificationDBusConnector.h"
#include "TelvaroScreenDBusConnector.h"
#include "TelvaroScreenShotDBusConnector.h"
#include "TelvaroTaskSwitcherDBusConnector.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <memory>

/// The result, log and duration of an operation.
struct Outcome
{
    QString result;
    QStringList log;
    qint64 milliseconds = 0;
};

/// A message that an operation sends, and everything that the operation logs if the bus dies with it.
struct Message
{
    QString member;
    /// Empty for a message to the bus daemon.
    QString path;
    /// Empty for Get and Set of a property.
    QString interface;
    QString property;
    QStringList log;
};

using Messages = QList<Message>;

/// The table of the library's operations: name, call, result with the service of Scenario, result without a service,
/// messages, and log. Results are texts: views as their uuids, numbers and bools as they are, nothing as an empty text.
///
/// Constructing a connector is an operation, too, "new" and the class's name. The other operations share one connector
/// of each kind, which is constructed on first use.
class Operations
{
public:
    static QStringList names();
    static bool isConstruction(const QString& name);

    /// The result with the service of Scenario, with which no operation logs anything.
    static QString result(const QString& name);
    /// The result without a service.
    static QString failure(const QString& name);
    /// All messages in their order, to the bus daemon and to the service, including those that Qt sends by itself.
    static Messages messages(const QString& name);

    /// Whether the operation may return this when the service or the bus fails, however it fails.
    static bool isFailure(const QString& name, const QString& result);
    /// Whether an operation may log this then.
    static bool isFailureLog(const QStringList& log);

    /// Throws std::invalid_argument on an unknown name.
    QString perform(const QString& name);

    /// Constructs all connectors.
    void prepare();

    TelvaroTaskSwitcherDBusConnector& taskSwitcher();
    TelvaroScreenDBusConnector& screen();
    TelvaroGlobalOverlayDBusConnector& overlay();
    TelvaroNotificationDBusConnector& notification();
    TelvaroScreenShotDBusConnector& screenShot();

private:
    struct Entry;
    static const QList<Entry>& table();
    static const Entry& entry(const QString& name);

    std::unique_ptr<TelvaroTaskSwitcherDBusConnector> mTaskSwitcher;
    std::unique_ptr<TelvaroScreenDBusConnector> mScreen;
    std::unique_ptr<TelvaroGlobalOverlayDBusConnector> mOverlay;
    std::unique_ptr<TelvaroNotificationDBusConnector> mNotification;
    std::unique_ptr<TelvaroScreenShotDBusConnector> mScreenShot;
};
