// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "PrivateBus.h"
#include "TaskSwitcherFixture.h"
#include "TestMain.h"
#include "ValueText.h"
#include "WithProxy.h"

namespace {

const QString cPidNotMatched = QStringLiteral("pid not matched with a view, return empty TaskSwitcherEntry");
const QString cIdsNotMatched =
    QStringLiteral("app Id and sortIndex not matched with a view, return empty TaskSwitcherEntry");
const QString cNoViewOfApplication =
    QStringLiteral("iterate view failed: no view is in the view list with current appID");
const QString cRefusedUuid =
    QStringLiteral("QDBusError(\"org.freedesktop.DBus.Error.InvalidArgs\", \"uuid should not be empty\")");
const QString cRefusedInterface =
    QStringLiteral("QDBusError(\"org.freedesktop.DBus.Error.UnknownInterface\", \"Invalid QDBus Interface\")");

const QString cPidTo = QStringLiteral("pidToTaskSwitcherEntry(uint32_t)");
const QString cIdsTo = QStringLiteral("idsToTaskSwitcherEntry(constQString&,uint32_t)");
const QString cSwitchToView = QStringLiteral("switchToView(constQString&,uint32_t)");
const QString cIterateViews = QStringLiteral("iterateViews(bool)");
const QString cGetViews = QStringLiteral("getViews()");
const QString cGetCurrentView = QStringLiteral("getCurrentView()");

const QString cInvalidInterface = QStringLiteral("Invalid DBus interface!");
const QString cUnreadableViews = QStringLiteral("Unable to read views!");
const QString cNotFound = QStringLiteral("current view not found in all views list");

const QString cApplication = QStringLiteral("app");
const QString cFailed = QStringLiteral("org.example.Error.Failed");

} // namespace

class ViewLookupTest : public TaskSwitcherFixture
{
    Q_OBJECT

private Q_SLOTS:
    void aPidFindsItsFirstView();
    void aPidFindsTheWholeRecord();
    void noPidIsSpecial_data();
    void noPidIsSpecial();
    void aPidWithoutViewIsEmptyAndLogged_data();
    void aPidWithoutViewIsEmptyAndLogged();

    void warningsCarryTheWholeSignatureOfTheirOperation();

    void idsFindTheirFirstView();
    void idsMustBothMatch_data();
    void idsMustBothMatch();
    void aNullApplicationIdEqualsAnEmptyOne();

    void switchingWritesTheUuidOfTheView();
    void switchingToNoViewIsRefusedBeforeTheService();
    void switchingToAViewWithoutUuidIsRefused();

    void iteratingStepsInTheOrderOfTheSortIndex_data();
    void iteratingStepsInTheOrderOfTheSortIndex();
    void iteratingASingleViewWritesNothing_data();
    void iteratingASingleViewWritesNothing();
    void iteratingOrdersUnsigned();
    void iteratingEqualSortIndexesVisitsEveryView_data();
    void iteratingEqualSortIndexesVisitsEveryView();
    void iteratingAViewThatIsGoneStartsAtTheFirst_data();
    void iteratingAViewThatIsGoneStartsAtTheFirst();
    void iteratingAViewThatIsGoneToASingleOtherWritesNothing();
    void iteratingTakesTheFirstOfTheCurrentUuid();
    void iteratingWhenTheCurrentApplicationIsGoneIsLogged();
    void iteratingWithoutCurrentViewStepsThroughViewsWithoutApplication();
    void iteratingThatTheServiceRefusesIsLogged();
    void iteratingComparesApplicationsCaseSensitively();

private:
    QString viewsReply(const QList<TaskSwitcherEntry>& entries)
    {
        return ValueText::variant(ValueText::views(entries));
    }
};

void ViewLookupTest::aPidFindsItsFirstView()
{
    setViews({makeView(QStringLiteral("a"), cApplication, 0, 1), makeView(QStringLiteral("b"), cApplication, 1, 42),
              makeView(QStringLiteral("c"), cApplication, 2, 42)});
    TelvaroTaskSwitcherDBusConnector connector;
    mService.takeCalls();
    QCOMPARE(connector.pidToTaskSwitcherEntry(42).uuid, QStringLiteral("b"));
    QCOMPARE(mService.takeDescriptions(), QStringList{getViewsCall()});
}

