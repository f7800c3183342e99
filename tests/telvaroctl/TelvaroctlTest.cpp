// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ConnectorFixture.h"
#include "PrivateBus.h"
#include "TestMain.h"
#include "ValueText.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <csignal>
#include <memory>

#include <sys/types.h>

using View = TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry;

namespace {

struct Result
{
    int status;
    QString output;
    QString errors;
};

Result telvaroctl(const QStringList& arguments, const QString& directory = QString())
{
    ChildProcess process;
    process.setWorkingDirectory(directory);
    process.setProcessChannelMode(QProcess::SeparateChannels);
    process.run(QStringLiteral(TELVAROCTL), arguments);
    process.waitForFinished(ChildProcess::cDeadline);
    const bool ended = process.state() == QProcess::NotRunning && process.exitStatus() == QProcess::NormalExit;
    return {ended ? process.exitCode() : -1, QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

QStringList words(const char* line)
{
    return QString::fromUtf8(line).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

View view(const char* uuid, const char* appId, uint32_t pid, uint32_t sortIndex, const char* title)
{
    View result;
    result.uuid = QString::fromUtf8(uuid);
    result.appId = QString::fromUtf8(appId);
    result.info1 = QStringLiteral("one");
    result.pid = pid;
    result.sortIndex = sortIndex;
    result.attributes.insert(QStringLiteral("title"), QString::fromUtf8(title));
    return result;
}

QString message(const char* text)
{
    return QStringLiteral("telvaroctl: %1\n").arg(QString::fromUtf8(text));
}

} // namespace

class TelvaroctlTest : public ConnectorFixture
{
    Q_OBJECT

private Q_SLOTS:
    void helpNamesEveryCommand();
    void versionIsTheProjects();
    void wrongUsageIsSaidOnStandardErrorAndSendsNothing_data();
    void wrongUsageIsSaidOnStandardErrorAndSendsNothing();
    void aWarningOfQtIsPrintedAndIsNoFailure_data();
    void aWarningOfQtIsPrintedAndIsNoFailure();
    void withoutTheServiceEveryCommandFailsAndSaysWhy_data();
    void withoutTheServiceEveryCommandFailsAndSaysWhy();
    void statusTellsDeviceServiceAndProxies();
    void viewsAreATable();
    void noViewsAreAnEmptyTableAndNoFailure();
    void aTitleCannotSteerTheTerminal();
    void viewsAsJsonCarryEveryFieldAndNestedAttributes();
    void viewsThatCannotBeReadAreAFailure();
    void currentShowsTheCurrentView();
    void currentFailsWhereNoViewIsCurrent();
    void switchSendsTheUuidAndNothingElse();
    void switchReportsTheServicesError();
    void switchRefusesAnEmptyUuid();
    void switchByApplicationAndIndex();
    void nextAndPreviousStepAndWrap();
    void nextFailsWithoutViews();
    void processesAreFoundBroughtToTheTopAndAskedForByName();
    void topSaysWhenTheServiceDidNotFollow();
    void screenSaverIsShown();
    void screenSettingsAreWrittenAndReadBack_data();
    void screenSettingsAreWrittenAndReadBack();
    void aScreenSettingThatIsRefusedIsAFailure();
    void orientationAndFullScreenAreShown();
    void overlayIsShownAndHidden();
    void notifySendsIconTextsAndActions();
    void screenShotPrintsTheAnswerAndSendsAnAbsolutePath();
    void screenShotPrintsTheAnswerAsJson();
    void screenShotIntoNowhereIsAFailure();
    void watchPrintsEachSignalUntilInterrupted_data();
    void watchPrintsEachSignalUntilInterrupted();
    void watchFollowsTheService_data();
    void watchFollowsTheService();
    void watchNeedsABus();

private:
    /// The service is absent during the lifetime of the returned object.
    std::shared_ptr<void> releaseName();
    void setTwoViews();
    void emitViews(const QList<View>& views);
    /// Returns once telvaroctl is listening.
    static void startWatch(ChildProcess& watch, const QStringList& arguments);
    static QString taskSwitcherSet(const char* uuid);
    static QString screenSet(const char* property, const char* value);
    QStringList takeWrites();
};

std::shared_ptr<void> TelvaroctlTest::releaseName()
{
    mService.release();
    return std::shared_ptr<void>(nullptr, [this](void*) {
        mService.own();
    });
}

void TelvaroctlTest::setTwoViews()
{
    mService.setViews(
        ValueText::views({view("u-1", "notes", 4711, 0, "Shopping"), view("u-2", "notes", 4711, 1, "Recipes")}));
    mService.setCurrentView(QStringLiteral("u-1"));
}

void TelvaroctlTest::emitViews(const QList<View>& views)
{
    mService.emitSignal(
        ServiceSignal::propertiesChanged(QStringLiteral("/taskswitcher"), QStringLiteral("de.Telvaro.taskswitcher"),
                                         QStringLiteral("{'views': <%1>}").arg(ValueText::views(views))));
}

void TelvaroctlTest::startWatch(ChildProcess& watch, const QStringList& arguments)
{
    watch.setProcessChannelMode(QProcess::SeparateChannels);
    watch.run(QStringLiteral(TELVAROCTL), arguments);
    watch.setReadChannel(QProcess::StandardError);
    QCOMPARE(QString::fromUtf8(watch.readOutputLine()), QStringLiteral("telvaroctl: watching " TELVARO_SERVICE_NAME));
    watch.setReadChannel(QProcess::StandardOutput);
}

QString TelvaroctlTest::taskSwitcherSet(const char* uuid)
{
    return QStringLiteral("/taskswitcher org.freedesktop.DBus.Properties.Set ssv('de.Telvaro.taskswitcher', "
                          "'currentView', <'%1'>)")
        .arg(QString::fromUtf8(uuid));
}

QString TelvaroctlTest::screenSet(const char* property, const char* value)
{
    return QStringLiteral("/screen org.freedesktop.DBus.Properties.Set ssv('de.Telvaro.screen', '%1', <%2>)")
        .arg(QString::fromUtf8(property), QString::fromUtf8(value));
}

QStringList TelvaroctlTest::takeWrites()
{
    QStringList writes;
    for (const RecordedCall& call : mService.takeCalls()) {
        if (call.member != QLatin1String("Get") && call.member != QLatin1String("Introspect")) {
            writes.append(call.description());
        }
    }
    return writes;
}

void TelvaroctlTest::helpNamesEveryCommand()
{
    const Result result = telvaroctl({QStringLiteral("--help")});
    QCOMPARE(result.status, 0);
    QCOMPARE(result.errors, QString());
    for (const QString& command : words("status views current switch next previous top is-current pid screensaver "
                                        "orientation fullscreen overlay notify screenshot watch record")) {
        QVERIFY2(result.output.contains(QStringLiteral("\n  %1 ").arg(command)), qPrintable(command));
        const Result help = telvaroctl({command, QStringLiteral("--help")});
        QCOMPARE(help.status, 0);
        QVERIFY(help.output.startsWith(QStringLiteral("Usage: telvaroctl %1 [options]").arg(command)));
        QVERIFY(help.output.contains(QLatin1String("-h, --help")));
        QCOMPARE(help.errors, QString());
    }
    QCOMPARE(takeWrites(), QStringList());
}

void TelvaroctlTest::versionIsTheProjects()
{
    const Result result = telvaroctl({QStringLiteral("--version")});
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, QStringLiteral("telvaroctl " TELVARO_VERSION "\n"));
}

void TelvaroctlTest::wrongUsageIsSaidOnStandardErrorAndSendsNothing_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("error");
    const QString wrongNumber = message("wrong number of arguments");
    QTest::newRow("no command") << QStringList() << message("a command is missing");
    QTest::newRow("unknown command") << words("vews") << message("unknown command 'vews'");
    QTest::newRow("unknown option") << words("views --all") << message("Unknown option 'all'.");
    QTest::newRow("views with argument") << words("views x") << wrongNumber;
    QTest::newRow("status with argument") << words("status x") << wrongNumber;
    QTest::newRow("current with argument") << words("current x") << wrongNumber;
    QTest::newRow("switch to nothing") << words("switch") << message("expected either UUID or --app and --index");
    QTest::newRow("switch to two") << words("switch a b") << message("expected either UUID or --app and --index");
    QTest::newRow("switch without index") << words("switch --app notes") << message("--app and --index go together");
    QTest::newRow("switch by uuid and index")
        << words("switch u-1 --app notes --index 1") << message("expected either UUID or --app and --index");
    QTest::newRow("switch to no number") << words("switch --app notes --index one")
                                         << message("'one' is not a number from 0 to 4294967295");
    QTest::newRow("switch beyond 32 bits") << words("switch --app notes --index 4294967296")
                                           << message("'4294967296' is not a number from 0 to 4294967295");
    QTest::newRow("next with argument") << words("next x") << wrongNumber;
    QTest::newRow("previous with argument") << words("previous x") << wrongNumber;
    QTest::newRow("top without name") << words("top") << wrongNumber;
    QTest::newRow("is-current without name") << words("is-current") << wrongNumber;
    QTest::newRow("pid without name") << words("pid") << wrongNumber;
    const QString screenSaver = message("expected 'on', 'off', 'status' or 'timeout SECONDS'");
    QTest::newRow("screensaver maybe") << words("screensaver maybe") << screenSaver;
    QTest::newRow("screensaver on twice") << words("screensaver on on") << screenSaver;
    QTest::newRow("timeout without seconds")
        << words("screensaver timeout") << message("'' is not a number of seconds");
    QTest::newRow("timeout in words") << words("screensaver timeout soon")
                                      << message("'soon' is not a number of seconds");
    QTest::newRow("orientation upside") << words("orientation upside")
                                        << message("'upside' is neither the name of an orientation nor a number");
    QTest::newRow("orientation twice") << words("orientation 0 90") << wrongNumber;
    QTest::newRow("fullscreen maybe") << words("fullscreen maybe") << message("expected 'on', 'off' or nothing");
    QTest::newRow("overlay alone") << words("overlay") << message("expected 'show TEXT' or 'hide'");
    QTest::newRow("overlay of two words")
        << words("overlay show two words") << message("expected 'show TEXT' or 'hide'");
    QTest::newRow("overlay hide text") << words("overlay hide it") << message("expected 'show TEXT' or 'hide'");
    QTest::newRow("notify nothing") << words("notify") << wrongNumber;
    QTest::newRow("notify three texts") << words("notify a b c") << wrongNumber;
    QTest::newRow("notify with a bad action")
        << words("notify --action open summary") << message("'open' is not of the form ID=LABEL");
    QTest::newRow("screenshot to nowhere") << words("screenshot") << wrongNumber;
    QTest::newRow("watch with argument") << words("watch x") << wrongNumber;
}

void TelvaroctlTest::wrongUsageIsSaidOnStandardErrorAndSendsNothing()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, error);
    const Result result = telvaroctl(arguments);
    QCOMPARE(result.status, 2);
    QCOMPARE(result.output, QString());
    QVERIFY2(result.errors.startsWith(error), qPrintable(result.errors));
    QVERIFY(result.errors.endsWith(QLatin1String("--help'\n")));
    QCOMPARE(mService.takeDescriptions(), QStringList());
}

