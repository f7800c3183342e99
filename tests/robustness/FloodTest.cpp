// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ConnectorFixture.h"
#include "Operations.h"
#include "PrivateBus.h"
#include "ProcessMemory.h"
#include "Scenario.h"
#include "SignalRecorder.h"
#include "TestMain.h"
#include "ValueText.h"

#include <QAbstractEventDispatcher>
#include <QElapsedTimer>
#include <QEventLoop>

#include <memory>

namespace {

const int cFlood = 50000;
const int cFloodDuringCall = 5000;
/// The memory limit per queued notification, below the size of a reply.
const qint64 cKibibytesPerNotification = 2;

const QString cTaskSwitcherPath = QStringLiteral("/taskswitcher");
const QString cScreenPath = QStringLiteral("/screen");

ServiceSignal change(const QString& path, const char* changed, int count = 1)
{
    ServiceSignal signal =
        ServiceSignal::propertiesChanged(path, QStringLiteral("de.Telvaro.any"), QString::fromLatin1(changed));
    signal.count = count;
    return signal;
}

// Qt's GLib event dispatcher does not handle events queued before an inner event loop until it is woken.
void runInnerLoop(QEventLoop& loop)
{
    QAbstractEventDispatcher::instance()->wakeUp();
    loop.exec();
}

} // namespace

/// Floods of notifications, and what slots may do while handling them.
class FloodTest : public ConnectorFixture
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void notificationsBehindABlockingCallAreHandledInOrder();
    void notificationsOfADeletedConnectorAreDropped();
    void taskSwitcherMayBeDeletedInItsSlots();
    void screenMayBeDeletedInItsSlots_data();
    void screenMayBeDeletedInItsSlots();
    void slotsMayCallEveryOperation();
    void slotsMayRunAnEventLoop();
    void connectorMayBeDeletedInAnEventLoopOfItsSlot();
    void cleanupTestCase();

private:
    Scenario mScenario;
    QString mFigures;
};

void FloodTest::init()
{
    ConnectorFixture::init();
    Scenario::set(mService);
}

void FloodTest::notificationsBehindABlockingCallAreHandledInOrder()
{
    TelvaroTaskSwitcherDBusConnector taskSwitcher;
    TelvaroScreenDBusConnector screen;
    SignalRecorder recorder(taskSwitcher, screen);

    // Measured before the first notification can arrive.
    const qint64 residentBefore = ProcessMemory::resident();
    ProcessMemory::resetPeak();
    QElapsedTimer timer;
    timer.start();

    // Notifications of one kind alternate with the other; the last arrive during the call.
    QStringList expected;
    Behaviour answer = Behaviour::reply({ValueText::variant(Scenario::views())});
    for (int run = 1; expected.size() < cFlood; ++run) {
        const int count = qMin(run, cFlood - 1 - expected.size());
        const ServiceSignal views = change(cTaskSwitcherPath, "{'views': <1>}", count);
        const ServiceSignal currentView = change(cTaskSwitcherPath, "{'currentView': <'one'>}");
        if (expected.size() < cFlood - cFloodDuringCall) {
            mService.emitSignal(views);
            mService.emitSignal(currentView);
        } else {
            answer = answer.withSignal(views).withSignal(currentView);
        }
        for (int number = 0; number < count; ++number) {
            expected.append(QStringLiteral("viewsChanged"));
        }
        expected.append(QStringLiteral("currentViewChanged:one"));
    }
    mService.scriptProperty(QStringLiteral("Get"), cTaskSwitcherPath, QStringLiteral("views"),
                            {answer, Behaviour::reply({ValueText::variant(Scenario::views())})});
    QCOMPARE(taskSwitcher.getViews().size(), 3);
    QCOMPARE(recorder.take(), QStringList());
    PrivateBus::deliver();
    QCOMPARE(recorder.take(), expected);

    const qint64 peak = ProcessMemory::peak() - residentBefore;
    mFigures = QStringLiteral("%1 notifications in %2 ms, at most %3 KiB meanwhile")
                   .arg(expected.size())
                   .arg(timer.elapsed())
                   .arg(peak);
    if (ProcessMemory::isMeaningful()) {
        QVERIFY(peak < cFlood * cKibibytesPerNotification);
    }
}

void FloodTest::notificationsOfADeletedConnectorAreDropped()
{
    auto taskSwitcher = std::make_unique<TelvaroTaskSwitcherDBusConnector>();
    auto screen = std::make_unique<TelvaroScreenDBusConnector>();
    SignalRecorder recorder(*taskSwitcher, *screen);
    mService.emitSignal(change(cTaskSwitcherPath, "{'views': <1>}", 100));
    mService.emitSignal(change(cScreenPath, "{'fullScreen': <1>, 'orientation': <1>}", 100));
    // Receives the notifications without delivering them.
    taskSwitcher->getViews();
    taskSwitcher.reset();
    screen.reset();
    PrivateBus::deliver();
    QCOMPARE(recorder.take(), QStringList());
}

void FloodTest::taskSwitcherMayBeDeletedInItsSlots()
{
    for (const char* const changed : {"{'views': <1>}", "{'currentView': <'one'>}"}) {
        auto* const taskSwitcher = new TelvaroTaskSwitcherDBusConnector;
        int count = 0;
        const auto deleteConnector = [&count, taskSwitcher] {
            ++count;
            delete taskSwitcher;
        };
        QObject::connect(taskSwitcher, &TelvaroTaskSwitcherDBusConnector::viewsChanged, deleteConnector);
        QObject::connect(taskSwitcher, &TelvaroTaskSwitcherDBusConnector::currentViewChanged, deleteConnector);
        mService.emitSignal(change(cTaskSwitcherPath, changed, 3));
        PrivateBus::deliver();
        QCOMPARE(count, 1);
    }
}

