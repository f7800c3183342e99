// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "BusMonitorProcess.h"
#include "LiveFixture.h"
#include "LiveRequests.h"
#include "PrivateBus.h"
#include "TestMain.h"

#include <memory>

namespace {

const QString cBus = QStringLiteral("org.freedesktop.DBus");
const QString cOwnerQuestion =
    QStringLiteral("/org/freedesktop/DBus org.freedesktop.DBus.GetNameOwner s('" TELVARO_SERVICE_NAME "')");

} // namespace

/// Every message that the layer sends, as it is counted on the bus.
class LiveMessagesTest : public LiveFixture
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void anObjectAsksForTheOwnerAndReadsEachPropertyOnce();
    void anAbsentServiceIsSentNothing();
    void aNewOwnerIsReadOnceAndNotAskedFor();
    void aChangeSendsNothing();
    void anInvalidatedPropertyIsReadOnce();
    void aPlaceHolderIsReadOnce();
    void aFurtherInvalidationWaitsForTheReadThatIsUnderWay();
    void everyRequestIsOneCall_data();
    void everyRequestIsOneCall();
    void aStepIsOneCallToo();
    void whatCannotSucceedIsNotSent();
    void gettersSendNothing();

private:
    /// What has been sent since the last time, the subscriptions left out.
    QStringList takeSent();
    void makeReady();

    BusMonitorProcess mMonitor;
    std::unique_ptr<LiveObjects> mObjects;
};

void LiveMessagesTest::initTestCase()
{
    LiveFixture::initTestCase();
    mMonitor.start();
}

void LiveMessagesTest::init()
{
    LiveFixture::init();
    mObjects.reset();
    setViews(makeViews(3), QStringLiteral("a"));
    takeSent();
}

QStringList LiveMessagesTest::takeSent()
{
    QStringList sent;
    for (const RecordedCall& call : mMonitor.takeCalls()) {
        if (call.destination != cBus || !call.member.endsWith(QStringLiteral("Match"))) {
            sent.append(call.description());
        }
        if (call.destination == QStringLiteral(TELVARO_SERVICE_NAME) && !call.noAutoStart) {
            sent.append(QStringLiteral("the service may be started"));
        }
    }
    return sent;
}

void LiveMessagesTest::makeReady()
{
    mObjects = std::make_unique<LiveObjects>();
    TRY_VERIFY(mObjects->areAll(TelvaroLiveObject::Ready));
    takeSent();
}

void LiveMessagesTest::anObjectAsksForTheOwnerAndReadsEachPropertyOnce()
{
    const TelvaroLiveObject presence;
    TRY_COMPARE(presence.getStatus(), Status::Ready);
    QCOMPARE(takeSent(), QStringList{cOwnerQuestion});
    const TelvaroTaskSwitcher switcher;
    TRY_COMPARE(switcher.getStatus(), Status::Ready);
    QCOMPARE(takeSent(), QStringList{cOwnerQuestion} + taskSwitcherReads());
    const TelvaroScreen screen;
    TRY_COMPARE(screen.getStatus(), Status::Ready);
    QCOMPARE(takeSent(), QStringList{cOwnerQuestion} + screenReads());
}

void LiveMessagesTest::anAbsentServiceIsSentNothing()
{
    mService.release();
    LiveObjects objects;
    TRY_VERIFY(objects.areAll(Status::Absent));
    PrivateBus::deliver();
    QStringList sent = takeSent();
    // Of this test's own.
    sent.removeAll(QStringLiteral("/org/freedesktop/DBus org.freedesktop.DBus.GetId ()"));
    QCOMPARE(sent, QStringList({cOwnerQuestion, cOwnerQuestion, cOwnerQuestion}));
}

void LiveMessagesTest::aNewOwnerIsReadOnceAndNotAskedFor()
{
    makeReady();
    for (int restart = 0; restart < 3; ++restart) {
        mService.release();
        TRY_VERIFY(mObjects->areAll(Status::Absent));
        mService.own();
        TRY_VERIFY(mObjects->areAll(Status::Ready));
        QStringList sent = takeSent();
        QStringList expected = taskSwitcherReads() + screenReads();
        sent.sort();
        expected.sort();
        QCOMPARE(sent, expected);
    }
}

