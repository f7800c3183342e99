// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "CompositorBus.h"
#include "CompositorFixture.h"
#include "TestMain.h"

#include <QRegularExpression>
#include <QSignalSpy>
#include <QUuid>

using CompositorBus::View;

namespace {

QStringList titlesOf(const QList<View>& views)
{
    QStringList titles;
    for (const View& view : views) {
        titles.append(view.info1);
    }
    return titles;
}

} // namespace

class CompositorViewsTest : public CompositorFixture
{
    Q_OBJECT

private Q_SLOTS:
    void aViewCarriesWhatItsClientSays();
    void aWindowThatIsNotMappedIsNoView();
    void aWindowWithoutAnAppIdHasItsProcessName();
    void anAppIdMayComeAfterTheMapping();
    void sortIndexesCountUpWithinAnApplication();
    void sortIndexesAreNotUsedAgainWhileTheLargestIsThere();
    void aViewOfItsOwnUuidEachTimeItIsMapped();
    void aNewViewIsCurrent();
    void settingTheCurrentViewSwitches();
    void settingTheCurrentViewToItselfChangesNothing();
    void anUnknownUuidIsRefused_data();
    void anUnknownUuidIsRefused();
    void theMostRecentViewFollowsTheOneThatCloses();
    void closingAnotherViewLeavesTheCurrentOne();
    void withoutViewsThereIsNoCurrentOne();
    void changesAreSignalledOneByOneViewsFirst();
    void aReaderInTheHandlerSeesTheNewState();
    void nothingIsSignalledWhenNothingChanges();
    void aTitleChangesTheViews();
    void theSameTitleChangesNothing();
    void aClientThatDiesTakesItsViewsAlong();
    void aClientThatHangsStaysInTheList();
    void aViewInTheBackgroundIsSeenToHang();
    void aDialogIsAView();
    void viewsFillTheWorkAreaAndTheCurrentOneIsActive();
    void programsThatNobodyHereWroteAreViews();
    void theLibrarySeesTwoViewsOfOneApplication();
    void theLibrarySeesAClientDie();
    void theLibrarySeesAClientChangeItsTitle();
    void theLibrarySeesAClientThatHangs();
    void busctlReadsTheViews();
    void gdbusFollowsTheCurrentView();
};

void CompositorViewsTest::aViewCarriesWhatItsClientSays()
{
    const auto client = testClient();
    client->send("open org.example.App A title with \xc3\xbc");
    client->waitFor("size 1 1024x566");
    TRY_COMPARE(CompositorBus::views().value(0).attributes.value(QStringLiteral("width")).toInt(), 1024);

    const QList<View> views = CompositorBus::views();
    QCOMPARE(views.size(), 1);
    const View view = views.first();
    QCOMPARE(QUuid(view.uuid).toString(QUuid::WithoutBraces), view.uuid);
    QCOMPARE(view.appId, QStringLiteral("org.example.App"));
    QCOMPARE(view.info1, QString::fromUtf8("A title with \xc3\xbc"));
    QCOMPARE(view.info2, QStringLiteral("telvaro-test-cl"));
    QCOMPARE(view.info3, QStringLiteral("current"));
    QCOMPARE(view.info4, QStringLiteral("window"));
    QCOMPARE(qint64(view.pid), client->processId());
    QCOMPARE(view.sortIndex, 0U);
    const QVariantMap expected{
        {QStringLiteral("title"), view.info1}, {QStringLiteral("processName"), view.info2},
        {QStringLiteral("current"), true},     {QStringLiteral("responding"), true},
        {QStringLiteral("dialog"), false},     {QStringLiteral("width"), 1024},
        {QStringLiteral("height"), 566},
    };
    QCOMPARE(view.attributes, expected);
    QCOMPARE(CompositorBus::currentView(), view.uuid);
}

void CompositorViewsTest::aWindowThatIsNotMappedIsNoView()
{
    const auto client = protocolClient();
    client->send("create");
    client->send("sync");
    client->waitFor("synced");
    QCOMPARE(CompositorBus::views().size(), 0);
    client->send("map 1");
    TRY_COMPARE(CompositorBus::views().size(), 1);
    client->send("unmap 1");
    TRY_COMPARE(CompositorBus::views().size(), 0);
    QVERIFY(client->isRunning());
}

