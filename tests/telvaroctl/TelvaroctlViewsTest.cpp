// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "TelvaroctlFixture.h"
#include "TestMain.h"
#include "ValueText.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcessEnvironment>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <cstdlib>

#include <fcntl.h>
#include <sys/ioctl.h>

class TelvaroctlViewsTest : public TelvaroctlFixture
{
    Q_OBJECT

private Q_SLOTS:
    void viewsAreATable();
    void noViewsAreAnEmptyTableAndNoFailure();
    void aTitleCannotSteerTheTerminal();
    void joinersOfATitleArePrinted();
    void aTitleIsCutAtTheColumnsOfTheTerminalAndNotWithinACharacter();
    void viewsAsJsonCarryEveryFieldAndNestedAttributes();
    void viewsThatCannotBeReadAreAFailure();
    void viewsFollowATemplate();
    void currentShowsTheCurrentView();
    void currentFailsWhereNoViewIsCurrent();
    void switchSendsTheUuidAndNothingElse();
    void switchReportsTheServicesError();
    void switchByApplicationAndIndex();
    void switchByApplicationAloneTakesTheLowestIndexOrTheCurrentView();
    void nextAndPreviousStepAndWrap();
    void nextFailsWithoutViews();
    void processesAreFoundBroughtToTheTopAndAskedForByName();
    void processesAreNotFoundWithoutPidofAndNotByItsOptions();
    void topSaysWhenTheServiceDidNotFollow();
};

namespace {

/// Returns the path of an idle program in the directory, under a name that no other process has.
QString copyIdleProgram(const QTemporaryDir& directory)
{
    const QString program =
        directory.filePath(QStringLiteral("tctl-%1").arg(QFileInfo(directory.path()).fileName().right(6)));
    QFile::copy(ChildProcess::serviceProgram(QStringLiteral("idle-process")), program);
    return program;
}

} // namespace

void TelvaroctlViewsTest::viewsAreATable()
{
    setTwoViews();
    const Result result = telvaroctl("views");
    QCOMPARE(result.status, 0);
    QCOMPARE(result.errors, QString());
    QCOMPARE(result.output,
             QStringLiteral("UUID  APPLICATION  INDEX  PID   CURRENT  TITLE\n"
                            "u-1   notes        0      4711  *        Shopping\n"
                            "u-2   notes        1      4711           Recipes\n"));
}

void TelvaroctlViewsTest::noViewsAreAnEmptyTableAndNoFailure()
{
    const Result result = telvaroctl("views");
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, QStringLiteral("UUID  APPLICATION  INDEX  PID  CURRENT  TITLE\n"));
    QCOMPARE(telvaroctl("views --json").output, QStringLiteral("[\n]\n"));
}

void TelvaroctlViewsTest::aTitleCannotSteerTheTerminal()
{
    mService.setViews(ValueText::views({view("u-1", "notes", 1, 0,
                                             "a\x1b[2Jb\nc\xe2\x80\xae"
                                             "d")}));
    const QString output = telvaroctl("views").output;
    QVERIFY2(output.endsWith(QString::fromUtf8("a\xef\xbf\xbd[2Jb\xef\xbf\xbd"
                                               "c\xef\xbf\xbd"
                                               "d\n")),
             qPrintable(output));
}

void TelvaroctlViewsTest::joinersOfATitleArePrinted()
{
    const QString title = QStringLiteral("a\u200cb\u200dc");
    mService.setViews(ValueText::views({view("u-1", "notes", 1, 0, title.toUtf8().constData())}));
    QCOMPARE(telvaroctl("views --format {{title}}").output, title + QLatin1Char('\n'));
}

void TelvaroctlViewsTest::aTitleIsCutAtTheColumnsOfTheTerminalAndNotWithinACharacter()
{
    const QString emoji = QString::fromUtf8("\xf0\x9f\x98\x80");
    mService.setViews(ValueText::views({view("u-1", "n\xe4\xb8\xad", 1, 0, emoji.repeated(60).toUtf8().constData()),
                                        view("u-2", "notes", 2, 0, "b")}));
    QFile terminal;
    QVERIFY(terminal.open(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC), QIODevice::ReadOnly | QIODevice::Unbuffered,
                          QFile::AutoCloseHandle));
    QVERIFY(::grantpt(terminal.handle()) == 0 && ::unlockpt(terminal.handle()) == 0);
    const winsize size = {24, 80, 0, 0};
    QCOMPARE(::ioctl(terminal.handle(), TIOCSWINSZ, &size), 0);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    ChildProcess process;
    process.setProcessEnvironment(environment);
    process.setStandardOutputFile(QString::fromUtf8(::ptsname(terminal.handle())));
    start(process, words("views"));
    QCOMPARE(finish(process).status, 0);
    const QStringList lines = QString::fromUtf8(terminal.read(10000)).split(QStringLiteral("\r\n"));
    QCOMPARE(lines.at(1),
             QString::fromUtf8("u-1   n\xe4\xb8\xad          0      1             ") + emoji.repeated(19)
                 + QChar(0x2026));
    QCOMPARE(lines.at(2), QStringLiteral("u-2   notes        0      2             b"));
}

