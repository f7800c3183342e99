// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "TelvaroScreenDBusConnector.h"

#include "BusMonitorProcess.h"
#include "ConnectorFixture.h"
#include "PrivateBus.h"
#include "TestMain.h"
#include "ValueText.h"
#include "WithProxy.h"

#include <QDBusArgument>
#include <QDBusVariant>
#include <QSignalSpy>

namespace {

const QString cPath = QStringLiteral("/screen");
const QString cInterface = QStringLiteral("de.Telvaro.screen");
const QString cScreenSaverActive = QStringLiteral("screenSaverActive");
const QString cOrientation = QStringLiteral("orientation");
const QString cFullScreen = QStringLiteral("fullScreen");
const QString cGet = QStringLiteral("Get");
const QString cSet = QStringLiteral("Set");
const QString cFailed = QStringLiteral("org.example.Error.Failed");

QString warning(const QString& operation, const QString& text)
{
    return QStringLiteral("warning default TelvaroScreenDBusConnector.cpp TelvaroScreenDBusConnector::%1 %2")
        .arg(operation, text);
}

const QString cUnconvertedScreenSaver =
    warning(QStringLiteral("isScreenSaverActive()"),
            QStringLiteral("Unable to convert property  \"screenSaverActive\" to bool!"));
const QString cUnconvertedFullScreen =
    warning(QStringLiteral("getFullScreen()"), QStringLiteral("Unable to convert property  \"fullScreen\" to bool!"));
const QString cUnconvertedOrientation = warning(
    QStringLiteral("getOrientation()"), QStringLiteral("Unable to convert property  \"orientation\" to QString!"));

QString unread(const QString& property)
{
    return warning(QStringLiteral("getProperty(constQString&)"),
                   QStringLiteral("Unable to read property:  \"%1\"").arg(property));
}

QString getCall(const QString& property)
{
    return QStringLiteral("/screen org.freedesktop.DBus.Properties.Get ss('de.Telvaro.screen', '%1')").arg(property);
}

QString setCall(const QString& property, const QString& value)
{
    return QStringLiteral("/screen org.freedesktop.DBus.Properties.Set ssv('de.Telvaro.screen', '%1', <%2>)")
        .arg(property, value);
}

} // namespace

class TelvaroScreenDBusConnectorTest : public ConnectorFixture
{
    Q_OBJECT

private Q_SLOTS:
    void theConstantsHaveTheirValues();
    void theOrientationsAreAnglesInDegrees();
    void slotsCanBeInvokedByName();
    void theProxyIsThatOfThePropertiesInterface();
    void theParentIsTaken();

    void constructionReadsTheScreenSaverOnceBeforeSubscribing();
    void constructionWithoutServiceLogsAndSubscribesAllTheSame();

    void settersSendTheirValue_data();
    void settersSendTheirValue();

    void readsReturnTheServicesValue();
    void repliesWithoutAVariantAreLogged_data();
    void repliesWithoutAVariantAreLogged();
    void readsThatAreNotAnsweredInTimeAreLogged();

    void propertiesAreReadAsTheyAre();
    void propertiesAreWrittenAsTheyAre();
    void thePropertiesOfTheObjectAreStillReachable();

    void aChangedScreenSaverIsReadAndEmitted();
    void anUnchangedScreenSaverEmitsNothing();
    void theFirstOrientationIsEmitted();
    void anEmptyFirstOrientationIsNotEmitted();
    void anUnchangedOrientationEmitsNothing();
    void theFirstFullScreenIsEmitted();
    void noFirstFullScreenIsNotEmitted();
    void aNotificationOfAllThreeEmitsInOrder();
    void aNotificationOfSomeReadsThoseOnly();
    void aReadThatFailsCountsAsFalseOrEmpty();
    void publicReadsLeaveTheLastKnownValues();
    void otherPropertiesAreNotFollowed();
    void invalidatedPropertiesEmitNothing();
    void theInterfaceNameOfTheNotificationIsNotLookedAt();
    void notificationsOfOtherPathsAndServicesEmitNothing();
    void aSlotThatReentersSeesTheOldScreenSaver();
    void aSlotThatReentersSeesTheNewOrientation();
    void aSlotThatReentersSeesTheNewFullScreen();
    void everyConnectorEmitsOnce();
    void notificationsArriveAfterARestart();

private:
    void setProperty(const QString& name, const QString& value);
    void scriptGet(const QString& property, const QList<Behaviour>& behaviours);
    void emitPropertiesChanged(const QString& changed, const QStringList& invalidated = {});
};

