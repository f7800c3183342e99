// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "LiveFixture.h"
#include "TestMain.h"

#include <TelvaroRequests.h>
#include <TelvaroScreen.h>
#include <TelvaroTaskSwitcher.h>

#include <QAbstractItemModelTester>
#include <QDBusPendingCallWatcher>
#include <QDeadlineTimer>
#include <QDir>
#include <QSignalSpy>
#include <QThread>

/// The whole of the live layer with a service that behaves.
class LiveLayerTest : public LiveFixture
{
    Q_OBJECT

private Q_SLOTS:
    void aTaskSwitcherBecomesReadyWithTheServicesViews()
    {
        setViews(
            {makeView(QStringLiteral("a"), QStringLiteral("x")), makeView(QStringLiteral("b"), QStringLiteral("y"))},
            QStringLiteral("b"));
        TelvaroTaskSwitcher switcher;
        const QAbstractItemModelTester tester(switcher.getViews(),
                                              QAbstractItemModelTester::FailureReportingMode::Fatal);
        QCOMPARE(switcher.getStatus(), TelvaroLiveObject::Loading);
        QTRY_COMPARE_WITH_TIMEOUT(switcher.getStatus(), TelvaroLiveObject::Ready, ChildProcess::cDeadline);
        QCOMPARE(uuids(switcher.getViews()->getViews()), QStringList({QStringLiteral("a"), QStringLiteral("b")}));
        QCOMPARE(switcher.getCurrentView(), QStringLiteral("b"));
        QCOMPARE(currentRows(*switcher.getViews()), QStringList({QStringLiteral("b")}));
        QCOMPARE(switcher.getViews()->getCurrentRow(), 1);
        QCOMPARE(mService.takeDescriptions(), QStringList({getViewsCall(), getCurrentViewCall()}));
    }

    void quickStepsAddUp()
    {
        setViews({makeView(QStringLiteral("a"), QStringLiteral("x"), 0),
                  makeView(QStringLiteral("b"), QStringLiteral("x"), 1),
                  makeView(QStringLiteral("c"), QStringLiteral("x"), 2),
                  makeView(QStringLiteral("d"), QStringLiteral("y"))},
                 QStringLiteral("a"));
        mService.setStateful(true);
        TelvaroTaskSwitcher switcher;
        QTRY_COMPARE_WITH_TIMEOUT(switcher.getStatus(), TelvaroLiveObject::Ready, ChildProcess::cDeadline);
        mService.takeCalls();

        QSignalSpy changes(switcher.getViews(), &QAbstractItemModel::dataChanged);
        switcher.next();
        const QDBusPendingReply<> second = switcher.next();
        QVERIFY(waitFor(second));
        QVERIFY(!second.isError());
        QTRY_COMPARE_WITH_TIMEOUT(switcher.getCurrentView(), QStringLiteral("c"), ChildProcess::cDeadline);
        QCOMPARE(currentRows(*switcher.getViews()), QStringList({QStringLiteral("c")}));
        QCOMPARE(changes.size(), 4);
        QCOMPARE(changes.last().at(2).value<QVector<int>>(), QVector<int>({TelvaroViewModel::CurrentRole}));
        QCOMPARE(mService.takeDescriptions(),
                 QStringList({setCurrentViewCall(QStringLiteral("b")), setCurrentViewCall(QStringLiteral("c"))}));
        switcher.next();
        QTRY_COMPARE_WITH_TIMEOUT(switcher.getCurrentView(), QStringLiteral("a"), ChildProcess::cDeadline);
    }

    void aRefusedRequestIsReported()
    {
        scriptSetCurrentView({Behaviour::error(QStringLiteral("org.example.Error.Failed"), QStringLiteral("no"))});
        TelvaroTaskSwitcher switcher;
        QSignalSpy failures(&switcher, &TelvaroLiveObject::requestFailed);
        const QDBusPendingReply<> reply = switcher.switchTo(QStringLiteral("z"));
        QVERIFY(waitFor(reply));
        QCOMPARE(reply.error().name(), QStringLiteral("org.example.Error.Failed"));
        QTRY_COMPARE_WITH_TIMEOUT(failures.size(), 1, ChildProcess::cDeadline);
    }

    // Of several watchers of a call, Qt forgets those that are made after the answer: the library's own come later.
    void aReplyThatIsFinishedBeforeItIsWatchedIsReportedToAll()
    {
        scriptSetCurrentView({Behaviour::error(QStringLiteral("org.example.Error.Failed"), QStringLiteral("no"))});
        TelvaroTaskSwitcher switcher;
        const QSignalSpy failures(&switcher, &TelvaroLiveObject::requestFailed);
        const QDBusPendingReply<> reply = switcher.switchTo(QStringLiteral("z"));
        const QDeadlineTimer deadline(ChildProcess::cDeadline);
        while (!reply.isFinished() && !deadline.hasExpired()) {
            QThread::yieldCurrentThread();
        }
        QVERIFY(reply.isFinished());
        const QDBusPendingCallWatcher watcher(reply);
        const QSignalSpy finished(&watcher, &QDBusPendingCallWatcher::finished);
        QTRY_COMPARE_WITH_TIMEOUT(finished.size(), 1, ChildProcess::cDeadline);
        QTRY_COMPARE_WITH_TIMEOUT(failures.size(), 1, ChildProcess::cDeadline);
    }

