// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "OperationProcess.h"
#include "Operations.h"
#include "PrivateBus.h"
#include "Scenario.h"
#include "ScriptedServiceProcess.h"
#include "ServiceCall.h"
#include "TestMain.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTest>

#include <algorithm>

namespace {

const QString cIntrospectable = QStringLiteral("org.freedesktop.DBus.Introspectable");
const QString cIntrospect = QStringLiteral("Introspect");

/// How long an operation may take once it has lost the bus.
const qint64 cReturnTime = 1000;

QList<ServiceCall> introspections()
{
    const auto introspection = [](const char* operation, const char* path) {
        return ServiceCall{QLatin1String(operation), QLatin1String(path), cIntrospectable, cIntrospect, QString(), 1};
    };
    return {introspection("new TelvaroTaskSwitcherDBusConnector", "/taskswitcher"),
            introspection("new TelvaroScreenDBusConnector", "/screen"),
            introspection("new TelvaroGlobalOverlayDBusConnector", "/globaloverlay"),
            introspection("new TelvaroNotificationDBusConnector", "/org/freedesktop/Notifications"),
            introspection("new TelvaroScreenShotDBusConnector", "/screenshot")};
}

/// A bus with the service of Scenario and an application on it.
struct Stage
{
    Stage()
    {
        service.start();
        Scenario::set(service);
        service.own();
        application.start();
    }

    PrivateBus bus;
    ScriptedServiceProcess service;
    OperationProcess application;
};

} // namespace

/// The bus daemon dies in every step in which an application waits for an answer. Each case has a bus and an
/// application of its own.
class BusDeathTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyCallToTheServiceReturns_data();
    void everyCallToTheServiceReturns();
    void everyQueryOfTheBusReturns_data();
    void everyQueryOfTheBusReturns();
    void everyOperationFailsWithoutABusFromTheStart();
    void cleanupTestCase();

private:
    void expectFailureFrom(Stage& stage, const QString& operation);

    Scenario mScenario;
    int mStepCount = 0;
};

void BusDeathTest::expectFailureFrom(Stage& stage, const QString& operation)
{
    QElapsedTimer timer;
    timer.start();
    stage.bus.kill();
    const Outcome outcome = stage.application.finish();
    QVERIFY2(timer.elapsed() < cReturnTime, qPrintable(QString::number(timer.elapsed())));
    QVERIFY2(Scenario::isFailure(operation, outcome.result), qPrintable(outcome.result));
    QVERIFY2(Scenario::isFailureLog(outcome.log), qPrintable(outcome.log.join(QLatin1Char('\n'))));

    for (const QString& later : Operations::names()) {
        const Outcome failure = stage.application.perform(later);
        QVERIFY2(failure.milliseconds < cReturnTime, qPrintable(later));
        QVERIFY2(Scenario::isFailure(later, failure.result), qPrintable(later + QLatin1Char(' ') + failure.result));
        QVERIFY2(Scenario::isFailureLog(failure.log), qPrintable(failure.log.join(QLatin1Char('\n'))));
    }
    QCOMPARE(stage.application.turn().log, QStringList());
    QCOMPARE(stage.application.destroy().log, QStringList());
    QVERIFY(stage.application.isRunning());
    ++mStepCount;
}

void BusDeathTest::everyCallToTheServiceReturns_data()
{
    QTest::addColumn<int>("index");
    const QList<ServiceCall> calls = introspections() + ServiceCall::all();
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
    const QList<ServiceCall> calls = introspections() + ServiceCall::all();
    const ServiceCall& call = calls.at(index);
    Stage stage;
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
}

void BusDeathTest::everyQueryOfTheBusReturns_data()
{
    QTest::addColumn<QString>("operation");
    for (const QString& operation : Operations::names()) {
        if (operation != QLatin1String("processNameToPid")) {
            QTest::addRow("%s", qPrintable(operation)) << operation;
        }
    }
}

void BusDeathTest::everyQueryOfTheBusReturns()
{
    QFETCH(QString, operation);
    Stage stage;
    stage.application.prepare();
    stage.bus.freeze();
    stage.application.begin(operation);
    QVERIFY(QTest::qWaitFor(
        [&] {
            return stage.application.isBlocked();
        },
        ChildProcess::cDeadline));
    expectFailureFrom(stage, operation);
}

void BusDeathTest::everyOperationFailsWithoutABusFromTheStart()
{
    PrivateBus bus;
    bus.kill();
    OperationProcess application;
    application.start();
    for (const QString& operation : Operations::names()) {
        const Outcome outcome = application.perform(operation);
        QVERIFY2(outcome.milliseconds < cReturnTime, qPrintable(operation));
        QVERIFY2(Scenario::isFailure(operation, outcome.result), qPrintable(operation + outcome.result));
        QVERIFY2(Scenario::isFailureLog(outcome.log), qPrintable(outcome.log.join(QLatin1Char('\n'))));
    }
    QCOMPARE(application.destroy().log, QStringList());
    ++mStepCount;
}

void BusDeathTest::cleanupTestCase()
{
    qInfo("%d steps", mStepCount);
}

int main(int argc, char** argv)
{
    prepareTestEnvironment();
    QCoreApplication application(argc, argv);
    BusDeathTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "BusDeathTest.moc"
