// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ConnectorTest.h"
#include "DBusConnectionParameter.h"
#include "OperationProcess.h"
#include "PrivateBus.h"
#include "Scenario.h"
#include "TelvaroDBusConnectorBase.h"
#include "TelvaroDBusDefinitions.h"
#include "TelvaroGlobalOverlayDBusConnector.h"
#include "TelvaroScreenDBusConnector.h"
#include "TelvaroTaskSwitcherDBusConnector.h"
#include "TestMain.h"

#include <QDBusMessage>
#include <QDBusVariant>

#include <cstring>
#include <iostream>

namespace {

const char cCase[] = "--case";

/// A connector as an application may derive its own.
class OwnConnector : public TelvaroDBusConnectorBase
{
public:
    explicit OwnConnector(const QString& path)
        : TelvaroDBusConnectorBase(DBusConnectionParameter::create(TelvaroDBusDefinitions::getServiceName(), path,
                                                                   QStringLiteral("org.example.Own")))
    {
    }

    void call(const QString& method)
    {
        mInterface.call(method);
    }
};

void callInvalidMethod()
{
    OwnConnector(QStringLiteral("/own")).call(QStringLiteral("not a method"));
}

void makeConnectorOfInvalidPath()
{
    const OwnConnector connector(QStringLiteral("own"));
}

void writeRecordWithInvalidAttribute()
{
    const TelvaroTaskSwitcherDBusConnector connector;
    TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry entry;
    entry.attributes.insert(QStringLiteral("key"), QVariant());
    QDBusMessage message = QDBusMessage::createSignal(QStringLiteral("/own"), QStringLiteral("org.example.Own"),
                                                      QStringLiteral("Changed"));
    message << QVariant::fromValue(entry);
    PrivateBus::connection().send(message);
}

void writePropertyWithInvalidMember()
{
    TelvaroScreenDBusConnector connector;
    const QVariantMap value{{QStringLiteral("key"), QVariant()}};
    connector.setProperty(TelvaroScreenDBusConnector::cScreenOrientationProperty, QDBusVariant(value));
}

void tellConnection()
{
    std::cout << (PrivateBus::connection().isConnected() ? "connected" : "disconnected") << std::endl;
}

void sendDeeplyNestedValue()
{
    const int depth = 80;
    TelvaroScreenDBusConnector connector;
    QVariant value(1);
    for (int level = 0; level < depth; ++level) {
        value = QVariant::fromValue(QDBusVariant(value));
    }
    connector.setProperty(TelvaroScreenDBusConnector::cScreenOrientationProperty, QDBusVariant(value));
    tellConnection();
}

void sendOverlongString()
{
    const int size = 129 * 1024 * 1024;
    TelvaroGlobalOverlayDBusConnector connector;
    connector.showGlobalOverlay(QString(size, QLatin1Char('x')));
    tellConnection();
}

struct Case
{
    const char* name;
    void (*run)();
};

const Case cCases[] = {
    {"invalid method", callInvalidMethod},
    {"invalid path", makeConnectorOfInvalidPath},
    {"invalid attribute", writeRecordWithInvalidAttribute},
    {"invalid member", writePropertyWithInvalidMember},
    {"deeply nested value", sendDeeplyNestedValue},
    {"overlong string", sendOverlongString},
};

int runCase(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    PrivateBus::deliver();
    for (const Case& candidate : cCases) {
        if (std::strcmp(candidate.name, argv[2]) == 0) {
            candidate.run();
            std::cout << "returned" << std::endl;
        }
    }
    return 0;
}

} // namespace

/// What an application must not do, since neither Qt nor libdbus survives it: the manual tells it to the users. A test
/// that fails here is good news, and the manual's page is to be changed.
class LimitsTest : public ConnectorTest
{
    Q_OBJECT

private Q_SLOTS:
    void invalidNamesAndValuesEndTheApplication_data();
    void invalidNamesAndValuesEndTheApplication();
    void refusedMessageCostsTheConnection_data();
    void refusedMessageCostsTheConnection();
    void busThatDiesBeforeTheEventLoopRunsKeepsTheCaller();

private:
    Scenario mScenario;
};

void LimitsTest::invalidNamesAndValuesEndTheApplication_data()
{
    QTest::addColumn<QString>("name");
    for (const char* const name : {"invalid method", "invalid path", "invalid attribute", "invalid member"}) {
        QTest::addRow("%s", name) << QString::fromLatin1(name);
    }
}

void LimitsTest::invalidNamesAndValuesEndTheApplication()
{
    QFETCH(QString, name);
    ChildProcess application;
    application.setProcessChannelMode(QProcess::SeparateChannels);
    application.run(QStringLiteral(TELVARO_OWN_PATH), {QString::fromLatin1(cCase), name});
    QVERIFY(application.waitForFinished(ChildProcess::cDeadline));
    QCOMPARE(application.exitStatus(), QProcess::CrashExit);
    QCOMPARE(application.readAllStandardOutput(), QByteArray());
}

void LimitsTest::refusedMessageCostsTheConnection_data()
{
    QTest::addColumn<QString>("name");
    for (const char* const name : {"deeply nested value", "overlong string"}) {
        QTest::addRow("%s", name) << QString::fromLatin1(name);
    }
}

void LimitsTest::refusedMessageCostsTheConnection()
{
    QFETCH(QString, name);
    ChildProcess application;
    application.run(QStringLiteral(TELVARO_OWN_PATH), {QString::fromLatin1(cCase), name});
    // Such a text takes its time, with a sanitizer most of all.
    for (int waited = 0; waited < 5 && !application.waitForOutputLine(); ++waited) { }
    QCOMPARE(application.readOutputLine(), QByteArray("disconnected"));
    QCOMPARE(application.readOutputLine(), QByteArray("returned"));
    QVERIFY(application.waitForFinished(ChildProcess::cDeadline));
    QCOMPARE(application.exitStatus(), QProcess::NormalExit);
}

void LimitsTest::busThatDiesBeforeTheEventLoopRunsKeepsTheCaller()
{
    const int longEnough = 2000;
    PrivateBus bus;
    ScriptedServiceProcess service;
    service.start();
    service.own();
    service.scriptProperty(QStringLiteral("Get"), QStringLiteral("/taskswitcher"), QStringLiteral("views"),
                           {Behaviour::silence()});
    OperationProcess application;
    application.start();
    application.begin(QStringLiteral("getViews"));
    QVERIFY(QTest::qWaitFor(
        [&service] {
            return service.takeDescriptions().join(QLatin1Char(' ')).contains(QLatin1String("views"));
        },
        ChildProcess::cDeadline));
    bus.kill();
    QVERIFY(!QTest::qWaitFor(
        [&application] {
            return !application.isBlocked();
        },
        longEnough));
}

int main(int argc, char** argv)
{
    if (argc == 3 && std::strcmp(argv[1], cCase) == 0) {
        return runCase(argc, argv);
    }
    return runOnPrivateBus<LimitsTest>(argc, argv);
}

#include "LimitsTest.moc"