    void aScreenFollowsWhatIsWrittenToIt()
    {
        mService.setStateful(true);
        TelvaroScreen screen;
        QTRY_COMPARE_WITH_TIMEOUT(screen.getStatus(), TelvaroLiveObject::Ready, ChildProcess::cDeadline);
        QSignalSpy changes(&screen, &TelvaroScreen::orientationChanged);
        screen.setOrientation(QStringLiteral("90"));
        QVERIFY(screen.setProperty("fullScreen", true));
        QTRY_VERIFY_WITH_TIMEOUT(screen.isFullScreen(), ChildProcess::cDeadline);
        QCOMPARE(screen.getOrientation(), QStringLiteral("90"));
        QCOMPARE(changes.size(), 1);
    }

    void anObjectFollowsTheService()
    {
        setViews({makeView(QStringLiteral("a"), QStringLiteral("x"))}, QStringLiteral("a"));
        mService.release();
        TelvaroLiveObject presence;
        TelvaroTaskSwitcher switcher;
        QTRY_COMPARE_WITH_TIMEOUT(switcher.getStatus(), TelvaroLiveObject::Absent, ChildProcess::cDeadline);
        mService.own();
        QTRY_COMPARE_WITH_TIMEOUT(switcher.getStatus(), TelvaroLiveObject::Ready, ChildProcess::cDeadline);
        QCOMPARE(presence.getStatus(), TelvaroLiveObject::Ready);
        QCOMPARE(switcher.getViews()->getCount(), 1);
        mService.kill();
        QTRY_COMPARE_WITH_TIMEOUT(switcher.getStatus(), TelvaroLiveObject::Absent, ChildProcess::cDeadline);
        QCOMPARE(switcher.getViews()->getCount(), 0);
        QCOMPARE(switcher.getCurrentView(), QString());
    }

    void requestsReplyWithTheServicesAnswer()
    {
        mService.script(QStringLiteral("/org/freedesktop/Notifications"),
                        QStringLiteral("org.freedesktop.Notifications"), QStringLiteral("Notify"),
                        {Behaviour::reply({QStringLiteral("uint32 7")})});
        mService.script(QStringLiteral("/screenshot"), QStringLiteral("de.Telvaro.screenshot"),
                        QStringLiteral("ScreenShot"), {Behaviour::reply({QStringLiteral("'/tmp/shot.png'")})});
        const QDBusPendingReply<> shown = TelvaroRequests::showGlobalOverlay(QStringLiteral("text"));
        const QDBusPendingReply<> hidden = TelvaroRequests::hideGlobalOverlay();
        const QDBusPendingReply<uint> notified =
            TelvaroRequests::notify(QStringLiteral("i"), QStringLiteral("s"), QStringLiteral("b"));
        const QDBusPendingReply<QString> captured = TelvaroRequests::captureScreenShot(QDir::tempPath());
        const QDBusPendingReply<QString> refused = TelvaroRequests::captureScreenShot(QStringLiteral("/nowhere"));
        QVERIFY(waitFor(shown) && waitFor(hidden) && waitFor(notified) && waitFor(captured) && waitFor(refused));
        QVERIFY(!shown.isError());
        QVERIFY(!hidden.isError());
        QCOMPARE(notified.value(), 7U);
        QCOMPARE(captured.value(), QStringLiteral("/tmp/shot.png"));
        QCOMPARE(refused.error().type(), QDBusError::InvalidArgs);
        QCOMPARE(mService.takeDescriptions(),
                 QStringList(
                     {QStringLiteral("/globaloverlay de.Telvaro.globaloverlay.Show s('text')"),
                      QStringLiteral("/globaloverlay de.Telvaro.globaloverlay.Hide ()"),
                      QStringLiteral("/org/freedesktop/Notifications org.freedesktop.Notifications.Notify "
                                     "susssasa{sv}i('', uint32 0, 'i', 's', 'b', @as [], "
                                     "{'action-icons': <true>}, 0)"),
                      QStringLiteral("/screenshot de.Telvaro.screenshot.ScreenShot s('%1')").arg(QDir::tempPath())}));
    }
};

TELVARO_TEST_MAIN(LiveLayerTest)
#include "LiveLayerTest.moc"
