// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "BusMonitorProcess.h"
#include "EveryOperation.h"
#include "PrivateBus.h"
#include "TaskSwitcherFixture.h"
#include "TestMain.h"

#include <QDBusVariant>
#include <QDir>

#include <functional>

namespace {

const QString cApplication = QStringLiteral("app");
const QString cPresenceQuery = QStringLiteral("/org/freedesktop/DBus org.freedesktop.DBus.NameHasOwner "
                                              "s('" TELVARO_SERVICE_NAME "')");

} // namespace

using Operation = std::function<void(Connectors&)>;
Q_DECLARE_METATYPE(Operation)

// Nothing is cached and nothing is asked twice: every operation makes exactly the calls that it needs.
class CallsPerOperationTest : public TaskSwitcherFixture
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void anOperationMakesTheCallsThatItNeeds_data();
    void anOperationMakesTheCallsThatItNeeds();
    void nothingIsSentToAnAbsentService();
    void notificationsMakeTheCallsThatTheyNeed_data();
    void notificationsMakeTheCallsThatTheyNeed();

private:
    void countCalls(int& toService, int& toBusDaemon);

    BusMonitorProcess mMonitor;
};

void CallsPerOperationTest::initTestCase()
{
    TaskSwitcherFixture::initTestCase();
    mMonitor.start();
}

void CallsPerOperationTest::countCalls(int& toService, int& toBusDaemon)
{
    toService = 0;
    toBusDaemon = 0;
    for (const RecordedCall& call : mMonitor.takeCalls()) {
        if (call.destination == QLatin1String(TELVARO_SERVICE_NAME)) {
            ++toService;
        } else {
            QCOMPARE(call.destination, QStringLiteral("org.freedesktop.DBus"));
            QCOMPARE(call.description(), cPresenceQuery);
            ++toBusDaemon;
        }
    }
}

void CallsPerOperationTest::anOperationMakesTheCallsThatItNeeds_data()
{
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<int>("toService");
    QTest::addColumn<int>("toBusDaemon");
    const auto addRow = [](const char* name, int toService, int toBusDaemon, const Operation& operation) {
        QTest::newRow(name) << operation << toService << toBusDaemon;
    };
    addRow("isInterfaceValid", 0, 1, [](Connectors& c) {
        QVERIFY(c.overlay.isInterfaceValid());
    });
    addRow("getViews", 1, 0, [](Connectors& c) {
        QCOMPARE(c.taskSwitcher.getViews().size(), 4);
    });
    addRow("getCurrentView", 2, 1, [](Connectors& c) {
        QCOMPARE(c.taskSwitcher.getCurrentView().uuid, QStringLiteral("a"));
    });
    addRow("setCurrentView", 1, 1, [](Connectors& c) {
        QVERIFY(!c.taskSwitcher.setCurrentView(makeView(QStringLiteral("b"), {})).isValid());
    });
    addRow("setCurrentView without uuid", 0, 1, [](Connectors& c) {
        QVERIFY(c.taskSwitcher.setCurrentView({}).isValid());
    });
    addRow("pidToTaskSwitcherEntry", 1, 0, [](Connectors& c) {
        QCOMPARE(c.taskSwitcher.pidToTaskSwitcherEntry(2).uuid, QStringLiteral("b"));
    });
    addRow("idsToTaskSwitcherEntry", 1, 0, [](Connectors& c) {
        QCOMPARE(c.taskSwitcher.idsToTaskSwitcherEntry(cApplication, 1).uuid, QStringLiteral("b"));
    });
    addRow("switchToView", 2, 1, [](Connectors& c) {
        QVERIFY(c.taskSwitcher.switchToView(cApplication, 1));
    });
    addRow("iterateViews to the next", 4, 2, [](Connectors& c) {
        QVERIFY(c.taskSwitcher.iterateViews(false));
    });
    addRow("iterateViews to the previous", 4, 2, [](Connectors& c) {
        QVERIFY(c.taskSwitcher.iterateViews(true));
    });
    addRow("processNameToPid", 0, 0, [](Connectors& c) {
        QVERIFY(c.taskSwitcher.processNameToPid(QStringLiteral("no-such-process")) == 4294967295);
    });
    addRow("surfaceToTop", 2, 1, [](Connectors& c) {
        c.taskSwitcher.surfaceToTop(QStringLiteral("no-such-process"));
    });
    addRow("isCurrentView", 2, 1, [](Connectors& c) {
        QVERIFY(!c.taskSwitcher.isCurrentView(QStringLiteral("no-such-process")));
    });
    addRow("enableScreenSaver", 1, 1, [](Connectors& c) {
        c.screen.enableScreenSaver();
    });
    addRow("disableScreenSaver", 1, 1, [](Connectors& c) {
        c.screen.disableScreenSaver();
    });
    addRow("setScreenSaverTimeout", 1, 1, [](Connectors& c) {
        c.screen.setScreenSaverTimeout(1);
    });
    addRow("isScreenSaverActive", 1, 1, [](Connectors& c) {
        QVERIFY(!c.screen.isScreenSaverActive());
    });
    addRow("getOrientation", 1, 1, [](Connectors& c) {
        QCOMPARE(c.screen.getOrientation(), QStringLiteral("0"));
    });
    addRow("setOrientation", 1, 1, [](Connectors& c) {
        c.screen.setOrientation(QStringLiteral("90"));
    });
    addRow("getFullScreen", 1, 1, [](Connectors& c) {
        QVERIFY(!c.screen.getFullScreen());
    });
    addRow("setFullScreen", 1, 1, [](Connectors& c) {
        c.screen.setFullScreen(true);
    });
    addRow("getProperty", 1, 1, [](Connectors& c) {
        c.screen.getProperty(QStringLiteral("orientation"));
    });
    addRow("setProperty", 1, 1, [](Connectors& c) {
        c.screen.setProperty(QStringLiteral("orientation"), QDBusVariant(1));
    });
    addRow("getOrientationPortrait", 0, 0, [](Connectors& c) {
        c.screen.getOrientationPortrait();
    });
    addRow("showGlobalOverlay", 1, 1, [](Connectors& c) {
        c.overlay.showGlobalOverlay(QStringLiteral("a"));
    });
    addRow("hideGlobalOverlay", 1, 1, [](Connectors& c) {
        c.overlay.hideGlobalOverlay();
    });
    addRow("notify", 1, 1, [](Connectors& c) {
        c.notification.notify({}, {}, {}, {});
    });
    addRow("captureScreenShot", 1, 1, [](Connectors& c) {
        QVERIFY(c.screenShot.captureScreenShot(QDir::tempPath()).has_value());
    });
    addRow("captureScreenShot into no directory", 0, 1, [](Connectors& c) {
        QVERIFY(!c.screenShot.captureScreenShot(QStringLiteral("/no/such")).has_value());
    });
}

