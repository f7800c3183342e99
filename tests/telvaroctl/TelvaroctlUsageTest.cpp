// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "PrivateBus.h"
#include "TelvaroctlFixture.h"
#include "TestMain.h"

#include <QRegularExpression>

class TelvaroctlUsageTest : public TelvaroctlFixture
{
    Q_OBJECT

private Q_SLOTS:
    void helpNamesEveryCommand();
    void helpOfACommandIsTheSameFromEitherSide();
    void versionIsTheProjects();
    void wrongUsageIsSaidOnStandardErrorAndSendsNothing_data();
    void wrongUsageIsSaidOnStandardErrorAndSendsNothing();
    void anEmptyArgumentThatNamesSomethingIsWrongUsage_data();
    void anEmptyArgumentThatNamesSomethingIsWrongUsage();
    void outputThatCannotBeWrittenIsAFailure_data();
    void outputThatCannotBeWrittenIsAFailure();
    void aMisspelledWordIsRecognised_data();
    void aMisspelledWordIsRecognised();
    void commonOptionsStandBeforeAndAfterTheCommand();
    void aWarningOfQtIsPrintedAndIsNoFailure_data();
    void aWarningOfQtIsPrintedAndIsNoFailure();
    void theLogOfTheLibraryIsPrintedOnRequest();
    void withoutTheServiceEveryCommandFailsAndSaysWhy_data();
    void withoutTheServiceEveryCommandFailsAndSaysWhy();
    void theBusCanBeChosen();
    void aSessionBusWithoutAnAddressIsReportedByItsVariable();
};

void TelvaroctlUsageTest::helpNamesEveryCommand()
{
    const Result result = telvaroctl("--help");
    QCOMPARE(result.status, 0);
    QCOMPARE(result.errors, QString());
    const QRegularExpression tooWide(QStringLiteral("[^\n]{81}"));
    QVERIFY(!result.output.contains(tooWide));
    const QStringList commands =
        words("status views current switch next previous top is-current pid screen screensaver orientation fullscreen "
              "overlay notify screenshot wait watch record tap click drag scroll type key step help complete");
    for (const QString& command : commands) {
        QVERIFY2(result.output.contains(QStringLiteral("\n  %1 ").arg(command)), qPrintable(command));
        const Result help = telvaroctl({command, QStringLiteral("--help")});
        QCOMPARE(help.status, 0);
        QVERIFY(help.output.startsWith(QStringLiteral("Usage: telvaroctl %1 [options]").arg(command)));
        QVERIFY(help.output.contains(QLatin1String("-h, --help")));
        QVERIFY2(!help.output.contains(tooWide), qPrintable(command));
        QCOMPARE(help.errors, QString());
    }
    QCOMPARE(takeWrites(), QStringList());
}

void TelvaroctlUsageTest::helpOfACommandIsTheSameFromEitherSide()
{
    QCOMPARE(telvaroctl("help").output, telvaroctl("--help").output);
    const Result result = telvaroctl("help switch");
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, telvaroctl("switch --help").output);
    QVERIFY(result.output.startsWith(
        QLatin1String("Usage: telvaroctl switch [options] UUID | --app APP [--index INDEX]\n")));
}

void TelvaroctlUsageTest::versionIsTheProjects()
{
    const Result result = telvaroctl("--version");
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, QStringLiteral("telvaroctl " TELVARO_VERSION "\n"));
}

