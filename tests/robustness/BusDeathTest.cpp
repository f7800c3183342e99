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
#include <QMap>
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
    }

    PrivateBus bus;
    ScriptedServiceProcess service;
    OperationProcess application;
};

/// The same with a relay before the bus.
struct RelayedStage : Stage
{
    BusRelay relay;
};

/// A message that an operation sends, and what the operation logs where the bus is lost with it.
struct Message
{
    QString member;
    QStringList log;
};

using Messages = QList<Message>;

/// All messages of the operation, to the bus daemon and to the service, those of Qt among them.
Messages messages(const QString& operation)
{
    const QString get = QStringLiteral("Get");
    const QString set = QStringLiteral("Set");
    const QString addMatch = QStringLiteral("AddMatch");
    const QString removeMatch = QStringLiteral("RemoveMatch");
    const QString ownerQuery = QStringLiteral("GetNameOwner");
    const QString absent = Warnings::cAbsent;
    const QString refused =
        QStringLiteral("QDBusError(\"org.freedesktop.DBus.Error.UnknownInterface\", \"Invalid QDBus Interface\")");
    const QString disconnected =
        QStringLiteral("QDBusError(\"org.freedesktop.DBus.Error.Disconnected\", \"Not connected to D-Bus server\")");
    const auto unread = [](const char* property) {
        return QStringLiteral("Unable to read property:  \"%1\"").arg(QLatin1String(property));
    };
    const auto unconverted = [](const char* property, const char* type) {
        return QStringLiteral("Unable to convert property  \"%1\" to %2!")
            .arg(QLatin1String(property), QLatin1String(type));
    };
    const auto presence = [&absent](const QStringList& further = {}) {
        return Messages{{QStringLiteral("NameHasOwner"), QStringList(absent) + further}};
    };
    const auto proxy = [&](const QStringList& log = {}) {
        return Messages{{cIntrospect, log}, {addMatch, log}, {ownerQuery, log}};
    };
    const Messages subscription{{addMatch, {}}, {addMatch, {}}, {ownerQuery, {}}, {removeMatch, {}}, {removeMatch, {}}};
    const Messages proxyEnd{{removeMatch, {}}, {removeMatch, {}}};
    const auto read = [&](const char* property, const char* type) {
        const QString last = unconverted(property, type);
        return presence({last}) + Messages{{get, {unread(property), last}}};
    };
    const auto iteration = [&] {
        const QString noStep = Warnings::cNoStep;
        const QString failed = QStringLiteral("iterateViews failed: ");
        return Messages{{get, {Warnings::cUnreadViews, Warnings::cUnreadViews, absent, noStep}},
                        {get, {Warnings::cUnreadViews, absent, noStep}}}
        + presence({noStep}) + Messages{{get, {Warnings::cUnreadCurrentView, noStep}}} + presence({failed + refused})
            + Messages{{set, {failed + disconnected}}};
    };
    const Messages currentView = Messages{{get, {Warnings::cUnreadViews, absent}}} + presence()
        + Messages{{get, {Warnings::cUnreadCurrentView}}};
    const Messages write = presence() + Messages{{set, {}}};
    const QString switchFailed = QStringLiteral("switch view failed ");
    const QStringList notSubscribedScreen{unconverted("screenSaverActive", "bool"),
                                          QStringLiteral("Failed to connect to PropertiesChanged siganl")};

    const QMap<QString, Messages> all{
        {QStringLiteral("new TelvaroTaskSwitcherDBusConnector"),
         proxy({QStringLiteral("Failed to connect to PropertiesChanged signal")}) + subscription + proxyEnd},
        {QStringLiteral("new TelvaroScreenDBusConnector"),
         proxy(QStringList(absent) + notSubscribedScreen) + presence(notSubscribedScreen)
             + Messages{{get, QStringList(unread("screenSaverActive")) + notSubscribedScreen}} + subscription
             + proxyEnd},
        {QStringLiteral("new TelvaroGlobalOverlayDBusConnector"), proxy() + proxyEnd},
        {QStringLiteral("new TelvaroNotificationDBusConnector"), proxy() + proxyEnd},
        {QStringLiteral("new TelvaroScreenShotDBusConnector"), proxy() + proxyEnd},
        {QStringLiteral("isInterfaceValid"), presence()},
        {QStringLiteral("getViews"), {{get, {Warnings::cUnreadViews}}}},
        {QStringLiteral("getCurrentView"), currentView},
        {QStringLiteral("setCurrentView"), write},
        {QStringLiteral("pidToTaskSwitcherEntry"), {{get, {Warnings::cUnreadViews, Warnings::cNoPid}}}},
        {QStringLiteral("idsToTaskSwitcherEntry"), {{get, {Warnings::cUnreadViews, Warnings::cNoIds}}}},
        {QStringLiteral("switchToView"),
         Messages{{get, {Warnings::cUnreadViews, Warnings::cNoIds, absent, switchFailed + refused}}}
             + presence({switchFailed + refused}) + Messages{{set, {switchFailed + disconnected}}}},
        {QStringLiteral("iterateViews forward"), iteration()},
        {QStringLiteral("iterateViews backward"), iteration()},
        {QStringLiteral("processNameToPid"), {}},
        {QStringLiteral("surfaceToTop"), Messages{{get, {Warnings::cUnreadViews, Warnings::cNoPid, absent}}} + write},
        {QStringLiteral("isCurrentView"), currentView},
        {QStringLiteral("getProperty"), presence() + Messages{{get, {unread("screenSaverTimeoutSeconds")}}}},
        {QStringLiteral("setProperty"), write},
        {QStringLiteral("enableScreenSaver"), write},
        {QStringLiteral("disableScreenSaver"), write},
        {QStringLiteral("setScreenSaverTimeout"), write},
        {QStringLiteral("isScreenSaverActive"), read("screenSaverActive", "bool")},
        {QStringLiteral("getOrientation"), read("orientation", "QString")},
        {QStringLiteral("setOrientation"), write},
        {QStringLiteral("setFullScreen"), write},
        {QStringLiteral("getFullScreen"), read("fullScreen", "bool")},
        {QStringLiteral("showGlobalOverlay"), presence() + Messages{{QStringLiteral("Show"), {}}}},
        {QStringLiteral("hideGlobalOverlay"), presence() + Messages{{QStringLiteral("Hide"), {}}}},
        {QStringLiteral("notify"), presence() + Messages{{QStringLiteral("Notify"), {}}}},
        {QStringLiteral("captureScreenShot"),
         presence()
             + Messages{{QStringLiteral("ScreenShot"),
                         {QStringLiteral("Reply of  \"ScreenShot\" is invalid! \"Not connected to D-Bus server\"")}}}},
    };
    return all.value(operation);
}