void TelvaroctlTest::aWarningOfQtIsPrintedAndIsNoFailure_data()
{
    QTest::addColumn<QStringList>("arguments");
    for (const char* command :
         {"views", "screensaver", "orientation 90", "fullscreen", "overlay hide", "notify summary"}) {
        QTest::newRow(command) << words(command);
    }
}

void TelvaroctlTest::aWarningOfQtIsPrintedAndIsNoFailure()
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
    QCOMPARE(result.status, 0);
}

void TelvaroctlTest::withoutTheServiceEveryCommandFailsAndSaysWhy_data()
{
    QTest::addColumn<QStringList>("arguments");
    for (const char* command :
         {"views", "current", "switch u-1", "switch --app notes --index 0", "next", "previous", "screensaver",
          "screensaver on", "screensaver off", "screensaver timeout 5", "orientation", "orientation portrait",
          "fullscreen", "fullscreen on", "overlay show text", "overlay hide", "notify summary", "screenshot /"}) {
        QTest::newRow(command) << words(command);
    }
}

void TelvaroctlTest::withoutTheServiceEveryCommandFailsAndSaysWhy()
{
    QFETCH(QStringList, arguments);
    const auto absence = releaseName();
    const Result result = telvaroctl(arguments);
    QCOMPARE(result.status, 1);
    QCOMPARE(result.output, QString());
    QVERIFY2(result.errors.contains(message("DBus Service for Telvaro \"" TELVARO_SERVICE_NAME "\" is not registered")),
             qPrintable(result.errors));
}