void LiveMessagesTest::aChangeSendsNothing()
{
    makeReady();
    mService.emitSignal(ServiceSignal::propertiesChanged(
        QStringLiteral("/screen"), QStringLiteral("de.Telvaro.screen"),
        QStringLiteral("{'screenSaverActive': <true>, 'screenSaverEnabled': <false>, 'screenSaverTimeoutSeconds': "
                       "<10>, 'orientation': <'90'>, 'fullScreen': <true>, 'another': <1>}")));
    mService.emitSignal(ServiceSignal::propertiesChanged(
        QStringLiteral("/taskswitcher"), QStringLiteral("de.Telvaro.taskswitcher"),
        QStringLiteral("{'views': <[('z', 'x', '', '', '', '', uint32 1, uint32 1, {'title': <'t'>})]>, "
                       "'currentView': <'z'>}"),
        {QStringLiteral("another")}));
    TRY_COMPARE(mObjects->taskSwitcher.getCurrentView(), QStringLiteral("z"));
    TRY_COMPARE(mObjects->screen.getScreenSaverTimeout(), 10);
    QCOMPARE(uuids(mObjects->taskSwitcher.getViews()->getViews()), QStringList{QStringLiteral("z")});
    QStringList sent = takeSent();
    sent.removeAll(QStringLiteral("/org/freedesktop/DBus org.freedesktop.DBus.GetId ()"));
    QCOMPARE(sent, QStringList());
}

void LiveMessagesTest::anInvalidatedPropertyIsReadOnce()
{
    makeReady();
    const StatusRecorder recorder(mObjects->taskSwitcher);
    mService.takeCalls();
    emitPropertiesChanged(QStringLiteral("@a{sv} {}"), {QStringLiteral("views"), QStringLiteral("unknown")});
    TRY_COMPARE(recorder.getStatuses(), QList<Status>({Status::Loading, Status::Ready}));
    QCOMPARE(mService.takeDescriptions(), QStringList{getViewsCall()});
    emitPropertiesChanged(QStringLiteral("@a{sv} {}"), {QStringLiteral("currentView")});
    TRY_COMPARE(mObjects->taskSwitcher.getStatus(), Status::Ready);
    QCOMPARE(mService.takeDescriptions(), QStringList{getCurrentViewCall()});
}

void LiveMessagesTest::aPlaceHolderIsReadOnce()
{
    makeReady();
    for (const char* const placeHolder : {"@a(ssssssuua{sv}) []", "1", "''", "@as []"}) {
        mService.takeCalls();
        emitPropertiesChanged(QStringLiteral("{'views': <%1>}").arg(QLatin1String(placeHolder)));
        TRY_COMPARE(mObjects->taskSwitcher.getStatus(), Status::Ready);
        QCOMPARE(mService.takeDescriptions(), QStringList{getViewsCall()});
        QCOMPARE(mObjects->taskSwitcher.getViews()->getCount(), 3);
    }
    for (const char* const placeHolder : {"''", "['a']", "objectpath '/a'"}) {
        emitPropertiesChanged(QStringLiteral("{'currentView': <%1>}").arg(QLatin1String(placeHolder)));
        TRY_COMPARE(mObjects->taskSwitcher.getStatus(), Status::Ready);
        QCOMPARE(mService.takeDescriptions(), QStringList{getCurrentViewCall()});
        QCOMPARE(mObjects->taskSwitcher.getCurrentView(), QStringLiteral("a"));
    }
}