void CompositorViewsTest::aWindowWithoutAnAppIdHasItsProcessName()
{
    const auto client = protocolClient();
    client->send("open - Nameless");
    TRY_COMPARE(CompositorBus::views().size(), 1);
    QCOMPARE(CompositorBus::views().first().appId, QStringLiteral("telvaro-protoco"));
}

void CompositorViewsTest::anAppIdMayComeAfterTheMapping()
{
    const auto client = protocolClient();
    client->send("open late One");
    client->send("open - Two");
    TRY_COMPARE(CompositorBus::views().size(), 2);
    client->send("appid 2 late");
    mMonitor->waitFor(QStringLiteral("views"));
    TRY_COMPARE(CompositorBus::viewWithTitle(QStringLiteral("Two")).appId, QStringLiteral("late"));
    QCOMPARE(CompositorBus::viewWithTitle(QStringLiteral("Two")).sortIndex, 1U);
}

void CompositorViewsTest::sortIndexesCountUpWithinAnApplication()
{
    const auto client = protocolClient();
    for (const char* const line : {"open a A0", "open a A1", "open b B0", "open a A2", "open b B1"}) {
        client->send(line);
    }
    TRY_COMPARE(CompositorBus::views().size(), 5);
    const QList<View> views = CompositorBus::views();
    for (const View& view : views) {
        QCOMPARE(view.appId + QString::number(view.sortIndex), view.info1.toLower());
    }
    QCOMPARE(titlesOf(views),
             QStringList({QStringLiteral("A0"), QStringLiteral("A1"), QStringLiteral("B0"), QStringLiteral("A2"),
                          QStringLiteral("B1")}));
}

void CompositorViewsTest::sortIndexesAreNotUsedAgainWhileTheLargestIsThere()
{
    const auto client = protocolClient();
    client->send("open a One");
    client->send("open a Two");
    TRY_COMPARE(CompositorBus::views().size(), 2);
    client->send("unmap 1");
    TRY_COMPARE(CompositorBus::views().size(), 1);
    client->send("open a Three");
    TRY_COMPARE(CompositorBus::viewWithTitle(QStringLiteral("Three")).sortIndex, 2U);
    QCOMPARE(CompositorBus::viewWithTitle(QStringLiteral("Two")).sortIndex, 1U);
}

void CompositorViewsTest::aViewOfItsOwnUuidEachTimeItIsMapped()
{
    const auto client = protocolClient();
    client->send("open a One");
    TRY_COMPARE(CompositorBus::views().size(), 1);
    const QString first = CompositorBus::currentView();
    client->send("unmap 1");
    TRY_COMPARE(CompositorBus::currentView(), QString());
    client->send("map 1");
    TRY_COMPARE(CompositorBus::views().size(), 1);
    QVERIFY(CompositorBus::currentView() != first);
    QVERIFY(!CompositorBus::currentView().isEmpty());
}

void CompositorViewsTest::aNewViewIsCurrent()
{
    const auto client = protocolClient();
    for (const char* const title : {"One", "Two", "Three"}) {
        client->send(QByteArray("open a ") + title);
        TRY_COMPARE(CompositorBus::viewWithTitle(QLatin1String(title)).uuid.isEmpty(), false);
        QCOMPARE(CompositorBus::currentView(), CompositorBus::viewWithTitle(QLatin1String(title)).uuid);
    }
}

void CompositorViewsTest::settingTheCurrentViewSwitches()
{
    const auto client = protocolClient();
    client->send("open a One");
    client->send("open a Two");
    TRY_COMPARE(CompositorBus::views().size(), 2);
    const View one = CompositorBus::viewWithTitle(QStringLiteral("One"));
    const QDBusMessage reply = CompositorBus::set(CompositorBus::cTaskSwitcherPath, CompositorBus::cTaskSwitcher,
                                                  QStringLiteral("currentView"), one.uuid);
    QCOMPARE(CompositorBus::errorOf(reply), QString());
    QCOMPARE(CompositorBus::currentView(), one.uuid);
    QCOMPARE(CompositorBus::viewWithTitle(QStringLiteral("One")).info3, QStringLiteral("current"));
    QCOMPARE(CompositorBus::viewWithTitle(QStringLiteral("Two")).info3, QStringLiteral("background"));
    QCOMPARE(titlesOf(CompositorBus::views()), QStringList({QStringLiteral("One"), QStringLiteral("Two")}));
}