void TelvaroctlTest::statusTellsDeviceServiceAndProxies()
{
    const Result there = telvaroctl({QStringLiteral("status")});
    QCOMPARE(there.status, 0);
    QCOMPARE(there.errors, QString());
    QCOMPARE(there.output,
             QStringLiteral("WHAT                 STATE\n"
                            "compositor device    yes\n"
                            "%1registered\n"
                            "proxy globaloverlay  valid\n"
                            "proxy notifications  valid\n"
                            "proxy screen         valid\n"
                            "proxy screenshot     valid\n"
                            "proxy taskswitcher   valid\n")
                 .arg(QStringLiteral("service " TELVARO_SERVICE_NAME).leftJustified(21)));

    const auto absence = releaseName();
    const Result gone = telvaroctl({QStringLiteral("status"), QStringLiteral("--json")});
    QCOMPARE(gone.status, 1);
    QCOMPARE(gone.errors, QString());
    const QJsonObject status = QJsonDocument::fromJson(gone.output.toUtf8()).object();
    QCOMPARE(status.value(QLatin1String("compositorDevice")).toBool(), true);
    QCOMPARE(status.value(QLatin1String("serviceRegistered")).toBool(true), false);
    QCOMPARE(status.value(QLatin1String("service")).toString(), QStringLiteral(TELVARO_SERVICE_NAME));
    const QJsonObject proxies = status.value(QLatin1String("proxies")).toObject();
    QCOMPARE(proxies.size(), 5);
    for (const QJsonValue& isValid : proxies) {
        QCOMPARE(isValid.toBool(true), false);
    }
}

