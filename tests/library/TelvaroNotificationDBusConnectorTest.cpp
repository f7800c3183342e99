// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "TelvaroNotificationDBusConnector.h"

#include "ConnectorFixture.h"
#include "PrivateBus.h"
#include "TestMain.h"
#include "WithProxy.h"

namespace {

const QString cPath = QStringLiteral("/org/freedesktop/Notifications");
const QString cInterface = QStringLiteral("org.freedesktop.Notifications");

QString notifyCall(const QString& texts, const QString& actions)
{
    return QStringLiteral("/org/freedesktop/Notifications org.freedesktop.Notifications.Notify "
                          "susssasa{sv}i('', uint32 0, %1, %2, {'action-icons': <true>}, 0)")
        .arg(texts, actions);
}

} // namespace

class TelvaroNotificationDBusConnectorTest : public ConnectorFixture
{
    Q_OBJECT

private Q_SLOTS:
    void theProxyIsThatOfTheNotifications();
    void theParentIsTaken();
    void everyArgumentIsSent_data();
    void everyArgumentIsSent();
    void theDestinationIsTheService();
    void everyNotificationIsANewOne();
    void aForeignNotificationServerIsNotAddressed();
};

void TelvaroNotificationDBusConnectorTest::theProxyIsThatOfTheNotifications()
{
    const WithProxy<TelvaroNotificationDBusConnector> connector;
    QCOMPARE(connector.mInterface.service(), QStringLiteral(TELVARO_SERVICE_NAME));
    QCOMPARE(connector.mInterface.path(), cPath);
    QCOMPARE(connector.mInterface.interface(), cInterface);
}

void TelvaroNotificationDBusConnectorTest::theParentIsTaken()
{
    QObject parent;
    const auto* const connector = new TelvaroNotificationDBusConnector(&parent);
    QCOMPARE(connector->parent(), &parent);
}

void TelvaroNotificationDBusConnectorTest::everyArgumentIsSent_data()
{
    QTest::addColumn<QString>("appIcon");
    QTest::addColumn<QString>("summary");
    QTest::addColumn<QString>("body");
    QTest::addColumn<QStringList>("actions");
    QTest::addColumn<QString>("texts");
    QTest::addColumn<QString>("actionTexts");
    QTest::newRow("all given") << "icon"
                               << "summary"
                               << "body"
                               << QStringList{QStringLiteral("z"), QStringLiteral("Last"), QStringLiteral("a"),
                                              QStringLiteral("First")}
                               << "'icon', 'summary', 'body'"
                               << "['z', 'Last', 'a', 'First']";
    QTest::newRow("all empty") << QString() << QString() << QStringLiteral("") << QStringList() << "'', '', ''"
                               << "@as []";
    QTest::newRow("odd actions") << "/path/icon.png"
                                 << "s"
                                 << "b" << QStringList{QStringLiteral("only")} << "'/path/icon.png', 's', 'b'"
                                 << "['only']";
    QTest::newRow("empty and equal actions")
        << "i"
        << "s"
        << "b" << QStringList{QString(), QStringLiteral("a"), QStringLiteral("a")} << "'i', 's', 'b'"
        << "['', 'a', 'a']";
    QTest::newRow("untouched texts") << " i "
                                     << "<b>s</b>"
                                     << "a &amp; b\n%1" << QStringList{QStringLiteral(" ")}
                                     << "' i ', '<b>s</b>', 'a &amp; b\\n%1'"
                                     << "[' ']";
}

void TelvaroNotificationDBusConnectorTest::everyArgumentIsSent()
{
    QFETCH(const QString, appIcon);
    QFETCH(const QString, summary);
    QFETCH(const QString, body);
    QFETCH(const QStringList, actions);
    QFETCH(const QString, texts);
    QFETCH(const QString, actionTexts);
    TelvaroNotificationDBusConnector connector;
    mService.takeCalls();
    connector.notify(appIcon, summary, body, actions);
    QCOMPARE(mService.takeDescriptions(), QStringList{notifyCall(texts, actionTexts)});
}

void TelvaroNotificationDBusConnectorTest::theDestinationIsTheService()
{
    TelvaroNotificationDBusConnector connector;
    mService.takeCalls();
    connector.notify({}, {}, {}, {});
    const QList<RecordedCall> calls = mService.takeCalls();
    QCOMPARE(calls.size(), 1);
    QCOMPARE(calls.first().destination, QStringLiteral(TELVARO_SERVICE_NAME));
    QVERIFY(!calls.first().noReply);
}

void TelvaroNotificationDBusConnectorTest::everyNotificationIsANewOne()
{
    TelvaroNotificationDBusConnector connector;
    mService.takeCalls();
    const QString call = notifyCall(QStringLiteral("'i', 's', 'b'"), QStringLiteral("@as []"));
    for (int round = 0; round < 2; ++round) {
        connector.notify(QStringLiteral("i"), QStringLiteral("s"), QStringLiteral("b"), {});
        QCOMPARE(mService.takeDescriptions(), QStringList{call});
    }
}

void TelvaroNotificationDBusConnectorTest::aForeignNotificationServerIsNotAddressed()
{
    ScriptedServiceProcess foreign;
    foreign.start();
    foreign.own(cInterface);
    mService.release();
    PrivateBus::deliver();
    TelvaroNotificationDBusConnector connector;
    connector.notify(QStringLiteral("i"), QStringLiteral("s"), QStringLiteral("b"), {});
    QCOMPARE(mLog->takeDescriptions(), QStringList{notRegistered()});
    QVERIFY(foreign.takeCalls().isEmpty());
}

TELVARO_TEST_MAIN(TelvaroNotificationDBusConnectorTest)
#include "TelvaroNotificationDBusConnectorTest.moc"