void CompositorViewsTest::settingTheCurrentViewToItselfChangesNothing()
{
    const auto client = protocolClient();
    client->send("open a One");
    mMonitor->waitFor(QStringLiteral("currentView"));
    mMonitor->take();
    const QDBusMessage reply = CompositorBus::set(CompositorBus::cTaskSwitcherPath, CompositorBus::cTaskSwitcher,
                                                  QStringLiteral("currentView"), CompositorBus::currentView());
    QCOMPARE(CompositorBus::errorOf(reply), QString());
    QCOMPARE(mMonitor->takeNames(), QStringList());
}

void CompositorViewsTest::anUnknownUuidIsRefused_data()
{
    QTest::addColumn<QString>("uuid");
    QTest::newRow("unknown") << QStringLiteral("4b9e5b5e-0000-4000-8000-000000000000");
    QTest::newRow("empty") << QString();
    QTest::newRow("no uuid") << QStringLiteral("One");
}

void CompositorViewsTest::anUnknownUuidIsRefused()
{
    QFETCH(QString, uuid);
    const auto client = protocolClient();
    client->send("open a One");
    mMonitor->waitFor(QStringLiteral("currentView"));
    mMonitor->take();
    const QString before = CompositorBus::currentView();
    const QDBusMessage reply = CompositorBus::set(CompositorBus::cTaskSwitcherPath, CompositorBus::cTaskSwitcher,
                                                  QStringLiteral("currentView"), uuid);
    QCOMPARE(CompositorBus::errorOf(reply),
             QStringLiteral("org.freedesktop.DBus.Error.InvalidArgs: there is no view \"%1\"; the uuid of one of the "
                            "views is expected")
                 .arg(uuid));
    QCOMPARE(CompositorBus::currentView(), before);
    QCOMPARE(mMonitor->takeNames(), QStringList());
}

void CompositorViewsTest::theMostRecentViewFollowsTheOneThatCloses()
{
    const auto client = protocolClient();
    for (const char* const title : {"One", "Two", "Three"}) {
        client->send(QByteArray("open a ") + title);
    }
    TRY_COMPARE(CompositorBus::views().size(), 3);
    const QString one = CompositorBus::viewWithTitle(QStringLiteral("One")).uuid;
    const QString two = CompositorBus::viewWithTitle(QStringLiteral("Two")).uuid;
    const QString three = CompositorBus::viewWithTitle(QStringLiteral("Three")).uuid;
    const auto switchTo = [](const QString& uuid) {
        CompositorBus::set(CompositorBus::cTaskSwitcherPath, CompositorBus::cTaskSwitcher,
                           QStringLiteral("currentView"), uuid);
    };
    switchTo(one);
    switchTo(two);
    client->send("unmap 2");
    TRY_COMPARE(CompositorBus::currentView(), one);
    client->send("unmap 1");
    TRY_COMPARE(CompositorBus::currentView(), three);
}

void CompositorViewsTest::closingAnotherViewLeavesTheCurrentOne()
{
    const auto client = protocolClient();
    client->send("open a One");
    client->send("open a Two");
    TRY_COMPARE(CompositorBus::views().size(), 2);
    const QString two = CompositorBus::viewWithTitle(QStringLiteral("Two")).uuid;
    mMonitor->waitFor(QStringLiteral("currentView"));
    mMonitor->take();
    client->send("destroy 1");
    mMonitor->waitFor(QStringLiteral("views"));
    QCOMPARE(CompositorBus::views().size(), 1);
    QCOMPARE(CompositorBus::currentView(), two);
    QCOMPARE(mMonitor->takeNames(), QStringList());
}

