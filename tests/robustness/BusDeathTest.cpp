// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "BusRelay.h"
#include "OperationProcess.h"
#include "Operations.h"
#include "PrivateBus.h"
#include "Scenario.h"
#include "ScriptedServiceProcess.h"
#include "ServiceCall.h"
#include "TestMain.h"
#include "Warnings.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTest>

namespace {

const QString cIntrospect = QStringLiteral("Introspect");

/// The time limit for an operation that has lost the bus.
const qint64 cReturnTime = 1000;

/// A bus with the service of Scenario and an application on it.
struct Stage
{
    Stage()
    {
        service.start();
        Scenario::set(service);
        service.own();
    }

    PrivateBus bus;
    ScriptedServiceProcess service;
    OperationProcess application;
};

/// As above, with a relay between application and bus.
struct RelayedStage : Stage
{
    BusRelay relay;
};

// QtTest prints only the first difference of lists.
QString words(const QStringList& list)
{
    return list.join(QLatin1Char(' '));
}

QStringList members(const QString& operation)
{
    QStringList members;
    for (const Message& message : Operations::messages(operation)) {
        members.append(message.member);
    }
    return members;
}

} // namespace

/// The bus daemon dies while an application waits for each reply, and at each message. Every case has its own bus and
/// application.
class BusDeathTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyCallToTheServiceReturns_data();
    void everyCallToTheServiceReturns();
    void everyFirstCallToAStoppedBusReturns_data();
    void everyFirstCallToAStoppedBusReturns();
    void everyOperationSendsTheMessagesItIsKnownFor_data();
    void everyOperationSendsTheMessagesItIsKnownFor();
    void everyMessageMayBeTheLast_data();
    void everyMessageMayBeTheLast();
    void everyOperationFailsOnABusThatHasDied();
    void everyOperationFailsWithoutABusFromTheStart();
    void cleanupTestCase();

private:
    static void expectFailureFrom(Stage& stage, const QString& operation);
    static void expectFailuresFromNowOn(OperationProcess& application);
    static void expectFailures(OperationProcess& application, const QString& viewsWarning);
    void expectFailuresOfNewConnectors(OperationProcess& application);

    Scenario mScenario;
    int mStepCount = 0;
    int mMessageCount = 0;
};

void BusDeathTest::expectFailureFrom(Stage& stage, const QString& operation)
{
    QElapsedTimer timer;
    timer.start();
    stage.bus.kill();
    const Outcome outcome = stage.application.finish();
    QVERIFY2(timer.elapsed() < cReturnTime, qPrintable(QString::number(timer.elapsed())));
    QVERIFY2(Operations::isFailure(operation, outcome.result), qPrintable(outcome.result));
    QVERIFY2(Operations::isFailureLog(outcome.log), qPrintable(outcome.log.join(QLatin1Char('\n'))));
    expectFailuresFromNowOn(stage.application);
}

void BusDeathTest::expectFailuresFromNowOn(OperationProcess& application)
{
    for (const QString& later : Operations::names()) {
        const Outcome failure = application.perform(later);
        QVERIFY2(failure.milliseconds < cReturnTime, qPrintable(later));
        QVERIFY2(Operations::isFailure(later, failure.result), qPrintable(later + QLatin1Char(' ') + failure.result));
        QVERIFY2(Operations::isFailureLog(failure.log), qPrintable(failure.log.join(QLatin1Char('\n'))));
    }
    QCOMPARE(application.turn().log, QStringList());
    QCOMPARE(application.destroy().log, QStringList());
    QVERIFY(application.isRunning());
}

void BusDeathTest::everyCallToTheServiceReturns_data()
{
    QTest::addColumn<int>("index");
    const QList<ServiceCall> calls = ServiceCall::introspections() + ServiceCall::all();
    for (int index = 0; index < calls.size(); ++index) {
        const ServiceCall& call = calls.at(index);
        QTest::addRow("%s: %s %s (%d)", qPrintable(call.operation), qPrintable(call.member), qPrintable(call.property),
                      call.number)
            << index;
    }
}

void BusDeathTest::everyCallToTheServiceReturns()
{
    QFETCH(int, index);
    const QList<ServiceCall> calls = ServiceCall::introspections() + ServiceCall::all();
    const ServiceCall& call = calls.at(index);
    Stage stage;
    stage.application.start();
    if (call.member == cIntrospect) {
        stage.application.turn();
    } else {
        stage.application.prepare();
    }
    call.script(stage.service, Behaviour::silence());
    stage.service.takeCalls();
    stage.application.begin(call.operation);
    int remaining = call.number;
    const bool arrived = QTest::qWaitFor(
        [&] {
            for (const RecordedCall& recorded : stage.service.takeCalls()) {
                const bool isOfThatKind = recorded.path == call.path && recorded.member == call.member
                    && (call.property.isEmpty() || recorded.arguments.value(1).contains(call.property));
                remaining -= isOfThatKind ? 1 : 0;
            }
            return remaining == 0;
        },
        ChildProcess::cDeadline);
    QVERIFY(arrived);
    expectFailureFrom(stage, call.operation);
    ++mStepCount;
}