void TelvaroctlTest::viewsAreATable()
{
    setTwoViews();
    const Result result = telvaroctl({QStringLiteral("views")});
    QCOMPARE(result.status, 0);
    QCOMPARE(result.errors, QString());
    QCOMPARE(result.output,
             QStringLiteral("UUID  APPLICATION  INDEX  PID   TITLE\n"
                            "u-1   notes        0      4711  Shopping\n"
                            "u-2   notes        1      4711  Recipes\n"));
}

void TelvaroctlTest::noViewsAreAnEmptyTableAndNoFailure()
{
    const Result result = telvaroctl({QStringLiteral("views")});
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, QStringLiteral("UUID  APPLICATION  INDEX  PID  TITLE\n"));
    QCOMPARE(telvaroctl({QStringLiteral("views"), QStringLiteral("--json")}).output, QStringLiteral("[\n]\n"));
}

void TelvaroctlTest::aTitleCannotSteerTheTerminal()
{
    mService.setViews(ValueText::views({view("u-1", "notes", 1, 0,
                                             "a\x1b[2Jb\nc\xe2\x80\xae"
                                             "d")}));
    const QString output = telvaroctl({QStringLiteral("views")}).output;
    QVERIFY2(output.endsWith(QString::fromUtf8("a\xef\xbf\xbd[2Jb\xef\xbf\xbd"
                                               "c\xef\xbf\xbd"
                                               "d\n")),
             qPrintable(output));
}

void TelvaroctlTest::viewsAsJsonCarryEveryFieldAndNestedAttributes()
{
    mService.setViews(QStringLiteral(
        "[('u-1', 'notes', 'one', 'two', 'three', 'four', uint32 4294967295, uint32 7, {'title': <'Shopping'>, "
        "'bytes': <b'ab'>, 'size': <(640, 480)>, 'tags': <['x', 'y']>, 'more': <{'deep': <[true]>}>, "
        "'path': <objectpath '/a'>, 'big': <int64 -4294967297>})]"));
    const Result result = telvaroctl({QStringLiteral("views"), QStringLiteral("--json")});
    QCOMPARE(result.status, 0);
    const QJsonArray expected =
        QJsonDocument::fromJson("[{\"uuid\": \"u-1\", \"appId\": \"notes\", \"info1\": \"one\", "
                                "\"info2\": \"two\", \"info3\": \"three\", \"info4\": \"four\", "
                                "\"pid\": 4294967295, \"sortIndex\": 7, \"attributes\": "
                                "{\"title\": \"Shopping\", \"bytes\": [97, 98, 0], \"size\": [640, 480], "
                                "\"tags\": [\"x\", \"y\"], \"more\": {\"deep\": [true]}, \"path\": \"/a\", "
                                "\"big\": -4294967297}}]")
            .array();
    QCOMPARE(QJsonDocument::fromJson(result.output.toUtf8()).array(), expected);
}

void TelvaroctlTest::viewsThatCannotBeReadAreAFailure()
{
    mService.setViews(QStringLiteral("'none'"));
    const Result result = telvaroctl({QStringLiteral("views")});
    QCOMPARE(result.status, 1);
    QCOMPARE(result.output, QString());
    QCOMPARE(result.errors, message("Unable to parse dbus-reply to dbus-argument"));
}