void CompositorViewsTest::withoutViewsThereIsNoCurrentOne()
{
    const auto client = protocolClient();
    client->send("open a One");
    mMonitor->waitFor(QStringLiteral("currentView"));
    client->send("destroy 1");
    const PropertyMonitor::Change change = mMonitor->waitFor(QStringLiteral("currentView"));
    QCOMPARE(change.values.value(QStringLiteral("currentView")), QVariant(QString()));
    QCOMPARE(CompositorBus::views().size(), 0);
}

void CompositorViewsTest::changesAreSignalledOneByOneViewsFirst()
{
    const auto client = protocolClient();
    client->send("open a One");
    client->send("open a Two");
    TRY_COMPARE(CompositorBus::views().size(), 2);
    client->send("sync");
    client->waitFor("synced");
    mMonitor->take();

    const QString one = CompositorBus::viewWithTitle(QStringLiteral("One")).uuid;
    CompositorBus::set(CompositorBus::cTaskSwitcherPath, CompositorBus::cTaskSwitcher, QStringLiteral("currentView"),
                       one);
    const QList<PropertyMonitor::Change> changes = mMonitor->take();
    QCOMPARE(changes.size(), 2);
    QCOMPARE(changes.at(0).properties, QStringList(QStringLiteral("views")));
    QCOMPARE(changes.at(1).properties, QStringList(QStringLiteral("currentView")));
    QCOMPARE(changes.at(1).values.value(QStringLiteral("currentView")).toString(), one);
    for (const PropertyMonitor::Change& change : changes) {
        QCOMPARE(change.path, CompositorBus::cTaskSwitcherPath);
        QCOMPARE(change.interface, CompositorBus::cTaskSwitcher);
        QCOMPARE(change.invalidated, QStringList());
    }
    const auto argument = changes.at(0).values.value(QStringLiteral("views")).value<QDBusArgument>();
    QCOMPARE(argument.currentSignature(), QStringLiteral("a(ssssssuua{sv})"));
    QList<View> views;
    argument >> views;
    QCOMPARE(titlesOf(views), QStringList({QStringLiteral("One"), QStringLiteral("Two")}));
    QCOMPARE(views.first().info3, QStringLiteral("current"));
}

void CompositorViewsTest::aReaderInTheHandlerSeesTheNewState()
{
    const auto client = protocolClient();
    for (const char* const line : {"open a One", "open a Two", "unmap 2", "unmap 1"}) {
        client->send(line);
        const PropertyMonitor::Change change = mMonitor->waitFor(QStringLiteral("currentView"));
        QCOMPARE(change.currentView, change.values.value(QStringLiteral("currentView")).toString());
        QCOMPARE(CompositorBus::currentView(), change.currentView);
    }
}

void CompositorViewsTest::nothingIsSignalledWhenNothingChanges()
{
    const auto client = protocolClient();
    client->send("open a One");
    mMonitor->waitFor(QStringLiteral("currentView"));
    client->send("sync");
    client->waitFor("synced");
    mMonitor->take();

    client->send("commit 1 5");
    client->send("sync");
    client->waitFor("synced");
    CompositorBus::views();
    screenShot();
    QCOMPARE(mMonitor->takeNames(), QStringList());
}

void CompositorViewsTest::aTitleChangesTheViews()
{
    const auto client = testClient();
    client->send("open a Before");
    client->waitFor("size 1 1024x566");
    TRY_COMPARE(CompositorBus::views().value(0).attributes.value(QStringLiteral("width")).toInt(), 1024);
    mMonitor->take();
    const View before = CompositorBus::views().first();
    client->send("title 1 After");
    mMonitor->waitFor(QStringLiteral("views"));
    const View after = CompositorBus::views().first();
    QCOMPARE(after.info1, QStringLiteral("After"));
    QCOMPARE(after.attributes.value(QStringLiteral("title")).toString(), QStringLiteral("After"));
    QCOMPARE(after.uuid, before.uuid);
    QCOMPARE(after.sortIndex, before.sortIndex);
    QCOMPARE(mMonitor->takeNames(), QStringList());
}

void CompositorViewsTest::theSameTitleChangesNothing()
{
    const auto client = protocolClient();
    client->send("open a Same");
    mMonitor->waitFor(QStringLiteral("currentView"));
    client->send("sync");
    client->waitFor("synced");
    mMonitor->take();
    client->send("title 1 Same");
    client->send("sync");
    client->waitFor("synced");
    QCOMPARE(mMonitor->takeNames(), QStringList());
}

