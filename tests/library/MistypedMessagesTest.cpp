// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "PrivateBus.h"
#include "TaskSwitcherFixture.h"
#include "TelvaroScreenDBusConnector.h"
#include "TestMain.h"
#include "ValueText.h"

#include <QSignalSpy>

// What a service sends that does not keep to its interface. Nothing of it may harm the application.
class MistypedMessagesTest : public TaskSwitcherFixture
{
    Q_OBJECT

private Q_SLOTS:
    void viewsOfALikeTypeAreRead_data();
    void viewsOfALikeTypeAreRead();
    void viewsWithObjectPathsForStringsAreRead();
    void viewsOfAnyOtherTypeAreRefused_data();
    void viewsOfAnyOtherTypeAreRefused();
    void anyEmptyArrayIsNoViews_data();
    void anyEmptyArrayIsNoViews();
    void notificationsOfAnotherSignatureAreDropped_data();
    void notificationsOfAnotherSignatureAreDropped();
};

void MistypedMessagesTest::viewsOfALikeTypeAreRead_data()
{
    QTest::addColumn<QString>("value");
    const QString pattern = QStringLiteral("[('u', 'a', '1', '2', '3', '4', %1, %2, {'k': <'v'>}%3)]");
    const QStringList sevens{QStringLiteral("byte 7"),  QStringLiteral("int16 7"),  QStringLiteral("uint16 7"),
                             QStringLiteral("int32 7"), QStringLiteral("uint32 7"), QStringLiteral("int64 7"),
                             QStringLiteral("uint64 7")};
    for (const QString& pid : sevens) {
        for (const QString& sortIndex : sevens) {
            QTest::addRow("%s and %s", qPrintable(pid), qPrintable(sortIndex))
                << pattern.arg(pid, sortIndex, QString());
        }
    }
    const QString seven = QStringLiteral("uint32 7");
    for (const char* const further : {", 'more'", ", 1, [2.5], {'x': 'y'}", ", (1, <2>)", ", @a{sv} {}", ", true"}) {
        QTest::addRow("further %s", further) << pattern.arg(seven, seven, QLatin1String(further));
    }
}

void MistypedMessagesTest::viewsOfALikeTypeAreRead()
{
    QFETCH(const QString, value);
    scriptViews({Behaviour::reply({ValueText::variant(value)})});
    TelvaroTaskSwitcherDBusConnector connector;
    const QList<TaskSwitcherEntry> views = connector.getViews();
    QCOMPARE(uuids(views), QStringList{QStringLiteral("u")});
    const TaskSwitcherEntry& view = views.first();
    QCOMPARE(view.appId + view.info1 + view.info2 + view.info3 + view.info4, QStringLiteral("a1234"));
    QCOMPARE(view.pid, 7u);
    QCOMPARE(view.sortIndex, 7u);
    QCOMPARE(view.attributes, (QVariantMap{{QStringLiteral("k"), QStringLiteral("v")}}));
}

void MistypedMessagesTest::viewsWithObjectPathsForStringsAreRead()
{
    scriptViews({Behaviour::reply({QStringLiteral("<[(objectpath '/u', objectpath '/a', objectpath '/1', "
                                                  "objectpath '/2', objectpath '/3', objectpath '/4', "
                                                  "uint32 7, uint32 8, @a{sv} {})]>")}),
                 Behaviour::reply({QStringLiteral("<[('u', 'a', '1', objectpath '/2', '3', '4', "
                                                  "uint32 7, uint32 8, @a{sv} {})]>")})});
    TelvaroTaskSwitcherDBusConnector connector;
    const QList<TaskSwitcherEntry> all = connector.getViews();
    QCOMPARE(uuids(all), QStringList{QStringLiteral("/u")});
    QCOMPARE(all.first().info4, QStringLiteral("/4"));
    const QList<TaskSwitcherEntry> one = connector.getViews();
    QCOMPARE(uuids(one), QStringList{QStringLiteral("u")});
    QCOMPARE(one.first().info2, QStringLiteral("/2"));
}