void ViewLookupTest::aPidFindsTheWholeRecord()
{
    TaskSwitcherEntry view = makeView(QStringLiteral("a"), cApplication, 3, 42);
    view.info1 = QStringLiteral("one");
    view.info2 = QStringLiteral("two");
    view.attributes = {{QStringLiteral("k"), QStringLiteral("v")}};
    setViews({view});
    TelvaroTaskSwitcherDBusConnector connector;
    const TaskSwitcherEntry byPid = connector.pidToTaskSwitcherEntry(42);
    const TaskSwitcherEntry byIds = connector.idsToTaskSwitcherEntry(cApplication, 3);
    for (const TaskSwitcherEntry& found : {byPid, byIds}) {
        QCOMPARE(found.uuid, view.uuid);
        QCOMPARE(found.appId, view.appId);
        QCOMPARE(found.info1, view.info1);
        QCOMPARE(found.info2, view.info2);
        QCOMPARE(found.pid, view.pid);
        QCOMPARE(found.sortIndex, view.sortIndex);
        QCOMPARE(found.attributes, view.attributes);
    }
}

void ViewLookupTest::noPidIsSpecial_data()
{
    QTest::addColumn<quint32>("pid");
    QTest::newRow("0") << 0u;
    QTest::newRow("1") << 1u;
    QTest::newRow("above 2^31") << 2147483649u;
    QTest::newRow("4294967295") << 4294967295u;
}

void ViewLookupTest::noPidIsSpecial()
{
    QFETCH(const quint32, pid);
    setViews({makeView(QStringLiteral("other"), {}, 0, 77), makeView(QStringLiteral("right"), {}, 0, pid)});
    TelvaroTaskSwitcherDBusConnector connector;
    QCOMPARE(connector.pidToTaskSwitcherEntry(pid).uuid, QStringLiteral("right"));
}

void ViewLookupTest::aPidWithoutViewIsEmptyAndLogged_data()
{
    noPidIsSpecial_data();
}

void ViewLookupTest::aPidWithoutViewIsEmptyAndLogged()
{
    QFETCH(const quint32, pid);
    setViews({makeView(QStringLiteral("other"), {}, 0, 77)});
    TelvaroTaskSwitcherDBusConnector connector;
    QVERIFY(isEmpty(connector.pidToTaskSwitcherEntry(pid)));
    QCOMPARE(mLog->takeDescriptions(), QStringList{warning(cPidTo, cPidNotMatched)});
}

void ViewLookupTest::warningsCarryTheWholeSignatureOfTheirOperation()
{
    setViews({}, QStringLiteral("gone"));
    TelvaroTaskSwitcherDBusConnector connector;
    connector.getCurrentView();
    connector.pidToTaskSwitcherEntry(1);
    connector.idsToTaskSwitcherEntry(cApplication, 1);
    scriptViews({Behaviour::error(cFailed, QStringLiteral("no views"))});
    connector.getViews();
    QStringList functions;
    for (const LogMessage& message : mLog->take()) {
        // Compilers differ in the blanks.
        functions.append(QString(message.function).remove(QLatin1Char(' ')));
    }
    const QString scope = QStringLiteral("TelvaroTaskSwitcherDBusConnector::");
    const QString entry = scope + QStringLiteral("TaskSwitcherEntry");
    QCOMPARE(functions,
             (QStringList{entry + scope + QStringLiteral("getCurrentView()"),
                          entry + scope + QStringLiteral("pidToTaskSwitcherEntry(uint32_t)"),
                          entry + scope + QStringLiteral("idsToTaskSwitcherEntry(constQString&,uint32_t)"),
                          QStringLiteral("QList<%1>%2getViews()").arg(entry, scope)}));
}

void ViewLookupTest::idsFindTheirFirstView()
{
    setViews({makeView(QStringLiteral("a"), QStringLiteral("other"), 5), makeView(QStringLiteral("b"), cApplication, 4),
              makeView(QStringLiteral("c"), cApplication, 5), makeView(QStringLiteral("d"), cApplication, 5)});
    TelvaroTaskSwitcherDBusConnector connector;
    mService.takeCalls();
    QCOMPARE(connector.idsToTaskSwitcherEntry(cApplication, 5).uuid, QStringLiteral("c"));
    QCOMPARE(mService.takeDescriptions(), QStringList{getViewsCall()});
}

