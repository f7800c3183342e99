// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QString>
#include <QStringList>
#include <QTemporaryDir>

class ScriptedServiceProcess;

/// A state of the service in which the results of operations differ from their failures: three views, the first of
/// which is current, an active screen saver and a full screen in portrait format.
class Scenario
{
public:
    /// Replaces "pidof" on the search path of this process and its children by a program that prints the given name, so
    /// that a number is its own process id.
    Scenario();

    /// Sets the service's state.
    static void set(ScriptedServiceProcess& service);

    /// The property "views", in GVariant's text format.
    static QString views();

private:
    QTemporaryDir mDirectory;
};
