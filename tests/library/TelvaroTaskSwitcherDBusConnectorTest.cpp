// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "PrivateBus.h"
#include "TaskSwitcherFixture.h"
#include "TestMain.h"
#include "ValueText.h"
#include "WithProxy.h"

#include <QDBusError>
#include <QSignalSpy>

namespace {

const QString cGetViews = QStringLiteral("getViews()");
const QString cGetCurrentView = QStringLiteral("getCurrentView()");
const QString cOnPropertiesChanged =
    QStringLiteral("onPropertiesChanged(constQString&,constQVariantMap&,constQStringList&)");
const QString cUnreadableViews = QStringLiteral("Unable to read views!");
const QString cUnreadableCurrentView = QStringLiteral("Unable to read current view!");
const QString cUnparsable = QStringLiteral("Unable to parse dbus-reply to dbus-argument");
const QString cNotFound = QStringLiteral("current view not found in all views list");

const QString cFailed = QStringLiteral("org.example.Error.Failed");

} // namespace

class TelvaroTaskSwitcherDBusConnectorTest : public TaskSwitcherFixture
{
    Q_OBJECT

private Q_SLOTS:
    void theConstantsHaveTheirValues();
    void theProxyIsThatOfThePropertiesInterface();
    void theParentIsTaken();

    void viewsAreReadInTheServicesOrder();
    void noViewsAreAnEmptyListWithoutAWarning();
    void viewsOfAnInvalidProxyAreLogged();
    void viewsAreReadWithoutAskingWhetherTheServiceIsRegistered();
    void viewsWithoutAVariantAreLogged_data();
    void viewsWithoutAVariantAreLogged();
    void viewsThatAreNotAnsweredInTimeAreLogged();

    void theCurrentViewIsTheWholeRecord();
    void theCurrentViewIsTheFirstOfItsUuid();
    void theCurrentViewsUuidIsComparedCaseSensitively();
    void aCurrentViewThatIsNotListedIsEmptyAndLogged();
    void noCurrentViewIsEmptyAndLogged();
    void anEmptyUuidMatchesAViewWithoutOne();
    void theCurrentViewOfAServiceThatIsNotNoticedYetLogsBothFailures();
    void aCurrentViewThatConvertsToAStringIsSearchedFor();
    void viewsThatChangeBetweenTheReadsAreNotReadAgain();

    void settingTheCurrentViewSendsItsUuidOnly();
    void settingTheCurrentViewThatIsNotAnsweredInTimeIsAnError();

    void aChangedCurrentViewIsReadAnewAndEmitted();
    void aChangedCurrentViewThatCannotBeReadIsEmittedEmpty();
    void aChangedCurrentViewOfAnotherTypeIsLoggedAndNotEmitted_data();
    void aChangedCurrentViewOfAnotherTypeIsLoggedAndNotEmitted();
    void aChangedCurrentViewThatConvertsToAStringIsEmitted();
    void changedViewsAreEmittedWithoutReading();
    void bothChangedEmitsTheCurrentViewOnly();
    void anUnusableCurrentViewHidesTheViewsToo();
    void invalidatedPropertiesEmitNothing();
    void otherPropertiesEmitNothing();
    void theInterfaceNameOfTheNotificationIsNotLookedAt();
    void notificationsOfOtherPathsAndServicesAndSignalsEmitNothing();
    void notificationsAreEmittedOnceForEveryConnector();
    void notificationsArriveAfterARestart();
    void aDestroyedConnectorHearsNothing();
    void writingThroughOneConnectorIsSignalledByIt();
    void aSlotMayCallBackAndDestroyOtherConnectors();
};

void TelvaroTaskSwitcherDBusConnectorTest::theConstantsHaveTheirValues()
{
    QCOMPARE(TelvaroTaskSwitcherDBusConnector::cCurrentViewProperty, QStringLiteral("currentView"));
    QCOMPARE(TelvaroTaskSwitcherDBusConnector::cViewsProperty, QStringLiteral("views"));
    QCOMPARE(TelvaroTaskSwitcherDBusConnector::cPropertiesChanged, QStringLiteral("PropertiesChanged"));
}

