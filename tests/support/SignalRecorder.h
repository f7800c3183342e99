// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QObject>
#include <QStringList>

class TelvaroScreenDBusConnector;
class TelvaroTaskSwitcherDBusConnector;

/// Records the signals of two connectors in order, each as its name and, after a colon, its argument.
class SignalRecorder : public QObject
{
    Q_OBJECT

public:
    SignalRecorder(TelvaroTaskSwitcherDBusConnector& taskSwitcher, TelvaroScreenDBusConnector& screen);

    /// Takes the signals since the last time.
    QStringList take();

private:
    QStringList mRecords;
};