void CompositorViewsTest::aClientThatDiesTakesItsViewsAlong()
{
    const auto survivor = protocolClient();
    survivor->send("open b Survivor");
    TRY_COMPARE(CompositorBus::views().size(), 1);
    const auto client = testClient();
    client->send("open a One");
    client->send("open a Two");
    TRY_COMPARE(CompositorBus::views().size(), 3);
    mMonitor->take();
    client->send("crash");
    // Atomically: no view that vanishes at the same time becomes current in between.
    QCOMPARE(mMonitor->waitFor(QStringLiteral("currentView")).values.value(QStringLiteral("currentView")).toString(),
             CompositorBus::viewWithTitle(QStringLiteral("Survivor")).uuid);
    QCOMPARE(titlesOf(CompositorBus::views()), QStringList(QStringLiteral("Survivor")));
    QCOMPARE(mMonitor->takeNames(), QStringList());
    QCOMPARE(CompositorBus::currentView(), CompositorBus::views().first().uuid);
    QVERIFY(survivor->isRunning());
}

void CompositorViewsTest::aClientThatHangsStaysInTheList()
{
    const auto other = protocolClient();
    other->send("open b Other");
    TRY_COMPARE(CompositorBus::views().size(), 1);
    const auto client = testClient();
    client->send("open a Hanging");
    TRY_COMPARE(CompositorBus::views().size(), 2);
    const QString hanging = CompositorBus::viewWithTitle(QStringLiteral("Hanging")).uuid;
    client->freeze();

    // Without any input.
    TRY_COMPARE(CompositorBus::viewWithTitle(QStringLiteral("Hanging")).attributes.value(QStringLiteral("responding")),
                QVariant(false));
    QCOMPARE(CompositorBus::currentView(), hanging);
    QCOMPARE(CompositorBus::viewWithTitle(QStringLiteral("Hanging")).info3, QStringLiteral("current unresponsive"));

    // The others live on.
    other->send("title 1 Still here");
    TRY_COMPARE(CompositorBus::viewWithTitle(QStringLiteral("Still here")).appId, QStringLiteral("b"));
    CompositorBus::set(CompositorBus::cTaskSwitcherPath, CompositorBus::cTaskSwitcher, QStringLiteral("currentView"),
                       CompositorBus::viewWithTitle(QStringLiteral("Still here")).uuid);
    QCOMPARE(CompositorBus::views().size(), 2);

    client->thaw();
    TRY_COMPARE(CompositorBus::viewWithTitle(QStringLiteral("Hanging")).attributes.value(QStringLiteral("responding")),
                QVariant(true));
    QVERIFY(client->isRunning());
}

void CompositorViewsTest::aViewInTheBackgroundIsSeenToHang()
{
    const auto client = testClient();
    client->send("open a Hanging");
    client->waitFor("activated 1");
    const auto other = protocolClient();
    other->send("open b Other");
    client->waitFor("deactivated 1");
    client->freeze();
    TRY_COMPARE(CompositorBus::viewWithTitle(QStringLiteral("Hanging")).info3,
                QStringLiteral("background unresponsive"));
    client->thaw();
    TRY_COMPARE(CompositorBus::viewWithTitle(QStringLiteral("Hanging")).info3, QStringLiteral("background"));
    // Again, since a client that has recovered is pinged on.
    client->freeze();
    TRY_COMPARE(CompositorBus::viewWithTitle(QStringLiteral("Hanging")).info3,
                QStringLiteral("background unresponsive"));
    client->thaw();
}

void CompositorViewsTest::aDialogIsAView()
{
    const auto client = testClient();
    client->send("open a Main");
    client->waitFor("shown 1");
    client->send("dialog 1 Question");
    TRY_COMPARE(CompositorBus::viewWithTitle(QStringLiteral("Question")).info4, QStringLiteral("dialog"));
    const View dialog = CompositorBus::viewWithTitle(QStringLiteral("Question"));
    QCOMPARE(dialog.attributes.value(QStringLiteral("dialog")), QVariant(true));
    QVERIFY(dialog.attributes.value(QStringLiteral("width")).toInt() < 1024);
    QCOMPARE(CompositorBus::currentView(), dialog.uuid);
}

