// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ConnectorFixture.h"
#include "OperationProcess.h"
#include "Operations.h"
#include "Scenario.h"
#include "TestMain.h"
#include "ValueText.h"

namespace {

const QString cUnparsed = QStringLiteral("Unable to parse dbus-reply to dbus-argument");

} // namespace

/// Values of every type where the service should send another. Each case is an application of its own: QtDBus hands a
/// read of the wrong type to libdbus, which ends the process.
class WrongTypesTest : public ConnectorFixture
{
    Q_OBJECT

private Q_SLOTS:
    void viewsOfAnyTypeAreReadOrRefused_data();
    void viewsOfAnyTypeAreReadOrRefused();
    void currentViewMayHaveAnyType_data();
    void currentViewMayHaveAnyType();
    void screenPropertiesMayHaveAnyType_data();
    void screenPropertiesMayHaveAnyType();
    void screenShotMayBeAnsweredWithAnyType_data();
    void screenShotMayBeAnsweredWithAnyType();
    void notificationsOfAnySignatureAreHandledOrDropped_data();
    void notificationsOfAnySignatureAreHandledOrDropped();
    void cleanupTestCase();

private:
    Outcome performInChild(const QString& operation);

    Scenario mScenario;
    int mCaseCount = 0;
};

Outcome WrongTypesTest::performInChild(const QString& operation)
{
    ++mCaseCount;
    OperationProcess process;
    process.start();
    process.prepare();
    return process.perform(operation);
}

void WrongTypesTest::viewsOfAnyTypeAreReadOrRefused_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("uuids");
    QTest::addColumn<bool>("isRead");

    const auto add = [](const QString& value, const QString& uuids, bool isRead) {
        QTest::addRow("%s", qPrintable(value)) << value << uuids << isRead;
    };
    const char* const cRefused[] = {
        // no D-Bus arguments to Qt
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
        // arrays of something else
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
        // structures alone
        "('a',)",
        "(1, 2)",
        "('a', 'b', 'c', 'd', 'e', 'f', uint32 1, uint32 2, @a{sv} {})",
        // arrays of other structures
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
        "[(<'a'>, <'b'>, <'c'>, <'d'>, <'e'>, <'f'>, <uint32 1>, <uint32 2>, <@a{sv} {}>)]",
    };
    for (const char* const value : cRefused) {
        add(QLatin1String(value), QString(), false);
    }
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
                                   "a(ssssssuua{ss})"}) {
        add(QStringLiteral("@%1 []").arg(QLatin1String(type)), QString(), true);
    }
    for (const char* const type : {"a{sv}", "a{ss}", "a{ii}", "a{oa{sa{sv}}}"}) {
        add(QStringLiteral("@%1 {}").arg(QLatin1String(type)), QString(), true);
    }
    const QString view = QStringLiteral("('a', 'b', 'c', 'd', 'e', 'f', %1 1, %2 2, {'k': <'v'>})");
    const QStringList integers{QStringLiteral("byte"),  QStringLiteral("int16"),  QStringLiteral("uint16"),
                               QStringLiteral("int32"), QStringLiteral("uint32"), QStringLiteral("int64"),
                               QStringLiteral("uint64")};
    for (const QString& integer : integers) {
        add(QLatin1Char('[') + view.arg(integer, integers.first()) + QLatin1Char(']'), QStringLiteral("a"), true);
        add(QLatin1Char('[') + view.arg(integers.last(), integer) + QLatin1Char(']'), QStringLiteral("a"), true);
    }
    const char* const cRead[] = {
        "[(objectpath '/a', 'b', 'c', 'd', 'e', 'f', uint32 1, uint32 2, @a{sv} {})]",
        "[('/a', 'b', 'c', 'd', 'e', objectpath '/f', uint32 1, uint32 2, @a{sv} {})]",
        "[(@o '/a', @o '/b', @o '/c', @o '/d', @o '/e', @o '/f', int64 -1, int16 -1, @a{sv} {})]",
        "[('/a', 'b', 'c', 'd', 'e', 'f', uint32 1, uint32 2, {'k': <('x', [1, 2])>}, 'more')]",
        "[('/a', 'b', 'c', 'd', 'e', 'f', uint32 1, uint32 2, @a{sv} {}, handle 0, [(1, 'x')], <'more'>)]",
    };
    for (const char* const value : cRead) {
        add(QLatin1String(value), QStringLiteral("/a"), true);
    }
    add(Scenario::views(), QStringLiteral("one two three"), true);
}

