// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Operations.h"
#include "PrivateBus.h"
#include "Scenario.h"
#include "SignalRecorder.h"
#include "TaskSwitcherFixture.h"
#include "TestMain.h"
#include "ValueText.h"
#include "Warnings.h"

/// Values and notifications of every type in place of the prescribed type. QtDBus hands a read of the wrong type to
/// libdbus, which aborts the process, and with it this test.
class WrongTypesTest : public TaskSwitcherFixture
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void viewsOfALikeTypeAreRead_data();
    void viewsOfALikeTypeAreRead();
    void viewsWithObjectPathsForStringsAreRead();
    void viewsOfAnyOtherTypeAreRefused_data();
    void viewsOfAnyOtherTypeAreRefused();
    void anyEmptyArrayIsNoViews_data();
    void anyEmptyArrayIsNoViews();
    void currentViewMayHaveAnyType_data();
    void currentViewMayHaveAnyType();
    void screenPropertiesMayHaveAnyType_data();
    void screenPropertiesMayHaveAnyType();
    void notificationsOfAnySignatureAreHandledOrDropped_data();
    void notificationsOfAnySignatureAreHandledOrDropped();

private:
    Scenario mScenario;
};

void WrongTypesTest::init()
{
    TaskSwitcherFixture::init();
    Scenario::set(mService);
}

void WrongTypesTest::viewsOfALikeTypeAreRead_data()
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
    for (const char* const further :
         {", 'more'", ", 1, [2.5], {'x': 'y'}", ", (1, <2>)", ", @a{sv} {}", ", true", ", handle 0"}) {
        QTest::addRow("further %s", further) << pattern.arg(seven, seven, QLatin1String(further));
    }
}

void WrongTypesTest::viewsOfALikeTypeAreRead()
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

void WrongTypesTest::viewsWithObjectPathsForStringsAreRead()
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

