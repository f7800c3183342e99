// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

/// Compares what the service describes, answers and notifies with each other and with the interface files.
namespace DeepStatus {

struct Item
{
    /// A member of an interface: "de.Telvaro.screen.fullScreen".
    QString name;
    QStringList problems;
    /// Whether it is a property that could not be changed, so that nothing is known about its notifications.
    bool isUnchanged;
};

/// Returns every member of the interfaces. Changes the settings of the screen and the current view, and restores them
/// even if a signal ends the process. The service must be there and answer.
QList<Item> examine();

} // namespace DeepStatus
