// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include <TelvaroTaskSwitcher.h>

#include <QCoreApplication>

#include <cstdio>

/// Prints how many views there are once that is known.
int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const TelvaroTaskSwitcher taskSwitcher;
    QObject::connect(&taskSwitcher, &TelvaroLiveObject::statusChanged, [&taskSwitcher] {
        if (taskSwitcher.getStatus() != TelvaroLiveObject::Loading) {
            std::printf("status %d, views %d\n", taskSwitcher.getStatus(), taskSwitcher.getViews()->getCount());
            QCoreApplication::quit();
        }
    });
    return QCoreApplication::exec();
}