void TelvaroScreenDBusConnectorTest::setProperty(const QString& name, const QString& value)
{
    mService.setProperty(cPath, cInterface, name, value);
}

void TelvaroScreenDBusConnectorTest::scriptGet(const QString& property, const QList<Behaviour>& behaviours)
{
    mService.scriptProperty(cGet, cPath, property, behaviours);
}

void TelvaroScreenDBusConnectorTest::emitPropertiesChanged(const QString& changed, const QStringList& invalidated)
{
    mService.emitSignal(ServiceSignal::propertiesChanged(cPath, cInterface, changed, invalidated));
    PrivateBus::deliver();
}

void TelvaroScreenDBusConnectorTest::theConstantsHaveTheirValues()
{
    using Connector = TelvaroScreenDBusConnector;
    QCOMPARE(Connector::cScreenSaverActiveProperty, QStringLiteral("screenSaverActive"));
    QCOMPARE(Connector::cScreenSaverEnabledProperty, QStringLiteral("screenSaverEnabled"));
    QCOMPARE(Connector::cScreenSaverTimoutProperty, QStringLiteral("screenSaverTimeoutSeconds"));
    QCOMPARE(Connector::cPropertiesChanged, QStringLiteral("PropertiesChanged"));
    QCOMPARE(Connector::cScreenOrientationProperty, QStringLiteral("orientation"));
    QCOMPARE(Connector::cFullScreenProperty, QStringLiteral("fullScreen"));
}

void TelvaroScreenDBusConnectorTest::theOrientationsAreAnglesInDegrees()
{
    QCOMPARE(TelvaroScreenDBusConnector::getOrientationLandscape(), QStringLiteral("0"));
    QCOMPARE(TelvaroScreenDBusConnector::getOrientationPortrait(), QStringLiteral("90"));
    QCOMPARE(TelvaroScreenDBusConnector::getOrientationInversePortrait(), QStringLiteral("270"));
}

void TelvaroScreenDBusConnectorTest::slotsCanBeInvokedByName()
{
    setProperty(cOrientation, QStringLiteral("'90'"));
    TelvaroScreenDBusConnector connector;
    QString orientation;
    QVERIFY(QMetaObject::invokeMethod(&connector, "getOrientation", Q_RETURN_ARG(QString, orientation)));
    QCOMPARE(orientation, QStringLiteral("90"));
    bool fullScreen = true;
    QVERIFY(QMetaObject::invokeMethod(&connector, "getFullScreen", Q_RETURN_ARG(bool, fullScreen)));
    QVERIFY(!fullScreen);
    mService.takeCalls();
    QVERIFY(QMetaObject::invokeMethod(&connector, "setFullScreen", Q_ARG(bool, true)));
    QCOMPARE(mService.takeDescriptions(), QStringList{setCall(cFullScreen, QStringLiteral("true"))});
}

void TelvaroScreenDBusConnectorTest::theProxyIsThatOfThePropertiesInterface()
{
    const WithProxy<TelvaroScreenDBusConnector> connector;
    QCOMPARE(connector.mInterface.service(), QStringLiteral(TELVARO_SERVICE_NAME));
    QCOMPARE(connector.mInterface.path(), cPath);
    QCOMPARE(connector.mInterface.interface(), QStringLiteral("org.freedesktop.DBus.Properties"));
}

void TelvaroScreenDBusConnectorTest::theParentIsTaken()
{
    QObject parent;
    const auto* const connector = new TelvaroScreenDBusConnector(&parent);
    QCOMPARE(connector->parent(), &parent);
}