void WrongTypesTest::viewsOfAnyTypeAreReadOrRefused()
{
    QFETCH(QString, value);
    QFETCH(QString, uuids);
    QFETCH(bool, isRead);
    mService.setViews(value);
    const Outcome outcome = performInChild(QStringLiteral("getViews"));
    QCOMPARE(outcome.result, uuids);
    QCOMPARE(outcome.log, isRead ? QStringList() : QStringList{cUnparsed});
}

void WrongTypesTest::currentViewMayHaveAnyType_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("uuid");
    QTest::addColumn<QString>("log");

    const QString unknown = QStringLiteral("current view not found in all views list");
    for (const char* const value : {"'one'", "['one']", "[byte 0x6f, 0x6e, 0x65]"}) {
        QTest::addRow("%s", value) << QString::fromLatin1(value) << QStringLiteral("one") << QString();
    }
    for (const char* const value :
         {"'One'", "''", "true", "int16 1", "uint16 1", "1", "uint32 1", "int64 1", "uint64 1", "1.5", "@ay []"}) {
        QTest::addRow("%s", value) << QString::fromLatin1(value) << QString() << unknown;
    }
    for (const char* const value :
         {"@as []", "['one', 'two']", "byte 1", "objectpath '/one'", "signature 's'", "handle 0", "<'one'>", "('one',)",
          "[1]", "[<'one'>]", "[('one',)]", "{'one': <'one'>}", "{'one': 'one'}", "[objectpath '/one']"}) {
        QTest::addRow("%s", value) << QString::fromLatin1(value) << QString() << cUnparsed;
    }
}

void WrongTypesTest::currentViewMayHaveAnyType()
{
    QFETCH(QString, value);
    QFETCH(QString, uuid);
    QFETCH(QString, log);
    Scenario::set(mService);
    mService.setProperty(QStringLiteral("/taskswitcher"), QStringLiteral("de.Telvaro.taskswitcher"),
                         QStringLiteral("currentView"), value);
    const Outcome outcome = performInChild(QStringLiteral("getCurrentView"));
    QCOMPARE(outcome.result, uuid);
    QCOMPARE(outcome.log, log.isEmpty() ? QStringList() : QStringList{log});
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
    mService.setProperty(QStringLiteral("/screen"), QStringLiteral("de.Telvaro.screen"), property, value);
    const Outcome outcome = performInChild(operation);
    QCOMPARE(outcome.result, result);
    const QString warning =
        QStringLiteral("Unable to convert property  \"%1\" to %2!")
            .arg(property,
                 operation == QLatin1String("getOrientation") ? QStringLiteral("QString") : QStringLiteral("bool"));
    QCOMPARE(outcome.log, isConverted ? QStringList() : QStringList{warning});
}

void WrongTypesTest::screenShotMayBeAnsweredWithAnyType_data()
{
    QTest::addColumn<QStringList>("reply");
    QTest::addColumn<QString>("signature");
    const auto add = [](const QStringList& reply, const char* signature) {
        QTest::addRow("%s", qPrintable(reply.join(QStringLiteral(", ")))) << reply << QString::fromLatin1(signature);
    };
    add({QStringLiteral("'/shots/1.png'")}, "");
    add({QStringLiteral("'/shots/1.png'"), QStringLiteral("1")}, "");
    add({}, "<empty signature>");
    add({QStringLiteral("1"), QStringLiteral("'/shots/1.png'")}, "i");
    const QPair<const char*, const char*> cValues[] = {
        {"true", "b"},
        {"byte 1", "y"},
        {"int16 1", "n"},
        {"uint16 1", "q"},
        {"1", "i"},
        {"uint32 1", "u"},
        {"int64 1", "x"},
        {"uint64 1", "t"},
        {"1.5", "d"},
        {"objectpath '/a'", "o"},
        {"signature 's'", "g"},
        {"handle 0", "h"},
        {"<'text'>", "v"},
        {"['text']", "as"},
        {"[byte 1]", "ay"},
        {"('text',)", "(s)"},
        {"[('text',)]", "a(s)"},
        {"{'a': <1>}", "a{sv}"},
        {"[1]", "ai"},
        {"[<1>]", "av"},
    };
    for (const auto& value : cValues) {
        add({QLatin1String(value.first)}, value.second);
    }
}

