// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "BusMonitorProcess.h"
#include "Operations.h"
#include "PrivateBus.h"
#include "Scenario.h"
#include "TaskSwitcherFixture.h"
#include "TestMain.h"
#include "Warnings.h"

namespace {

const QString cPresenceQuery = QStringLiteral("/org/freedesktop/DBus org.freedesktop.DBus.NameHasOwner "
                                              "s('" TELVARO_SERVICE_NAME "')");

} // namespace

/// Nothing is cached and nothing is asked twice: every operation makes exactly the calls that it needs.
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
    QStringList takeMembers();

    Scenario mScenario;
    BusMonitorProcess mMonitor;
    Operations mOperations;
};

void CallsPerOperationTest::initTestCase()
{
    TaskSwitcherFixture::initTestCase();
    mOperations.prepare();
    mMonitor.start();
}

QStringList CallsPerOperationTest::takeMembers()
{
    QStringList members;
    for (const RecordedCall& call : mMonitor.takeCalls()) {
        members.append(call.member);
        if (call.destination != QLatin1String(TELVARO_SERVICE_NAME)) {
            [&call] {
                QCOMPARE(call.description(), cPresenceQuery);
            }();
        }
    }
    return members;
}

void CallsPerOperationTest::anOperationMakesTheCallsThatItNeeds_data()
{
    QTest::addColumn<QString>("operation");
    for (const QString& operation : Operations::names()) {
        // BusDeathTest checks the messages of constructions.
        if (!Operations::isConstruction(operation)) {
            QTest::newRow(qPrintable(operation)) << operation;
        }
    }
}

void CallsPerOperationTest::anOperationMakesTheCallsThatItNeeds()
{
    QFETCH(const QString, operation);
    QStringList expected;
    for (const Message& message : Operations::messages(operation)) {
        expected.append(message.member);
    }
    Scenario::set(mService);
    mMonitor.takeCalls();
    QCOMPARE(mOperations.perform(operation), Operations::result(operation));
    QCOMPARE(takeMembers(), expected);
}

void CallsPerOperationTest::nothingIsSentToAnAbsentService()
{
    mService.release();
    PrivateBus::deliver();
    mMonitor.takeCalls();
    for (const QString& operation : Operations::names()) {
        if (!Operations::isConstruction(operation)) {
            QCOMPARE(mOperations.perform(operation), Operations::failure(operation));
            QStringList log = Operations::messages(operation).value(0).log;
            log.replaceInStrings(Warnings::cUnreadViews, Warnings::cInvalid);
            QCOMPARE(mLog->takeTexts(), log);
        }
    }
    const QStringList members = takeMembers();
    QVERIFY(!members.isEmpty());
    QCOMPARE(members.count(QStringLiteral("NameHasOwner")), members.size());
}

void CallsPerOperationTest::notificationsMakeTheCallsThatTheyNeed_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("changed");
    QTest::addColumn<QString>("members");
    QTest::newRow("current view") << "/taskswitcher"
                                  << "{'currentView': <'a'>}"
                                  << "Get NameHasOwner Get";
    QTest::newRow("views") << "/taskswitcher"
                           << "{'views': <1>}"
                           << "";
    QTest::newRow("current view and views") << "/taskswitcher"
                                            << "{'currentView': <'a'>, 'views': <1>}"
                                            << "Get NameHasOwner Get";
    QTest::newRow("unusable current view") << "/taskswitcher"
                                           << "{'currentView': <[1]>}"
                                           << "";
    QTest::newRow("screen saver") << "/screen"
                                  << "{'screenSaverActive': <true>}"
                                  << "NameHasOwner Get";
    QTest::newRow("all of the screen") << "/screen"
                                       << "{'screenSaverActive': <1>, 'orientation': <1>, 'fullScreen': <1>}"
                                       << "NameHasOwner Get NameHasOwner Get NameHasOwner Get";
    QTest::newRow("rest of the screen") << "/screen"
                                        << "{'screenSaverEnabled': <true>}"
                                        << "";
}

void CallsPerOperationTest::notificationsMakeTheCallsThatTheyNeed()
{
    QFETCH(const QString, path);
    QFETCH(const QString, changed);
    QFETCH(const QString, members);
    setViews({makeView(QStringLiteral("a"), {})}, QStringLiteral("a"));
    PrivateBus::synchronise();
    mService.emitSignal(ServiceSignal::propertiesChanged(path, {}, changed));
    PrivateBus::synchronise();
    mMonitor.takeCalls();
    QCoreApplication::processEvents();
    QCOMPARE(takeMembers().join(QLatin1Char(' ')), members);
    mLog->take();
}

TELVARO_TEST_MAIN(CallsPerOperationTest)
#include "CallsPerOperationTest.moc"