void TelvaroctlViewsTest::viewsAsJsonCarryEveryFieldAndNestedAttributes()
{
    mService.setViews(QStringLiteral(
        "[('u-1', 'notes', 'one', 'two', 'three', 'four', uint32 4294967295, uint32 7, {'title': <'Shopping'>, "
        "'bytes': <b'ab'>, 'size': <(640, 480)>, 'tags': <['x', 'y']>, 'more': <{'deep': <[true]>}>, "
        "'path': <objectpath '/a'>, 'big': <int64 -4294967297>})]"));
    const Result result = telvaroctl("views --json");
    QCOMPARE(result.status, 0);
    const QJsonArray expected =
        QJsonDocument::fromJson("[{\"uuid\": \"u-1\", \"appId\": \"notes\", \"info1\": \"one\", "
                                "\"info2\": \"two\", \"info3\": \"three\", \"info4\": \"four\", "
                                "\"title\": \"Shopping\", \"current\": false, "
                                "\"pid\": 4294967295, \"sortIndex\": 7, \"attributes\": "
                                "{\"title\": \"Shopping\", \"bytes\": [97, 98, 0], \"size\": [640, 480], "
                                "\"tags\": [\"x\", \"y\"], \"more\": {\"deep\": [true]}, \"path\": \"/a\", "
                                "\"big\": -4294967297}}]")
            .array();
    QCOMPARE(QJsonDocument::fromJson(result.output.toUtf8()).array(), expected);
}

void TelvaroctlViewsTest::viewsThatCannotBeReadAreAFailure()
{
    mService.setViews(QStringLiteral("'none'"));
    const Result result = telvaroctl("views");
    QCOMPARE(result.status, 1);
    QCOMPARE(result.output, QString());
    QCOMPARE(result.errors,
             message("org.freedesktop.DBus.Error.InvalidSignature: The property \"views\" has no value of "
                     "its type"));
}

void TelvaroctlViewsTest::viewsFollowATemplate()
{
    mService.setViews(QStringLiteral(
        "[('u-1', 'notes', 'one', '', '', '', uint32 4711, uint32 0, {'title': <'Shop\x1bping'>, 'size': <(640, "
        "480)>}), ('u-2', 'maps', '', '', '', '', uint32 1, uint32 3, @a{sv} {})]"));
    mService.setCurrentView(QStringLiteral("u-1"));
    const Result result = telvaroctl({QStringLiteral("views"), QStringLiteral("--format"),
                                      QStringLiteral("{{ uuid }}\\t{{appId}}/{{sortIndex}} {{title}} {{current}} "
                                                     "{{attributes.size}}{{attributes.none}}\\\\n{}")});
    QCOMPARE(result.errors, QString());
    QCOMPARE(result.output,
             QString::fromUtf8("u-1\tnotes/0 Shop\xef\xbf\xbdping true [640,480]\\n{}\n"
                               "u-2\tmaps/3  false \\n{}\n"));
    QCOMPARE(telvaroctl("current --format {{pid}}").output, QStringLiteral("4711\n"));
}

void TelvaroctlViewsTest::currentShowsTheCurrentView()
{
    setTwoViews();
    const Result result = telvaroctl("current");
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, QStringLiteral("u-1  notes  0  Shopping\n"));
    const Result json = telvaroctl("current --json");
    QCOMPARE(QJsonDocument::fromJson(json.output.toUtf8()).object().value(QLatin1String("uuid")).toString(),
             QStringLiteral("u-1"));
}

void TelvaroctlViewsTest::currentFailsWhereNoViewIsCurrent()
{
    const Result result = telvaroctl("current");
    QCOMPARE(result.status, 1);
    QCOMPARE(result.output, QString());
    QCOMPARE(result.errors, message("no view is current"));
}

void TelvaroctlViewsTest::switchSendsTheUuidAndNothingElse()
{
    const Result result = telvaroctl("switch u-2");
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, QString());
    QCOMPARE(result.errors, QString());
    QCOMPARE(takeWrites(), QStringList(taskSwitcherSet("u-2")));
}

void TelvaroctlViewsTest::switchReportsTheServicesError()
{
    mService.scriptProperty(
        QStringLiteral("Set"), QStringLiteral("/taskswitcher"), QStringLiteral("currentView"),
        {Behaviour::error(QStringLiteral("org.freedesktop.DBus.Error.InvalidArgs"), QStringLiteral("no such view"))});
    const Result result = telvaroctl("switch u-9");
    QCOMPARE(result.status, 1);
    QCOMPARE(result.errors, message("org.freedesktop.DBus.Error.InvalidArgs: no such view"));
}

void TelvaroctlViewsTest::switchByApplicationAndIndex()
{
    setTwoViews();
    QCOMPARE(telvaroctl("switch --app notes --index 1").status, 0);
    QCOMPARE(takeWrites(), QStringList(taskSwitcherSet("u-2")));
    const Result missing = telvaroctl("switch --app notes --index 2");
    QCOMPARE(missing.status, 1);
    QCOMPARE(missing.errors, message("the application 'notes' has no view with the index 2"));
    QCOMPARE(takeWrites(), QStringList());
}