void TelvaroctlUsageTest::wrongUsageIsSaidOnStandardErrorAndSendsNothing_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("error");
    const auto row = [](const char* line, const char* error) {
        QTest::newRow(*line == '\0' ? "nothing" : line) << words(line) << message(error);
    };
    row("", "a command is missing");
    row("xyzzy", "unknown command 'xyzzy'");
    row("help xyzzy", "unknown command 'xyzzy'");
    row("views --zzz", "Unknown option 'zzz'.");
    row("--json next", "Unknown option 'json'.");
    row("views x", "unexpected argument 'x'");
    row("status x", "unexpected argument 'x'");
    row("current x", "unexpected argument 'x'");
    row("next x", "unexpected argument 'x'");
    row("previous x", "unexpected argument 'x'");
    row("watch x", "unexpected argument 'x'");
    row("wait x", "unexpected argument 'x'");
    row("top", "PROCESS is missing");
    row("is-current", "PROCESS is missing");
    row("pid", "PROCESS is missing");
    row("record", "FILE is missing");
    row("pid one two", "unexpected argument 'two'");
    row("switch", "expected either UUID or --app");
    row("switch a b", "unexpected argument 'b'");
    row("switch u-1 --app notes", "expected either UUID or --app");
    row("switch u-1 --index 1", "--index goes with --app");
    row("switch --app notes --index one", "'one' is not a number from 0 to 4294967295");
    row("switch --app notes --index 4294967296", "'4294967296' is not a number from 0 to 4294967295");
    row("screensaver xyzzy", "'xyzzy' is neither 'on', 'off', 'toggle', 'status' nor 'timeout'");
    row("screensaver on on", "unexpected argument 'on'");
    row("screensaver timeout", "SECONDS is missing");
    row("screensaver timeout soon", "'soon' is not a number from 0 to 2147483647");
    row("screensaver timeout -5", "'-5' is not a number from 0 to 2147483647");
    row("screensaver timeout -5 --json", "'-5' is not a number from 0 to 2147483647");
    row("orientation xyzzy", "'xyzzy' is neither the name of an orientation nor a number");
    row("orientation 0 90", "unexpected argument '90'");
    row("fullscreen xyzzy", "'xyzzy' is neither 'on', 'off' nor 'toggle'");
    row("screen --fullscreen xyzzy", "--fullscreen: 'xyzzy' is neither 'on', 'off' nor 'toggle'");
    row("screen --orientation xyzzy", "'xyzzy' is neither the name of an orientation nor a number");
    row("screen --screensaver-timeout -1", "'-1' is not a number from 0 to 2147483647");
    row("overlay", "show|hide is missing");
    row("overlay show", "TEXT is missing");
    row("overlay show two words", "unexpected argument 'words'");
    row("overlay hide it", "unexpected argument 'it'");
    row("notify", "SUMMARY is missing");
    row("notify a b c", "unexpected argument 'c'");
    row("notify --action open summary", "'open' is not of the form KEY=LABEL");
    row("notify --urgency xyzzy a", "--urgency: 'xyzzy' is neither 'low', 'normal' nor 'critical'");
    row("notify --expire soon a", "'soon' is not a number from -1 to 2147483647");
    row("notify --replace -1 a", "'-1' is not a number from 0 to 4294967295");
    row("notify --hint string:name a", "'string:name' is not of the form TYPE:NAME:VALUE");
    row("notify --hint text:name:value a",
        "the type 'text' of a hint is not 'boolean', 'byte', 'double', 'int' or 'string'");
    row("notify --hint byte:name:256 a", "'256' is no byte");
    row("notify --hint boolean:name:maybe a", "'maybe' is no boolean");
    row("notify --close 0", "'0' is not a number from 1 to 4294967295");
    row("notify --close 1 a", "unexpected argument 'a'");
    row("notify --close 1 --icon a", "--close and --icon exclude each other");
    row("notify --icon a --icon b c", "--icon is given more than once");
    row("screen --json --fullscreen on", "--json and --fullscreen exclude each other");
    row("screen --fullscreen xyzzy --fullscreen off", "--fullscreen is given more than once");
    row("wait --app=", "--app: APP is empty");
    row("wait --view=", "--view: UUID is empty");
    row("switch --app=", "--app: APP is empty");
    row("screenshot", "DIRECTORY is missing");
    row("wait --service --current", "expected either --service or a view");
    row("wait --service --view u-1", "expected either --service or a view");
    row("wait --index 1 --current", "--index goes with --app");
    row("wait --app notes --index one", "'one' is not a number from 0 to 4294967295");
    row("wait --service --app notes", "expected either --service or a view");
    row("wait --app", "Missing value after '--app'.");
    row("notify Hi --icon", "Missing value after '--icon'.");
    row("views --timeout", "Missing value after '--timeout'.");
    row("views --timeout soon", "--timeout: 'soon' is not a number of seconds above 0 and up to 1000000");
    row("views --timeout 0", "--timeout: '0' is not a number of seconds above 0 and up to 1000000");
    row("views --timeout -1", "--timeout: '-1' is not a number of seconds above 0 and up to 1000000");
    row("views --bus xyzzy", "--bus: 'xyzzy' is neither 'session', 'system' nor an address");
    row("views --format {{uuid", "--format: '{{uuid' has no end '}}'");
    row("views --format {{nothing}}",
        "--format: there is no field 'nothing' among uuid, appId, title, info1, info2, info3, info4, pid, sortIndex, "
        "current, attributes.NAME");
    row("views --format {{attributes.}}",
        "--format: there is no field 'attributes.' among uuid, appId, title, info1, info2, info3, info4, pid, "
        "sortIndex, current, attributes.NAME; did you mean 'attributes.NAME'?");
    row("views --format {{uuid}} --json", "--json and --format exclude each other");
    row("watch --format {{uuid}} --json", "--json and --format exclude each other");
}