void ViewLookupTest::idsMustBothMatch_data()
{
    QTest::addColumn<QString>("appId");
    QTest::addColumn<quint32>("sortIndex");
    QTest::newRow("another application") << "other" << 5u;
    QTest::newRow("another case") << "App" << 5u;
    QTest::newRow("a blank more") << "app " << 5u;
    QTest::newRow("another index") << "app" << 6u;
    QTest::newRow("the index of another application") << "app" << 9u;
    QTest::newRow("no application") << "" << 5u;
}

void ViewLookupTest::idsMustBothMatch()
{
    QFETCH(const QString, appId);
    QFETCH(const quint32, sortIndex);
    setViews({makeView(QStringLiteral("a"), cApplication, 5), makeView(QStringLiteral("b"), QStringLiteral("x"), 9)});
    TelvaroTaskSwitcherDBusConnector connector;
    QVERIFY(isEmpty(connector.idsToTaskSwitcherEntry(appId, sortIndex)));
    QCOMPARE(mLog->takeDescriptions(), QStringList{warning(cIdsTo, cIdsNotMatched)});
}

void ViewLookupTest::aNullApplicationIdEqualsAnEmptyOne()
{
    setViews({makeView(QStringLiteral("a"), QString(), 5)});
    TelvaroTaskSwitcherDBusConnector connector;
    QCOMPARE(connector.idsToTaskSwitcherEntry(QString(), 5).uuid, QStringLiteral("a"));
    QCOMPARE(connector.idsToTaskSwitcherEntry(QStringLiteral(""), 5).uuid, QStringLiteral("a"));
}

void ViewLookupTest::switchingWritesTheUuidOfTheView()
{
    setViews({makeView(QStringLiteral("a"), cApplication, 1), makeView(QStringLiteral("b"), cApplication, 4294967295)});
    TelvaroTaskSwitcherDBusConnector connector;
    mService.takeCalls();
    QVERIFY(connector.switchToView(cApplication, 4294967295));
    QCOMPARE(mService.takeDescriptions(), (QStringList{getViewsCall(), setCurrentViewCall(QStringLiteral("b"))}));
}

void ViewLookupTest::switchingToNoViewIsRefusedBeforeTheService()
{
    setViews({makeView(QStringLiteral("a"), cApplication, 1)});
    TelvaroTaskSwitcherDBusConnector connector;
    mService.takeCalls();
    QVERIFY(!connector.switchToView(cApplication, 2));
    QCOMPARE(mLog->takeDescriptions(),
             (QStringList{warning(cIdsTo, cIdsNotMatched),
                          warning(cSwitchToView, QStringLiteral("switch view failed ") + cRefusedUuid)}));
    QCOMPARE(mService.takeDescriptions(), QStringList{getViewsCall()});
}

void ViewLookupTest::switchingToAViewWithoutUuidIsRefused()
{
    setViews({makeView(QString(), cApplication, 1)});
    TelvaroTaskSwitcherDBusConnector connector;
    mService.takeCalls();
    QVERIFY(!connector.switchToView(cApplication, 1));
    QCOMPARE(mLog->takeDescriptions(),
             QStringList{warning(cSwitchToView, QStringLiteral("switch view failed ") + cRefusedUuid)});
    QCOMPARE(mService.takeDescriptions(), QStringList{getViewsCall()});
}

void ViewLookupTest::iteratingStepsInTheOrderOfTheSortIndex_data()
{
    QTest::addColumn<QString>("current");
    QTest::addColumn<bool>("backward");
    QTest::addColumn<QString>("target");
    QTest::newRow("next of the middle") << "z" << false << "x";
    QTest::newRow("previous of the middle") << "z" << true << "y";
    QTest::newRow("next of the last") << "x" << false << "y";
    QTest::newRow("previous of the last") << "x" << true << "z";
    QTest::newRow("next of the first") << "y" << false << "z";
    QTest::newRow("previous of the first") << "y" << true << "x";
}