void TelvaroctlViewsTest::switchByApplicationAloneTakesTheLowestIndexOrTheCurrentView()
{
    mService.setViews(ValueText::views(
        {view("u-3", "notes", 1, 3, "Third"), view("u-1", "notes", 1, 1, "First"), view("m-1", "maps", 2, 0, "Map")}));
    mService.setCurrentView(QStringLiteral("m-1"));
    const Result several = telvaroctl("switch --app notes");
    QCOMPARE(several.status, 0);
    QCOMPARE(several.errors, message("'notes' has 2 views; this is the one with the index 1"));
    QCOMPARE(takeWrites(), QStringList(taskSwitcherSet("u-1")));

    mService.setCurrentView(QStringLiteral("u-3"));
    QCOMPARE(telvaroctl("switch --app notes").errors, message("'notes' has 2 views; this is the one with the index 3"));
    QCOMPARE(takeWrites(), QStringList(taskSwitcherSet("u-3")));

    const Result one = telvaroctl("switch --app maps");
    QCOMPARE(one.errors, QString());
    QCOMPARE(takeWrites(), QStringList(taskSwitcherSet("m-1")));
    const Result none = telvaroctl("switch --app clock");
    QCOMPARE(none.status, 1);
    QCOMPARE(none.errors, message("the application 'clock' has no view"));
    QCOMPARE(takeWrites(), QStringList());
}

void TelvaroctlViewsTest::nextAndPreviousStepAndWrap()
{
    mService.setStateful(true);
    setTwoViews();
    QCOMPARE(telvaroctl("next").status, 0);
    QCOMPARE(telvaroctl("next").status, 0);
    QCOMPARE(telvaroctl("previous").status, 0);
    QCOMPARE(takeWrites(), QStringList({taskSwitcherSet("u-2"), taskSwitcherSet("u-1"), taskSwitcherSet("u-2")}));
}

void TelvaroctlViewsTest::nextFailsWithoutViews()
{
    const Result result = telvaroctl("next");
    QCOMPARE(result.status, 1);
    QCOMPARE(result.errors, message("no view is current"));
}

void TelvaroctlViewsTest::processesAreFoundBroughtToTheTopAndAskedForByName()
{
    QTemporaryDir directory;
    const QString program = copyIdleProgram(directory);
    QVERIFY(QFile::exists(program));
    const QString name = QFileInfo(program).fileName();
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

    ChildProcess other;
    other.run(program);
    const Result several = telvaroctl({QStringLiteral("top"), name});
    QCOMPARE(several.status, 1);
    const QString list = QStringLiteral("several processes are called '%1': %2 %3").arg(name);
    const auto otherPid = static_cast<uint32_t>(other.processId());
    QVERIFY2(several.errors == message(list.arg(otherPid).arg(pid))
                 || several.errors == message(list.arg(pid).arg(otherPid)),
             qPrintable(several.errors));
    // The one with the current view is among them.
    QCOMPARE(telvaroctl({QStringLiteral("is-current"), name}).status, 0);
    mService.setCurrentView(QStringLiteral("u-1"));
    QCOMPARE(telvaroctl({QStringLiteral("is-current"), name}).status, 1);
    other.end();
    mService.setViews(ValueText::views({view("u-1", "notes", 1, 0, "Other")}));
    QCOMPARE(telvaroctl({QStringLiteral("top"), name}).errors,
             message(QStringLiteral("the process '%1' (%2) has no view").arg(name).arg(pid)));
    process.end();

    for (const char* command : {"pid", "top", "is-current"}) {
        const Result missing = telvaroctl({QString::fromUtf8(command), name});
        QCOMPARE(missing.status, 1);
        QCOMPARE(missing.output, QString());
        QCOMPARE(missing.errors, message(QStringLiteral("no process is called '%1'").arg(name)));
    }
    QCOMPARE(takeWrites(), QStringList());
}

void TelvaroctlViewsTest::processesAreNotFoundWithoutPidofAndNotByItsOptions()
{
    ChildProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    const QTemporaryDir programs;
    // What starts telvaroctl where the processor is emulated.
    const QString emulator = QStringLiteral("qemu-arm-static");
    QFile::link(QStandardPaths::findExecutable(emulator), programs.filePath(emulator));
    environment.insert(QStringLiteral("PATH"), programs.path());
    process.setProcessEnvironment(environment);
    start(process, words("pid bash"));
    const Result none = finish(process);
    QCOMPARE(none.errors, message("there is no program pidof, which finds processes"));
    QCOMPARE(none.status, 1);
    const Result option = telvaroctl("pid -- -h");
    QCOMPARE(option.errors, message("pidof takes '-h' for an option"));
    QCOMPARE(option.status, 1);
}

void TelvaroctlViewsTest::topSaysWhenTheServiceDidNotFollow()
{
    QTemporaryDir directory;
    const QString program = copyIdleProgram(directory);
    QVERIFY(QFile::exists(program));
    const QString name = QFileInfo(program).fileName();
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

TELVARO_TEST_MAIN(TelvaroctlViewsTest)

#include "TelvaroctlViewsTest.moc"