void TelvaroctlUsageTest::wrongUsageIsSaidOnStandardErrorAndSendsNothing()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, error);
    const Result result = telvaroctl(arguments);
    QCOMPARE(result.output, QString());
    QVERIFY2(result.errors.startsWith(error), qPrintable(result.errors));
    QVERIFY(result.errors.endsWith(QLatin1String("--help'\n")));
    QCOMPARE(result.status, 2);
    QCOMPARE(mService.takeDescriptions(), QStringList());
}

void TelvaroctlUsageTest::anEmptyArgumentThatNamesSomethingIsWrongUsage_data()
{
    QTest::addColumn<QString>("placeholder");
    QTest::newRow("switch") << "UUID";
    QTest::newRow("top") << "PROCESS";
    QTest::newRow("screenshot") << "DIRECTORY";
    QTest::newRow("record") << "FILE";
}

void TelvaroctlUsageTest::anEmptyArgumentThatNamesSomethingIsWrongUsage()
{
    QFETCH(QString, placeholder);
    const Result result = telvaroctl({QString::fromUtf8(QTest::currentDataTag()), QString()});
    QVERIFY2(result.errors.startsWith(message(QStringLiteral("%1 is empty").arg(placeholder))),
             qPrintable(result.errors));
    QCOMPARE(result.status, 2);
    QCOMPARE(mService.takeDescriptions(), QStringList());
}

void TelvaroctlUsageTest::outputThatCannotBeWrittenIsAFailure_data()
{
    QTest::addColumn<QStringList>("arguments");
    for (const char* command : {"views", "views --json", "screen", "screen --json", "notify --print-id a",
                                "complete -- sw", "--help", "views --help", "help", "--version", "record -"}) {
        QTest::newRow(command) << words(command);
    }
}

void TelvaroctlUsageTest::outputThatCannotBeWrittenIsAFailure()
{
    QFETCH(QStringList, arguments);
    ChildProcess process;
    process.setStandardOutputFile(QStringLiteral("/dev/full"));
    start(process, arguments);
    const Result result = finish(process);
    QCOMPARE(result.errors, message("standard output cannot be written: No space left on device"));
    QCOMPARE(result.status, 1);
}

void TelvaroctlUsageTest::aMisspelledWordIsRecognised_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("suggestion");
    const auto row = [](const char* line, const char* suggestion) {
        QTest::newRow(line) << words(line) << QString::fromUtf8(suggestion);
    };
    row("vews", "unknown command 'vews'; did you mean 'views'?");
    row("help swich", "unknown command 'swich'; did you mean 'switch'?");
    row("prev", "unknown command 'prev'; did you mean 'previous'?");
    row("views --jsn", "Unknown option 'jsn'; did you mean '--json'?");
    row("--timout 1 views", "Unknown option 'timout'; did you mean '--timeout'?");
    row("fullscreen onn", "; did you mean 'on'?");
    row("orientation potrait", "; did you mean 'portrait'?");
    row("screen --orientation lanscape", "; did you mean 'landscape'?");
    row("views --bus sesion", "; did you mean 'session'?");
    row("views --format {{titel}}", "; did you mean 'title'?");
}

void TelvaroctlUsageTest::aMisspelledWordIsRecognised()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, suggestion);
    const Result result = telvaroctl(arguments);
    QCOMPARE(result.status, 2);
    const QString line = result.errors.section(QLatin1Char('\n'), 0, 0);
    QVERIFY2(line.endsWith(suggestion), qPrintable(line));
}

void TelvaroctlUsageTest::commonOptionsStandBeforeAndAfterTheCommand()
{
    setTwoViews();
    const QString json = telvaroctl("views --json").output;
    QVERIFY(json.startsWith(QLatin1Char('[')));
    QCOMPARE(telvaroctl("--json views").output, json);
    QCOMPARE(telvaroctl("--timeout 15 --json views").output, json);
    QCOMPARE(telvaroctl("--timeout 15 views --verbose --json").output, json);
    QCOMPARE(telvaroctl("--json -- views").output, json);
}

void TelvaroctlUsageTest::aWarningOfQtIsPrintedAndIsNoFailure_data()
{
    QTest::addColumn<QStringList>("arguments");
    for (const char* command :
         {"views", "screensaver", "orientation 90", "fullscreen", "overlay hide", "is-current this-test"}) {
        QTest::newRow(command) << words(command);
    }
}

