// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "TelvaroDBusConnectorBase.h"

#include "BusMonitorProcess.h"
#include "ConnectorFixture.h"
#include "DBusConnectionParameter.h"
#include "PrivateBus.h"
#include "TestMain.h"
#include "WithProxy.h"

#include <QDBusInterface>
#include <QFile>
#include <QPointer>

#include <memory>
#include <type_traits>

namespace {

const QString cPath = QStringLiteral("/screen");
const QString cInterface = QStringLiteral("org.freedesktop.DBus.Properties");
const QString cServiceName = QStringLiteral(TELVARO_SERVICE_NAME);

using Base = WithProxy<TelvaroDBusConnectorBase>;

DBusConnectionParameter screenParameter()
{
    return DBusConnectionParameter::create(cServiceName, cPath, cInterface);
}

QStringList descriptions(const QList<RecordedCall>& calls)
{
    QStringList texts;
    for (const RecordedCall& call : calls) {
        texts.append(call.destination + QLatin1Char(' ') + call.description());
    }
    return texts;
}

} // namespace

class TelvaroDBusConnectorBaseTest : public ConnectorFixture
{
    Q_OBJECT

private Q_SLOTS:
    void theProxyHasTheParametersNames();
    void theParameterMayBeDestroyedAfterConstruction();
    void theProxyIsNoChildAndHasNoTimeLimit();
    void theParentIsTaken();
    void isValidWithTheServiceThere();
    void anAbsentServiceIsLogged();
    void theServiceThatIsAskedForIsTheProxys();
    void becomesValidWhenTheServiceAppears();
    void becomesInvalidWhenTheServiceLeavesAndValidWhenItReturns();
    void followsTheServiceThroughRestarts();
    void anInvalidProxyOfARegisteredServiceIsLogged();
    void aProxyFromBeforeTheServiceIsInvalidUntilTheLoopTurns();
    void aMissingObjectDoesNotMakeTheProxyInvalid();
    void theLoggedFunctionAndLineAreThoseOfTheOperation();
    void asksTheBusDaemonOnceEveryTime();
    void constructionMakesTheCallsOfABareProxyAndNoMore();
    void destructionMakesNoCall();
    void isNotCopyable();
};

void TelvaroDBusConnectorBaseTest::theProxyHasTheParametersNames()
{
    const Base base(screenParameter());
    QCOMPARE(base.mInterface.service(), cServiceName);
    QCOMPARE(base.mInterface.path(), cPath);
    QCOMPARE(base.mInterface.interface(), cInterface);
    QCOMPARE(base.mInterface.connection().baseService(), PrivateBus::connection().baseService());
}

void TelvaroDBusConnectorBaseTest::theParameterMayBeDestroyedAfterConstruction()
{
    auto parameter = std::make_unique<DBusConnectionParameter>(screenParameter());
    const Base base(std::move(*parameter));
    // Read, not moved from.
    QCOMPARE(parameter->getServiceName(), cServiceName);
    QCOMPARE(parameter->getPath(), cPath);
    QCOMPARE(parameter->getInterfaceName(), cInterface);
    parameter.reset();
    QVERIFY(base.isInterfaceValid());
    QCOMPARE(base.mInterface.path(), cPath);
}

void TelvaroDBusConnectorBaseTest::theProxyIsNoChildAndHasNoTimeLimit()
{
    const Base base(screenParameter());
    QVERIFY(base.mInterface.parent() == nullptr);
    QVERIFY(base.children().isEmpty());
    const int qtsDefault = -1;
    QCOMPARE(base.mInterface.timeout(), qtsDefault);
}

void TelvaroDBusConnectorBaseTest::theParentIsTaken()
{
    auto parent = std::make_unique<QObject>();
    const QPointer<Base> base = new Base(screenParameter(), parent.get());
    QCOMPARE(base->parent(), parent.get());
    parent.reset();
    QVERIFY(base.isNull());
    QVERIFY(Base(screenParameter()).parent() == nullptr);
}

void TelvaroDBusConnectorBaseTest::isValidWithTheServiceThere()
{
    const Base base(screenParameter());
    QVERIFY(base.isInterfaceValid());
}

void TelvaroDBusConnectorBaseTest::anAbsentServiceIsLogged()
{
    mService.release();
    PrivateBus::deliver();
    const Base base(screenParameter());
    QVERIFY(!base.isInterfaceValid());
    QCOMPARE(mLog->takeDescriptions(), QStringList{notRegistered()});
}

void TelvaroDBusConnectorBaseTest::theServiceThatIsAskedForIsTheProxys()
{
    const QString other = QStringLiteral("org.example.Other");
    const Base base(DBusConnectionParameter::create(other, cPath, cInterface));
    QVERIFY(!base.isInterfaceValid());
    QCOMPARE(mLog->takeDescriptions(), QStringList{notRegistered(other)});

    mService.own(other);
    PrivateBus::deliver();
    QVERIFY(base.isInterfaceValid());
    mService.release(other);
}

void TelvaroDBusConnectorBaseTest::becomesValidWhenTheServiceAppears()
{
    mService.release();
    PrivateBus::deliver();
    const Base base(screenParameter());
    QVERIFY(!base.isInterfaceValid());
    QCOMPARE(mLog->takeDescriptions(), QStringList{notRegistered()});
    mService.own();
    PrivateBus::deliver();
    QVERIFY(base.isInterfaceValid());
}

