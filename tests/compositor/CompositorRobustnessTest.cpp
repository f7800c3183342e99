// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "CompositorBus.h"
#include "CompositorFixture.h"
#include "ProcessMemory.h"
#include "TestMain.h"

#include <QElapsedTimer>
#include <QLocalSocket>
#include <QRandomGenerator>

#include <vector>

class CompositorRobustnessTest : public CompositorFixture
{
    Q_OBJECT

private Q_SLOTS:
    void isIdleWhenNothingChanges();
    void twoHundredViews();
    void aFloodOfFrames();
    void aFloodOfTitles();
    void framesComeAtSixtyHertz();
    void aHiddenViewGetsNoFrames();
    void aClientThatTakesItsMemoryAwayHarmsOnlyItself();
    void aClientThatDiesWhileItDraws();
    void clientsThatComeAndGoLeaveNothingBehind();
    void theMemoryOfACrowdIsReturned();
    void garbageOnTheSocket();
    void aConnectionThatSaysNothing();
    void aHungClientDoesNotSlowTheOthers();
};

void CompositorRobustnessTest::isIdleWhenNothingChanges()
{
    const auto client = testClient();
    client->send("open a Quiet");
    client->waitFor("size 1 1024x566");
    screenShot();
    // Both programs are idle when the compositor's processor time does not advance for a while; hitting the deadline
    // fails the test.
    QElapsedTimer timer;
    timer.start();
    for (;;) {
        const qint64 before = mCompositor->processorTime();
        QTest::qWait(1000);
        if (mCompositor->processorTime() == before) {
            break;
        }
        QVERIFY2(timer.elapsed() < ChildProcess::cDeadline, "never idle");
    }
}

void CompositorRobustnessTest::twoHundredViews()
{
    constexpr int count = 200;
    const auto client = protocolClient();
    for (int i = 0; i < count; ++i) {
        client->send("open app" + QByteArray::number(i % 7) + " View " + QByteArray::number(i));
    }
    TRY_COMPARE(CompositorBus::views().size(), count);
    const QList<CompositorBus::View> views = CompositorBus::views();
    QSet<QString> uuids;
    for (const CompositorBus::View& view : views) {
        uuids.insert(view.uuid);
        const int number = view.info1.section(QLatin1Char(' '), 1).toInt();
        QCOMPARE(int(view.sortIndex), number / 7);
    }
    QCOMPARE(uuids.size(), count);
    for (const CompositorBus::View& view : views) {
        QCOMPARE(
            CompositorBus::errorOf(CompositorBus::set(CompositorBus::cTaskSwitcherPath, CompositorBus::cTaskSwitcher,
                                                      QStringLiteral("currentView"), view.uuid)),
            QString());
    }
    QCOMPARE(CompositorBus::currentView(), views.last().uuid);
    client->kill();
    TRY_COMPARE(CompositorBus::views().size(), 0);
    QCOMPARE(CompositorBus::currentView(), QString());
}

void CompositorRobustnessTest::aFloodOfFrames()
{
    const auto client = protocolClient();
    client->send("open a Flood");
    client->send("sync");
    client->waitFor("synced");
    client->send("commit 1 500");
    const qint64 before = mCompositor->residentMemory();
    client->send("commit 1 3000");
    client->send("sync");
    client->waitFor("synced");
    QCOMPARE(CompositorBus::views().size(), 1);
    QVERIFY(mCompositor->residentMemory() - before < 8 * 1024 * 1024);
}