void MistypedMessagesTest::viewsOfAnyOtherTypeAreRefused_data()
{
    QTest::addColumn<QString>("value");
    const char* const values[] = {
        // Basic values, strings above all.
        "'text'",
        "''",
        "1",
        "uint32 1",
        "true",
        "0.5",
        "byte 0x01",
        "objectpath '/a'",
        "signature 's'",
        "handle 0",
        // Other arrays.
        "[1]",
        "[true]",
        "[0.5]",
        "['a', 'b']",
        "[byte 0x01]",
        "[objectpath '/a']",
        "[signature 's']",
        "[handle 0]",
        "[<'a'>]",
        "[<('u', 'a', '1', '2', '3', '4', uint32 7, uint32 7, @a{sv} {})>]",
        "[[1]]",
        "{'a': <1>}",
        "{'a': 'b'}",
        "{uint32 1: 'b'}",
        "{'a': ('u', 'a', '1', '2', '3', '4', uint32 7, uint32 7, @a{sv} {})}",
        "[[('u', 'a', '1', '2', '3', '4', uint32 7, uint32 7, @a{sv} {})]]",
        "[{'u': <'a'>}]",
        // What Qt reads itself also where it is empty.
        "@as []",
        "@ay []",
        // No array.
        "('u', 'a', '1', '2', '3', '4', uint32 7, uint32 7, @a{sv} {})",
        "([('u', 'a', '1', '2', '3', '4', uint32 7, uint32 7, @a{sv} {})],)",
        "<[('u', 'a', '1', '2', '3', '4', uint32 7, uint32 7, @a{sv} {})]>",
        // Other structures.
        "[('u',)]",
        "[(1,)]",
        "[('u', 'a', '1', '2', '3', '4', uint32 7, uint32 7)]",
        "[('u', 'a', '1', '2', '3', '4', uint32 7, @a{sv} {})]",
        "[('u', 'a', '1', '2', '3', uint32 7, uint32 7, @a{sv} {})]",
        "[('u', 'a', '1', '2', '3', '4', '5', uint32 7, uint32 7, @a{sv} {})]",
        "[('u', 'a', '1', '2', '3', '4', uint32 7, uint32 7, uint32 7, @a{sv} {})]",
        "[(uint32 7, 'u', 'a', '1', '2', '3', uint32 7, uint32 7, @a{sv} {})]",
        "[(('u', 'a', '1', '2', '3', '4', uint32 7, uint32 7, @a{sv} {}),)]",
        // Something else where a string belongs.
        "[(true, 'a', '1', '2', '3', '4', uint32 7, uint32 7, @a{sv} {})]",
        "[('u', <'a'>, '1', '2', '3', '4', uint32 7, uint32 7, @a{sv} {})]",
        "[('u', 'a', signature 's', '2', '3', '4', uint32 7, uint32 7, @a{sv} {})]",
        "[('u', 'a', '1', ['2'], '3', '4', uint32 7, uint32 7, @a{sv} {})]",
        "[('u', 'a', '1', '2', [byte 0x41], '4', uint32 7, uint32 7, @a{sv} {})]",
        "[('u', 'a', '1', '2', '3', (4,), uint32 7, uint32 7, @a{sv} {})]",
        // Something else where a number belongs.
        "[('u', 'a', '1', '2', '3', '4', 'pid', uint32 7, @a{sv} {})]",
        "[('u', 'a', '1', '2', '3', '4', uint32 7, 'index', @a{sv} {})]",
        "[('u', 'a', '1', '2', '3', '4', true, uint32 7, @a{sv} {})]",
        "[('u', 'a', '1', '2', '3', '4', uint32 7, true, @a{sv} {})]",
        "[('u', 'a', '1', '2', '3', '4', 7.0, uint32 7, @a{sv} {})]",
        "[('u', 'a', '1', '2', '3', '4', uint32 7, 7.0, @a{sv} {})]",
        "[('u', 'a', '1', '2', '3', '4', handle 0, uint32 7, @a{sv} {})]",
        "[('u', 'a', '1', '2', '3', '4', uint32 7, handle 0, @a{sv} {})]",
        "[('u', 'a', '1', '2', '3', '4', objectpath '/7', uint32 7, @a{sv} {})]",
        "[('u', 'a', '1', '2', '3', '4', uint32 7, <uint32 7>, @a{sv} {})]",
        "[('u', 'a', '1', '2', '3', '4', (uint32 7,), uint32 7, @a{sv} {})]",
        // Something else where the attributes belong.
        "[('u', 'a', '1', '2', '3', '4', uint32 7, uint32 7, {'k': 'v'})]",
        "[('u', 'a', '1', '2', '3', '4', uint32 7, uint32 7, @a{ss} {})]",
        "[('u', 'a', '1', '2', '3', '4', uint32 7, uint32 7, {uint32 1: <'v'>})]",
        "[('u', 'a', '1', '2', '3', '4', uint32 7, uint32 7, {objectpath '/k': <'v'>})]",
        "[('u', 'a', '1', '2', '3', '4', uint32 7, uint32 7, [('k', <'v'>)])]",
        "[('u', 'a', '1', '2', '3', '4', uint32 7, uint32 7, <'v'>)]",
        "[('u', 'a', '1', '2', '3', '4', uint32 7, uint32 7, ['k'])]",
        "[('u', 'a', '1', '2', '3', '4', uint32 7, uint32 7, ({'k': <'v'>},))]",
        "[('u', 'a', '1', '2', '3', '4', uint32 7, uint32 7, 'v', {'k': <'v'>})]",
    };
    for (const char* const value : values) {
        QTest::newRow(value) << value;
    }
}