void TelvaroScreenDBusConnectorTest::constructionReadsTheScreenSaverOnceBeforeSubscribing()
{
    BusMonitorProcess monitor;
    monitor.start();
    const TelvaroScreenDBusConnector connector;
    QStringList members;
    for (const RecordedCall& call : monitor.takeCalls()) {
        if (call.member == QLatin1String("Get") || call.arguments.join(QString()).contains(cPath)) {
            members.append(call.member + QLatin1Char(' ') + call.arguments.value(1));
        }
    }
    QCOMPARE(members, (QStringList{QStringLiteral("Get 'screenSaverActive'"), QStringLiteral("AddMatch ")}));
}

void TelvaroScreenDBusConnectorTest::constructionWithoutServiceLogsAndSubscribesAllTheSame()
{
    mService.release();
    PrivateBus::deliver();
    TelvaroScreenDBusConnector connector;
    QCOMPARE(mLog->takeDescriptions(), (QStringList{notRegistered(), cUnconvertedScreenSaver}));
    const QSignalSpy screenSaverActiveChanged(&connector, &TelvaroScreenDBusConnector::screenSaverActiveChanged);
    mService.own();
    PrivateBus::deliver();
    setProperty(cScreenSaverActive, QStringLiteral("true"));
    emitPropertiesChanged(QStringLiteral("{'screenSaverActive': <true>}"));
    // The failed read at construction counts as false.
    QCOMPARE(screenSaverActiveChanged.size(), 1);
    QCOMPARE(screenSaverActiveChanged.first(), QVariantList{true});
}

using Setter = void (*)(TelvaroScreenDBusConnector&);
Q_DECLARE_METATYPE(Setter)

void TelvaroScreenDBusConnectorTest::settersSendTheirValue_data()
{
    using Connector = TelvaroScreenDBusConnector;
    QTest::addColumn<Setter>("setter");
    QTest::addColumn<QString>("property");
    QTest::addColumn<QString>("value");
    const auto addRow = [](const char* name, const char* property, const char* value, Setter setter) {
        QTest::newRow(name) << setter << property << value;
    };
    const char enabled[] = "screenSaverEnabled";
    const char timeout[] = "screenSaverTimeoutSeconds";
    const char orientation[] = "orientation";
    addRow("enable", enabled, "true", [](Connector& c) {
        c.enableScreenSaver();
    });
    addRow("disable", enabled, "false", [](Connector& c) {
        c.disableScreenSaver();
    });
    addRow("timeout 300", timeout, "300", [](Connector& c) {
        c.setScreenSaverTimeout(300);
    });
    addRow("timeout 0", timeout, "0", [](Connector& c) {
        c.setScreenSaverTimeout(0);
    });
    addRow("timeout -1", timeout, "-1", [](Connector& c) {
        c.setScreenSaverTimeout(-1);
    });
    addRow("longest timeout", timeout, "2147483647", [](Connector& c) {
        c.setScreenSaverTimeout(2147483647);
    });
    addRow("landscape", orientation, "'0'", [](Connector& c) {
        c.setOrientation(Connector::getOrientationLandscape());
    });
    addRow("180", orientation, "'180'", [](Connector& c) {
        c.setOrientation(QStringLiteral("180"));
    });
    addRow("empty", orientation, "''", [](Connector& c) {
        c.setOrientation(QString());
    });
    addRow("anything", orientation, "' Up side-down '", [](Connector& c) {
        c.setOrientation(QStringLiteral(" Up side-down "));
    });
    addRow("full", "fullScreen", "true", [](Connector& c) {
        c.setFullScreen(true);
    });
    addRow("not full", "fullScreen", "false", [](Connector& c) {
        c.setFullScreen(false);
    });
}

void TelvaroScreenDBusConnectorTest::settersSendTheirValue()
{
    QFETCH(const Setter, setter);
    QFETCH(const QString, property);
    QFETCH(const QString, value);
    TelvaroScreenDBusConnector connector;
    mService.takeCalls();
    setter(connector);
    QCOMPARE(mService.takeDescriptions(), QStringList{setCall(property, value)});
}