void TelvaroDBusConnectorBaseTest::becomesInvalidWhenTheServiceLeavesAndValidWhenItReturns()
{
    const Base base(screenParameter());
    for (int round = 0; round < 5; ++round) {
        QVERIFY(base.isInterfaceValid());
        mService.release();
        QVERIFY(!base.isInterfaceValid());
        QCOMPARE(mLog->takeDescriptions(), QStringList{notRegistered()});
        mService.own();
        PrivateBus::deliver();
    }
}

void TelvaroDBusConnectorBaseTest::followsTheServiceThroughRestarts()
{
    const Base base(screenParameter());
    for (int round = 0; round < 5; ++round) {
        mService.kill();
        PrivateBus::deliver();
        QVERIFY(!base.isInterfaceValid());
        QCOMPARE(mLog->takeDescriptions(), QStringList{notRegistered()});
        startService();
        QVERIFY(base.isInterfaceValid());
    }
}

void TelvaroDBusConnectorBaseTest::anInvalidProxyOfARegisteredServiceIsLogged()
{
    const Base base(DBusConnectionParameter::create(cServiceName, cPath, QStringLiteral("no interface name")));
    QVERIFY(!base.isInterfaceValid());
    QCOMPARE(mLog->takeDescriptions(), QStringList{invalidInterface()});
}

void TelvaroDBusConnectorBaseTest::aProxyFromBeforeTheServiceIsInvalidUntilTheLoopTurns()
{
    mService.release();
    PrivateBus::deliver();
    const Base base(screenParameter());
    mService.own();
    QVERIFY(!base.isInterfaceValid());
    QCOMPARE(mLog->takeDescriptions(), QStringList{invalidInterface()});
    PrivateBus::deliver();
    QVERIFY(base.isInterfaceValid());
}

void TelvaroDBusConnectorBaseTest::aMissingObjectDoesNotMakeTheProxyInvalid()
{
    const Base base(DBusConnectionParameter::create(cServiceName, QStringLiteral("/nothing/here"),
                                                    QStringLiteral("org.example.Missing")));
    QVERIFY(base.isInterfaceValid());
}

void TelvaroDBusConnectorBaseTest::theLoggedFunctionAndLineAreThoseOfTheOperation()
{
    const Base base(DBusConnectionParameter::create(cServiceName, cPath, QStringLiteral("no interface name")));
    base.isInterfaceValid();
    const QList<LogMessage> messages = mLog->take();
    QCOMPARE(messages.size(), 1);
    QCOMPARE(messages.first().function, QStringLiteral("bool TelvaroDBusConnectorBase::isInterfaceValid() const"));

    QFile source(QStringLiteral(TELVARO_SOURCE_DIRECTORY "/") + messages.first().file);
    QVERIFY(source.open(QIODevice::ReadOnly));
    const QByteArray line = source.readAll().split('\n').at(messages.first().line - 1);
    QVERIFY2(line.contains("Invalid DBus interface!"), line.constData());
}

void TelvaroDBusConnectorBaseTest::asksTheBusDaemonOnceEveryTime()
{
    BusMonitorProcess monitor;
    monitor.start();
    const Base base(screenParameter());
    monitor.takeCalls();
    const QString query = QStringLiteral("org.freedesktop.DBus /org/freedesktop/DBus org.freedesktop.DBus.NameHasOwner "
                                         "s('%1')")
                              .arg(cServiceName);
    for (int round = 0; round < 3; ++round) {
        QVERIFY(base.isInterfaceValid());
        QCOMPARE(descriptions(monitor.takeCalls()), QStringList{query});
    }
}

void TelvaroDBusConnectorBaseTest::constructionMakesTheCallsOfABareProxyAndNoMore()
{
    // Introspects, which Qt does once for each interface.
    const QDBusInterface first(cServiceName, cPath, cInterface, PrivateBus::connection());
    BusMonitorProcess monitor;
    monitor.start();
    const QDBusInterface bare(cServiceName, cPath, cInterface, PrivateBus::connection());
    const QStringList expected = descriptions(monitor.takeCalls());
    const Base base(screenParameter());
    QCOMPARE(descriptions(monitor.takeCalls()), expected);
}

void TelvaroDBusConnectorBaseTest::destructionMakesNoCall()
{
    const QDBusInterface other(cServiceName, cPath, cInterface, PrivateBus::connection());
    auto base = std::make_unique<Base>(screenParameter());
    BusMonitorProcess monitor;
    monitor.start();
    base.reset();
    QCOMPARE(descriptions(monitor.takeCalls()), QStringList());
}

void TelvaroDBusConnectorBaseTest::isNotCopyable()
{
    QVERIFY(!std::is_copy_constructible_v<TelvaroDBusConnectorBase>);
    QVERIFY(!std::is_copy_assignable_v<TelvaroDBusConnectorBase>);
}

TELVARO_TEST_MAIN(TelvaroDBusConnectorBaseTest)
#include "TelvaroDBusConnectorBaseTest.moc"