void TelvaroTaskSwitcherDBusConnectorTest::theProxyIsThatOfThePropertiesInterface()
{
    const WithProxy<TelvaroTaskSwitcherDBusConnector> connector;
    QCOMPARE(connector.mInterface.service(), QStringLiteral(TELVARO_SERVICE_NAME));
    QCOMPARE(connector.mInterface.path(), QStringLiteral("/taskswitcher"));
    QCOMPARE(connector.mInterface.interface(), QStringLiteral("org.freedesktop.DBus.Properties"));
}

void TelvaroTaskSwitcherDBusConnectorTest::theParentIsTaken()
{
    QObject parent;
    const auto* const connector = new TelvaroTaskSwitcherDBusConnector(&parent);
    QCOMPARE(connector->parent(), &parent);
}

void TelvaroTaskSwitcherDBusConnectorTest::viewsAreReadInTheServicesOrder()
{
    TaskSwitcherEntry full = makeView(QStringLiteral("z"), QStringLiteral("app"), 9, 4294967295);
    full.info1 = QStringLiteral("1");
    full.info2 = QStringLiteral("2");
    full.info3 = QStringLiteral("3");
    full.info4 = QStringLiteral("4");
    full.attributes = {{QStringLiteral("title"), QStringLiteral("T")}};
    setViews({full, makeView(QStringLiteral("a"), QStringLiteral("app")),
              makeView(QStringLiteral("a"), QStringLiteral("other"))});
    TelvaroTaskSwitcherDBusConnector connector;
    mService.takeCalls();
    const QList<TaskSwitcherEntry> views = connector.getViews();
    QCOMPARE(mService.takeDescriptions(), QStringList{getViewsCall()});
    QCOMPARE(uuids(views), (QStringList{QStringLiteral("z"), QStringLiteral("a"), QStringLiteral("a")}));
    const TaskSwitcherEntry& first = views.first();
    QCOMPARE(first.appId, QStringLiteral("app"));
    QCOMPARE(first.info1 + first.info2 + first.info3 + first.info4, QStringLiteral("1234"));
    QCOMPARE(first.pid, 4294967295u);
    QCOMPARE(first.sortIndex, 9u);
    QCOMPARE(first.attributes, full.attributes);
    QCOMPARE(views.last().appId, QStringLiteral("other"));
}

void TelvaroTaskSwitcherDBusConnectorTest::noViewsAreAnEmptyListWithoutAWarning()
{
    TelvaroTaskSwitcherDBusConnector connector;
    QVERIFY(connector.getViews().isEmpty());
}

void TelvaroTaskSwitcherDBusConnectorTest::viewsOfAnInvalidProxyAreLogged()
{
    mService.release();
    PrivateBus::deliver();
    TelvaroTaskSwitcherDBusConnector connector;
    mService.takeCalls();
    QVERIFY(connector.getViews().isEmpty());
    QCOMPARE(mLog->takeDescriptions(), QStringList{warning(cGetViews, QStringLiteral("Invalid DBus interface!"))});
    mService.own();
    // Not noticed before the loop turns.
    QVERIFY(connector.getViews().isEmpty());
    QCOMPARE(mLog->takeDescriptions(), QStringList{warning(cGetViews, QStringLiteral("Invalid DBus interface!"))});
    QVERIFY(mService.takeCalls().isEmpty());
}

void TelvaroTaskSwitcherDBusConnectorTest::viewsAreReadWithoutAskingWhetherTheServiceIsRegistered()
{
    TelvaroTaskSwitcherDBusConnector connector;
    mService.release();
    // The proxy is still valid, so that the operation tries.
    QVERIFY(connector.getViews().isEmpty());
    QCOMPARE(mLog->takeDescriptions(), QStringList{warning(cGetViews, cUnreadableViews)});
}

void TelvaroTaskSwitcherDBusConnectorTest::viewsWithoutAVariantAreLogged_data()
{
    QTest::addColumn<QStringList>("reply");
    QTest::newRow("the views without variant") << QStringList{ValueText::views({makeView({}, {})})};
    QTest::newRow("the variant second") << QStringList{QStringLiteral("1"), QStringLiteral("<'text'>")};
}

