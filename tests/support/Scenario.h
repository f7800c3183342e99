// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QString>
#include <QStringList>
#include <QTemporaryDir>

class ScriptedServiceProcess;

/// A state of the service in which every operation of Operations has a result that differs from that of its failure:
/// three views, the first of which is current, an active screen saver and a full screen in portrait format.
class Scenario
{
public:
    /// Puts a "pidof" on the search path of this process and its children that finds every name that is a number to
    /// be the name of the process with that id.
    Scenario();

    /// Gives the service its state.
    static void set(ScriptedServiceProcess& service);

    /// The property "views", in GVariant's text format.
    static QString views();

private:
    QTemporaryDir mDirectory;
};