void WrongTypesTest::viewsOfAnyOtherTypeAreRefused_data()
{
    QTest::addColumn<QString>("value");
    const char* const values[] = {
        // Not a QDBusArgument, some of them not even when empty.
        "true",
        "byte 1",
        "int16 1",
        "uint16 1",
        "1",
        "uint32 1",
        "int64 1",
        "uint64 1",
        "1.5",
        "'text'",
        "objectpath '/a'",
        "signature 's'",
        "handle 0",
        "<'text'>",
        "<@a(ssssssuua{sv}) []>",
        "['a']",
        "@as []",
        "[byte 1]",
        "@ay []",
        // Other arrays.
        "[true]",
        "[int16 1]",
        "[uint16 1]",
        "[1]",
        "[uint32 1]",
        "[int64 1]",
        "[uint64 1]",
        "[1.5]",
        "[objectpath '/a']",
        "[signature 's']",
        "[handle 0]",
        "[<1>]",
        "[['a']]",
        "[[byte 1]]",
        "[[1]]",
        "[@a(ssssssuua{sv}) []]",
        "{'a': <1>}",
        "{'a': 'b'}",
        "{1: 2}",
        "{'a': {'b': <1>}}",
        "[{'a': <1>}]",
        "{uint32 1: 'b'}",
        "{'a': ('a', 'b', 'c', 'd', 'e', 'f', uint32 1, uint32 2, @a{sv} {})}",
        "[[('a', 'b', 'c', 'd', 'e', 'f', uint32 1, uint32 2, @a{sv} {})]]",
        "[<('a', 'b', 'c', 'd', 'e', 'f', uint32 1, uint32 2, @a{sv} {})>]",
        // No array.
        "([('a', 'b', 'c', 'd', 'e', 'f', uint32 1, uint32 2, @a{sv} {})],)",
        "<[('a', 'b', 'c', 'd', 'e', 'f', uint32 1, uint32 2, @a{sv} {})]>",
        "('a',)",
        "(1, 2)",
        "('a', 'b', 'c', 'd', 'e', 'f', uint32 1, uint32 2, @a{sv} {})",
        // Arrays of other structures.
        "[('a',)]",
        "[(1,)]",
        "[(1.5, true)]",
        "[('a', 'b', 'c', 'd', 'e', 'f')]",
        "[('a', {'b': <1>})]",
        "[(('a', 'b', 'c', 'd', 'e', 'f', uint32 1, uint32 2, @a{sv} {}),)]",
        "[('a', 'b', 'c', 'd', 'e', uint32 1, uint32 2, @a{sv} {})]",
        "[('a', 'b', 'c', 'd', 'e', 'f', 'g', uint32 1, uint32 2, @a{sv} {})]",
        "[('a', 'b', 'c', 'd', 'e', 'f', uint32 1, @a{sv} {})]",
        "[('a', 'b', 'c', 'd', 'e', 'f', uint32 1, uint32 2)]",
        "[('a', 'b', 'c', 'd', 'e', 'f', uint32 1, uint32 2, uint32 3, @a{sv} {})]",
        "[('a', 'b', 'c', 'd', 'e', 'f', uint32 1, uint32 2, @a{ss} {})]",
        "[('a', 'b', 'c', 'd', 'e', 'f', uint32 1, uint32 2, {'k': 'v'})]",
        "[('a', 'b', 'c', 'd', 'e', 'f', uint32 1, uint32 2, @a{uv} {})]",
        "[('a', 'b', 'c', 'd', 'e', 'f', uint32 1, uint32 2, @a{sas} {})]",
        "[('a', 'b', 'c', 'd', 'e', 'f', uint32 1, uint32 2, {objectpath '/k': <'v'>})]",
        "[('a', 'b', 'c', 'd', 'e', 'f', uint32 1, uint32 2, [('k', <'v'>)])]",
        "[('a', 'b', 'c', 'd', 'e', 'f', uint32 1, uint32 2, 'v', {'k': <'v'>})]",
        "[('a', 'b', 'c', 'd', 'e', 'f', uint32 1, uint32 2, <1>)]",
        "[('a', 'b', 'c', 'd', 'e', 'f', uint32 1, uint32 2, @as [])]",
        "[('a', 'b', 'c', 'd', 'e', 'f', uint32 1, uint32 2, @av [])]",
        "[('a', 'b', 'c', 'd', 'e', 'f', uint32 1, uint32 2, 'text')]",
        "[('a', 'b', 'c', 'd', 'e', 'f', uint32 1, uint32 2, (@a{sv} {},))]",
        "[('a', 'b', 'c', 'd', 'e', 'f', uint32 1, uint32 2, [@a{sv} {}])]",
        "[('a', 'b', 'c', 'd', 'e', 'f', 1.5, uint32 2, @a{sv} {})]",
        "[('a', 'b', 'c', 'd', 'e', 'f', uint32 1, 1.5, @a{sv} {})]",
        "[('a', 'b', 'c', 'd', 'e', 'f', true, uint32 2, @a{sv} {})]",
        "[('a', 'b', 'c', 'd', 'e', 'f', uint32 1, false, @a{sv} {})]",
        "[('a', 'b', 'c', 'd', 'e', 'f', 'g', uint32 2, @a{sv} {})]",
        "[('a', 'b', 'c', 'd', 'e', 'f', uint32 1, 'g', @a{sv} {})]",
        "[('a', 'b', 'c', 'd', 'e', 'f', handle 0, uint32 2, @a{sv} {})]",
        "[('a', 'b', 'c', 'd', 'e', 'f', uint32 1, <1>, @a{sv} {})]",
        "[('a', 'b', 'c', 'd', 'e', 'f', uint32 1, [1], @a{sv} {})]",
        "[('a', 'b', 'c', 'd', 'e', 'f', uint32 1, (1,), @a{sv} {})]",
        "[(uint32 1, 'b', 'c', 'd', 'e', 'f', uint32 1, uint32 2, @a{sv} {})]",
        "[('a', byte 1, 'c', 'd', 'e', 'f', uint32 1, uint32 2, @a{sv} {})]",
        "[('a', 'b', 1.5, 'd', 'e', 'f', uint32 1, uint32 2, @a{sv} {})]",
        "[('a', 'b', 'c', true, 'e', 'f', uint32 1, uint32 2, @a{sv} {})]",
        "[('a', 'b', 'c', 'd', signature 's', 'f', uint32 1, uint32 2, @a{sv} {})]",
        "[('a', 'b', 'c', 'd', 'e', <'f'>, uint32 1, uint32 2, @a{sv} {})]",
        "[('a', 'b', 'c', 'd', 'e', ['f'], uint32 1, uint32 2, @a{sv} {})]",
        "[('a', 'b', 'c', 'd', 'e', 'f', objectpath '/1', uint32 2, @a{sv} {})]",
        "[(<'a'>, <'b'>, <'c'>, <'d'>, <'e'>, <'f'>, <uint32 1>, <uint32 2>, <@a{sv} {}>)]",
    };
    for (const char* const value : values) {
        QTest::newRow(value) << value;
    }
}