void TelvaroScreenDBusConnectorTest::readsReturnTheServicesValue()
{
    TelvaroScreenDBusConnector connector;
    QVERIFY(!connector.isScreenSaverActive());
    QVERIFY(!connector.getFullScreen());
    QCOMPARE(connector.getOrientation(), QStringLiteral("0"));
    setProperty(cScreenSaverActive, QStringLiteral("true"));
    setProperty(cFullScreen, QStringLiteral("true"));
    setProperty(cOrientation, QStringLiteral("'upside down'"));
    QVERIFY(connector.isScreenSaverActive());
    QVERIFY(connector.getFullScreen());
    QCOMPARE(connector.getOrientation(), QStringLiteral("upside down"));
}

void TelvaroScreenDBusConnectorTest::repliesWithoutAVariantAreLogged_data()
{
    QTest::addColumn<QStringList>("reply");
    QTest::newRow("a bool and no variant") << QStringList{QStringLiteral("true")};
    QTest::newRow("the variant second") << QStringList{QStringLiteral("1"), QStringLiteral("<true>")};
}

void TelvaroScreenDBusConnectorTest::repliesWithoutAVariantAreLogged()
{
    QFETCH(const QStringList, reply);
    TelvaroScreenDBusConnector connector;
    scriptGet(QString(), {Behaviour::reply(reply)});
    QVERIFY(!connector.getProperty(cFullScreen).isValid());
    QCOMPARE(mLog->takeDescriptions(), QStringList{unread(cFullScreen)});
    QVERIFY(!connector.isScreenSaverActive());
    QCOMPARE(mLog->takeDescriptions(), (QStringList{unread(cScreenSaverActive), cUnconvertedScreenSaver}));
    QVERIFY(!connector.getFullScreen());
    QCOMPARE(mLog->takeDescriptions(), (QStringList{unread(cFullScreen), cUnconvertedFullScreen}));
    QCOMPARE(connector.getOrientation(), QString());
    QCOMPARE(mLog->takeDescriptions(), (QStringList{unread(cOrientation), cUnconvertedOrientation}));
}

void TelvaroScreenDBusConnectorTest::readsThatAreNotAnsweredInTimeAreLogged()
{
    WithProxy<TelvaroScreenDBusConnector> connector;
    connector.mInterface.setTimeout(50);
    scriptGet(cOrientation, {Behaviour::silence()});
    QCOMPARE(connector.getOrientation(), QString());
    QCOMPARE(mLog->takeDescriptions(), (QStringList{unread(cOrientation), cUnconvertedOrientation}));
}

void TelvaroScreenDBusConnectorTest::propertiesAreReadAsTheyAre()
{
    TelvaroScreenDBusConnector connector;
    mService.takeCalls();
    QCOMPARE(connector.getProperty(QStringLiteral("screenSaverTimeoutSeconds")), QVariant(300));
    QCOMPARE(mService.takeDescriptions(), QStringList{getCall(QStringLiteral("screenSaverTimeoutSeconds"))});
    setProperty(QStringLiteral("other"), QStringLiteral("(1, 'a')"));
    QCOMPARE(connector.getProperty(QStringLiteral("other")).value<QDBusArgument>().currentSignature(),
             QStringLiteral("(is)"));
    QVERIFY(!connector.getProperty(QStringLiteral("unknown")).isValid());
    QCOMPARE(mLog->takeDescriptions(), QStringList{unread(QStringLiteral("unknown"))});
}

void TelvaroScreenDBusConnectorTest::propertiesAreWrittenAsTheyAre()
{
    TelvaroScreenDBusConnector connector;
    mService.takeCalls();
    connector.setProperty(QStringLiteral("other"), QDBusVariant(QVariant::fromValue(QDBusVariant(3u))));
    connector.setProperty(QString(), QDBusVariant(QStringList{QStringLiteral("a")}));
    QCOMPARE(mService.takeDescriptions(),
             (QStringList{setCall(QStringLiteral("other"), QStringLiteral("<uint32 3>")),
                          setCall(QString(), QStringLiteral("['a']"))}));
}