void CompositorRobustnessTest::aFloodOfTitles()
{
    constexpr int count = 20000;
    const auto client = protocolClient();
    client->send("open a Flood");
    mMonitor->waitFor(QStringLiteral("currentView"));
    mMonitor->take();
    QElapsedTimer timer;
    timer.start();
    client->send("titles 1 " + QByteArray::number(count));
    TRY_COMPARE(CompositorBus::viewWithTitle(QStringLiteral("Title %1").arg(count)).appId, QStringLiteral("a"));
    // The first and the last change are signalled, but not each one between.
    PropertyMonitor::Change last;
    int signalCount = 0;
    do {
        last = mMonitor->waitFor(QStringLiteral("views"));
        ++signalCount;
        QList<CompositorBus::View> views;
        last.values.value(QStringLiteral("views")).value<QDBusArgument>() >> views;
        if (views.value(0).info1 == QStringLiteral("Title %1").arg(count)) {
            break;
        }
    } while (signalCount < count);
    QVERIFY2(signalCount <= 2 + timer.elapsed() / 20, qPrintable(QString::number(signalCount)));
    QCOMPARE(mMonitor->takeNames(), QStringList());
}

void CompositorRobustnessTest::framesComeAtSixtyHertz()
{
    constexpr int count = 60;
    const auto client = protocolClient();
    client->send("open a Frames");
    client->send("sync");
    client->waitFor("synced");
    client->send("frame 1");
    client->waitFor("frame 1");
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < count; ++i) {
        client->send("frame 1");
        client->waitFor("frame 1");
    }
    // Never faster; slower depends on the machine's load.
    QVERIFY2(timer.elapsed() >= count * 15, qPrintable(QString::number(timer.elapsed())));
}

void CompositorRobustnessTest::aHiddenViewGetsNoFrames()
{
    const auto client = protocolClient();
    client->send("open a Hidden");
    client->send("open a Shown");
    client->send("sync");
    client->waitFor("synced");
    client->send("frame 1");
    client->send("frame 2");
    QCOMPARE(client->waitFor("frame"), QByteArray("2"));
    CompositorBus::set(CompositorBus::cTaskSwitcherPath, CompositorBus::cTaskSwitcher, QStringLiteral("currentView"),
                       CompositorBus::viewWithTitle(QStringLiteral("Hidden")).uuid);
    QCOMPARE(client->waitFor("frame"), QByteArray("1"));
}

void CompositorRobustnessTest::aClientThatTakesItsMemoryAwayHarmsOnlyItself()
{
    expectComplaints(1);
    const auto other = protocolClient();
    other->send("open b Other");
    TRY_COMPARE(CompositorBus::views().size(), 1);
    const auto client = protocolClient();
    client->send("open a Liar");
    TRY_COMPARE(CompositorBus::views().size(), 2);
    client->send("truncate 1");
    client->waitFor("disconnected");
    TRY_COMPARE(CompositorBus::views().size(), 1);
    QVERIFY(other->isRunning());
    screenShot();
}

void CompositorRobustnessTest::aClientThatDiesWhileItDraws()
{
    for (int i = 0; i < 20; ++i) {
        const auto client = protocolClient();
        client->send("open a Dying");
        TRY_COMPARE(CompositorBus::views().size(), 1);
        client->send("commit 1 100000");
        screenShot();
        client->kill();
        TRY_COMPARE(CompositorBus::views().size(), 0);
    }
}

void CompositorRobustnessTest::clientsThatComeAndGoLeaveNothingBehind()
{
    const auto comeAndGo = [this](int count) {
        for (int i = 0; i < count; ++i) {
            const auto client = protocolClient();
            client->send("open a Guest");
            client->send("subsurface 1");
            client->send("sync");
            client->waitFor("synced");
            client->kill();
        }
        TRY_COMPARE(CompositorBus::views().size(), 0);
    };
    comeAndGo(20);
    const int openBefore = mCompositor->descriptorCount();
    const qint64 memoryBefore = mCompositor->residentMemory();
    comeAndGo(100);
    QCOMPARE(mCompositor->descriptorCount(), openBefore);
    const qint64 growth = mCompositor->residentMemory() - memoryBefore;
    QVERIFY2(growth < 4 * 1024 * 1024, qPrintable(QString::number(growth)));
}