void TelvaroctlUsageTest::aWarningOfQtIsPrintedAndIsNoFailure()
{
    QFETCH(QStringList, arguments);
    setTwoViews();
    mService.setStateful(true);
    qputenv("QT_LOGGING_RULES", "nonsense=maybe");
    // Qt reads the rules when it logs for the first time.
    qputenv("QDBUS_DEBUG", "1");
    const Result result = telvaroctl(arguments);
    qunsetenv("QDBUS_DEBUG");
    qunsetenv("QT_LOGGING_RULES");
    QVERIFY2(result.errors.contains(message("Ignoring malformed logging rule: 'nonsense=maybe'")),
             qPrintable(result.errors));
    QCOMPARE(result.status, arguments.contains(QStringLiteral("is-current")) ? 1 : 0);
}

void TelvaroctlUsageTest::theLogOfTheLibraryIsPrintedOnRequest()
{
    const QString summary = message("no process is called 'no-such-process'");
    QCOMPARE(telvaroctl("pid no-such-process").errors, summary);
    const Result result = telvaroctl("pid no-such-process --verbose");
    QVERIFY2(
        result.errors.startsWith(QLatin1String("telvaroctl: Unable to find process with name \"no-such-process\"")),
        qPrintable(result.errors));
    QVERIFY(result.errors.endsWith(summary));
}

void TelvaroctlUsageTest::withoutTheServiceEveryCommandFailsAndSaysWhy_data()
{
    QTest::addColumn<QStringList>("arguments");
    for (const char* command : {"views",
                                "current",
                                "switch u-1",
                                "switch --app notes --index 0",
                                "switch --app notes",
                                "next",
                                "previous",
                                "screen",
                                "screen --fullscreen on",
                                "screensaver",
                                "screensaver on",
                                "screensaver off",
                                "screensaver toggle",
                                "screensaver timeout 5",
                                "orientation",
                                "orientation portrait",
                                "fullscreen",
                                "fullscreen on",
                                "overlay show text",
                                "overlay hide",
                                "notify summary",
                                "notify --wait summary",
                                "notify --close 1",
                                "screenshot /"}) {
        QTest::newRow(command) << words(command);
    }
}

void TelvaroctlUsageTest::withoutTheServiceEveryCommandFailsAndSaysWhy()
{
    QFETCH(QStringList, arguments);
    const auto absence = releaseName();
    const Result result = telvaroctl(arguments);
    QCOMPARE(result.status, 1);
    QCOMPARE(result.output, QString());
    QCOMPARE(result.errors, notOnTheBus());
}

void TelvaroctlUsageTest::theBusCanBeChosen()
{
    setTwoViews();
    const QString views = telvaroctl("views").output;
    const QByteArray address = PrivateBus::address().toUtf8();
    const QString built = QStringLiteral(TELVARO_BUS_NAME);
    const bool isSession = built == QLatin1String("session");
    const QString other = isSession ? QStringLiteral("system") : QStringLiteral("session");
    // Only the other bus is left.
    PrivateBus::setAddress("unix:path=/nonexistent");
    qputenv(isSession ? "DBUS_SYSTEM_BUS_ADDRESS" : "DBUS_SESSION_BUS_ADDRESS", address);
    const Result none = telvaroctl("views");
    const Result onOther = telvaroctl(words("views --bus") + QStringList(other));
    const Result addressed = telvaroctl({QStringLiteral("--bus"), QString::fromUtf8(address), QStringLiteral("views")});
    const Result status = telvaroctl(words("status --json --bus") + QStringList(other));
    PrivateBus::setAddress(address);
    QVERIFY2(status.output.contains(QStringLiteral("\"bus\": \"%1\"").arg(other)), qPrintable(status.output));
    QCOMPARE(none.status, 1);
    QCOMPARE(none.errors, message("there is no bus at unix:path=/nonexistent"));
    QCOMPARE(onOther.output, views);
    QCOMPARE(addressed.output, views);
    QCOMPARE(telvaroctl(words("views --bus") + QStringList(built)).output, views);
}

void TelvaroctlUsageTest::aSessionBusWithoutAnAddressIsReportedByItsVariable()
{
    const QByteArray address = PrivateBus::address().toUtf8();
    const QByteArray directory = qgetenv("XDG_RUNTIME_DIR");
    qunsetenv("DBUS_SESSION_BUS_ADDRESS");
    qunsetenv("XDG_RUNTIME_DIR");
    const Result result = telvaroctl("views --bus session");
    PrivateBus::setAddress(address);
    qputenv("XDG_RUNTIME_DIR", directory);
    QCOMPARE(result.status, 1);
    QCOMPARE(result.errors, message("there is no bus: DBUS_SESSION_BUS_ADDRESS is not set"));
}

TELVARO_TEST_MAIN(TelvaroctlUsageTest)

#include "TelvaroctlUsageTest.moc"
