// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "DBusConnection.h"
#include "EveryOperation.h"
#include "LogCapture.h"
#include "PrivateBus.h"
#include "TestMain.h"

#include <QTemporaryDir>

// An application that finds no bus at all.
class AbsentBusTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void noServiceIsRegistered();
    void everyOperationReturnsItsEmptyResult();
};

void AbsentBusTest::noServiceIsRegistered()
{
    QVERIFY(!DBusConnection::getQDBusConnection().isConnected());
    QVERIFY(!DBusConnection::isServiceRegistered(QStringLiteral(TELVARO_SERVICE_NAME)));
}

void AbsentBusTest::everyOperationReturnsItsEmptyResult()
{
    LogCapture log;
    Connectors connectors;
    const QString notRegistered =
        QStringLiteral("DBus Service for Telvaro \"" TELVARO_SERVICE_NAME "\" is not registered");
    QCOMPARE(log.takeTexts(),
             (QStringList{QStringLiteral("Failed to connect to PropertiesChanged signal"), notRegistered,
                          QStringLiteral("Unable to convert property  \"screenSaverActive\" to bool!"),
                          QStringLiteral("Failed to connect to PropertiesChanged siganl")}));
    const QMap<QString, Outcome> expected =
        outcomesWithoutService({notRegistered}, {QStringLiteral("Invalid DBus interface!")});
    for (const NamedOperation& operation : everyOperation()) {
        const QString result = operation.call(connectors);
        const QStringList messages = log.takeTexts();
        QVERIFY2(result == expected[operation.name].result, qPrintable(operation.name));
        QVERIFY2(messages == expected[operation.name].messages,
                 qPrintable(operation.name + messages.join(QLatin1Char('\n'))));
    }
}

int main(int argc, char** argv)
{
    prepareTestEnvironment();
    const QTemporaryDir directory;
    const QByteArray address = "unix:path=" + directory.filePath(QStringLiteral("nobody")).toUtf8();
    PrivateBus::setAddress(address);
    QCoreApplication application(argc, argv);
    AbsentBusTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "AbsentBusTest.moc"