void WrongTypesTest::viewsOfAnyOtherTypeAreRefused()
{
    QFETCH(const QString, value);
    const QString good = ValueText::views({makeView(QStringLiteral("good"), {})});
    scriptViews({Behaviour::reply({ValueText::variant(value)}), Behaviour::reply({ValueText::variant(good)})});
    TelvaroTaskSwitcherDBusConnector connector;
    QVERIFY(connector.getViews().isEmpty());
    QCOMPARE(mLog->takeDescriptions(),
             QStringList{
                 warning(QStringLiteral("getViews()"), QStringLiteral("Unable to parse dbus-reply to dbus-argument"))});
    // No state is left behind.
    QCOMPARE(uuids(connector.getViews()), QStringList{QStringLiteral("good")});
}

void WrongTypesTest::anyEmptyArrayIsNoViews_data()
{
    QTest::addColumn<QString>("value");
    for (const char* const type : {"a(ssssssuua{sv})",
                                   "ab",
                                   "an",
                                   "aq",
                                   "ai",
                                   "au",
                                   "ax",
                                   "at",
                                   "ad",
                                   "ao",
                                   "ag",
                                   "ah",
                                   "av",
                                   "a(s)",
                                   "a(ii)",
                                   "aai",
                                   "aas",
                                   "aay",
                                   "aa{sv}",
                                   "a(usssssuua{sv})",
                                   "a(ssssssuua{ss})",
                                   "a((ssssssuua{sv}))",
                                   "a(ssssssuu)"}) {
        QTest::newRow(type) << QStringLiteral("@%1 []").arg(QLatin1String(type));
    }
    for (const char* const type : {"a{sv}", "a{ss}", "a{ii}", "a{us}", "a{oa{sa{sv}}}"}) {
        QTest::newRow(type) << QStringLiteral("@%1 {}").arg(QLatin1String(type));
    }
}

void WrongTypesTest::anyEmptyArrayIsNoViews()
{
    QFETCH(const QString, value);
    mService.setViews(value);
    TelvaroTaskSwitcherDBusConnector connector;
    QVERIFY(connector.getViews().isEmpty());
}

void WrongTypesTest::currentViewMayHaveAnyType_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("uuid");
    QTest::addColumn<QString>("log");

    for (const char* const value : {"'one'", "['one']", "[byte 0x6f, 0x6e, 0x65]"}) {
        QTest::addRow("%s", value) << QString::fromLatin1(value) << QStringLiteral("one") << QString();
    }
    for (const char* const value :
         {"'One'", "''", "true", "int16 1", "uint16 1", "1", "uint32 1", "int64 1", "uint64 1", "1.5", "@ay []"}) {
        QTest::addRow("%s", value) << QString::fromLatin1(value) << QString() << Warnings::cNoCurrentView;
    }
    for (const char* const value :
         {"@as []", "['one', 'two']", "byte 1", "objectpath '/one'", "signature 's'", "handle 0", "<'one'>", "('one',)",
          "[1]", "[<'one'>]", "[('one',)]", "{'one': <'one'>}", "{'one': 'one'}", "[objectpath '/one']"}) {
        QTest::addRow("%s", value) << QString::fromLatin1(value) << QString() << Warnings::cUnparsed;
    }
}