void TelvaroctlTest::currentShowsTheCurrentView()
{
    setTwoViews();
    const Result result = telvaroctl({QStringLiteral("current")});
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, QStringLiteral("u-1  notes 0  Shopping\n"));
    const Result json = telvaroctl({QStringLiteral("current"), QStringLiteral("--json")});
    QCOMPARE(QJsonDocument::fromJson(json.output.toUtf8()).object().value(QLatin1String("uuid")).toString(),
             QStringLiteral("u-1"));
}

void TelvaroctlTest::currentFailsWhereNoViewIsCurrent()
{
    const Result result = telvaroctl({QStringLiteral("current")});
    QCOMPARE(result.status, 1);
    QCOMPARE(result.output, QString());
    QCOMPARE(result.errors, message("current view not found in all views list"));
}

void TelvaroctlTest::switchSendsTheUuidAndNothingElse()
{
    const Result result = telvaroctl({QStringLiteral("switch"), QStringLiteral("u-2")});
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, QString());
    QCOMPARE(result.errors, QString());
    QCOMPARE(takeWrites(), QStringList(taskSwitcherSet("u-2")));
}

void TelvaroctlTest::switchReportsTheServicesError()
{
    mService.scriptProperty(
        QStringLiteral("Set"), QStringLiteral("/taskswitcher"), QStringLiteral("currentView"),
        {Behaviour::error(QStringLiteral("org.freedesktop.DBus.Error.InvalidArgs"), QStringLiteral("no such view"))});
    const Result result = telvaroctl({QStringLiteral("switch"), QStringLiteral("u-9")});
    QCOMPARE(result.status, 1);
    QCOMPARE(result.errors, message("org.freedesktop.DBus.Error.InvalidArgs: no such view"));
}

void TelvaroctlTest::switchRefusesAnEmptyUuid()
{
    const Result result = telvaroctl({QStringLiteral("switch"), QString()});
    QCOMPARE(result.status, 1);
    QCOMPARE(result.errors, message("org.freedesktop.DBus.Error.InvalidArgs: uuid should not be empty"));
    QCOMPARE(takeWrites(), QStringList());
}

void TelvaroctlTest::switchByApplicationAndIndex()
{
    setTwoViews();
    QCOMPARE(telvaroctl(words("switch --app notes --index 1")).status, 0);
    QCOMPARE(takeWrites(), QStringList(taskSwitcherSet("u-2")));
    const Result missing = telvaroctl(words("switch --app notes --index 2"));
    QCOMPARE(missing.status, 1);
    QVERIFY(missing.errors.contains(QLatin1String("app Id and sortIndex not matched with a view")));
    QCOMPARE(takeWrites(), QStringList());
}

void TelvaroctlTest::nextAndPreviousStepAndWrap()
{
    mService.setStateful(true);
    setTwoViews();
    QCOMPARE(telvaroctl({QStringLiteral("next")}).status, 0);
    QCOMPARE(telvaroctl({QStringLiteral("next")}).status, 0);
    QCOMPARE(telvaroctl({QStringLiteral("previous")}).status, 0);
    QCOMPARE(takeWrites(), QStringList({taskSwitcherSet("u-2"), taskSwitcherSet("u-1"), taskSwitcherSet("u-2")}));
}

void TelvaroctlTest::nextFailsWithoutViews()
{
    const Result result = telvaroctl({QStringLiteral("next")});
    QCOMPARE(result.status, 1);
    QVERIFY(result.errors.endsWith(message("iterate view failed: no view is in the view list with current appID")));
}

void TelvaroctlTest::processesAreFoundBroughtToTheTopAndAskedForByName()
{
    // A program under a name that no other process has.
    QTemporaryDir directory;
    const QString name = QStringLiteral("tctl-%1").arg(QFileInfo(directory.path()).fileName().right(6));
    const QString program = directory.filePath(name);
    QVERIFY(QFile::copy(ChildProcess::serviceProgram(QStringLiteral("idle-process")), program));
    ChildProcess process;
    process.run(program);
    const auto pid = static_cast<uint32_t>(process.processId());
    mService.setStateful(true);
    mService.setViews(ValueText::views({view("u-1", "notes", 1, 0, "Other"), view("u-2", "idle", pid, 0, "Idle")}));
    mService.setCurrentView(QStringLiteral("u-1"));

    const Result found = telvaroctl({QStringLiteral("pid"), name});
    QCOMPARE(found.status, 0);
    QCOMPARE(found.output, QStringLiteral("%1\n").arg(pid));
    const Result json = telvaroctl({QStringLiteral("pid"), QStringLiteral("--json"), name});
    QCOMPARE(json.status, 0);
    QCOMPARE(json.output, QStringLiteral("{\n    \"pid\": %1\n}\n").arg(pid));

    QCOMPARE(telvaroctl({QStringLiteral("is-current"), name}).status, 1);
    QCOMPARE(telvaroctl({QStringLiteral("top"), name}).status, 0);
    QCOMPARE(takeWrites(), QStringList(taskSwitcherSet("u-2")));
    const Result isCurrent = telvaroctl({QStringLiteral("is-current"), name});
    QCOMPARE(isCurrent.status, 0);
    QCOMPARE(isCurrent.output, QString());
    process.end();

    for (const char* command : {"pid", "top", "is-current"}) {
        const Result missing = telvaroctl({QString::fromUtf8(command), name});
        QCOMPARE(missing.status, 1);
        QCOMPARE(missing.output, QString());
        QVERIFY(
            missing.errors.startsWith(QStringLiteral("telvaroctl: Unable to find process with name \"%1\"").arg(name)));
    }
    QCOMPARE(takeWrites(), QStringList());
}