void TelvaroTaskSwitcherDBusConnectorTest::viewsWithoutAVariantAreLogged()
{
    QFETCH(const QStringList, reply);
    scriptViews({Behaviour::reply(reply)});
    TelvaroTaskSwitcherDBusConnector connector;
    QVERIFY(connector.getViews().isEmpty());
    QCOMPARE(mLog->takeDescriptions(), QStringList{warning(cGetViews, cUnreadableViews)});
}

void TelvaroTaskSwitcherDBusConnectorTest::viewsThatAreNotAnsweredInTimeAreLogged()
{
    scriptViews({Behaviour::silence()});
    WithProxy<TelvaroTaskSwitcherDBusConnector> connector;
    connector.mInterface.setTimeout(50);
    QVERIFY(connector.getViews().isEmpty());
    QCOMPARE(mLog->takeDescriptions(), QStringList{warning(cGetViews, cUnreadableViews)});
}

void TelvaroTaskSwitcherDBusConnectorTest::theCurrentViewIsTheWholeRecord()
{
    TaskSwitcherEntry current = makeView(QStringLiteral("b"), QStringLiteral("app"), 4, 77);
    current.info3 = QStringLiteral("three");
    current.attributes = {{QStringLiteral("title"), QStringLiteral("T")}};
    setViews({makeView(QStringLiteral("a"), QStringLiteral("app")), current}, QStringLiteral("b"));
    TelvaroTaskSwitcherDBusConnector connector;
    mService.takeCalls();
    const TaskSwitcherEntry entry = connector.getCurrentView();
    QCOMPARE(mService.takeDescriptions(), (QStringList{getViewsCall(), getCurrentViewCall()}));
    QCOMPARE(entry.uuid, QStringLiteral("b"));
    QCOMPARE(entry.appId, QStringLiteral("app"));
    QCOMPARE(entry.info3, QStringLiteral("three"));
    QCOMPARE(entry.pid, 77u);
    QCOMPARE(entry.sortIndex, 4u);
    QCOMPARE(entry.attributes, current.attributes);
}

void TelvaroTaskSwitcherDBusConnectorTest::theCurrentViewIsTheFirstOfItsUuid()
{
    setViews({makeView(QStringLiteral("a"), QStringLiteral("first")),
              makeView(QStringLiteral("a"), QStringLiteral("second"))},
             QStringLiteral("a"));
    TelvaroTaskSwitcherDBusConnector connector;
    QCOMPARE(connector.getCurrentView().appId, QStringLiteral("first"));
}

void TelvaroTaskSwitcherDBusConnectorTest::theCurrentViewsUuidIsComparedCaseSensitively()
{
    setViews({makeView(QStringLiteral("ABC"), QStringLiteral("wrong")),
              makeView(QStringLiteral("abc"), QStringLiteral("right"))},
             QStringLiteral("abc"));
    TelvaroTaskSwitcherDBusConnector connector;
    QCOMPARE(connector.getCurrentView().appId, QStringLiteral("right"));
}

void TelvaroTaskSwitcherDBusConnectorTest::aCurrentViewThatIsNotListedIsEmptyAndLogged()
{
    setViews({makeView(QStringLiteral("a"), QStringLiteral("app"))}, QStringLiteral("gone"));
    TelvaroTaskSwitcherDBusConnector connector;
    QVERIFY(isEmpty(connector.getCurrentView()));
    QCOMPARE(mLog->takeDescriptions(), QStringList{warning(cGetCurrentView, cNotFound)});
}

void TelvaroTaskSwitcherDBusConnectorTest::noCurrentViewIsEmptyAndLogged()
{
    setViews({makeView(QStringLiteral("a"), QStringLiteral("app"))});
    TelvaroTaskSwitcherDBusConnector connector;
    QVERIFY(isEmpty(connector.getCurrentView()));
    QCOMPARE(mLog->takeDescriptions(), QStringList{warning(cGetCurrentView, cNotFound)});
}