void CallsPerOperationTest::anOperationMakesTheCallsThatItNeeds()
{
    QFETCH(const Operation, operation);
    QFETCH(const int, toService);
    QFETCH(const int, toBusDaemon);
    // An unknown process is that of a view, so that all of surfaceToTop() is done.
    setViews({makeView(QStringLiteral("a"), cApplication, 0, 1), makeView(QStringLiteral("b"), cApplication, 1, 2),
              makeView(QStringLiteral("c"), cApplication, 2, 3),
              makeView(QStringLiteral("d"), QStringLiteral("other"), 0, 4294967295)},
             QStringLiteral("a"));
    Connectors connectors;
    mMonitor.takeCalls();
    operation(connectors);
    int actuallyToService = 0;
    int actuallyToBusDaemon = 0;
    countCalls(actuallyToService, actuallyToBusDaemon);
    QCOMPARE(actuallyToService, toService);
    QCOMPARE(actuallyToBusDaemon, toBusDaemon);
    // Other tests look at what is logged.
    mLog->take();
}

void CallsPerOperationTest::nothingIsSentToAnAbsentService()
{
    Connectors connectors;
    mService.release();
    PrivateBus::deliver();
    mMonitor.takeCalls();
    for (const NamedOperation& operation : everyOperation()) {
        operation.call(connectors);
    }
    int toService = 0;
    int toBusDaemon = 0;
    countCalls(toService, toBusDaemon);
    QCOMPARE(toService, 0);
    QVERIFY(toBusDaemon > 0);
    mLog->take();
}

void CallsPerOperationTest::notificationsMakeTheCallsThatTheyNeed_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("changed");
    QTest::addColumn<int>("toService");
    QTest::addColumn<int>("toBusDaemon");
    QTest::newRow("current view") << "/taskswitcher"
                                  << "{'currentView': <'a'>}" << 2 << 1;
    QTest::newRow("views") << "/taskswitcher"
                           << "{'views': <1>}" << 0 << 0;
    QTest::newRow("current view and views") << "/taskswitcher"
                                            << "{'currentView': <'a'>, 'views': <1>}" << 2 << 1;
    QTest::newRow("unusable current view") << "/taskswitcher"
                                           << "{'currentView': <[1]>}" << 0 << 0;
    QTest::newRow("screen saver") << "/screen"
                                  << "{'screenSaverActive': <true>}" << 1 << 1;
    QTest::newRow("all of the screen") << "/screen"
                                       << "{'screenSaverActive': <1>, 'orientation': <1>, 'fullScreen': <1>}" << 3 << 3;
    QTest::newRow("rest of the screen") << "/screen"
                                        << "{'screenSaverEnabled': <true>}" << 0 << 0;
}

void CallsPerOperationTest::notificationsMakeTheCallsThatTheyNeed()
{
    QFETCH(const QString, path);
    QFETCH(const QString, changed);
    QFETCH(const int, toService);
    QFETCH(const int, toBusDaemon);
    setViews({makeView(QStringLiteral("a"), {})}, QStringLiteral("a"));
    const Connectors connectors;
    PrivateBus::synchronise();
    mService.emitSignal(ServiceSignal::propertiesChanged(path, {}, changed));
    PrivateBus::synchronise();
    mMonitor.takeCalls();
    QCoreApplication::processEvents();
    int actuallyToService = 0;
    int actuallyToBusDaemon = 0;
    countCalls(actuallyToService, actuallyToBusDaemon);
    QCOMPARE(actuallyToService, toService);
    QCOMPARE(actuallyToBusDaemon, toBusDaemon);
    mLog->take();
}

TELVARO_TEST_MAIN(CallsPerOperationTest)
#include "CallsPerOperationTest.moc"
