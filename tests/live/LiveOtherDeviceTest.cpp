// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "BusMonitorProcess.h"
#include "LiveRequests.h"
#include "PrivateBus.h"
#include "TestMain.h"

#include <TelvaroDeviceDistinction.h>

// In the program itself, where it goes before the library's.
bool TelvaroDeviceDistinction::isCompositorDevice()
{
    return false;
}

/// On another device nothing is ever sent, though a service is there.
class LiveOtherDeviceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everythingIsAbsentAndEveryRequestIsRejected();
};

void LiveOtherDeviceTest::everythingIsAbsentAndEveryRequestIsRejected()
{
    PrivateBus::deliver();
    ScriptedServiceProcess service;
    service.start();
    service.own();
    BusMonitorProcess monitor;
    monitor.start();
    LiveObjects objects;
    QVERIFY(objects.areAll(TelvaroLiveObject::Absent));
    for (const LiveRequest& request : LiveRequest::all()) {
        const QDBusPendingReply<> reply = request.send(objects);
        QVERIFY2(reply.isFinished() && reply.isError(), qPrintable(request.name));
        const QDBusError::ErrorType type = reply.error().type();
        // There are no views to step between.
        QVERIFY2(type == QDBusError::NotSupported || type == QDBusError::InvalidArgs, qPrintable(request.name));
    }
    QCOMPARE(objects.taskSwitcher.switchTo(QStringLiteral("a")).error().type(), QDBusError::NotSupported);
    QCoreApplication::processEvents();
    QVERIFY(objects.areAll(TelvaroLiveObject::Absent));
    QCOMPARE(monitor.takeCalls().size(), 0);
}

TELVARO_TEST_MAIN(LiveOtherDeviceTest)
#include "LiveOtherDeviceTest.moc"