void BusDeathTest::everyFirstCallToAStoppedBusReturns_data()
{
    QTest::addColumn<QString>("operation");
    for (const QString& operation : Operations::names()) {
        if (operation != QLatin1String("processNameToPid")) {
            QTest::addRow("%s", qPrintable(operation)) << operation;
        }
    }
}

void BusDeathTest::everyFirstCallToAStoppedBusReturns()
{
    QFETCH(QString, operation);
    Stage stage;
    stage.application.start();
    stage.application.prepare();
    stage.bus.freeze();
    stage.application.begin(operation);
    QVERIFY(QTest::qWaitFor(
        [&] {
            return stage.application.isBlocked();
        },
        ChildProcess::cDeadline));
    expectFailureFrom(stage, operation);
    ++mStepCount;
}

void BusDeathTest::everyOperationSendsTheMessagesItIsKnownFor_data()
{
    QTest::addColumn<QString>("operation");
    for (const QString& operation : Operations::names()) {
        QTest::addRow("%s", qPrintable(operation)) << operation;
    }
}

void BusDeathTest::everyOperationSendsTheMessagesItIsKnownFor()
{
    QFETCH(QString, operation);
    RelayedStage stage;
    stage.application.start();
    stage.application.prepareFor(operation);
    stage.relay.takeMessages();
    QCOMPARE(stage.application.perform(operation).result, Operations::result(operation));
    // A round trip to the bus, so that all messages before it are recorded.
    stage.application.turn();
    QCOMPARE(words(stage.relay.takeMessages()), words(members(operation) + QStringList(QStringLiteral("GetId"))));
}

void BusDeathTest::everyMessageMayBeTheLast_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<int>("number");
    for (const QString& operation : Operations::names()) {
        const QStringList all = members(operation);
        for (int number = 1; number <= all.size(); ++number) {
            QTest::addRow("%s: %d, %s", qPrintable(operation), number, qPrintable(all.at(number - 1)))
                << operation << number;
        }
    }
}

void BusDeathTest::everyMessageMayBeTheLast()
{
    QFETCH(QString, operation);
    QFETCH(int, number);
    RelayedStage stage;
    stage.application.start();
    stage.application.prepareFor(operation);
    stage.relay.takeMessages();
    stage.relay.endAt(number);
    const Outcome outcome = stage.application.perform(operation);
    // The last messages of a construction expect no reply.
    QVERIFY(QTest::qWaitFor(
        [&stage] {
            return stage.relay.hasEnded();
        },
        ChildProcess::cDeadline));
    QCOMPARE(words(stage.relay.takeMessages()), words(members(operation).mid(0, number)));
    QVERIFY2(outcome.milliseconds < cReturnTime, qPrintable(QString::number(outcome.milliseconds)));
    QVERIFY2(Operations::isFailure(operation, outcome.result), qPrintable(outcome.result));
    QCOMPARE(outcome.log, Operations::messages(operation).at(number - 1).log);
    expectFailuresFromNowOn(stage.application);
    ++mMessageCount;
}

void BusDeathTest::everyOperationFailsOnABusThatHasDied()
{
    Stage stage;
    stage.application.start();
    stage.application.prepare();
    stage.bus.kill();
    stage.application.turn();
    // A proxy that has seen an owner stays valid.
    expectFailures(stage.application, Warnings::cUnreadViews);
    stage.application.destroy();
    expectFailuresOfNewConnectors(stage.application);
}

void BusDeathTest::everyOperationFailsWithoutABusFromTheStart()
{
    PrivateBus bus;
    bus.kill();
    OperationProcess application;
    application.start();
    expectFailuresOfNewConnectors(application);
}

void BusDeathTest::expectFailuresOfNewConnectors(OperationProcess& application)
{
    QCOMPARE(application.prepare().log,
             (QStringList{Warnings::cUnsubscribedTaskSwitcher, Warnings::cAbsent,
                          Warnings::unconverted(QStringLiteral("screenSaverActive")), Warnings::cUnsubscribedScreen}));
    expectFailures(application, Warnings::cInvalid);
    QCOMPARE(application.destroy().log, QStringList());
    ++mStepCount;
}

void BusDeathTest::expectFailures(OperationProcess& application, const QString& viewsWarning)
{
    for (const QString& operation : Operations::names()) {
        const Outcome outcome = application.perform(operation);
        QVERIFY2(outcome.milliseconds < cReturnTime, qPrintable(operation));
        QVERIFY2(outcome.result == Operations::failure(operation), qPrintable(operation + outcome.result));
        QStringList log = Operations::messages(operation).value(0).log;
        log.replaceInStrings(Warnings::cUnreadViews, viewsWarning);
        QVERIFY2(outcome.log == log, qPrintable(operation + outcome.log.join(QLatin1Char('\n'))));
    }
}

void BusDeathTest::cleanupTestCase()
{
    qInfo("%d steps; %d messages that were the last", mStepCount, mMessageCount);
}

int main(int argc, char** argv)
{
    prepareTestEnvironment();
    QCoreApplication application(argc, argv);
    BusDeathTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "BusDeathTest.moc"
