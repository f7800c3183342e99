// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "InterfaceFiles.h"
#include "ConnectorFixture.h"
#include "Operations.h"
#include "Scenario.h"
#include "TestMain.h"

/// The library's calls against the interface files.
class InterfaceFilesTest : public ConnectorFixture
{
    Q_OBJECT

private Q_SLOTS:
    void everyCallOfTheLibraryIsInTheFiles();
    void everyMemberOfTheFilesIsUsedByTheLibrary();

private:
    QList<RecordedCall> callsOfEveryOperation();

    Scenario mScenario;
};

QList<RecordedCall> InterfaceFilesTest::callsOfEveryOperation()
{
    Scenario::set(mService);
    Operations operations;
    for (const QString& operation : Operations::names()) {
        operations.perform(operation);
    }
    QList<RecordedCall> calls;
    for (const RecordedCall& call : mService.takeCalls()) {
        if (call.member != QLatin1String("Introspect")) {
            calls.append(call);
        }
    }
    return calls;
}

void InterfaceFilesTest::everyCallOfTheLibraryIsInTheFiles()
{
    const InterfaceFiles files;
    const QList<RecordedCall> calls = callsOfEveryOperation();
    QVERIFY(!calls.isEmpty());
    for (const RecordedCall& call : calls) {
        const QString problem = files.problem(call);
        QVERIFY2(problem.isEmpty(), qPrintable(call.description() + QStringLiteral(": ") + problem));
    }
}

void InterfaceFilesTest::everyMemberOfTheFilesIsUsedByTheLibrary()
{
    QStringList unused = InterfaceFiles().members();
    for (const RecordedCall& call : callsOfEveryOperation()) {
        if (call.interface == QLatin1String("org.freedesktop.DBus.Properties")) {
            unused.removeAll(call.arguments.at(0).chopped(1).mid(1) + QLatin1Char(':')
                             + call.arguments.at(1).chopped(1).mid(1));
        } else {
            unused.removeAll(call.interface + QLatin1Char('.') + call.member);
        }
    }
    // The rest of the notification interface is there for other clients.
    QCOMPARE(unused,
             (QStringList{QStringLiteral("org.freedesktop.Notifications.CloseNotification"),
                          QStringLiteral("org.freedesktop.Notifications.GetCapabilities"),
                          QStringLiteral("org.freedesktop.Notifications.GetServerInformation")}));
}

TELVARO_TEST_MAIN(InterfaceFilesTest)
#include "InterfaceFilesTest.moc"