void TelvaroTaskSwitcherDBusConnectorTest::anEmptyUuidMatchesAViewWithoutOne()
{
    setViews({makeView(QString(), QStringLiteral("nameless"))});
    TelvaroTaskSwitcherDBusConnector connector;
    QCOMPARE(connector.getCurrentView().appId, QStringLiteral("nameless"));
}

void TelvaroTaskSwitcherDBusConnectorTest::theCurrentViewOfAServiceThatIsNotNoticedYetLogsBothFailures()
{
    mService.release();
    PrivateBus::deliver();
    TelvaroTaskSwitcherDBusConnector connector;
    mService.own();
    QVERIFY(isEmpty(connector.getCurrentView()));
    QCOMPARE(mLog->takeDescriptions(),
             (QStringList{warning(cGetViews, QStringLiteral("Invalid DBus interface!")), invalidInterface()}));
}

void TelvaroTaskSwitcherDBusConnectorTest::aCurrentViewThatConvertsToAStringIsSearchedFor()
{
    setViews({makeView(QStringLiteral("17"), QStringLiteral("app"))});
    scriptCurrentView({Behaviour::reply({QStringLiteral("<17>")})});
    TelvaroTaskSwitcherDBusConnector connector;
    QCOMPARE(connector.getCurrentView().uuid, QStringLiteral("17"));
}

void TelvaroTaskSwitcherDBusConnectorTest::viewsThatChangeBetweenTheReadsAreNotReadAgain()
{
    const QString before = ValueText::variant(ValueText::views({makeView(QStringLiteral("old"), {})}));
    const QString after = ValueText::variant(ValueText::views({makeView(QStringLiteral("new"), {})}));
    scriptViews({Behaviour::reply({before}), Behaviour::reply({after})});
    mService.setCurrentView(QStringLiteral("new"));
    TelvaroTaskSwitcherDBusConnector connector;
    mService.takeCalls();
    QVERIFY(isEmpty(connector.getCurrentView()));
    QCOMPARE(mLog->takeDescriptions(), QStringList{warning(cGetCurrentView, cNotFound)});
    QCOMPARE(mService.takeDescriptions(), (QStringList{getViewsCall(), getCurrentViewCall()}));
    QCOMPARE(connector.getCurrentView().uuid, QStringLiteral("new"));
}

void TelvaroTaskSwitcherDBusConnectorTest::settingTheCurrentViewSendsItsUuidOnly()
{
    TelvaroTaskSwitcherDBusConnector connector;
    mService.takeCalls();
    TaskSwitcherEntry entry = makeView(QStringLiteral("the one"), QStringLiteral("app"), 3, 4);
    entry.attributes = {{QStringLiteral("k"), 1}};
    const QDBusError error = connector.setCurrentView(entry);
    QVERIFY(!error.isValid());
    QCOMPARE(error.type(), QDBusError::NoError);
    QCOMPARE(mService.takeDescriptions(), QStringList{setCurrentViewCall(QStringLiteral("the one"))});
}

void TelvaroTaskSwitcherDBusConnectorTest::settingTheCurrentViewThatIsNotAnsweredInTimeIsAnError()
{
    scriptSetCurrentView({Behaviour::silence()});
    WithProxy<TelvaroTaskSwitcherDBusConnector> connector;
    connector.mInterface.setTimeout(50);
    QCOMPARE(connector.setCurrentView(makeView(QStringLiteral("a"), {})).type(), QDBusError::NoReply);
}

void TelvaroTaskSwitcherDBusConnectorTest::aChangedCurrentViewIsReadAnewAndEmitted()
{
    setViews({makeView(QStringLiteral("a"), {}), makeView(QStringLiteral("b"), {})}, QStringLiteral("b"));
    TelvaroTaskSwitcherDBusConnector connector;
    const QSignalSpy currentViewChanged(&connector, &TelvaroTaskSwitcherDBusConnector::currentViewChanged);
    const QSignalSpy viewsChanged(&connector, &TelvaroTaskSwitcherDBusConnector::viewsChanged);
    mService.takeCalls();
    emitPropertiesChanged(QStringLiteral("{'currentView': <'outdated'>}"));
    QCOMPARE(currentViewChanged.size(), 1);
    QCOMPARE(currentViewChanged.first(), QVariantList{QStringLiteral("b")});
    QCOMPARE(viewsChanged.size(), 0);
    QCOMPARE(mService.takeDescriptions(), (QStringList{getViewsCall(), getCurrentViewCall()}));
}