void TelvaroctlTest::topSaysWhenTheServiceDidNotFollow()
{
    QTemporaryDir directory;
    const QString name = QStringLiteral("tctl-%1").arg(QFileInfo(directory.path()).fileName().right(6));
    const QString program = directory.filePath(name);
    QVERIFY(QFile::copy(ChildProcess::serviceProgram(QStringLiteral("idle-process")), program));
    ChildProcess process;
    process.run(program);
    const auto pid = static_cast<uint32_t>(process.processId());
    // The service accepts the write but does not change.
    mService.setViews(ValueText::views({view("u-1", "notes", 1, 0, "Other"), view("u-2", "idle", pid, 0, "Idle")}));
    mService.setCurrentView(QStringLiteral("u-1"));
    const Result result = telvaroctl({QStringLiteral("top"), name});
    QCOMPARE(result.status, 1);
    QCOMPARE(result.errors,
             QStringLiteral("telvaroctl: the service did not make a view of '%1' the current one\n").arg(name));
}

void TelvaroctlTest::screenSaverIsShown()
{
    const Result result = telvaroctl({QStringLiteral("screensaver")});
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, QStringLiteral("screen saver on, not active, timeout 300 s\n"));
    const Result json = telvaroctl(words("screensaver status --json"));
    QCOMPARE(QJsonDocument::fromJson(json.output.toUtf8()).object(),
             QJsonObject({{QStringLiteral("active"), false},
                          {QStringLiteral("enabled"), true},
                          {QStringLiteral("timeoutSeconds"), 300}}));
}

void TelvaroctlTest::screenSettingsAreWrittenAndReadBack_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("write");
    QTest::newRow("screensaver on") << words("screensaver on") << screenSet("screenSaverEnabled", "true");
    QTest::newRow("screensaver off") << words("screensaver off") << screenSet("screenSaverEnabled", "false");
    QTest::newRow("timeout") << words("screensaver timeout 7") << screenSet("screenSaverTimeoutSeconds", "7");
    QTest::newRow("negative timeout") << words("screensaver -- timeout -7")
                                      << screenSet("screenSaverTimeoutSeconds", "-7");
    QTest::newRow("landscape") << words("orientation landscape") << screenSet("orientation", "'0'");
    QTest::newRow("portrait") << words("orientation portrait") << screenSet("orientation", "'90'");
    QTest::newRow("inverse portrait") << words("orientation inverse-portrait") << screenSet("orientation", "'270'");
    QTest::newRow("degrees") << words("orientation 180") << screenSet("orientation", "'180'");
    QTest::newRow("full screen") << words("fullscreen on") << screenSet("fullScreen", "true");
    QTest::newRow("status bar") << words("fullscreen off") << screenSet("fullScreen", "false");
}

void TelvaroctlTest::screenSettingsAreWrittenAndReadBack()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, write);
    mService.setStateful(true);
    const Result result = telvaroctl(arguments);
    QCOMPARE(result.errors, QString());
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, QString());
    QCOMPARE(takeWrites(), QStringList(write));
}

void TelvaroctlTest::aScreenSettingThatIsRefusedIsAFailure()
{
    mService.scriptProperty(
        QStringLiteral("Set"), QStringLiteral("/screen"), QStringLiteral("orientation"),
        {Behaviour::error(QStringLiteral("org.freedesktop.DBus.Error.InvalidArgs"), QStringLiteral("no"))});
    const Result result = telvaroctl(words("orientation 45"));
    QCOMPARE(result.status, 1);
    QCOMPARE(result.errors, message("the service did not accept '45': orientation is '0'"));
}