void MistypedMessagesTest::viewsOfAnyOtherTypeAreRefused()
{
    QFETCH(const QString, value);
    const QString good = ValueText::views({makeView(QStringLiteral("good"), {})});
    scriptViews({Behaviour::reply({ValueText::variant(value)}), Behaviour::reply({ValueText::variant(good)})});
    TelvaroTaskSwitcherDBusConnector connector;
    QVERIFY(connector.getViews().isEmpty());
    QCOMPARE(mLog->takeDescriptions(),
             QStringList{
                 warning(QStringLiteral("getViews()"), QStringLiteral("Unable to parse dbus-reply to dbus-argument"))});
    // Nothing of it stays behind.
    QCOMPARE(uuids(connector.getViews()), QStringList{QStringLiteral("good")});
}

void MistypedMessagesTest::anyEmptyArrayIsNoViews_data()
{
    QTest::addColumn<QString>("value");
    for (const char* const value : {"@a(ssssssuua{sv}) []",
                                    "@ai []",
                                    "@ab []",
                                    "@ad []",
                                    "@ax []",
                                    "@ao []",
                                    "@ag []",
                                    "@ah []",
                                    "@av []",
                                    "@aai []",
                                    "@aas []",
                                    "@a{sv} {}",
                                    "@a{ss} {}",
                                    "@a{us} {}",
                                    "@aa{sv} []",
                                    "@a(s) []",
                                    "@a(i) []",
                                    "@a(usssssuua{sv}) []",
                                    "@a(ssssssuua{ss}) []",
                                    "@a((ssssssuua{sv})) []",
                                    "@a(ssssssuu) []"}) {
        QTest::newRow(value) << value;
    }
}

void MistypedMessagesTest::anyEmptyArrayIsNoViews()
{
    QFETCH(const QString, value);
    scriptViews({Behaviour::reply({ValueText::variant(value)})});
    TelvaroTaskSwitcherDBusConnector connector;
    QVERIFY(connector.getViews().isEmpty());
}

