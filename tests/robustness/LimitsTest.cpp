// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ConnectorFixture.h"
#include "DBusConnectionParameter.h"
#include "OperationProcess.h"
#include "PrivateBus.h"
#include "Scenario.h"
#include "TelvaroDBusConnectorBase.h"
#include "TelvaroDBusDefinitions.h"
#include "TelvaroGlobalOverlayDBusConnector.h"
#include "TelvaroNotificationDBusConnector.h"
#include "TelvaroScreenDBusConnector.h"
#include "TelvaroTaskSwitcherDBusConnector.h"
#include "TestMain.h"

#include <QAbstractEventDispatcher>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QEventLoop>
#include <QLocale>
#include <QTimer>

#include <csignal>
#include <cstring>
#include <iostream>

namespace {

const char cCase[] = "--case";

/// A connector that an application might derive.
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

void sendOverlongArray()
{
    const int size = 64 * 1024 * 1024;
    TelvaroNotificationDBusConnector connector;
    connector.notify({}, {}, {}, {QString(size, QLatin1Char('x'))});
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
    {"overlong array", sendOverlongArray},
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

/// The documented limits: what crashes Qt or libdbus, or costs the connection. If a test here fails, Qt has improved,
/// and the manual's page must be updated.
class LimitsTest : public ConnectorFixture
{
    Q_OBJECT

private Q_SLOTS:
    void invalidNamesAndValuesEndTheApplication_data();
    void invalidNamesAndValuesEndTheApplication();
    void valuesThatQtRefusesAreNotSent_data();
    void valuesThatQtRefusesAreNotSent();
    void refusedMessageCostsTheConnection_data();
    void refusedMessageCostsTheConnection();
    void busThatDiesBeforeTheEventLoopRunsKeepsTheCaller();
    void innerEventLoopGetsWhatWasWaitingOnlyWhenWoken();

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
    // The exit code of a crashed process is its signal.
    QCOMPARE(application.exitCode(), SIGABRT);
    QCOMPARE(application.readAllStandardOutput(), QByteArray());
}

void LimitsTest::valuesThatQtRefusesAreNotSent_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addRow("an invalid one") << QVariant();
    QTest::addRow("of a type that D-Bus does not have") << QVariant(QLocale::c());
}

void LimitsTest::valuesThatQtRefusesAreNotSent()
{
    QFETCH(QVariant, value);
    TelvaroScreenDBusConnector screen;
    mService.takeCalls();
    screen.setProperty(TelvaroScreenDBusConnector::cScreenOrientationProperty, QDBusVariant(value));
    QVERIFY(PrivateBus::connection().isConnected());
    QCOMPARE(mService.takeCalls().size(), 0);
    const QStringList log = mLog->takeTexts();
    QCOMPARE(log.size(), 2);
    QVERIFY2(log.last().startsWith(QLatin1String("QDBusConnection: error: could not send message to service")),
             qPrintable(log.last()));
}

void LimitsTest::refusedMessageCostsTheConnection_data()
{
    QTest::addColumn<QString>("name");
    for (const char* const name : {"deeply nested value", "overlong string", "overlong array"}) {
        QTest::addRow("%s", name) << QString::fromLatin1(name);
    }
}

void LimitsTest::refusedMessageCostsTheConnection()
{
    QFETCH(QString, name);
    ChildProcess application;
    application.run(QStringLiteral(TELVARO_OWN_PATH), {QString::fromLatin1(cCase), name});
    // Large texts are slow, above all under a sanitizer.
    QVERIFY(application.waitForOutputLine(5 * ChildProcess::cDeadline));
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
    QVERIFY(QTest::qWaitFor(
        [&application] {
            return application.isBlocked();
        },
        ChildProcess::cDeadline));
    bus.kill();
    QVERIFY(!application.returnsWithin(longEnough));
}

void LimitsTest::innerEventLoopGetsWhatWasWaitingOnlyWhenWoken()
{
    const int longEnough = 1000;
    const int notifications = 3;
    ServiceSignal change = ServiceSignal::propertiesChanged(
        QStringLiteral("/taskswitcher"), QStringLiteral("de.Telvaro.taskswitcher"), QStringLiteral("{'views': <1>}"));
    change.count = notifications;
    TelvaroTaskSwitcherDBusConnector taskSwitcher;
    int received = 0;
    int receivedUnwoken = 0;
    int receivedWoken = 0;
    QObject::connect(&taskSwitcher, &TelvaroTaskSwitcherDBusConnector::viewsChanged, &taskSwitcher, [&] {
        if (++received == 1) {
            QEventLoop loop;
            QTimer::singleShot(longEnough, &loop, &QEventLoop::quit);
            loop.exec();
            receivedUnwoken = received;
            QAbstractEventDispatcher::instance()->wakeUp();
            QTimer::singleShot(longEnough, &loop, &QEventLoop::quit);
            loop.exec();
            receivedWoken = received;
        }
    });
    mService.emitSignal(change);
    PrivateBus::deliver();
    const bool isOnGlib = QAbstractEventDispatcher::instance()->inherits("QEventDispatcherGlib");
    QCOMPARE(receivedUnwoken, isOnGlib ? 1 : notifications);
    QCOMPARE(receivedWoken, notifications);
    QCOMPARE(received, notifications);
}

int main(int argc, char** argv)
{
    if (argc == 3 && std::strcmp(argv[1], cCase) == 0) {
        return runCase(argc, argv);
    }
    return runOnPrivateBus<LimitsTest>(argc, argv);
}

#include "LimitsTest.moc"