void WrongTypesTest::currentViewMayHaveAnyType()
{
    QFETCH(QString, value);
    QFETCH(QString, uuid);
    QFETCH(QString, log);
    Operations operations;
    operations.prepare();
    mService.setProperty(QStringLiteral("/taskswitcher"), QStringLiteral("de.Telvaro.taskswitcher"),
                         QStringLiteral("currentView"), value);
    QCOMPARE(operations.perform(QStringLiteral("getCurrentView")), uuid);
    QCOMPARE(mLog->takeDescriptions(),
             log.isEmpty() ? QStringList() : QStringList{warning(QStringLiteral("getCurrentView()"), log)});
}

void WrongTypesTest::screenPropertiesMayHaveAnyType_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("property");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("result");
    QTest::addColumn<bool>("isConverted");

    struct Row
    {
        const char* value;
        const char* asBool;
        const char* asText;
    };
    const char* const no = nullptr;
    const Row cRows[] = {
        {"true", "true", "true"},     {"false", "false", "false"}, {"byte 0", "false", "0"},
        {"byte 65", "true", "65"},    {"int16 -1", "true", "-1"},  {"uint16 7", "true", "7"},
        {"0", "false", "0"},          {"uint32 1", "true", "1"},   {"int64 -9", "true", "-9"},
        {"uint64 2", "true", "2"},    {"1.5", no, "1.5"},          {"'true'", "true", "true"},
        {"'0'", "false", "0"},        {"'90'", no, "90"},          {"''", no, ""},
        {"objectpath '/a'", no, no},  {"signature 's'", no, no},   {"handle 0", no, no},
        {"<true>", no, no},           {"['true']", no, no},        {"@as []", no, no},
        {"[byte 1]", no, no},         {"[true]", no, no},          {"('true',)", no, no},
        {"{'true': <true>}", no, no}, {"[('a', 1)]", no, no},      {"[<true>]", no, no},
    };
    for (const Row& row : cRows) {
        const QString value = QLatin1String(row.value);
        const auto add = [&value](const char* operation, const char* property, const char* result,
                                  const char* failure) {
            QTest::addRow("%s %s", property, qPrintable(value))
                << QString::fromLatin1(operation) << QString::fromLatin1(property) << value
                << QString::fromLatin1(result != nullptr ? result : failure) << (result != nullptr);
        };
        add("isScreenSaverActive", "screenSaverActive", row.asBool, "false");
        add("getFullScreen", "fullScreen", row.asBool, "false");
        add("getOrientation", "orientation", row.asText, "");
    }
}

void WrongTypesTest::screenPropertiesMayHaveAnyType()
{
    QFETCH(QString, operation);
    QFETCH(QString, property);
    QFETCH(QString, value);
    QFETCH(QString, result);
    QFETCH(bool, isConverted);
    Operations operations;
    operations.prepare();
    mService.setProperty(QStringLiteral("/screen"), QStringLiteral("de.Telvaro.screen"), property, value);
    QCOMPARE(operations.perform(operation), result);
    QCOMPARE(mLog->takeTexts(), isConverted ? QStringList() : QStringList{Warnings::unconverted(property)});
}