void TelvaroTaskSwitcherDBusConnectorTest::aChangedCurrentViewThatCannotBeReadIsEmittedEmpty()
{
    scriptCurrentView({Behaviour::error(cFailed, QStringLiteral("gone"))});
    TelvaroTaskSwitcherDBusConnector connector;
    const QSignalSpy currentViewChanged(&connector, &TelvaroTaskSwitcherDBusConnector::currentViewChanged);
    emitPropertiesChanged(QStringLiteral("{'currentView': <'a'>}"));
    QCOMPARE(currentViewChanged.size(), 1);
    QCOMPARE(currentViewChanged.first(), QVariantList{QString()});
    QCOMPARE(mLog->takeDescriptions(), QStringList{warning(cGetCurrentView, cUnreadableCurrentView)});
}

void TelvaroTaskSwitcherDBusConnectorTest::aChangedCurrentViewOfAnotherTypeIsLoggedAndNotEmitted_data()
{
    QTest::addColumn<QString>("value");
    QTest::newRow("structure") << QStringLiteral("(1, 'a')");
    QTest::newRow("array of integers") << QStringLiteral("[1, 2]");
    QTest::newRow("dictionary") << QStringLiteral("{'a': <1>}");
    QTest::newRow("variant in the variant") << QStringLiteral("<'a'>");
    QTest::newRow("object path") << QStringLiteral("objectpath '/a'");
}

void TelvaroTaskSwitcherDBusConnectorTest::aChangedCurrentViewOfAnotherTypeIsLoggedAndNotEmitted()
{
    QFETCH(const QString, value);
    TelvaroTaskSwitcherDBusConnector connector;
    const QSignalSpy currentViewChanged(&connector, &TelvaroTaskSwitcherDBusConnector::currentViewChanged);
    mService.takeCalls();
    emitPropertiesChanged(QStringLiteral("{'currentView': <%1>}").arg(value));
    QCOMPARE(currentViewChanged.size(), 0);
    QCOMPARE(mLog->takeDescriptions(),
             QStringList{warning(cOnPropertiesChanged, QStringLiteral("Unable to convert current view to string!"))});
    QVERIFY(mService.takeCalls().isEmpty());
}

void TelvaroTaskSwitcherDBusConnectorTest::aChangedCurrentViewThatConvertsToAStringIsEmitted()
{
    setViews({makeView(QStringLiteral("a"), {})}, QStringLiteral("a"));
    TelvaroTaskSwitcherDBusConnector connector;
    const QSignalSpy currentViewChanged(&connector, &TelvaroTaskSwitcherDBusConnector::currentViewChanged);
    emitPropertiesChanged(QStringLiteral("{'currentView': <17>}"));
    QCOMPARE(currentViewChanged.size(), 1);
    QCOMPARE(currentViewChanged.first(), QVariantList{QStringLiteral("a")});
}

void TelvaroTaskSwitcherDBusConnectorTest::changedViewsAreEmittedWithoutReading()
{
    TelvaroTaskSwitcherDBusConnector connector;
    const QSignalSpy viewsChanged(&connector, &TelvaroTaskSwitcherDBusConnector::viewsChanged);
    const QSignalSpy currentViewChanged(&connector, &TelvaroTaskSwitcherDBusConnector::currentViewChanged);
    mService.takeCalls();
    emitPropertiesChanged(QStringLiteral("{'views': <%1>}").arg(ValueText::views({makeView({}, {})})));
    QCOMPARE(viewsChanged.size(), 1);
    QVERIFY(viewsChanged.first().isEmpty());
    QCOMPARE(currentViewChanged.size(), 0);
    QVERIFY(mService.takeCalls().isEmpty());
}