void MistypedMessagesTest::notificationsOfAnotherSignatureAreDropped_data()
{
    QTest::addColumn<QStringList>("arguments");
    const QString name = QStringLiteral("'de.Telvaro'");
    const QString changed =
        QStringLiteral("{'views': <1>, 'currentView': <'a'>, 'screenSaverActive': <true>, 'fullScreen': <true>}");
    const QString invalidated = QStringLiteral("@as []");
    const auto addRow = [](const char* signature, const QStringList& arguments) {
        QTest::newRow(signature) << arguments;
    };
    addRow("no arguments", {});
    addRow("s", {name});
    addRow("sa{sv}", {name, changed});
    addRow("sa{sv}ass", {name, changed, invalidated, name});
    addRow("sa{sv}a{sv}as", {name, changed, changed, invalidated});
    addRow("a{sv}as", {changed, invalidated});
    addRow("a{sv}sas", {changed, name, invalidated});
    addRow("sasa{sv}", {name, invalidated, changed});
    addRow("ua{sv}as", {QStringLiteral("uint32 1"), changed, invalidated});
    addRow("oa{sv}as", {QStringLiteral("objectpath '/a'"), changed, invalidated});
    addRow("sa{ss}as", {name, QStringLiteral("{'views': 'a', 'currentView': 'a'}"), invalidated});
    addRow("sa{sa{sv}}as", {name, QStringLiteral("{'views': {'currentView': <'a'>}}"), invalidated});
    addRow("sa{uv}as", {name, QStringLiteral("{uint32 1: <'a'>}"), invalidated});
    addRow("saias", {name, QStringLiteral("[1, 2]"), invalidated});
    addRow("sa(sv)as", {name, QStringLiteral("[('views', <1>)]"), invalidated});
    addRow("svas", {name, ValueText::variant(changed), invalidated});
    addRow("s(a{sv})as", {name, QLatin1Char('(') + changed + QStringLiteral(",)"), invalidated});
    addRow("sa{sv}ai", {name, changed, QStringLiteral("[1]")});
    addRow("sa{sv}ao", {name, changed, QStringLiteral("[objectpath '/a']")});
    addRow("sa{sv}a(s)", {name, changed, QStringLiteral("[('a',)]")});
    addRow("sa{sv}s", {name, changed, QStringLiteral("'views'")});
    addRow("(sa{sv}as)", {QStringLiteral("(%1, %2, %3)").arg(name, changed, invalidated)});
}

void MistypedMessagesTest::notificationsOfAnotherSignatureAreDropped()
{
    QFETCH(const QStringList, arguments);
    setViews({makeView(QStringLiteral("a"), {})}, QStringLiteral("a"));
    TelvaroTaskSwitcherDBusConnector taskSwitcher;
    TelvaroScreenDBusConnector screen;
    mService.setProperty(QStringLiteral("/screen"), QStringLiteral("de.Telvaro.screen"), QStringLiteral("fullScreen"),
                         QStringLiteral("true"));
    const QSignalSpy viewsChanged(&taskSwitcher, &TelvaroTaskSwitcherDBusConnector::viewsChanged);
    const QSignalSpy currentViewChanged(&taskSwitcher, &TelvaroTaskSwitcherDBusConnector::currentViewChanged);
    const QSignalSpy fullScreenChanged(&screen, &TelvaroScreenDBusConnector::fullScreenChanged);
    const QString properties = QStringLiteral("org.freedesktop.DBus.Properties");
    const QString propertiesChanged = QStringLiteral("PropertiesChanged");
    mService.takeCalls();
    for (const char* const path : {"/taskswitcher", "/screen"}) {
        mService.emitSignal({QLatin1String(path), properties, propertiesChanged, arguments});
    }
    PrivateBus::deliver();
    QCOMPARE(viewsChanged.size() + currentViewChanged.size() + fullScreenChanged.size(), 0);
    QVERIFY(mService.takeCalls().isEmpty());

    emitPropertiesChanged(QStringLiteral("{'views': <1>}"));
    mService.emitSignal(
        ServiceSignal::propertiesChanged(QStringLiteral("/screen"), {}, QStringLiteral("{'fullScreen': <1>}")));
    PrivateBus::deliver();
    QCOMPARE(viewsChanged.size(), 1);
    QCOMPARE(fullScreenChanged.size(), 1);
}

TELVARO_TEST_MAIN(MistypedMessagesTest)
#include "MistypedMessagesTest.moc"