void TelvaroctlTest::orientationAndFullScreenAreShown()
{
    QCOMPARE(telvaroctl({QStringLiteral("orientation")}).output, QStringLiteral("0\n"));
    QCOMPARE(telvaroctl({QStringLiteral("fullscreen")}).output, QStringLiteral("off\n"));
    QCOMPARE(QJsonDocument::fromJson(telvaroctl(words("orientation --json")).output.toUtf8()).object(),
             QJsonObject({{QStringLiteral("orientation"), QStringLiteral("0")}}));
    QCOMPARE(QJsonDocument::fromJson(telvaroctl(words("fullscreen --json")).output.toUtf8()).object(),
             QJsonObject({{QStringLiteral("fullScreen"), false}}));
}

void TelvaroctlTest::overlayIsShownAndHidden()
{
    QCOMPARE(telvaroctl({QStringLiteral("overlay"), QStringLiteral("show"), QStringLiteral("Please wait")}).status, 0);
    QCOMPARE(telvaroctl({QStringLiteral("overlay"), QStringLiteral("show"), QString()}).status, 0);
    QCOMPARE(telvaroctl(words("overlay hide")).status, 0);
    QCOMPARE(takeWrites(),
             QStringList({QStringLiteral("/globaloverlay de.Telvaro.globaloverlay.Show s('Please wait')"),
                          QStringLiteral("/globaloverlay de.Telvaro.globaloverlay.Show s('')"),
                          QStringLiteral("/globaloverlay de.Telvaro.globaloverlay.Hide ()")}));
}

void TelvaroctlTest::notifySendsIconTextsAndActions()
{
    const Result result =
        telvaroctl({QStringLiteral("notify"), QStringLiteral("--icon"), QStringLiteral("mail"),
                    QStringLiteral("--action"), QStringLiteral("open=Open = now"), QStringLiteral("--action"),
                    QStringLiteral("later="), QStringLiteral("Mail"), QStringLiteral("From home")});
    QCOMPARE(result.status, 0);
    QCOMPARE(result.errors, QString());
    QCOMPARE(takeWrites(),
             QStringList(QStringLiteral("/org/freedesktop/Notifications org.freedesktop.Notifications.Notify "
                                        "susssasa{sv}i('', uint32 0, 'mail', 'Mail', 'From home', ['open', 'Open = "
                                        "now', 'later', ''], {'action-icons': <true>}, 0)")));
}

void TelvaroctlTest::screenShotPrintsTheAnswerAndSendsAnAbsolutePath()
{
    QTemporaryDir directory;
    const Result result = telvaroctl({QStringLiteral("screenshot"), QStringLiteral(".")}, directory.path());
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, QStringLiteral("/shots/1.png\n"));
    QCOMPARE(takeWrites(),
             QStringList(QStringLiteral("/screenshot de.Telvaro.screenshot.ScreenShot s('%1')")
                             .arg(QFileInfo(directory.path()).canonicalFilePath())));
}

void TelvaroctlTest::screenShotPrintsTheAnswerAsJson()
{
    const Result result = telvaroctl(words("screenshot --json /"));
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, QStringLiteral("{\n    \"path\": \"/shots/1.png\"\n}\n"));
}

void TelvaroctlTest::screenShotIntoNowhereIsAFailure()
{
    QCOMPARE(telvaroctl(words("screenshot --json /no/such/directory")).output, QString());
    const Result result = telvaroctl(words("screenshot /no/such/directory"));
    QCOMPARE(result.status, 1);
    QCOMPARE(result.output, QString());
    QCOMPARE(result.errors,
             message("Unable to capture screenshot, store directory does not exists "
                     "\"/no/such/directory\""));
    QCOMPARE(takeWrites(), QStringList());
}

void TelvaroctlTest::watchPrintsEachSignalUntilInterrupted_data()
{
    QTest::addColumn<bool>("asJson");
    QTest::addColumn<int>("interrupt");
    QTest::newRow("text, SIGINT") << false << SIGINT;
    QTest::newRow("json, SIGTERM") << true << SIGTERM;
}

