// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "TelvaroGlobalOverlayDBusConnector.h"
#include "TelvaroNotificationDBusConnector.h"
#include "TelvaroScreenDBusConnector.h"
#include "TelvaroScreenShotDBusConnector.h"
#include "TelvaroTaskSwitcherDBusConnector.h"

#include <QMap>
#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

/// One of each connector.
struct Connectors
{
    TelvaroTaskSwitcherDBusConnector taskSwitcher;
    TelvaroScreenDBusConnector screen;
    TelvaroGlobalOverlayDBusConnector overlay;
    TelvaroNotificationDBusConnector notification;
    TelvaroScreenShotDBusConnector screenShot;
};

/// An operation, which gives its result as a text.
struct NamedOperation
{
    QString name;
    std::function<QString(Connectors&)> call;
};

/// Every operation of every connector, with arguments that reach a service whose current view is "a" of the application
/// "app".
const std::vector<NamedOperation>& everyOperation();

/// What an operation returns and logs.
struct Outcome
{
    QString result;
    QStringList messages;
};

/// The outcomes, by name, of all operations where the base's test fails with these messages and reading the views fails
/// with those.
QMap<QString, Outcome> outcomesWithoutService(const QStringList& baseMessages, const QStringList& viewsMessages);
