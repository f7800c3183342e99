// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "SignalRecorder.h"

#include "TelvaroScreenDBusConnector.h"
#include "TelvaroTaskSwitcherDBusConnector.h"

SignalRecorder::SignalRecorder(TelvaroTaskSwitcherDBusConnector& taskSwitcher, TelvaroScreenDBusConnector& screen)
{
    const auto recordBool = [this](const char* name) {
        return [this, name](bool value) {
            mRecords.append(QLatin1String(name) + (value ? QStringLiteral(":true") : QStringLiteral(":false")));
        };
    };
    const auto recordText = [this](const char* name) {
        return [this, name](const QString& value) {
            mRecords.append(QLatin1String(name) + QLatin1Char(':') + value);
        };
    };
    connect(&taskSwitcher, &TelvaroTaskSwitcherDBusConnector::viewsChanged, this, [this] {
        mRecords.append(QStringLiteral("viewsChanged"));
    });
    connect(&taskSwitcher, &TelvaroTaskSwitcherDBusConnector::currentViewChanged, this,
            recordText("currentViewChanged"));
    connect(&screen, &TelvaroScreenDBusConnector::screenSaverActiveChanged, this,
            recordBool("screenSaverActiveChanged"));
    connect(&screen, &TelvaroScreenDBusConnector::screenOrientationChanged, this,
            recordText("screenOrientationChanged"));
    connect(&screen, &TelvaroScreenDBusConnector::fullScreenChanged, this, recordBool("fullScreenChanged"));
}

QStringList SignalRecorder::take()
{
    QStringList taken;
    taken.swap(mRecords);
    return taken;
}