void WrongTypesTest::notificationsOfAnySignatureAreHandledOrDropped_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("signals");
    QTest::addColumn<QString>("log");

    const QString name = QStringLiteral("'de.Telvaro.taskswitcher'");
    const QString views = QStringLiteral("{'views': <1>}");
    const QString none = QStringLiteral("@as []");
    const auto add = [](const QStringList& arguments, const QString& signalTexts, const QString& log) {
        QTest::addRow("%s", qPrintable(arguments.join(QStringLiteral(", ")))) << arguments << signalTexts << log;
    };
    const auto addChange = [&](const char* changed, const char* signalTexts, const char* log) {
        add({name, QLatin1String(changed), none}, QLatin1String(signalTexts), QLatin1String(log));
    };
    add({}, QString(), QString());
    add({name}, QString(), QString());
    add({name, views}, QString(), QString());
    add({views, none}, QString(), QString());
    add({views}, QString(), QString());
    add({name, views, none, QStringLiteral("1")}, QString(), QString());
    add({views, name, none}, QString(), QString());
    add({name, views, views, none}, QString(), QString());
    add({QStringLiteral("('any', %1, %2)").arg(views, none)}, QString(), QString());
    add({name, none, views}, QString(), QString());
    for (const char* const wrongName : {"1", "true", "byte 1", "1.5", "objectpath '/a'", "signature 's'", "<'name'>",
                                        "['name']", "('name',)", "handle 0"}) {
        add({QLatin1String(wrongName), views, none}, QString(), QString());
    }
    for (const char* const wrongMap : {"{'views': 'a'}", "{'views': 1}", "{1: <1>}", "{objectpath '/a': <1>}", "[<1>]",
                                       "['views']", "'views'", "[('views', <1>)]", "('views', <1>)", "<{'views': <1>}>",
                                       "@a{ss} {}", "{'views': {'a': <1>}}", "({'views': <1>},)", "7"}) {
        add({name, QLatin1String(wrongMap), none}, QString(), QString());
    }
    for (const char* const wrongList : {"'views'", "[1]", "[<'views'>]", "[objectpath '/a']", "[byte 1]", "@av []",
                                        "@ao []", "@a{sv} {}", "[['views']]", "('views',)", "uint64 1"}) {
        add({name, views, QLatin1String(wrongList)}, QString(), QString());
    }
    addChange("@a{sv} {}", "", "");
    addChange("{'views': <'anything'>}", "viewsChanged", "");
    addChange("{'currentView': <'one'>}", "currentViewChanged:one", "");
    addChange("{'currentView': <7>}", "currentViewChanged:one", "");
    addChange("{'currentView': <(1, 'one')>}", "", "Unable to convert current view to string!");
    addChange("{'currentView': <<'one'>>}", "", "Unable to convert current view to string!");
    addChange("{'currentView': <@as []>}", "", "Unable to convert current view to string!");
    addChange("{'fullScreen': <[(1, 2)]>, 'orientation': <handle 0>, 'screenSaverActive': <@av []>}", "", "");
}

void WrongTypesTest::notificationsOfAnySignatureAreHandledOrDropped()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, signals);
    QFETCH(QString, log);
    Operations operations;
    operations.prepare();
    SignalRecorder recorder(operations.taskSwitcher(), operations.screen());
    const auto takeSignals = [&recorder] {
        PrivateBus::deliver();
        return recorder.take().join(QLatin1Char(' '));
    };
    const auto emitFrom = [this](const QString& path, const QStringList& values) {
        mService.emitSignal(
            {path, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("PropertiesChanged"), values});
    };
    emitFrom(QStringLiteral("/taskswitcher"), arguments);
    QCOMPARE(takeSignals(), signals);
    QCOMPARE(mLog->takeTexts(), log.isEmpty() ? QStringList() : QStringList{log});

    // The screen connector knows no such properties, or reads them anew.
    emitFrom(QStringLiteral("/screen"), arguments);
    const bool namesProperties = arguments.value(1).contains(QLatin1String("fullScreen"));
    QCOMPARE(takeSignals(),
             namesProperties ? QStringLiteral("screenOrientationChanged:90 fullScreenChanged:true") : QString());

    // Well-formed notifications still arrive.
    emitFrom(QStringLiteral("/taskswitcher"),
             {QStringLiteral("'any'"), QStringLiteral("{'views': <1>}"), QStringLiteral("@as []")});
    emitFrom(QStringLiteral("/screen"),
             {QStringLiteral("'any'"), QStringLiteral("{'orientation': <1>}"), QStringLiteral("@as []")});
    QCOMPARE(takeSignals(),
             namesProperties ? QStringLiteral("viewsChanged")
                             : QStringLiteral("viewsChanged screenOrientationChanged:90"));
}

TELVARO_TEST_MAIN(WrongTypesTest)
#include "WrongTypesTest.moc"