void WrongTypesTest::screenShotMayBeAnsweredWithAnyType()
{
    QFETCH(QStringList, reply);
    QFETCH(QString, signature);
    mService.script(QStringLiteral("/screenshot"), QStringLiteral("de.Telvaro.screenshot"),
                    QStringLiteral("ScreenShot"), {Behaviour::reply(reply)});
    const Outcome outcome = performInChild(QStringLiteral("captureScreenShot"));
    if (signature.isEmpty()) {
        QCOMPARE(outcome.result, QStringLiteral("/shots/1.png"));
        QCOMPARE(outcome.log, QStringList());
        return;
    }
    QCOMPARE(outcome.result, QStringLiteral("nothing"));
    QCOMPARE(outcome.log.size(), 1);
    // QtDBus adds the name of a type where it knows one.
    const QString beginning =
        QStringLiteral("Reply of  \"ScreenShot\" is invalid! \"Unexpected reply signature: got \\\"%1\\\"")
            .arg(signature);
    QVERIFY2(outcome.log.first().startsWith(beginning)
                 && outcome.log.first().endsWith(QStringLiteral(", expected \\\"s\\\" (QString)\"")),
             qPrintable(outcome.log.first()));
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
    add({name, none, views}, QString(), QString());
    for (const char* const wrongName : {"1", "true", "byte 1", "1.5", "objectpath '/a'", "signature 's'", "<'name'>",
                                        "['name']", "('name',)", "handle 0"}) {
        add({QLatin1String(wrongName), views, none}, QString(), QString());
    }
    for (const char* const wrongMap :
         {"{'views': 'a'}", "{'views': 1}", "{1: <1>}", "{objectpath '/a': <1>}", "[<1>]", "['views']", "'views'",
          "[('views', <1>)]", "('views', <1>)", "<{'views': <1>}>", "@a{ss} {}", "{'views': {'a': <1>}}", "7"}) {
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
    addChange("{'currentView': <{'a': <1>}>, 'views': <1>}", "", "Unable to convert current view to string!");
    addChange("{'fullScreen': <[(1, 2)]>, 'orientation': <handle 0>, 'screenSaverActive': <@av []>}", "", "");
}

void WrongTypesTest::notificationsOfAnySignatureAreHandledOrDropped()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, signals);
    QFETCH(QString, log);
    Scenario::set(mService);
    ++mCaseCount;
    OperationProcess process;
    process.start();
    process.prepare();
    const auto emitFrom = [this](const QString& path, const QStringList& values) {
        mService.emitSignal(
            {path, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("PropertiesChanged"), values});
    };
    emitFrom(QStringLiteral("/taskswitcher"), arguments);
    const Outcome outcome = process.takeSignals();
    QCOMPARE(outcome.result, signals);
    QCOMPARE(outcome.log, log.isEmpty() ? QStringList() : QStringList{log});

    // The screen connector knows no such properties, or reads them anew.
    emitFrom(QStringLiteral("/screen"), arguments);
    const bool namesProperties = arguments.value(1).contains(QLatin1String("fullScreen"));
    QCOMPARE(process.takeSignals().result,
             namesProperties ? QStringLiteral("screenOrientationChanged:90 fullScreenChanged:true") : QString());

    // What is well-formed still comes through.
    emitFrom(QStringLiteral("/taskswitcher"),
             {QStringLiteral("'any'"), QStringLiteral("{'views': <1>}"), QStringLiteral("@as []")});
    emitFrom(QStringLiteral("/screen"),
             {QStringLiteral("'any'"), QStringLiteral("{'orientation': <1>}"), QStringLiteral("@as []")});
    QCOMPARE(process.takeSignals().result,
             namesProperties ? QStringLiteral("viewsChanged")
                             : QStringLiteral("viewsChanged screenOrientationChanged:90"));
}

void WrongTypesTest::cleanupTestCase()
{
    qInfo("%d cases", mCaseCount);
}

TELVARO_TEST_MAIN(WrongTypesTest)

#include "WrongTypesTest.moc"
