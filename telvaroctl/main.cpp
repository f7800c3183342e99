// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Command.h"
#include "Console.h"
#include "Service.h"

#include <QCoreApplication>

int main(int argc, char* argv[])
{
    installMessageHandler();
    const QCoreApplication application(argc, argv);
    const ExitStatus status = run(QCoreApplication::arguments().mid(1));
    Service::settle();
    return status == Done && isOutputLost() ? Failed : status;
}
