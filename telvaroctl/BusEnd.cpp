// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "BusEnd.h"

#include "Console.h"
#include "ExitStatus.h"
#include "Service.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QString>

BusEnd::BusEnd()
{
    Service::bus().connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                           QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"), this,
                           SLOT(onDisconnected()));
}

void BusEnd::onDisconnected()
{
    printError(Service::busEnd());
    QCoreApplication::exit(Failed);
}
