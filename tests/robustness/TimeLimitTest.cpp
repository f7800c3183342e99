// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "LogCapture.h"
#include "OperationProcess.h"
#include "Operations.h"
#include "PrivateBus.h"
#include "Scenario.h"
#include "ScriptedServiceProcess.h"
#include "TestMain.h"

#include <QElapsedTimer>
#include <QMap>
#include <QObject>
#include <QTest>

#include <memory>
#include <vector>

namespace {

/// QtDBus's timeout for one reply.
const int cTimeLimit = 25000;
const int cTolerance = 2500;

/// The number of consecutive timeouts of an operation, as in the manual's table.
struct Waits
{
    int onService;
    int onBus;
};

Waits waits(const QString& operation)
{
    // One call to the service, which is skipped if the presence query times out.
    static const Waits cOne{1, 1};
    static const QMap<QString, Waits> cOthers{
        {QStringLiteral("new TelvaroTaskSwitcherDBusConnector"), {1, 3}},
        {QStringLiteral("new TelvaroScreenDBusConnector"), {2, 4}},
        {QStringLiteral("new TelvaroGlobalOverlayDBusConnector"), {1, 2}},
        {QStringLiteral("new TelvaroNotificationDBusConnector"), {1, 2}},
        {QStringLiteral("new TelvaroScreenShotDBusConnector"), {1, 2}},
        {QStringLiteral("isInterfaceValid"), {0, 1}},
        {QStringLiteral("setCurrentView without uuid"), {0, 1}},
        {QStringLiteral("getCurrentView"), {2, 2}},
        {QStringLiteral("isCurrentView"), {2, 2}},
        {QStringLiteral("switchToView"), {1, 2}},
        {QStringLiteral("surfaceToTop"), {1, 2}},
        {QStringLiteral("iterateViews forward"), {3, 3}},
        {QStringLiteral("iterateViews backward"), {3, 3}},
        {QStringLiteral("processNameToPid"), {0, 0}},
    };
    return cOthers.value(operation, cOne);
}

} // namespace

/// Calls without a reply: every operation returns after Qt's timeout for each of its calls. Takes about four minutes,
/// with all operations waiting in parallel.
class TimeLimitTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyOperationReturns_data();
    void everyOperationReturns();
    void readsOf64MebibytesFailSoonerOrLater();

private:
    Scenario mScenario;
};

void TimeLimitTest::everyOperationReturns_data()
{
    QTest::addColumn<bool>("isBusFrozen");
    QTest::addRow("from a frozen service") << false;
    QTest::addRow("from a frozen bus") << true;
}

void TimeLimitTest::everyOperationReturns()
{
    QFETCH(bool, isBusFrozen);
    PrivateBus bus;
    ScriptedServiceProcess service;
    service.start();
    Scenario::set(service);
    service.own();

    const QStringList names = Operations::names();
    std::vector<std::unique_ptr<OperationProcess>> applications;
    for (const QString& name : names) {
        applications.push_back(std::make_unique<OperationProcess>());
        applications.back()->start();
        applications.back()->prepareFor(name);
    }
    if (isBusFrozen) {
        bus.freeze();
    } else {
        service.freeze();
    }
    for (std::size_t index = 0; index < applications.size(); ++index) {
        applications[index]->begin(names.at(static_cast<int>(index)));
    }
    for (std::size_t index = 0; index < applications.size(); ++index) {
        const QString& name = names.at(static_cast<int>(index));
        const int expected = isBusFrozen ? waits(name).onBus : waits(name).onService;
        QVERIFY2(applications[index]->returnsWithin((expected + 2) * cTimeLimit), qPrintable(name));
        const Outcome outcome = applications[index]->finish();
        qInfo("%s: %lld ms, %d waits", qPrintable(name), outcome.milliseconds, expected);
        QVERIFY2(qAbs(outcome.milliseconds - expected * cTimeLimit) <= cTolerance, qPrintable(name));
        // The bus itself replies about a stopped service.
        const bool isRight =
            expected > 0 ? Operations::isFailure(name, outcome.result) : outcome.result == Operations::result(name);
        QVERIFY2(isRight, qPrintable(name + outcome.result));
        QVERIFY2(Operations::isFailureLog(outcome.log), qPrintable(outcome.log.join(QLatin1Char('\n'))));
    }
    if (isBusFrozen) {
        bus.thaw();
    } else {
        service.thaw();
    }
    for (std::size_t index = 0; index < applications.size(); ++index) {
        const QString& name = names.at(static_cast<int>(index));
        QCOMPARE(applications[index]->perform(name).result, Operations::result(name));
    }
}

// Above 63 MiB libdbus stops reading until its messages are handled, and Qt sometimes misses that: then no reply
// arrives any more. If this test fails, the manual's limit is obsolete.
void TimeLimitTest::readsOf64MebibytesFailSoonerOrLater()
{
    const int reads = 100;
    const int size = 64 * 1024 * 1024;
    const PrivateBus bus;
    ScriptedServiceProcess service;
    service.start();
    service.own();
    service.setProperty(QStringLiteral("/screen"), QStringLiteral("de.Telvaro.screen"), QStringLiteral("orientation"),
                        QStringLiteral("'x' * %1").arg(size));
    PrivateBus::deliver();
    Operations operations;
    operations.prepare();

    auto log = std::make_unique<LogCapture>();
    int received = size;
    int read = 0;
    QElapsedTimer timer;
    for (; received == size && read < reads; ++read) {
        timer.start();
        received = operations.screen().getOrientation().size();
    }
    const qint64 milliseconds = timer.elapsed();
    QStringList texts = log->takeTexts();
    log.reset();
    qInfo("read %d of at most %d: %lld ms", read, reads, milliseconds);
    QCOMPARE(received, 0);
    QVERIFY(qAbs(milliseconds - cTimeLimit) <= cTolerance);
    QVERIFY(!texts.isEmpty());
    QCOMPARE(texts.takeFirst(),
             QStringLiteral("QSocketNotifier: Socket notifiers cannot be enabled or disabled from another thread"));
    QVERIFY2(Operations::isFailureLog(texts), qPrintable(texts.join(QLatin1Char('\n'))));
}

int main(int argc, char** argv)
{
    prepareTestEnvironment();
    QCoreApplication application(argc, argv);
    TimeLimitTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "TimeLimitTest.moc"