void TelvaroScreenDBusConnectorTest::thePropertiesOfTheObjectAreStillReachable()
{
    TelvaroScreenDBusConnector connector;
    mService.takeCalls();
    connector.QObject::setProperty("objectName", QStringLiteral("name"));
    QCOMPARE(connector.objectName(), QStringLiteral("name"));
    QVERIFY(mService.takeCalls().isEmpty());
}

void TelvaroScreenDBusConnectorTest::aChangedScreenSaverIsReadAndEmitted()
{
    TelvaroScreenDBusConnector connector;
    const QSignalSpy screenSaverActiveChanged(&connector, &TelvaroScreenDBusConnector::screenSaverActiveChanged);
    setProperty(cScreenSaverActive, QStringLiteral("true"));
    mService.takeCalls();
    // The notified value plays no part.
    emitPropertiesChanged(QStringLiteral("{'screenSaverActive': <false>}"));
    QCOMPARE(screenSaverActiveChanged.size(), 1);
    QCOMPARE(screenSaverActiveChanged.first(), QVariantList{true});
    QCOMPARE(mService.takeDescriptions(), QStringList{getCall(cScreenSaverActive)});
    emitPropertiesChanged(QStringLiteral("{'screenSaverActive': <false>}"));
    QCOMPARE(screenSaverActiveChanged.size(), 1);
    setProperty(cScreenSaverActive, QStringLiteral("false"));
    emitPropertiesChanged(QStringLiteral("{'screenSaverActive': <false>}"));
    QCOMPARE(screenSaverActiveChanged.size(), 2);
    QCOMPARE(screenSaverActiveChanged.last(), QVariantList{false});
}

void TelvaroScreenDBusConnectorTest::anUnchangedScreenSaverEmitsNothing()
{
    setProperty(cScreenSaverActive, QStringLiteral("true"));
    TelvaroScreenDBusConnector connector;
    const QSignalSpy screenSaverActiveChanged(&connector, &TelvaroScreenDBusConnector::screenSaverActiveChanged);
    emitPropertiesChanged(QStringLiteral("{'screenSaverActive': <false>}"));
    QCOMPARE(screenSaverActiveChanged.size(), 0);
}

void TelvaroScreenDBusConnectorTest::theFirstOrientationIsEmitted()
{
    TelvaroScreenDBusConnector connector;
    const QSignalSpy screenOrientationChanged(&connector, &TelvaroScreenDBusConnector::screenOrientationChanged);
    mService.takeCalls();
    emitPropertiesChanged(QStringLiteral("{'orientation': <'another'>}"));
    QCOMPARE(screenOrientationChanged.size(), 1);
    QCOMPARE(screenOrientationChanged.first(), QVariantList{QStringLiteral("0")});
    QCOMPARE(mService.takeDescriptions(), QStringList{getCall(cOrientation)});
}

void TelvaroScreenDBusConnectorTest::anEmptyFirstOrientationIsNotEmitted()
{
    setProperty(cOrientation, QStringLiteral("''"));
    TelvaroScreenDBusConnector connector;
    const QSignalSpy screenOrientationChanged(&connector, &TelvaroScreenDBusConnector::screenOrientationChanged);
    emitPropertiesChanged(QStringLiteral("{'orientation': <'90'>}"));
    QCOMPARE(screenOrientationChanged.size(), 0);
}

void TelvaroScreenDBusConnectorTest::anUnchangedOrientationEmitsNothing()
{
    TelvaroScreenDBusConnector connector;
    const QSignalSpy screenOrientationChanged(&connector, &TelvaroScreenDBusConnector::screenOrientationChanged);
    emitPropertiesChanged(QStringLiteral("{'orientation': <'0'>}"));
    emitPropertiesChanged(QStringLiteral("{'orientation': <'90'>}"));
    QCOMPARE(screenOrientationChanged.size(), 1);
    setProperty(cOrientation, QStringLiteral("'90'"));
    emitPropertiesChanged(QStringLiteral("{'orientation': <'90'>}"));
    QCOMPARE(screenOrientationChanged.size(), 2);
    QCOMPARE(screenOrientationChanged.last(), QVariantList{QStringLiteral("90")});
}