// QtTest does not show all of a list that differs from another.
QString words(const QStringList& list)
{
    return list.join(QLatin1Char(' '));
}

QStringList members(const QString& operation)
{
    QStringList members;
    for (const Message& message : messages(operation)) {
        members.append(message.member);
    }
    return members;
}

} // namespace

/// The bus daemon dies in every step in which an application waits for an answer, and at every message. Each case has a
/// bus and an application of its own.
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
    void everyOperationFailsWithoutABusFromTheStart();
    void cleanupTestCase();

private:
    static void expectFailureFrom(Stage& stage, const QString& operation);
    static void expectFailuresFromNowOn(OperationProcess& application);

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
    QVERIFY2(Scenario::isFailure(operation, outcome.result), qPrintable(outcome.result));
    QVERIFY2(Scenario::isFailureLog(outcome.log), qPrintable(outcome.log.join(QLatin1Char('\n'))));
    expectFailuresFromNowOn(stage.application);
}

void BusDeathTest::expectFailuresFromNowOn(OperationProcess& application)
{
    for (const QString& later : Operations::names()) {
        const Outcome failure = application.perform(later);
        QVERIFY2(failure.milliseconds < cReturnTime, qPrintable(later));
        QVERIFY2(Scenario::isFailure(later, failure.result), qPrintable(later + QLatin1Char(' ') + failure.result));
        QVERIFY2(Scenario::isFailureLog(failure.log), qPrintable(failure.log.join(QLatin1Char('\n'))));
    }
    QCOMPARE(application.turn().log, QStringList());
    QCOMPARE(application.destroy().log, QStringList());
    QVERIFY(application.isRunning());
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
    QCOMPARE(stage.application.perform(operation).result, Scenario::result(operation));
    // A question to the bus, so that all that was sent before it is known.
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
    // Nobody waits for an answer to the last messages of a construction.
    QVERIFY(QTest::qWaitFor(
        [&stage] {
            return stage.relay.hasEnded();
        },
        ChildProcess::cDeadline));
    QCOMPARE(words(stage.relay.takeMessages()), words(members(operation).mid(0, number)));
    QVERIFY2(outcome.milliseconds < cReturnTime, qPrintable(QString::number(outcome.milliseconds)));
    QVERIFY2(Scenario::isFailure(operation, outcome.result), qPrintable(outcome.result));
    QCOMPARE(outcome.log, messages(operation).at(number - 1).log);
    expectFailuresFromNowOn(stage.application);
    ++mMessageCount;
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
