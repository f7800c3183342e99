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

/// Every operation of the library by its name, with arguments that suit the service of Scenario and with the result as
/// a text: views as their uuids, numbers and bools as they are, nothing as an empty text.
///
/// The constructions of the connectors are operations too, "new" and the class's name. The other operations share one
/// connector of each kind, which is made when it is first needed.
class Operations
{
public:
    static QStringList names();
    /// Whether the operation makes a connector and ends it again.
    static bool isConstruction(const QString& name);

    /// Throws std::invalid_argument on a name that is none.
    QString perform(const QString& name);

    /// Makes all connectors.
    void prepare();

    TelvaroTaskSwitcherDBusConnector& taskSwitcher();
    TelvaroScreenDBusConnector& screen();
    TelvaroGlobalOverlayDBusConnector& overlay();
    TelvaroNotificationDBusConnector& notification();
    TelvaroScreenShotDBusConnector& screenShot();

private:
    using Operation = QString (*)(Operations& self);
    struct Entry;
    static const QList<Entry>& table();

    std::unique_ptr<TelvaroTaskSwitcherDBusConnector> mTaskSwitcher;
    std::unique_ptr<TelvaroScreenDBusConnector> mScreen;
    std::unique_ptr<TelvaroGlobalOverlayDBusConnector> mOverlay;
    std::unique_ptr<TelvaroNotificationDBusConnector> mNotification;
    std::unique_ptr<TelvaroScreenShotDBusConnector> mScreenShot;
};