void TelvaroScreenDBusConnectorTest::theFirstFullScreenIsEmitted()
{
    setProperty(cFullScreen, QStringLiteral("true"));
    TelvaroScreenDBusConnector connector;
    const QSignalSpy fullScreenChanged(&connector, &TelvaroScreenDBusConnector::fullScreenChanged);
    mService.takeCalls();
    emitPropertiesChanged(QStringLiteral("{'fullScreen': <false>}"));
    QCOMPARE(fullScreenChanged.size(), 1);
    QCOMPARE(fullScreenChanged.first(), QVariantList{true});
    QCOMPARE(mService.takeDescriptions(), QStringList{getCall(cFullScreen)});
    emitPropertiesChanged(QStringLiteral("{'fullScreen': <true>}"));
    QCOMPARE(fullScreenChanged.size(), 1);
}

void TelvaroScreenDBusConnectorTest::noFirstFullScreenIsNotEmitted()
{
    TelvaroScreenDBusConnector connector;
    const QSignalSpy fullScreenChanged(&connector, &TelvaroScreenDBusConnector::fullScreenChanged);
    emitPropertiesChanged(QStringLiteral("{'fullScreen': <true>}"));
    QCOMPARE(fullScreenChanged.size(), 0);
}

void TelvaroScreenDBusConnectorTest::aNotificationOfAllThreeEmitsInOrder()
{
    TelvaroScreenDBusConnector connector;
    QStringList emitted;
    QObject::connect(&connector, &TelvaroScreenDBusConnector::fullScreenChanged, &connector, [&emitted] {
        emitted.append(cFullScreen);
    });
    QObject::connect(&connector, &TelvaroScreenDBusConnector::screenOrientationChanged, &connector, [&emitted] {
        emitted.append(cOrientation);
    });
    QObject::connect(&connector, &TelvaroScreenDBusConnector::screenSaverActiveChanged, &connector, [&emitted] {
        emitted.append(cScreenSaverActive);
    });
    setProperty(cScreenSaverActive, QStringLiteral("true"));
    setProperty(cOrientation, QStringLiteral("'90'"));
    setProperty(cFullScreen, QStringLiteral("true"));
    mService.takeCalls();
    emitPropertiesChanged(QStringLiteral("{'fullScreen': <true>, 'orientation': <'90'>, 'screenSaverActive': <1>}"));
    QCOMPARE(emitted, (QStringList{cScreenSaverActive, cOrientation, cFullScreen}));
    QCOMPARE(mService.takeDescriptions(),
             (QStringList{getCall(cScreenSaverActive), getCall(cOrientation), getCall(cFullScreen)}));
}

void TelvaroScreenDBusConnectorTest::aNotificationOfSomeReadsThoseOnly()
{
    TelvaroScreenDBusConnector connector;
    mService.takeCalls();
    emitPropertiesChanged(QStringLiteral("{'fullScreen': <true>, 'screenSaverActive': <1>, 'brightness': <5>}"));
    QCOMPARE(mService.takeDescriptions(), (QStringList{getCall(cScreenSaverActive), getCall(cFullScreen)}));
}

