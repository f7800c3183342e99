// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "LiveFixture.h"
#include "LiveRequests.h"
#include "PrivateBus.h"
#include "TestMain.h"

#include <QDBusPendingCallWatcher>

#include <memory>

/// The bus ends under a running application; what has happened to it stays.
class LiveBusEndTest : public LiveFixture
{
    Q_OBJECT

public:
    explicit LiveBusEndTest(PrivateBus& bus)
        : mBus(bus)
    {
    }

private Q_SLOTS:
    void init();
    void everyObjectIsAbsentOnceWhenTheBusEnds();
    void everyRequestFailsAfterwards();
    void objectsThatAreMadeAfterwardsAreAbsent();

private:
    PrivateBus& mBus;
};

void LiveBusEndTest::init()
{
    mLog = std::make_unique<LogCapture>();
}

void LiveBusEndTest::everyObjectIsAbsentOnceWhenTheBusEnds()
{
    setViews(makeViews(2), QStringLiteral("a"));
    LiveObjects objects;
    TRY_VERIFY(objects.areAll(Status::Ready));
    // One more, which still awaits an answer.
    mService.scriptProperty(QStringLiteral("Get"), QStringLiteral("/screen"), QStringLiteral("fullScreen"),
                            {Behaviour::silence()});
    const TelvaroScreen loading;
    scriptSetCurrentView({Behaviour::silence()});
    const QDBusPendingReply<> open = objects.taskSwitcher.next();
    std::vector<std::unique_ptr<StatusRecorder>> recorders;
    for (const TelvaroLiveObject* const object : objects.all()) {
        recorders.push_back(std::make_unique<StatusRecorder>(*object));
    }
    PrivateBus::deliver();
    QCOMPARE(loading.getStatus(), Status::Loading);
    mBus.kill();
    TRY_VERIFY(objects.areAll(Status::Absent));
    TRY_COMPARE(loading.getStatus(), Status::Absent);
    QVERIFY(waitFor(open));
    QVERIFY(open.isError());
    QCoreApplication::processEvents();
    for (const std::unique_ptr<StatusRecorder>& recorder : recorders) {
        QCOMPARE(recorder->getStatuses(), QList<Status>{Status::Absent});
    }
    QCOMPARE(objects.taskSwitcher.getViews()->getCount(), 0);
    QCOMPARE(objects.taskSwitcher.getCurrentView(), QString());
    QCOMPARE(objects.screen.getScreenSaverTimeout(), 0);
}

void LiveBusEndTest::everyRequestFailsAfterwards()
{
    for (const LiveRequest& request : LiveRequest::all()) {
        LiveObjects objects;
        const QDBusPendingReply<> reply = request.send(objects);
        QVERIFY(waitFor(reply));
        QVERIFY2(reply.isError(), qPrintable(request.name));
        const bool needsViews = request.name == QLatin1String("switchToView") || request.name == QLatin1String("next")
            || request.name == QLatin1String("previous");
        QVERIFY2(reply.error().type() == (needsViews ? QDBusError::InvalidArgs : QDBusError::Disconnected),
                 qPrintable(request.name + reply.error().name()));
    }
}

void LiveBusEndTest::objectsThatAreMadeAfterwardsAreAbsent()
{
    LiveObjects objects;
    QVERIFY(objects.areAll(Status::Absent));
    QCoreApplication::processEvents();
    QVERIFY(objects.areAll(Status::Absent));
}

int main(int argc, char** argv)
{
    prepareTestEnvironment();
    QCoreApplication application(argc, argv);
    PrivateBus bus;
    LiveBusEndTest test(bus);
    return QTest::qExec(&test, argc, argv);
}
#include "LiveBusEndTest.moc"