void CompositorRobustnessTest::theMemoryOfACrowdIsReturned()
{
    constexpr int count = 50;
    // What the first client and the first picture load stays.
    {
        const auto client = testClient();
        client->send("open a First");
        TRY_COMPARE(CompositorBus::views().size(), 1);
        screenShot();
    }
    TRY_COMPARE(CompositorBus::views().size(), 0);
    const qint64 idle = mCompositor->anonymousMemory();
    {
        std::vector<std::unique_ptr<LineClient>> crowd;
        for (int i = 0; i < count; ++i) {
            crowd.push_back(testClient());
            crowd.back()->send("open a Guest");
        }
        TRY_COMPARE(CompositorBus::views().size(), count);
        for (const CompositorBus::View& view : CompositorBus::views()) {
            CompositorBus::set(CompositorBus::cTaskSwitcherPath, CompositorBus::cTaskSwitcher,
                               QStringLiteral("currentView"), view.uuid);
            screenShot();
        }
    }
    TRY_COMPARE(CompositorBus::views().size(), 0);
    if (ProcessMemory::isMeaningful()) {
        TRY_VERIFY(mCompositor->anonymousMemory() - idle <= 8 * 1024 * 1024);
    }
}

void CompositorRobustnessTest::garbageOnTheSocket()
{
    const auto client = protocolClient();
    client->send("open a Witness");
    TRY_COMPARE(CompositorBus::views().size(), 1);
    QRandomGenerator random(4711);
    for (int i = 0; i < 100; ++i) {
        QLocalSocket socket;
        socket.connectToServer(mCompositor->runtimeDirectory() + QLatin1Char('/') + mCompositor->display());
        QVERIFY(socket.waitForConnected(ChildProcess::cDeadline));
        std::vector<quint32> garbage(static_cast<std::size_t>(random.bounded(1, 500)));
        random.generate(garbage.begin(), garbage.end());
        // Some of the bytes look like requests to wl_display.
        if (i % 2 == 0) {
            garbage.front() = 1;
        }
        socket.write(reinterpret_cast<const char*>(garbage.data()),
                     static_cast<qint64>(garbage.size() * sizeof(quint32)));
        socket.waitForBytesWritten(1000);
        QCOMPARE(CompositorBus::views().size(), 1);
    }
    QVERIFY(client->isRunning());
}

void CompositorRobustnessTest::aConnectionThatSaysNothing()
{
    std::vector<std::unique_ptr<QLocalSocket>> sockets;
    for (int i = 0; i < 100; ++i) {
        sockets.push_back(std::make_unique<QLocalSocket>());
        sockets.back()->connectToServer(mCompositor->runtimeDirectory() + QLatin1Char('/') + mCompositor->display());
        QVERIFY(sockets.back()->waitForConnected(ChildProcess::cDeadline));
    }
    const auto client = protocolClient();
    client->send("open a Window");
    TRY_COMPARE(CompositorBus::views().size(), 1);
}

void CompositorRobustnessTest::aHungClientDoesNotSlowTheOthers()
{
    const auto hung = testClient();
    hung->send("open a Hung");
    TRY_COMPARE(CompositorBus::views().size(), 1);
    hung->freeze();
    const auto client = protocolClient();
    client->send("open b Lively");
    TRY_COMPARE(CompositorBus::views().size(), 2);
    for (int i = 0; i < 50; ++i) {
        client->send("title 1 Title " + QByteArray::number(i));
        client->send("frame 1");
        client->waitFor("frame 1");
        CompositorBus::set(CompositorBus::cScreenPath, CompositorBus::cScreen, QStringLiteral("fullScreen"),
                           i % 2 == 0);
    }
    TRY_COMPARE(CompositorBus::viewWithTitle(QStringLiteral("Title 49")).appId, QStringLiteral("b"));
    hung->thaw();
    hung->send("ping");
    hung->waitFor("pong");
    QCOMPARE(CompositorBus::views().size(), 2);
}

TELVARO_TEST_MAIN(CompositorRobustnessTest)

#include "CompositorRobustnessTest.moc"
