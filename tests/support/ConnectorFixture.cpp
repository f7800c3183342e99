// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ConnectorFixture.h"

#include "PrivateBus.h"
#include "TelvaroDeviceDistinction.h"

#include <QDBusConnectionInterface>
#include <QTest>

namespace {

QString baseWarning(const QString& text)
{
    return QStringLiteral("warning default TelvaroDBusConnectorBase.cpp "
                          "TelvaroDBusConnectorBase::isInterfaceValid()const ")
        + text;
}

} // namespace

void ConnectorFixture::initTestCase()
{
    QVERIFY2(TelvaroDeviceDistinction::isCompositorDevice(),
             "the device's manifest " TELVARO_MANIFEST_PATH " does not hold {\"productCode\": \"481936\"}");
    // Qt delivers no messages of the bus before the event loop has run once.
    PrivateBus::deliver();
    startService();
}

void ConnectorFixture::init()
{
    if (!mService.isRunning()) {
        startService();
    } else if (!PrivateBus::connection().interface()->isServiceRegistered(QStringLiteral(TELVARO_SERVICE_NAME))) {
        mService.own();
        PrivateBus::deliver();
    }
    mService.reset();
    mLog = std::make_unique<LogCapture>();
}

void ConnectorFixture::cleanup()
{
    const QStringList unread = mLog->takeDescriptions();
    mLog.reset();
    QCOMPARE(unread, QStringList());
}

void ConnectorFixture::startService()
{
    mService.start();
    mService.own();
    PrivateBus::deliver();
}

QString ConnectorFixture::notRegistered(const QString& serviceName)
{
    return baseWarning(QStringLiteral("DBus Service for Telvaro \"%1\" is not registered").arg(serviceName));
}

QString ConnectorFixture::invalidInterface()
{
    return baseWarning(QStringLiteral("Invalid DBus interface!"));
}