void TelvaroTaskSwitcherDBusConnectorTest::bothChangedEmitsTheCurrentViewOnly()
{
    setViews({makeView(QStringLiteral("a"), {})}, QStringLiteral("a"));
    TelvaroTaskSwitcherDBusConnector connector;
    const QSignalSpy viewsChanged(&connector, &TelvaroTaskSwitcherDBusConnector::viewsChanged);
    const QSignalSpy currentViewChanged(&connector, &TelvaroTaskSwitcherDBusConnector::currentViewChanged);
    emitPropertiesChanged(QStringLiteral("{'currentView': <'a'>, 'views': <1>}"));
    QCOMPARE(currentViewChanged.size(), 1);
    QCOMPARE(viewsChanged.size(), 0);
}

void TelvaroTaskSwitcherDBusConnectorTest::anUnusableCurrentViewHidesTheViewsToo()
{
    TelvaroTaskSwitcherDBusConnector connector;
    const QSignalSpy viewsChanged(&connector, &TelvaroTaskSwitcherDBusConnector::viewsChanged);
    const QSignalSpy currentViewChanged(&connector, &TelvaroTaskSwitcherDBusConnector::currentViewChanged);
    emitPropertiesChanged(QStringLiteral("{'currentView': <[1]>, 'views': <1>}"));
    QCOMPARE(currentViewChanged.size() + viewsChanged.size(), 0);
    QCOMPARE(mLog->takeTexts(), QStringList{QStringLiteral("Unable to convert current view to string!")});
}

void TelvaroTaskSwitcherDBusConnectorTest::invalidatedPropertiesEmitNothing()
{
    TelvaroTaskSwitcherDBusConnector connector;
    const QSignalSpy viewsChanged(&connector, &TelvaroTaskSwitcherDBusConnector::viewsChanged);
    const QSignalSpy currentViewChanged(&connector, &TelvaroTaskSwitcherDBusConnector::currentViewChanged);
    mService.takeCalls();
    emitPropertiesChanged(QStringLiteral("@a{sv} {}"), {QStringLiteral("views"), QStringLiteral("currentView")});
    QCOMPARE(currentViewChanged.size() + viewsChanged.size(), 0);
    QVERIFY(mService.takeCalls().isEmpty());
}

void TelvaroTaskSwitcherDBusConnectorTest::otherPropertiesEmitNothing()
{
    TelvaroTaskSwitcherDBusConnector connector;
    const QSignalSpy viewsChanged(&connector, &TelvaroTaskSwitcherDBusConnector::viewsChanged);
    const QSignalSpy currentViewChanged(&connector, &TelvaroTaskSwitcherDBusConnector::currentViewChanged);
    mService.takeCalls();
    emitPropertiesChanged(QStringLiteral("{'Views': <1>, 'currentview': <'a'>, 'currentView ': <'a'>}"));
    QCOMPARE(currentViewChanged.size() + viewsChanged.size(), 0);
    QVERIFY(mService.takeCalls().isEmpty());
}

void TelvaroTaskSwitcherDBusConnectorTest::theInterfaceNameOfTheNotificationIsNotLookedAt()
{
    TelvaroTaskSwitcherDBusConnector connector;
    const QSignalSpy viewsChanged(&connector, &TelvaroTaskSwitcherDBusConnector::viewsChanged);
    mService.emitSignal(ServiceSignal::propertiesChanged(
        QStringLiteral("/taskswitcher"), QStringLiteral("org.example.Foreign"), QStringLiteral("{'views': <1>}")));
    PrivateBus::deliver();
    QCOMPARE(viewsChanged.size(), 1);
}

void TelvaroTaskSwitcherDBusConnectorTest::notificationsOfOtherPathsAndServicesAndSignalsEmitNothing()
{
    TelvaroTaskSwitcherDBusConnector connector;
    const QSignalSpy viewsChanged(&connector, &TelvaroTaskSwitcherDBusConnector::viewsChanged);
    const QString interface = QStringLiteral("de.Telvaro.taskswitcher");
    const QString changed = QStringLiteral("{'views': <1>}");
    const ServiceSignal right = ServiceSignal::propertiesChanged(QStringLiteral("/taskswitcher"), interface, changed);
    ServiceSignal otherPath = right;
    otherPath.path = QStringLiteral("/screen");
    ServiceSignal otherInterface = right;
    otherInterface.interface = QStringLiteral("org.example.Properties");
    ServiceSignal otherMember = right;
    otherMember.member = QStringLiteral("PropertiesChange");
    for (const ServiceSignal& wrong : {otherPath, otherInterface, otherMember}) {
        mService.emitSignal(wrong);
    }
    ScriptedServiceProcess stranger;
    stranger.start();
    stranger.emitSignal(right);
    PrivateBus::deliver();
    QCOMPARE(viewsChanged.size(), 0);
    mService.emitSignal(right);
    PrivateBus::deliver();
    QCOMPARE(viewsChanged.size(), 1);
}