void ViewLookupTest::iteratingStepsInTheOrderOfTheSortIndex()
{
    QFETCH(const QString, current);
    QFETCH(const bool, backward);
    QFETCH(const QString, target);
    setViews({makeView(QStringLiteral("o"), QStringLiteral("other"), 4), makeView(QStringLiteral("x"), cApplication, 7),
              makeView(QStringLiteral("y"), cApplication, 3), makeView(QStringLiteral("p"), QStringLiteral("other"), 6),
              makeView(QStringLiteral("z"), cApplication, 5)},
             current);
    TelvaroTaskSwitcherDBusConnector connector;
    mService.takeCalls();
    QVERIFY(connector.iterateViews(backward));
    QCOMPARE(mService.takeDescriptions(),
             (QStringList{getViewsCall(), getViewsCall(), getCurrentViewCall(), setCurrentViewCall(target)}));
}

void ViewLookupTest::iteratingASingleViewWritesNothing_data()
{
    QTest::addColumn<bool>("backward");
    QTest::newRow("next") << false;
    QTest::newRow("previous") << true;
}

void ViewLookupTest::iteratingASingleViewWritesNothing()
{
    QFETCH(const bool, backward);
    setViews({makeView(QStringLiteral("o"), QStringLiteral("other")), makeView(QStringLiteral("a"), cApplication)},
             QStringLiteral("a"));
    TelvaroTaskSwitcherDBusConnector connector;
    mService.takeCalls();
    QVERIFY(connector.iterateViews(backward));
    QCOMPARE(mService.takeDescriptions(), (QStringList{getViewsCall(), getViewsCall(), getCurrentViewCall()}));
}

void ViewLookupTest::iteratingOrdersUnsigned()
{
    // Signed and unsigned order are the same cycle: only the first view differs.
    const Behaviour all = Behaviour::reply({viewsReply({makeView(QStringLiteral("max"), cApplication, 4294967295),
                                                        makeView(QStringLiteral("zero"), cApplication, 0),
                                                        makeView(QStringLiteral("half"), cApplication, 2147483648),
                                                        makeView(QStringLiteral("low"), cApplication, 2147483647)})});
    const Behaviour other = Behaviour::reply({viewsReply({makeView(QStringLiteral("gone"), cApplication, 5)})});
    scriptViews({all, other, all, other});
    mService.setCurrentView(QStringLiteral("gone"));
    TelvaroTaskSwitcherDBusConnector connector;
    mService.takeCalls();
    QVERIFY(connector.iterateViews(false));
    QCOMPARE(mService.takeDescriptions().last(), setCurrentViewCall(QStringLiteral("low")));
    QVERIFY(connector.iterateViews(true));
    QCOMPARE(mService.takeDescriptions().last(), setCurrentViewCall(QStringLiteral("max")));
}

void ViewLookupTest::iteratingEqualSortIndexesVisitsEveryView_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<bool>("backward");
    QTest::newRow("three, next") << 3 << false;
    QTest::newRow("three, previous") << 3 << true;
    // More views than std::sort() orders by plain insertion.
    QTest::newRow("forty, next") << 40 << false;
}

void ViewLookupTest::iteratingEqualSortIndexesVisitsEveryView()
{
    QFETCH(const int, count);
    QFETCH(const bool, backward);
    QList<TaskSwitcherEntry> views;
    for (int index = 0; index < count; ++index) {
        views.append(makeView(QStringLiteral("view %1").arg(index), cApplication, 7));
    }
    setViews(views, QStringLiteral("view 1"));
    mService.setStateful(true);
    TelvaroTaskSwitcherDBusConnector connector;
    QStringList visited;
    for (int step = 0; step < count; ++step) {
        QVERIFY(connector.iterateViews(backward));
        visited.append(connector.getCurrentView().uuid);
    }
    QCOMPARE(visited.last(), QStringLiteral("view 1"));
    QCOMPARE(visited.removeDuplicates(), 0);
}

void ViewLookupTest::iteratingAViewThatIsGoneStartsAtTheFirst_data()
{
    QTest::addColumn<bool>("backward");
    QTest::addColumn<QString>("target");
    QTest::newRow("next") << false << "second";
    QTest::newRow("previous") << true << "third";
}

void ViewLookupTest::iteratingAViewThatIsGoneStartsAtTheFirst()
{
    QFETCH(const bool, backward);
    QFETCH(const QString, target);
    scriptViews({Behaviour::reply({viewsReply({makeView(QStringLiteral("third"), cApplication, 30),
                                               makeView(QStringLiteral("first"), cApplication, 10),
                                               makeView(QStringLiteral("second"), cApplication, 20)})}),
                 Behaviour::reply({viewsReply({makeView(QStringLiteral("new"), cApplication, 15)})})});
    mService.setCurrentView(QStringLiteral("new"));
    TelvaroTaskSwitcherDBusConnector connector;
    mService.takeCalls();
    QVERIFY(connector.iterateViews(backward));
    QCOMPARE(mService.takeDescriptions().last(), setCurrentViewCall(target));
}