void CompositorViewsTest::viewsFillTheWorkAreaAndTheCurrentOneIsActive()
{
    const auto client = protocolClient();
    client->send("open a One");
    client->waitFor("configure 1 1024x566 maximized activated");
    client->send("open a Two");
    client->waitFor("configure 2 1024x566 maximized activated");
    client->waitFor("configure 1 1024x566 maximized");
}

void CompositorViewsTest::programsThatNobodyHereWroteAreViews()
{
    const auto simple = foreignClient(QStringLiteral("weston-simple-shm"));
    TRY_COMPARE(CompositorBus::viewWithTitle(QStringLiteral("simple-shm")).appId,
                QStringLiteral("org.freedesktop.weston.simple-shm"));
    const auto flower = foreignClient(QStringLiteral("weston-flower"));
    TRY_COMPARE(CompositorBus::viewWithTitle(QStringLiteral("Flower")).appId,
                QStringLiteral("org.freedesktop.weston.flower"));
    QCOMPARE(qint64(CompositorBus::viewWithTitle(QStringLiteral("Flower")).pid), flower->processId());
    simple->kill();
    TRY_COMPARE(CompositorBus::views().size(), 1);
}

void CompositorViewsTest::theLibrarySeesTwoViewsOfOneApplication()
{
    TelvaroTaskSwitcherDBusConnector connector;
    const auto client = testClient();
    client->send("open org.example.App One");
    client->send("open org.example.App Two");
    TRY_COMPARE(connector.getViews().size(), 2);
    TRY_COMPARE(connector.getCurrentView().info1, QStringLiteral("Two"));
    PrivateBus::deliver();

    QSignalSpy currentViewChanged(&connector, &TelvaroTaskSwitcherDBusConnector::currentViewChanged);
    QVERIFY(connector.iterateViews(false));
    QCOMPARE(connector.getCurrentView().info1, QStringLiteral("One"));
    TRY_COMPARE(currentViewChanged.size(), 1);
    QCOMPARE(currentViewChanged.first().first().toString(), connector.getCurrentView().uuid);
    QVERIFY(connector.iterateViews(true));
    QCOMPARE(connector.getCurrentView().info1, QStringLiteral("Two"));
    QVERIFY(connector.switchToView(QStringLiteral("org.example.App"), 0));
    QCOMPARE(connector.getCurrentView().sortIndex, 0U);
    QCOMPARE(connector.pidToTaskSwitcherEntry(static_cast<uint32_t>(client->processId())).info1, QStringLiteral("One"));
    QCOMPARE(connector.idsToTaskSwitcherEntry(QStringLiteral("org.example.App"), 1).info1, QStringLiteral("Two"));
    QTest::ignoreMessage(QtWarningMsg, "app Id and sortIndex not matched with a view, return empty TaskSwitcherEntry");
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("^switch view failed ")));
    QVERIFY(!connector.switchToView(QStringLiteral("org.example.App"), 2));
}

void CompositorViewsTest::theLibrarySeesAClientDie()
{
    TelvaroTaskSwitcherDBusConnector connector;
    const auto survivor = protocolClient();
    survivor->send("open b Survivor");
    TRY_COMPARE(connector.getViews().size(), 1);
    const auto client = testClient();
    client->send("open a Dying");
    TRY_COMPARE(connector.getViews().size(), 2);
    QCOMPARE(connector.getCurrentView().info1, QStringLiteral("Dying"));
    PrivateBus::deliver();

    QSignalSpy currentViewChanged(&connector, &TelvaroTaskSwitcherDBusConnector::currentViewChanged);
    QSignalSpy viewsChanged(&connector, &TelvaroTaskSwitcherDBusConnector::viewsChanged);
    client->kill();
    TRY_COMPARE(currentViewChanged.size(), 1);
    QCOMPARE(viewsChanged.size(), 1);
    QCOMPARE(connector.getCurrentView().info1, QStringLiteral("Survivor"));
    QCOMPARE(currentViewChanged.first().first().toString(), connector.getCurrentView().uuid);
}