void TelvaroScreenDBusConnectorTest::aReadThatFailsCountsAsFalseOrEmpty()
{
    setProperty(cScreenSaverActive, QStringLiteral("true"));
    setProperty(cFullScreen, QStringLiteral("true"));
    TelvaroScreenDBusConnector connector;
    const QString all = QStringLiteral("{'screenSaverActive': <0>, 'orientation': <0>, 'fullScreen': <0>}");
    emitPropertiesChanged(all);
    const QSignalSpy screenSaverActiveChanged(&connector, &TelvaroScreenDBusConnector::screenSaverActiveChanged);
    const QSignalSpy screenOrientationChanged(&connector, &TelvaroScreenDBusConnector::screenOrientationChanged);
    const QSignalSpy fullScreenChanged(&connector, &TelvaroScreenDBusConnector::fullScreenChanged);
    scriptGet(QString(), {Behaviour::error(cFailed, QStringLiteral("no"))});
    const QStringList messages{unread(cScreenSaverActive), cUnconvertedScreenSaver, unread(cOrientation),
                               cUnconvertedOrientation,    unread(cFullScreen),     cUnconvertedFullScreen};
    emitPropertiesChanged(all);
    QCOMPARE(mLog->takeDescriptions(), messages);
    QCOMPARE(screenSaverActiveChanged.size(), 1);
    QCOMPARE(screenSaverActiveChanged.first(), QVariantList{false});
    QCOMPARE(screenOrientationChanged.size(), 1);
    QCOMPARE(screenOrientationChanged.first(), QVariantList{QString()});
    QCOMPARE(fullScreenChanged.size(), 1);
    QCOMPARE(fullScreenChanged.first(), QVariantList{false});
    // The failed value is remembered like any other.
    emitPropertiesChanged(all);
    QCOMPARE(mLog->takeDescriptions(), messages);
    QCOMPARE(screenSaverActiveChanged.size() + screenOrientationChanged.size() + fullScreenChanged.size(), 3);
}

void TelvaroScreenDBusConnectorTest::publicReadsLeaveTheLastKnownValues()
{
    TelvaroScreenDBusConnector connector;
    const QSignalSpy screenSaverActiveChanged(&connector, &TelvaroScreenDBusConnector::screenSaverActiveChanged);
    const QSignalSpy fullScreenChanged(&connector, &TelvaroScreenDBusConnector::fullScreenChanged);
    setProperty(cScreenSaverActive, QStringLiteral("true"));
    setProperty(cFullScreen, QStringLiteral("true"));
    QVERIFY(connector.isScreenSaverActive());
    QVERIFY(connector.getFullScreen());
    connector.setFullScreen(true);
    QCOMPARE(screenSaverActiveChanged.size() + fullScreenChanged.size(), 0);
    emitPropertiesChanged(QStringLiteral("{'screenSaverActive': <true>, 'fullScreen': <true>}"));
    QCOMPARE(screenSaverActiveChanged.size(), 1);
    QCOMPARE(fullScreenChanged.size(), 1);
}

void TelvaroScreenDBusConnectorTest::otherPropertiesAreNotFollowed()
{
    TelvaroScreenDBusConnector connector;
    mService.takeCalls();
    emitPropertiesChanged(QStringLiteral("{'screenSaverEnabled': <false>, 'screenSaverTimeoutSeconds': <1>, "
                                         "'FullScreen': <true>, 'Orientation': <'90'>}"));
    QVERIFY(mService.takeCalls().isEmpty());
}

void TelvaroScreenDBusConnectorTest::invalidatedPropertiesEmitNothing()
{
    setProperty(cFullScreen, QStringLiteral("true"));
    TelvaroScreenDBusConnector connector;
    mService.takeCalls();
    emitPropertiesChanged(QStringLiteral("@a{sv} {}"), {cScreenSaverActive, cOrientation, cFullScreen});
    QVERIFY(mService.takeCalls().isEmpty());
}

void TelvaroScreenDBusConnectorTest::theInterfaceNameOfTheNotificationIsNotLookedAt()
{
    setProperty(cFullScreen, QStringLiteral("true"));
    TelvaroScreenDBusConnector connector;
    const QSignalSpy fullScreenChanged(&connector, &TelvaroScreenDBusConnector::fullScreenChanged);
    mService.emitSignal(ServiceSignal::propertiesChanged(cPath, QStringLiteral("org.example.Foreign"),
                                                         QStringLiteral("{'fullScreen': <true>}")));
    PrivateBus::deliver();
    QCOMPARE(fullScreenChanged.size(), 1);
}

