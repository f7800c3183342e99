// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ConnectorFixture.h"
#include "PrivateBus.h"
#include "TelvaroGlobalOverlayDBusConnector.h"
#include "TelvaroNotificationDBusConnector.h"
#include "TelvaroScreenDBusConnector.h"
#include "TelvaroScreenShotDBusConnector.h"
#include "TelvaroTaskSwitcherDBusConnector.h"
#include "TestMain.h"
#include "ValueText.h"

#include <QDir>

// The introspection data of a service, which Qt reads once per interface and process.
class ServiceDescriptionTest : public ConnectorFixture
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void aCallThatIsMarkedAsHavingNoReplyIsNotWaitedFor();
    void aReadThatIsMarkedAsHavingNoReplyIsLogged();
    void aDescriptionThatIsNoneIsIgnored();
    void aRefusedDescriptionIsIgnored();

private:
    void scriptDescription(const QString& path, const Behaviour& behaviour);
};

void ServiceDescriptionTest::init()
{
    ConnectorFixture::init();
    const QString annotation =
        QStringLiteral("<annotation name=\"org.freedesktop.DBus.Method.NoReply\" value=\"true\"/>");
    const QString overlay = QStringLiteral("<node><interface name=\"de.Telvaro.globaloverlay\"><method name=\"Show\">"
                                           "<arg type=\"s\" direction=\"in\"/>%1</method></interface></node>");
    const QString taskSwitcher =
        QStringLiteral("<node><interface name=\"org.freedesktop.DBus.Properties\"><method name=\"Get\">"
                       "<arg type=\"s\" direction=\"in\"/><arg type=\"s\" direction=\"in\"/>%1</method>"
                       "</interface></node>");
    scriptDescription(QStringLiteral("/globaloverlay"), Behaviour::reply({ValueText::string(overlay.arg(annotation))}));
    scriptDescription(QStringLiteral("/taskswitcher"),
                      Behaviour::reply({ValueText::string(taskSwitcher.arg(annotation))}));
    scriptDescription(QStringLiteral("/org/freedesktop/Notifications"),
                      Behaviour::reply({QStringLiteral("'<node><interface name= & nothing that ends'")}));
    scriptDescription(QStringLiteral("/screenshot"),
                      Behaviour::error(QStringLiteral("org.example.Error.Failed"), QStringLiteral("no")));
}

void ServiceDescriptionTest::scriptDescription(const QString& path, const Behaviour& behaviour)
{
    mService.script(path, QStringLiteral("org.freedesktop.DBus.Introspectable"), QStringLiteral("Introspect"),
                    {behaviour});
}

void ServiceDescriptionTest::aCallThatIsMarkedAsHavingNoReplyIsNotWaitedFor()
{
    mService.script(QStringLiteral("/globaloverlay"), QStringLiteral("de.Telvaro.globaloverlay"),
                    QStringLiteral("Show"), {Behaviour::silence()});
    TelvaroGlobalOverlayDBusConnector connector;
    mService.takeCalls();
    connector.showGlobalOverlay(QStringLiteral("a"));
    QStringList calls;
    const auto hasArrived = [&] {
        calls += mService.takeDescriptions();
        return !calls.isEmpty();
    };
    QVERIFY(QTest::qWaitFor(hasArrived, ChildProcess::cDeadline));
    QCOMPARE(calls, QStringList{QStringLiteral("no reply /globaloverlay de.Telvaro.globaloverlay.Show s('a')")});
    // Not marked.
    connector.hideGlobalOverlay();
    QCOMPARE(mService.takeDescriptions(),
             QStringList{QStringLiteral("/globaloverlay de.Telvaro.globaloverlay.Hide ()")});
}

void ServiceDescriptionTest::aReadThatIsMarkedAsHavingNoReplyIsLogged()
{
    TelvaroTaskSwitcherDBusConnector taskSwitcher;
    QVERIFY(taskSwitcher.getViews().isEmpty());
    QCOMPARE(mLog->takeTexts(), QStringList{QStringLiteral("Unable to read views!")});
    QVERIFY(taskSwitcher.getCurrentView().uuid.isEmpty());
    QCOMPARE(mLog->takeTexts(),
             (QStringList{QStringLiteral("Unable to read views!"), QStringLiteral("Unable to read current view!")}));

    TelvaroScreenDBusConnector screen;
    QVERIFY(!screen.getFullScreen());
    QCOMPARE(mLog->takeTexts(),
             (QStringList{QStringLiteral("Unable to read property:  \"screenSaverActive\""),
                          QStringLiteral("Unable to convert property  \"screenSaverActive\" to bool!"),
                          QStringLiteral("Unable to read property:  \"fullScreen\""),
                          QStringLiteral("Unable to convert property  \"fullScreen\" to bool!")}));
}

void ServiceDescriptionTest::aDescriptionThatIsNoneIsIgnored()
{
    TelvaroNotificationDBusConnector connector;
    QVERIFY(connector.isInterfaceValid());
    mService.takeCalls();
    connector.notify(QStringLiteral("i"), QStringLiteral("s"), QStringLiteral("b"), {});
    QCOMPARE(mService.takeCalls().size(), 1);
}

void ServiceDescriptionTest::aRefusedDescriptionIsIgnored()
{
    TelvaroScreenShotDBusConnector connector;
    QVERIFY(connector.isInterfaceValid());
    QCOMPARE(connector.captureScreenShot(QDir::tempPath()).value_or(QString()), QStringLiteral("/shots/1.png"));
}

TELVARO_TEST_MAIN(ServiceDescriptionTest)
#include "ServiceDescriptionTest.moc"
