// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ConnectorFixture.h"
#include "EveryOperation.h"
#include "PrivateBus.h"
#include "TestMain.h"

// The bus goes away under a running application. What has happened to the bus stays, so the functions build on each
// other.
class DyingBusTest : public ConnectorFixture
{
    Q_OBJECT

public:
    explicit DyingBusTest(PrivateBus& bus)
        : mBus(bus)
    {
    }

private Q_SLOTS:
    void init();
    void cleanup();

    void aBusThatDiesDuringACallEndsTheCall();
    void everyOperationReturnsItsEmptyResultAfterwards();
    void connectorsCanStillBeConstructedAndUsed();

private:
    void compareOutcomes(Connectors& connectors, const QString& viewsMessage);

    PrivateBus& mBus;
    std::unique_ptr<Connectors> mConnectors;
};

void DyingBusTest::init()
{
    mLog = std::make_unique<LogCapture>();
}

void DyingBusTest::cleanup()
{
    const QStringList unread = mLog->takeDescriptions();
    mLog.reset();
    QCOMPARE(unread, QStringList());
}

void DyingBusTest::aBusThatDiesDuringACallEndsTheCall()
{
    mService.scriptProperty(QStringLiteral("Get"), QStringLiteral("/taskswitcher"), QStringLiteral("views"),
                            {Behaviour::killing(mBus.processId())});
    mConnectors = std::make_unique<Connectors>();
    QVERIFY(mConnectors->taskSwitcher.getViews().isEmpty());
    QCOMPARE(mLog->takeTexts(), QStringList{QStringLiteral("Unable to read views!")});
    mBus.kill();
    // Lets Qt notice the end as a running application would.
    QVERIFY(QTest::qWaitFor(
        [] {
            return !PrivateBus::connection().isConnected();
        },
        ChildProcess::cDeadline));
}

void DyingBusTest::everyOperationReturnsItsEmptyResultAfterwards()
{
    // A proxy that has known an owner still takes it for there.
    compareOutcomes(*mConnectors, QStringLiteral("Unable to read views!"));
}

void DyingBusTest::connectorsCanStillBeConstructedAndUsed()
{
    Connectors connectors;
    const QStringList messages = mLog->takeTexts();
    QVERIFY(messages.contains(QStringLiteral("Failed to connect to PropertiesChanged signal")));
    QVERIFY(messages.contains(QStringLiteral("Failed to connect to PropertiesChanged siganl")));
    compareOutcomes(connectors, QStringLiteral("Invalid DBus interface!"));
}

void DyingBusTest::compareOutcomes(Connectors& connectors, const QString& viewsMessage)
{
    const QString notRegistered =
        QStringLiteral("DBus Service for Telvaro \"" TELVARO_SERVICE_NAME "\" is not registered");
    const QMap<QString, Outcome> expected = outcomesWithoutService({notRegistered}, {viewsMessage});
    for (const NamedOperation& operation : everyOperation()) {
        const QString result = operation.call(connectors);
        const QStringList messages = mLog->takeTexts();
        QVERIFY2(result == expected[operation.name].result, qPrintable(operation.name));
        QVERIFY2(messages == expected[operation.name].messages,
                 qPrintable(operation.name + messages.join(QLatin1Char('\n'))));
    }
}

int main(int argc, char** argv)
{
    prepareTestEnvironment();
    QCoreApplication application(argc, argv);
    PrivateBus bus;
    DyingBusTest test(bus);
    return QTest::qExec(&test, argc, argv);
}
#include "DyingBusTest.moc"