void CompositorViewsTest::theLibrarySeesAClientChangeItsTitle()
{
    TelvaroTaskSwitcherDBusConnector connector;
    const auto client = protocolClient();
    client->send("open a Before");
    TRY_COMPARE(connector.getViews().size(), 1);
    QCOMPARE(connector.getCurrentView().info1, QStringLiteral("Before"));
    mMonitor->waitFor(QStringLiteral("currentView"));
    client->send("sync");
    client->waitFor("synced");
    mMonitor->take();

    QSignalSpy currentViewChanged(&connector, &TelvaroTaskSwitcherDBusConnector::currentViewChanged);
    QSignalSpy viewsChanged(&connector, &TelvaroTaskSwitcherDBusConnector::viewsChanged);
    client->send("title 1 After");
    TRY_COMPARE(viewsChanged.size(), 1);
    QCOMPARE(connector.getCurrentView().info1, QStringLiteral("After"));
    QCOMPARE(connector.getCurrentView().attributes.value(QStringLiteral("title")).toString(), QStringLiteral("After"));
    QCOMPARE(currentViewChanged.size(), 0);
}

void CompositorViewsTest::theLibrarySeesAClientThatHangs()
{
    TelvaroTaskSwitcherDBusConnector connector;
    const auto client = testClient();
    client->send("open a Hanging");
    TRY_COMPARE(connector.getViews().size(), 1);
    const auto other = protocolClient();
    other->send("open b Other");
    TRY_COMPARE(connector.getViews().size(), 2);
    QCOMPARE(connector.getCurrentView().info1, QStringLiteral("Other"));
    client->send("hang");
    client->waitFor("hanging");

    QVERIFY(connector.switchToView(QStringLiteral("a"), 0));
    TRY_COMPARE(connector.getCurrentView().attributes.value(QStringLiteral("responding")), QVariant(false));
    QCOMPARE(connector.getViews().size(), 2);
    QVERIFY(connector.switchToView(QStringLiteral("b"), 0));
}

void CompositorViewsTest::busctlReadsTheViews()
{
    const auto client = protocolClient();
    client->send("open a One");
    TRY_COMPARE(CompositorBus::views().size(), 1);
    ChildProcess busctl;
    busctl.run(QStringLiteral("busctl"),
               {QStringLiteral("--address=") + PrivateBus::address(), QStringLiteral("get-property"),
                QStringLiteral(TELVARO_SERVICE_NAME), CompositorBus::cTaskSwitcherPath, CompositorBus::cTaskSwitcher,
                QStringLiteral("views")});
    QVERIFY(busctl.waitForFinished(ChildProcess::cDeadline));
    QCOMPARE(busctl.exitCode(), 0);
    const QByteArray output = busctl.readAllStandardOutput();
    QVERIFY2(output.startsWith("a(ssssssuua{sv}) 1 \"" + CompositorBus::currentView().toLatin1() + "\" \"a\" \"One\""),
             output.constData());
}

void CompositorViewsTest::gdbusFollowsTheCurrentView()
{
    ChildProcess gdbus;
    gdbus.run(QStringLiteral("gdbus"),
              {QStringLiteral("monitor"), QStringLiteral("--address"), PrivateBus::address(), QStringLiteral("--dest"),
               QStringLiteral(TELVARO_SERVICE_NAME), QStringLiteral("--object-path"),
               CompositorBus::cTaskSwitcherPath});
    QVERIFY(gdbus.readOutputLine().startsWith("Monitoring signals"));
    QVERIFY(gdbus.readOutputLine().contains("is owned by"));

    const auto client = protocolClient();
    client->send("open a One");
    QVERIFY(gdbus.readOutputLine().contains("PropertiesChanged ('de.Telvaro.taskswitcher', {'views': <[("));
    const QByteArray line = gdbus.readOutputLine();
    QVERIFY2(line.contains("{'currentView': <'" + CompositorBus::currentView().toLatin1() + "'>}"), line.constData());
}

TELVARO_TEST_MAIN(CompositorViewsTest)

#include "CompositorViewsTest.moc"