void TelvaroctlTest::watchPrintsEachSignalUntilInterrupted()
{
    QFETCH(bool, asJson);
    QFETCH(int, interrupt);
    setTwoViews();
    ChildProcess watch;
    startWatch(watch, words(asJson ? "watch --json" : "watch"));

    const QString taskSwitcherPath = QStringLiteral("/taskswitcher");
    const QString taskSwitcher = QStringLiteral("de.Telvaro.taskswitcher");
    emitViews({view("u-2", "notes", 4711, 1, "Recipes")});
    mService.emitSignal(
        ServiceSignal::propertiesChanged(taskSwitcherPath, taskSwitcher, QStringLiteral("{'currentView': <'u-2'>}")));
    // What is as it was is no change.
    mService.emitSignal(
        ServiceSignal::propertiesChanged(taskSwitcherPath, taskSwitcher, QStringLiteral("{'currentView': <'u-2'>}")));
    mService.emitSignal(ServiceSignal::propertiesChanged(
        QStringLiteral("/screen"), QStringLiteral("de.Telvaro.screen"),
        QStringLiteral("{'screenSaverActive': <true>, 'orientation': <'90'>, 'fullScreen': <true>}")));

    const QStringList expected = asJson
        ? QStringList({QStringLiteral("{\"signal\":\"viewsChanged\"}"),
                       QStringLiteral("{\"signal\":\"currentViewChanged\",\"value\":\"u-2\"}"),
                       QStringLiteral("{\"signal\":\"screenSaverActiveChanged\",\"value\":true}"),
                       QStringLiteral("{\"signal\":\"screenOrientationChanged\",\"value\":\"90\"}"),
                       QStringLiteral("{\"signal\":\"fullScreenChanged\",\"value\":true}")})
        : QStringList({QStringLiteral("viewsChanged"), QStringLiteral("currentViewChanged u-2"),
                       QStringLiteral("screenSaverActiveChanged true"), QStringLiteral("screenOrientationChanged 90"),
                       QStringLiteral("fullScreenChanged true")});
    for (const QString& line : expected) {
        QCOMPARE(QString::fromUtf8(watch.readOutputLine()), line);
    }
    QCOMPARE(::kill(static_cast<pid_t>(watch.processId()), interrupt), 0);
    QVERIFY(watch.waitForFinished(ChildProcess::cDeadline));
    QCOMPARE(watch.exitStatus(), QProcess::NormalExit);
    QCOMPARE(watch.exitCode(), 0);
    QCOMPARE(QString::fromUtf8(watch.readAllStandardOutput()), QString());
}

void TelvaroctlTest::watchFollowsTheService_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("gone");
    QTest::addColumn<QString>("back");
    QTest::addColumn<QString>("changed");
    QTest::newRow("text") << words("watch") << "serviceGone"
                          << "serviceBack"
                          << "viewsChanged";
    QTest::newRow("json") << words("watch --json") << "{\"signal\":\"serviceGone\"}"
                          << "{\"signal\":\"serviceBack\"}"
                          << "{\"signal\":\"viewsChanged\"}";
}

void TelvaroctlTest::watchFollowsTheService()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, gone);
    QFETCH(QString, back);
    QFETCH(QString, changed);
    setTwoViews();
    auto absence = releaseName();
    ChildProcess watch;
    startWatch(watch, arguments);
    for (int round = 0; round < 2; ++round) {
        absence = {};
        QCOMPARE(QString::fromUtf8(watch.readOutputLine()), back);
        emitViews({view("u-2", "notes", 4711, 1, "Recipes")});
        QCOMPARE(QString::fromUtf8(watch.readOutputLine()), changed);
        absence = releaseName();
        QCOMPARE(QString::fromUtf8(watch.readOutputLine()), gone);
    }
}

void TelvaroctlTest::watchNeedsABus()
{
    const QByteArray ownBus = PrivateBus::address().toUtf8();
    PrivateBus::setAddress("unix:path=/nonexistent");
    const Result atOnce = telvaroctl({QStringLiteral("watch")});
    ChildProcess watch;
    {
        PrivateBus bus;
        startWatch(watch, words("watch"));
        PrivateBus::setAddress(ownBus);
        bus.kill();
        QVERIFY(watch.waitForFinished(ChildProcess::cDeadline));
    }
    QCOMPARE(atOnce.status, 1);
    QCOMPARE(atOnce.errors, message("there is no bus"));
    QCOMPARE(watch.exitCode(), 1);
    QCOMPARE(QString::fromUtf8(watch.readAllStandardError()), message("there is no bus"));
    QCOMPARE(QString::fromUtf8(watch.readAllStandardOutput()), QString());
}

TELVARO_TEST_MAIN(TelvaroctlTest)

#include "TelvaroctlTest.moc"