void TelvaroTaskSwitcherDBusConnectorTest::notificationsAreEmittedOnceForEveryConnector()
{
    TelvaroTaskSwitcherDBusConnector first;
    TelvaroTaskSwitcherDBusConnector second;
    const QSignalSpy firstChanged(&first, &TelvaroTaskSwitcherDBusConnector::viewsChanged);
    const QSignalSpy secondChanged(&second, &TelvaroTaskSwitcherDBusConnector::viewsChanged);
    emitPropertiesChanged(QStringLiteral("{'views': <1>}"));
    QCOMPARE(firstChanged.size(), 1);
    QCOMPARE(secondChanged.size(), 1);
}

void TelvaroTaskSwitcherDBusConnectorTest::notificationsArriveAfterARestart()
{
    TelvaroTaskSwitcherDBusConnector connector;
    const QSignalSpy viewsChanged(&connector, &TelvaroTaskSwitcherDBusConnector::viewsChanged);
    for (int round = 1; round <= 3; ++round) {
        mService.kill();
        startService();
        emitPropertiesChanged(QStringLiteral("{'views': <1>}"));
        QCOMPARE(viewsChanged.size(), round);
    }
}

void TelvaroTaskSwitcherDBusConnectorTest::aDestroyedConnectorHearsNothing()
{
    auto connector = std::make_unique<TelvaroTaskSwitcherDBusConnector>();
    mService.takeCalls();
    connector.reset();
    emitPropertiesChanged(QStringLiteral("{'currentView': <'a'>}"));
    QVERIFY(mService.takeCalls().isEmpty());
}

void TelvaroTaskSwitcherDBusConnectorTest::writingThroughOneConnectorIsSignalledByIt()
{
    setViews({makeView(QStringLiteral("a"), {}), makeView(QStringLiteral("b"), {})}, QStringLiteral("a"));
    mService.setStateful(true);
    TelvaroTaskSwitcherDBusConnector connector;
    const QSignalSpy currentViewChanged(&connector, &TelvaroTaskSwitcherDBusConnector::currentViewChanged);
    QVERIFY(!connector.setCurrentView(makeView(QStringLiteral("b"), {})).isValid());
    QCOMPARE(currentViewChanged.size(), 0);
    PrivateBus::deliver();
    QCOMPARE(currentViewChanged.size(), 1);
    QCOMPARE(currentViewChanged.first(), QVariantList{QStringLiteral("b")});
    QCOMPARE(connector.getCurrentView().uuid, QStringLiteral("b"));
}

void TelvaroTaskSwitcherDBusConnectorTest::aSlotMayCallBackAndDestroyOtherConnectors()
{
    setViews({makeView(QStringLiteral("a"), {})}, QStringLiteral("a"));
    TelvaroTaskSwitcherDBusConnector connector;
    auto other = std::make_unique<TelvaroTaskSwitcherDBusConnector>();
    QStringList seen;
    QObject::connect(&connector, &TelvaroTaskSwitcherDBusConnector::currentViewChanged, &connector,
                     [&](const QString& uuid) {
                         seen.append(uuid);
                         seen.append(connector.getCurrentView().uuid);
                         other.reset();
                     });
    emitPropertiesChanged(QStringLiteral("{'currentView': <'a'>}"));
    QCOMPARE(seen, (QStringList{QStringLiteral("a"), QStringLiteral("a")}));
}

TELVARO_TEST_MAIN(TelvaroTaskSwitcherDBusConnectorTest)
#include "TelvaroTaskSwitcherDBusConnectorTest.moc"