void FloodTest::screenMayBeDeletedInItsSlots_data()
{
    QTest::addColumn<int>("survived");
    QTest::addRow("the first one") << 0;
    QTest::addRow("the second one") << 1;
    QTest::addRow("the third one") << 2;
}

void FloodTest::screenMayBeDeletedInItsSlots()
{
    QFETCH(int, survived);
    // Becomes active only after the connector has read the opposite.
    mService.setProperty(cScreenPath, QStringLiteral("de.Telvaro.screen"), QStringLiteral("screenSaverActive"),
                         QStringLiteral("false"));
    auto* const screen = new TelvaroScreenDBusConnector;
    mService.setProperty(cScreenPath, QStringLiteral("de.Telvaro.screen"), QStringLiteral("screenSaverActive"),
                         QStringLiteral("true"));
    int count = 0;
    const auto deleteConnector = [&count, survived, screen] {
        if (++count > survived) {
            delete screen;
        }
    };
    QObject::connect(screen, &TelvaroScreenDBusConnector::screenSaverActiveChanged, deleteConnector);
    QObject::connect(screen, &TelvaroScreenDBusConnector::screenOrientationChanged, deleteConnector);
    QObject::connect(screen, &TelvaroScreenDBusConnector::fullScreenChanged, deleteConnector);
    mService.emitSignal(change(cScreenPath, "{'fullScreen': <1>, 'orientation': <1>, 'screenSaverActive': <1>}", 2));
    PrivateBus::deliver();
    QCOMPARE(count, survived + 1);
}

void FloodTest::slotsMayCallEveryOperation()
{
    Operations operations;
    operations.prepare();
    int calls = 0;
    const auto callEverything = [&] {
        for (const QString& operation : Operations::names()) {
            QCOMPARE(operations.perform(operation), Operations::result(operation));
            ++calls;
        }
    };
    QObject::connect(&operations.taskSwitcher(), &TelvaroTaskSwitcherDBusConnector::viewsChanged, callEverything);
    QObject::connect(&operations.taskSwitcher(), &TelvaroTaskSwitcherDBusConnector::currentViewChanged, callEverything);
    QObject::connect(&operations.screen(), &TelvaroScreenDBusConnector::screenOrientationChanged, callEverything);
    QObject::connect(&operations.screen(), &TelvaroScreenDBusConnector::fullScreenChanged, callEverything);
    const int notifications = 10;
    mService.emitSignal(change(cTaskSwitcherPath, "{'views': <1>}", notifications));
    mService.emitSignal(change(cTaskSwitcherPath, "{'currentView': <1>}", notifications));
    mService.emitSignal(change(cScreenPath, "{'fullScreen': <1>, 'orientation': <1>}", notifications));
    PrivateBus::deliver();
    // The screen's values change once.
    QCOMPARE(calls, (2 * notifications + 2) * Operations::names().size());
}

void FloodTest::slotsMayRunAnEventLoop()
{
    TelvaroTaskSwitcherDBusConnector taskSwitcher;
    const int notifications = 200;
    int entered = 0;
    int left = 0;
    QObject::connect(&taskSwitcher, &TelvaroTaskSwitcherDBusConnector::viewsChanged, &taskSwitcher, [&] {
        if (++entered < notifications) {
            QEventLoop loop;
            QObject::connect(&taskSwitcher, &TelvaroTaskSwitcherDBusConnector::currentViewChanged, &loop,
                             &QEventLoop::quit);
            runInnerLoop(loop);
        }
        ++left;
    });
    mService.emitSignal(change(cTaskSwitcherPath, "{'views': <1>}", notifications));
    mService.emitSignal(change(cTaskSwitcherPath, "{'currentView': <'one'>}"));
    QVERIFY(QTest::qWaitFor(
        [&] {
            return left == notifications;
        },
        ChildProcess::cDeadline));
    QCOMPARE(entered, notifications);
}

void FloodTest::connectorMayBeDeletedInAnEventLoopOfItsSlot()
{
    auto* const screen = new TelvaroScreenDBusConnector;
    auto* const taskSwitcher = new TelvaroTaskSwitcherDBusConnector;
    bool hasReturned = false;
    QEventLoop loop;
    QObject::connect(screen, &TelvaroScreenDBusConnector::screenOrientationChanged, &loop, [&] {
        runInnerLoop(loop);
        hasReturned = true;
    });
    QObject::connect(taskSwitcher, &TelvaroTaskSwitcherDBusConnector::viewsChanged, &loop, [&] {
        delete screen;
        delete taskSwitcher;
        loop.quit();
    });
    mService.emitSignal(change(cScreenPath, "{'orientation': <1>, 'fullScreen': <1>}"));
    mService.emitSignal(change(cTaskSwitcherPath, "{'views': <1>}", 3));
    QVERIFY(QTest::qWaitFor(
        [&] {
            return hasReturned;
        },
        ChildProcess::cDeadline));
    PrivateBus::deliver();
}

void FloodTest::cleanupTestCase()
{
    qInfo("%s", qPrintable(mFigures));
}

TELVARO_TEST_MAIN(FloodTest)

#include "FloodTest.moc"