void LiveMessagesTest::aFurtherInvalidationWaitsForTheReadThatIsUnderWay()
{
    makeReady();
    // All of the signals arrive while the first read is under way, however slow the machine.
    mService.setLate({1000, 0});
    mService.takeCalls();
    for (int count = 0; count < 5; ++count) {
        emitPropertiesChanged(QStringLiteral("@a{sv} {}"), {QStringLiteral("views")});
    }
    QCOMPARE(mObjects->taskSwitcher.getStatus(), Status::Loading);
    TRY_COMPARE(mObjects->taskSwitcher.getStatus(), Status::Ready);
    // All that came while the first was under way are one more.
    QCOMPARE(mService.takeDescriptions(), QStringList({getViewsCall(), getViewsCall()}));
}

void LiveMessagesTest::everyRequestIsOneCall_data()
{
    QTest::addColumn<int>("index");
    for (std::size_t index = 0; index < LiveRequest::all().size(); ++index) {
        QTest::newRow(qPrintable(LiveRequest::all().at(index).name)) << static_cast<int>(index);
    }
}

void LiveMessagesTest::everyRequestIsOneCall()
{
    QFETCH(const int, index);
    const LiveRequest& request = LiveRequest::all().at(static_cast<std::size_t>(index));
    makeReady();
    const QDBusPendingReply<> reply = request.send(*mObjects);
    QVERIFY(waitFor(reply));
    QVERIFY2(!reply.isError(), qPrintable(reply.error().message()));
    QCOMPARE(takeSent(), QStringList{request.description()});
}

void LiveMessagesTest::aStepIsOneCallToo()
{
    mService.setStateful(true);
    makeReady();
    mObjects->taskSwitcher.next();
    TRY_COMPARE(mObjects->taskSwitcher.getCurrentView(), QStringLiteral("b"));
    QCOMPARE(takeSent(), QStringList{setCurrentViewCall(QStringLiteral("b"))});
}

void LiveMessagesTest::whatCannotSucceedIsNotSent()
{
    makeReady();
    TelvaroTaskSwitcher& switcher = mObjects->taskSwitcher;
    const auto isRefused = [](const QDBusPendingCall& call) {
        return call.isFinished() && call.error().type() == QDBusError::InvalidArgs;
    };
    QVERIFY(isRefused(switcher.switchTo(QString())));
    QVERIFY(isRefused(switcher.switchToView(QStringLiteral("x"), 3)));
    QVERIFY(isRefused(switcher.switchToView(QStringLiteral("y"), 0)));
    QVERIFY(isRefused(TelvaroRequests::captureScreenShot(QStringLiteral("/no/such/directory"))));
    emitPropertiesChanged(QStringLiteral("{'currentView': <'unknown'>}"));
    QVERIFY(isRefused(switcher.next()));
    QVERIFY(isRefused(switcher.previous()));
    setViews(makeViews(1), QStringLiteral("a"));
    emitPropertiesChanged(QStringLiteral("@a{sv} {}"), {QStringLiteral("views"), QStringLiteral("currentView")});
    TRY_COMPARE(switcher.getStatus(), Status::Ready);
    mService.takeCalls();
    // The only view of its application is where a step leads to.
    for (const QDBusPendingReply<>& reply : {switcher.next(), switcher.previous()}) {
        QVERIFY(waitFor(reply));
        QVERIFY(!reply.isError());
    }
    QCOMPARE(mService.takeDescriptions(), QStringList());
}

void LiveMessagesTest::gettersSendNothing()
{
    makeReady();
    for (int count = 0; count < 10; ++count) {
        QCOMPARE(mObjects->taskSwitcher.getViews()->getViews().size(), 3);
        QCOMPARE(mObjects->taskSwitcher.getViews()->get(0).value(QStringLiteral("uuid")).toString(),
                 QStringLiteral("a"));
        QCOMPARE(mObjects->taskSwitcher.getCurrentView(), QStringLiteral("a"));
        QCOMPARE(mObjects->screen.getOrientation(), QStringLiteral("0"));
        QCOMPARE(mObjects->presence.getStatus(), Status::Ready);
    }
    QCOMPARE(takeSent(), QStringList());
}

TELVARO_TEST_MAIN(LiveMessagesTest)
#include "LiveMessagesTest.moc"