void ViewLookupTest::iteratingAViewThatIsGoneToASingleOtherWritesNothing()
{
    scriptViews({Behaviour::reply({viewsReply({makeView(QStringLiteral("only"), cApplication, 30)})}),
                 Behaviour::reply({viewsReply({makeView(QStringLiteral("new"), cApplication, 15)})})});
    mService.setCurrentView(QStringLiteral("new"));
    TelvaroTaskSwitcherDBusConnector connector;
    mService.takeCalls();
    QVERIFY(connector.iterateViews(false));
    QCOMPARE(mService.takeDescriptions(), (QStringList{getViewsCall(), getViewsCall(), getCurrentViewCall()}));
}

void ViewLookupTest::iteratingTakesTheFirstOfTheCurrentUuid()
{
    setViews({makeView(QStringLiteral("twice"), cApplication, 1), makeView(QStringLiteral("a"), cApplication, 2),
              makeView(QStringLiteral("twice"), cApplication, 3), makeView(QStringLiteral("b"), cApplication, 4)},
             QStringLiteral("twice"));
    TelvaroTaskSwitcherDBusConnector connector;
    mService.takeCalls();
    QVERIFY(connector.iterateViews(false));
    QCOMPARE(mService.takeDescriptions().last(), setCurrentViewCall(QStringLiteral("a")));
}

void ViewLookupTest::iteratingWhenTheCurrentApplicationIsGoneIsLogged()
{
    scriptViews({Behaviour::reply({viewsReply({makeView(QStringLiteral("o"), QStringLiteral("other"))})}),
                 Behaviour::reply({viewsReply({makeView(QStringLiteral("a"), cApplication)})})});
    mService.setCurrentView(QStringLiteral("a"));
    TelvaroTaskSwitcherDBusConnector connector;
    QVERIFY(!connector.iterateViews(false));
    QCOMPARE(mLog->takeDescriptions(), QStringList{warning(cIterateViews, cNoViewOfApplication)});
}

void ViewLookupTest::iteratingWithoutCurrentViewStepsThroughViewsWithoutApplication()
{
    setViews({makeView(QStringLiteral("a"), cApplication), makeView(QStringLiteral("n1"), QString(), 1),
              makeView(QStringLiteral("n0"), QString(), 0)},
             QStringLiteral("gone"));
    TelvaroTaskSwitcherDBusConnector connector;
    mService.takeCalls();
    QVERIFY(connector.iterateViews(false));
    QCOMPARE(mService.takeDescriptions().last(), setCurrentViewCall(QStringLiteral("n1")));
    QCOMPARE(mLog->takeDescriptions(), QStringList{warning(cGetCurrentView, cNotFound)});
}

void ViewLookupTest::iteratingThatTheServiceRefusesIsLogged()
{
    setViews({makeView(QStringLiteral("a"), cApplication, 1), makeView(QStringLiteral("b"), cApplication, 2)},
             QStringLiteral("a"));
    scriptSetCurrentView({Behaviour::error(cFailed, QStringLiteral("no"))});
    TelvaroTaskSwitcherDBusConnector connector;
    QVERIFY(!connector.iterateViews(false));
    QCOMPARE(mLog->takeDescriptions(),
             QStringList{warning(cIterateViews,
                                 QStringLiteral("iterateViews failed: "
                                                "QDBusError(\"org.example.Error.Failed\", \"no\")"))});
}

void ViewLookupTest::iteratingComparesApplicationsCaseSensitively()
{
    setViews({makeView(QStringLiteral("a"), cApplication, 1), makeView(QStringLiteral("b"), QStringLiteral("APP"), 2)},
             QStringLiteral("a"));
    TelvaroTaskSwitcherDBusConnector connector;
    mService.takeCalls();
    QVERIFY(connector.iterateViews(false));
    QCOMPARE(mService.takeDescriptions().size(), 3);
}

TELVARO_TEST_MAIN(ViewLookupTest)
#include "ViewLookupTest.moc"
