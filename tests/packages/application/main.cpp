// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include <TelvaroDeviceDistinction.h>
#include <TelvaroTaskSwitcherDBusConnector.h>

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    TelvaroTaskSwitcherDBusConnector connector;
    std::printf("device %d, interface %d, views %d\n", TelvaroDeviceDistinction::isCompositorDevice(),
                connector.isInterfaceValid(), connector.getViews().size());
    std::fflush(stdout);
    // With an argument the process stays until its standard input ends.
    return argc > 1 && std::getchar() != EOF ? 1 : 0;
}