void TelvaroScreenDBusConnectorTest::notificationsOfOtherPathsAndServicesEmitNothing()
{
    TelvaroScreenDBusConnector connector;
    mService.takeCalls();
    const QString changed = QStringLiteral("{'fullScreen': <true>}");
    mService.emitSignal(ServiceSignal::propertiesChanged(QStringLiteral("/taskswitcher"), cInterface, changed));
    ScriptedServiceProcess stranger;
    stranger.start();
    stranger.emitSignal(ServiceSignal::propertiesChanged(cPath, cInterface, changed));
    PrivateBus::deliver();
    QVERIFY(mService.takeCalls().isEmpty());
}

void TelvaroScreenDBusConnectorTest::aSlotThatReentersSeesTheOldScreenSaver()
{
    TelvaroScreenDBusConnector connector;
    int emissions = 0;
    QObject::connect(&connector, &TelvaroScreenDBusConnector::screenSaverActiveChanged, &connector, [&] {
        if (++emissions == 1) {
            QMetaObject::invokeMethod(&connector, "onScreenPropertiesChanged", Q_ARG(QString, QString()),
                                      Q_ARG(QVariantMap, QVariantMap({{cScreenSaverActive, true}})),
                                      Q_ARG(QStringList, QStringList()));
        }
    });
    setProperty(cScreenSaverActive, QStringLiteral("true"));
    emitPropertiesChanged(QStringLiteral("{'screenSaverActive': <true>}"));
    QCOMPARE(emissions, 2);
}

void TelvaroScreenDBusConnectorTest::aSlotThatReentersSeesTheNewOrientation()
{
    TelvaroScreenDBusConnector connector;
    int emissions = 0;
    QObject::connect(&connector, &TelvaroScreenDBusConnector::screenOrientationChanged, &connector, [&] {
        ++emissions;
        QMetaObject::invokeMethod(&connector, "onScreenPropertiesChanged", Q_ARG(QString, QString()),
                                  Q_ARG(QVariantMap, QVariantMap({{cOrientation, QString()}})),
                                  Q_ARG(QStringList, QStringList()));
    });
    emitPropertiesChanged(QStringLiteral("{'orientation': <'0'>}"));
    QCOMPARE(emissions, 1);
}

void TelvaroScreenDBusConnectorTest::aSlotThatReentersSeesTheNewFullScreen()
{
    TelvaroScreenDBusConnector connector;
    int emissions = 0;
    QObject::connect(&connector, &TelvaroScreenDBusConnector::fullScreenChanged, &connector, [&] {
        ++emissions;
        QMetaObject::invokeMethod(&connector, "onScreenPropertiesChanged", Q_ARG(QString, QString()),
                                  Q_ARG(QVariantMap, QVariantMap({{cFullScreen, true}})),
                                  Q_ARG(QStringList, QStringList()));
    });
    setProperty(cFullScreen, QStringLiteral("true"));
    emitPropertiesChanged(QStringLiteral("{'fullScreen': <true>}"));
    QCOMPARE(emissions, 1);
}

void TelvaroScreenDBusConnectorTest::everyConnectorEmitsOnce()
{
    setProperty(cFullScreen, QStringLiteral("true"));
    TelvaroScreenDBusConnector first;
    TelvaroScreenDBusConnector second;
    const QSignalSpy firstChanged(&first, &TelvaroScreenDBusConnector::fullScreenChanged);
    const QSignalSpy secondChanged(&second, &TelvaroScreenDBusConnector::fullScreenChanged);
    emitPropertiesChanged(QStringLiteral("{'fullScreen': <true>}"));
    QCOMPARE(firstChanged.size(), 1);
    QCOMPARE(secondChanged.size(), 1);
}

void TelvaroScreenDBusConnectorTest::notificationsArriveAfterARestart()
{
    TelvaroScreenDBusConnector connector;
    const QSignalSpy fullScreenChanged(&connector, &TelvaroScreenDBusConnector::fullScreenChanged);
    mService.kill();
    startService();
    setProperty(cFullScreen, QStringLiteral("true"));
    emitPropertiesChanged(QStringLiteral("{'fullScreen': <true>}"));
    QCOMPARE(fullScreenChanged.size(), 1);
}

TELVARO_TEST_MAIN(TelvaroScreenDBusConnectorTest)
#include "TelvaroScreenDBusConnectorTest.moc"
