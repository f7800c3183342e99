// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ChildProcess.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusReply>
#include <QDir>
#include <QFile>
#include <QProcessEnvironment>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <stdexcept>

#include <sys/types.h>

namespace {

struct Result
{
    int status;
    QString output;
    QString errors;
};

void start(ChildProcess& process, const QStringList& arguments)
{
    process.setProcessChannelMode(QProcess::SeparateChannels);
    process.run(QStringLiteral(TELVARO_PROGRAMS "/telvaro-session"), arguments);
}

Result finish(ChildProcess& process)
{
    process.waitForFinished(ChildProcess::cDeadline);
    const bool ended = process.state() == QProcess::NotRunning && process.exitStatus() == QProcess::NormalExit;
    return {ended ? process.exitCode() : -1, QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

Result session(const QStringList& arguments)
{
    ChildProcess process;
    start(process, arguments);
    return finish(process);
}

Result inSession(const QStringList& command)
{
    return session(QStringList{QStringLiteral("--headless"), QStringLiteral("--")} + command);
}

QStringList shell(const char* script)
{
    return {QStringLiteral("sh"), QStringLiteral("-c"), QString::fromUtf8(script)};
}

/// Runs a shell outside of any session.
Result inShell(const QString& script)
{
    ChildProcess process;
    process.setProcessChannelMode(QProcess::SeparateChannels);
    process.run(QStringLiteral("sh"), {QStringLiteral("-c"), script});
    return finish(process);
}

Result sessionOnDisplay(const QString& display)
{
    ChildProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
    environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
    environment.insert(QStringLiteral("DISPLAY"), display);
    process.setProcessEnvironment(environment);
    start(process, {QStringLiteral("echo"), QStringLiteral("started")});
    return finish(process);
}

void write(const QString& path, const QByteArray& content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size()) {
        throw std::runtime_error("cannot write " + path.toStdString());
    }
}

QByteArray read(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        throw std::runtime_error("cannot read " + path.toStdString());
    }
    return file.readAll();
}

bool isRunning(const QString& processId)
{
    return ::kill(static_cast<pid_t>(processId.toInt()), 0) == 0;
}

/// Runs a session whose parent does not collect it when it has ended.
void startWithNegligentParent(ChildProcess& parent, const QString& environmentFile)
{
    parent.run(QStringLiteral("sh"),
               {QStringLiteral("-c"),
                QStringLiteral(TELVARO_PROGRAMS "/telvaro-session --headless --env-file %1 & exec sleep 1000")
                    .arg(environmentFile)});
    const auto exists = [&environmentFile] {
        return QFile::exists(environmentFile);
    };
    if (!QTest::qWaitFor(exists, ChildProcess::cDeadline)) {
        throw std::runtime_error("the session does not start");
    }
}

/// A compositor that prints nothing.
const char* const cNeverReady =
    "cd \"${0%/*}\"; echo $$ $XDG_RUNTIME_DIR > started.new; mv started.new started; exec sleep 1000";

/// Waits until `program` has started the compositor cNeverReady. Returns its process and its runtime directory.
QStringList startedBeside(const QString& program)
{
    const QString file = QFileInfo(program).dir().filePath(QStringLiteral("started"));
    const auto exists = [&file] {
        return QFile::exists(file);
    };
    if (!QTest::qWaitFor(exists, ChildProcess::cDeadline)) {
        throw std::runtime_error(program.toStdString() + " starts no compositor");
    }
    return QString::fromUtf8(read(file)).simplified().split(QLatin1Char(' '));
}

/// The bus of a running session, used from outside.
class SessionBus
{
public:
    explicit SessionBus(const QString& address)
        : mConnection(QDBusConnection::connectToBus(address, mName))
    {
    }

    ~SessionBus()
    {
        QDBusConnection::disconnectFromBus(mName);
    }

    Q_DISABLE_COPY(SessionBus)

    bool isConnected() const
    {
        return mConnection.isConnected();
    }

    pid_t compositor() const
    {
        return static_cast<pid_t>(mConnection.interface()->servicePid(QStringLiteral(TELVARO_SERVICE_NAME)).value());
    }

private:
    QString mName = QStringLiteral("session");
    QDBusConnection mConnection;
};

} // namespace

class SessionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theCommandIsPartOfTheSession();
    void theCommandHasTheSessionsInputAndOutput();
    void theExitStatusIsTheCommands();
    void whatTheCommandLeavesRunningIsTerminated_data();
    void whatTheCommandLeavesRunningIsTerminated();
    void aCommandThatIgnoresItsTerminationIsKilled();
    void aCommandThatCannotBeStartedIsSaid();
    void optionsAfterTheCommandAreTheCommands();
    void helpAndVersion();
    void wrongUsageIsSaid();
    void whatTheCompositorRefusesIsWrongUsage();
    void aCompositorThatDoesNotStartIsAFailure();
    void aCompositorThatNeverEndsItsLineIsAFailure();
    void theReasonOfABusThatDoesNotStartIsSaid();
    void aSignalEndsASessionThatStarts_data();
    void aSignalEndsASessionThatStarts();
    void theScriptIsPlayedWhenTheCommandBegins();
    void aScriptThatIsWrongIsWrongUsage();
    void aStepThatCannotBeTakenEndsTheSession();
    void aScriptEndsTheSessionWithItsStatus();
    void theToolTapsAndTypes();
    void theToolSaysWhatItCannotDo_data();
    void theToolSaysWhatItCannotDo();
    void theToolTakesStepsOfAScript();
    void theToolTakesNoStepsOfAServiceThatHasNone();
    void theSizeIsTheOutputs();
    void theCompositorsOtherOptionsArePassedOn();
    void nothingIsLeftBehind();
    void aTerminatedSessionEndsItsCommand();
    void aSessionWithoutACommandTellsItsEnvironmentAndRunsUntilInterrupted();
    void aSessionInTheBackgroundIsReadyWhenItsCallerReturns();
    void aSessionInTheBackgroundRunsItsCommand();
    void aSessionInTheBackgroundEndsWithItsCommand();
    void aSessionInTheBackgroundKeepsNoDescriptorOfItsCaller();
    void aSessionThatCannotStartInTheBackgroundIsSaidAtOnce();
    void aSessionThatCannotStartInTheBackgroundLeavesTheFilesThere();
    void aSessionInTheBackgroundThatStartsEndsWithItsCaller();
    void aSessionInTheBackgroundNeedsAFileForItsEnvironment();
    void anEmptyNameOfTheEnvironmentFileIsWrongUsage();
    void theEnvironmentFileExistsOnlyDuringTheSession();
    void theEnvironmentFileOfARunningSessionIsRefused();
    void theEnvironmentFileOfAKilledSessionIsReplaced();
    void theEnvironmentFileHidesTheDesktopsDisplay();
    void valuesAreQuotedForTheShell();
    void onlyASessionCanBeEnded();
    void aSessionIsEndedOnce();
    void anEmptyDisplayIsNone();
    void aDisplayThatCannotBeOpenedIsAnsweredWithAdvice();
    void aMachineWithoutTheManifestIsSaid();
    void aCompositorThatDiesEndsTheSession();
    void aKilledSessionTakesEverythingWithIt();

private:
    QString script(const QByteArray& steps) const;
    QString path(const char* name) const;
    QString programWithCompositor(const QByteArray& compositor) const;

    QTemporaryDir mDirectory;
};

QString SessionTest::script(const QByteArray& steps) const
{
    QString file = path("script.json");
    write(file, steps);
    return file;
}

QString SessionTest::path(const char* name) const
{
    return mDirectory.filePath(QString::fromUtf8(name));
}

/// Returns a copy of the program in a folder of its own, where this shell script is the compositor.
QString SessionTest::programWithCompositor(const QByteArray& compositor) const
{
    const QDir directory(path(QTest::currentTestFunction()) + QLatin1Char('/')
                         + QString::fromUtf8(QTest::currentDataTag()));
    QString copy = directory.filePath(QStringLiteral("telvaro-session"));
    const QString script = directory.filePath(QStringLiteral("telvaro-compositor"));
    if (!directory.mkpath(QStringLiteral("."))
        || !QFile::copy(QStringLiteral(TELVARO_PROGRAMS "/telvaro-session"), copy)) {
        throw std::runtime_error("cannot write " + copy.toStdString());
    }
    write(script, "#!/bin/sh\n" + compositor);
    QFile::setPermissions(script, QFile::ReadOwner | QFile::ExeOwner);
    return copy;
}

void SessionTest::theCommandIsPartOfTheSession()
{
    const Result views =
        inSession({QStringLiteral(TELVARO_PROGRAMS "/telvaroctl"), QStringLiteral("views"), QStringLiteral("--json")});
    QCOMPARE(views.status, 0);
    QCOMPARE(views.output, QStringLiteral("[\n]\n"));

    const Result environment = inSession(
        shell("echo $QT_QPA_PLATFORM $XDG_SESSION_TYPE \"[$DISPLAY]\"; test -S $XDG_RUNTIME_DIR/$WAYLAND_DISPLAY"));
    QCOMPARE(environment.status, 0);
    QCOMPARE(environment.output, QStringLiteral("wayland wayland []\n"));
}

void SessionTest::theCommandHasTheSessionsInputAndOutput()
{
    ChildProcess process;
    start(process, {QStringLiteral("--headless"), QStringLiteral("cat")});
    process.write("a line\n");
    process.closeWriteChannel();
    const Result result = finish(process);
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, QStringLiteral("a line\n"));
    QCOMPARE(result.errors, QString());
}

void SessionTest::theExitStatusIsTheCommands()
{
    QCOMPARE(inSession(shell("exit 3")).status, 3);
    QCOMPARE(inSession(shell("kill -KILL $$")).status, 128 + SIGKILL);
}

void SessionTest::whatTheCommandLeavesRunningIsTerminated_data()
{
    QTest::addColumn<QString>("script");
    QTest::newRow("a child") << QStringLiteral("sleep 1000 & echo $!; exit 3");
    QTest::newRow("a child in a session of its own") << QStringLiteral("setsid sleep 1000 & echo $!; exit 3");
    QTest::newRow("a daemon") << QStringLiteral("(setsid sleep 1000 < /dev/null > /dev/null 2>&1 & echo $!); exit 3");
    QTest::newRow("a child that ignores it") << QStringLiteral("trap '' TERM; sleep 1000 & echo $!; exit 3");
}

void SessionTest::whatTheCommandLeavesRunningIsTerminated()
{
    QFETCH(const QString, script);
    const Result result = inSession({QStringLiteral("sh"), QStringLiteral("-c"), script});
    QCOMPARE(result.status, 3);
    QVERIFY2(result.output.toInt() > 0, qPrintable(result.output));
    QVERIFY(!isRunning(result.output));
}

void SessionTest::aCommandThatIgnoresItsTerminationIsKilled()
{
    ChildProcess process;
    start(process,
          QStringList{QStringLiteral("--headless")} + shell("trap '' TERM; echo $$; while :; do sleep 1000; done"));
    const QString command = QString::fromUtf8(process.readOutputLine());
    process.terminate();
    QCOMPARE(finish(process).status, 128 + SIGKILL);
    QVERIFY(!isRunning(command));
}

void SessionTest::aCommandThatCannotBeStartedIsSaid()
{
    const Result result = inSession({QStringLiteral("/no/such/program")});
    QCOMPARE(result.status, 127);
    QVERIFY2(result.errors.startsWith(QLatin1String("telvaro-session: cannot start /no/such/program: ")),
             qPrintable(result.errors));
}

void SessionTest::optionsAfterTheCommandAreTheCommands()
{
    const Result result =
        session(QStringList{QStringLiteral("--headless")} + shell("echo $0") + QStringList{QStringLiteral("--help")});
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, QStringLiteral("--help\n"));
}

void SessionTest::helpAndVersion()
{
    const Result help = session({QStringLiteral("--help")});
    QCOMPARE(help.status, 0);
    QVERIFY(help.output.startsWith(QLatin1String("Usage: telvaro-session ")));
    QVERIFY(help.output.simplified().contains(QLatin1String("SCRIPTS in telvaro-compositor(1)")));
    QVERIFY(!help.output.contains(QRegularExpression(QStringLiteral("[^\n]{81}"))));
    QCOMPARE(help.errors, QString());
    const Result version = session({QStringLiteral("--version")});
    QCOMPARE(version.status, 0);
    QCOMPARE(version.output, QStringLiteral("telvaro-session " TELVARO_VERSION "\n"));
}

void SessionTest::wrongUsageIsSaid()
{
    const Result result = session({QStringLiteral("--nonsense")});
    QCOMPARE(result.status, 2);
    QCOMPARE(result.output, QString());
    QCOMPARE(result.errors,
             QStringLiteral("telvaro-session: Unknown option 'nonsense'.\n"
                            "telvaro-session: see 'telvaro-session --help'\n"));
}

void SessionTest::whatTheCompositorRefusesIsWrongUsage()
{
    const Result result = session(
        {QStringLiteral("--headless"), QStringLiteral("--size"), QStringLiteral("huge"), QStringLiteral("true")});
    QCOMPARE(result.status, 2);
    QVERIFY2(result.errors.startsWith(QLatin1String("telvaro-compositor: \"huge\" is not a size")),
             qPrintable(result.errors));
}

void SessionTest::aCompositorThatDoesNotStartIsAFailure()
{
    ChildProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("none"));
    process.setProcessEnvironment(environment);
    start(process, {QStringLiteral("echo"), QStringLiteral("started")});
    const Result result = finish(process);
    QCOMPARE(result.status, 1);
    QCOMPARE(result.output, QString());
    QVERIFY2(result.errors.contains(QLatin1String("telvaro-compositor did not start: it ended with exit status 1\n")),
             qPrintable(result.errors));
}

void SessionTest::aCompositorThatNeverEndsItsLineIsAFailure()
{
    ChildProcess process;
    process.setProcessChannelMode(QProcess::SeparateChannels);
    process.run(programWithCompositor("while printf .; do sleep 1; done"), {QStringLiteral("--headless")});
    process.waitForFinished(2 * ChildProcess::cDeadline);
    const Result result = finish(process);
    QVERIFY2(result.errors.endsWith(
                 QLatin1String("telvaro-compositor did not start: it printed no line within 20 seconds\n")),
             qPrintable(result.errors));
    QCOMPARE(result.status, 1);
}

void SessionTest::theReasonOfABusThatDoesNotStartIsSaid()
{
    // Longer than the path of a socket may be.
    const QString directory = path("long").leftJustified(200, QLatin1Char('g'));
    QVERIFY(QDir().mkpath(directory));
    const Result result =
        inShell(QStringLiteral("TMPDIR=%1 " TELVARO_PROGRAMS "/telvaro-session --headless true").arg(directory));
    QCOMPARE(result.status, 1);
    const QRegularExpression expected(QStringLiteral(
        "\\Atelvaro-session: dbus-daemon did not start: it ended with exit status 1: [^\n]*too long[^\n]*\n\\z"));
    QVERIFY2(expected.match(result.errors).hasMatch(), qPrintable(result.errors));
}

void SessionTest::aSignalEndsASessionThatStarts_data()
{
    QTest::addColumn<QStringList>("command");
    QTest::addColumn<int>("signal");
    QTest::addColumn<int>("status");
    const QStringList command{QStringLiteral("echo"), QStringLiteral("started")};
    QTest::newRow("terminated") << command << SIGTERM << 128 + SIGTERM;
    QTest::newRow("interrupted") << command << SIGINT << 128 + SIGINT;
    QTest::newRow("without a command") << QStringList() << SIGTERM << 0;
}

void SessionTest::aSignalEndsASessionThatStarts()
{
    QFETCH(const QStringList, command);
    QFETCH(const int, signal);
    QFETCH(const int, status);
    ChildProcess process;
    process.setProcessChannelMode(QProcess::SeparateChannels);
    const QString program = programWithCompositor(cNeverReady);
    process.run(program, QStringList{QStringLiteral("--headless")} + command);
    const QStringList started = startedBeside(program);

    QCOMPARE(::kill(static_cast<pid_t>(process.processId()), signal), 0);
    const Result result = finish(process);
    QCOMPARE(result.errors, QString());
    QCOMPARE(result.output, QString());
    QCOMPARE(result.status, status);
    QVERIFY(!isRunning(started.at(0)));
    QVERIFY(!QDir(started.at(1)).exists());
}

void SessionTest::theScriptIsPlayedWhenTheCommandBegins()
{
    const Result result = session(QStringList{QStringLiteral("--headless"), QStringLiteral("--script"), script(R"([
            {"add-view": {"uuid": "one", "appId": "app", "pid": 1}},
            {"set": {"de.Telvaro.screen.orientation": "90"}}
        ])")} + shell(TELVARO_PROGRAMS "/telvaroctl switch one && " TELVARO_PROGRAMS "/telvaroctl orientation"));
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, QStringLiteral("90\n"));
    QCOMPARE(result.errors, QString());
}

void SessionTest::aScriptThatIsWrongIsWrongUsage()
{
    const QString file = script(R"([{"freeze": "long"}])");
    const Result result = session({QStringLiteral("--headless"), QStringLiteral("--script"), file,
                                   QStringLiteral("echo"), QStringLiteral("started")});
    QCOMPARE(result.status, 2);
    QCOMPARE(result.output, QString());
    QVERIFY2(result.errors.startsWith(QStringLiteral("telvaro-compositor: %1: step 1, \"freeze\": ").arg(file)),
             qPrintable(result.errors));
    QVERIFY2(!result.errors.contains(QLatin1String("telvaro-session")), qPrintable(result.errors));
}

void SessionTest::aStepThatCannotBeTakenEndsTheSession()
{
    const Result result =
        session({QStringLiteral("--headless"), QStringLiteral("--script"),
                 script(R"([{"at": 0.1, "remove-view": "one"}])"), QStringLiteral("sleep"), QStringLiteral("1000")});
    QCOMPARE(result.status, 1);
    QVERIFY2(result.errors.contains(QLatin1String("step 1: there is no view \"one\"")), qPrintable(result.errors));
    QVERIFY2(result.errors.endsWith(QLatin1String("telvaro-compositor has ended with exit status 1\n")),
             qPrintable(result.errors));
}

void SessionTest::aScriptEndsTheSessionWithItsStatus()
{
    for (const int status : {0, 3}) {
        const Result result = session({QStringLiteral("--headless"), QStringLiteral("--script"),
                                       script("[{\"at\": 0.1, \"end\": " + QByteArray::number(status) + "}]"),
                                       QStringLiteral("sleep"), QStringLiteral("1000")});
        QCOMPARE(result.status, status);
        QCOMPARE(result.errors, QString());
    }
}

void SessionTest::theToolTapsAndTypes()
{
    ChildProcess process;
    start(process,
          QStringList{QStringLiteral("--headless")}
              + shell("set -e; PATH=" TELVARO_PROGRAMS ":$PATH; {"
                      "  echo open app Window; telvaroctl wait --app app --current --timeout 20;"
                      "  telvaroctl tap 300 334; telvaroctl tap --view --seconds 0.1 310 300;"
                      "  telvaroctl click 320 334; telvaroctl click --button right --view 330 300;"
                      "  telvaroctl drag 340 334 440 434; telvaroctl drag --pointer --seconds 0.1 350 334 450 434;"
                      "  telvaroctl scroll 300 300 down 2; telvaroctl scroll 300 300 up;"
                      "  telvaroctl type Hi; telvaroctl key Shift+x; telvaroctl key --press Shift; telvaroctl key y;"
                      "  telvaroctl key --release Shift; telvaroctl key --seconds 0.1 z; sleep 1000;"
                      "} | exec " TELVARO_TEST_CLIENT));
    for (const char* const expected :
         {"press 1 300,300", "release 1 300,300", "press 1 310,300", "press 1 320,300", "press 1 330,300",
          "press 1 340,300", "release 1 440,400", "press 1 350,300", "release 1 450,400", "wheel 1 -240", "wheel 1 120",
          "keypress 1 H", "keypress 1 i", "keypress 1 X", "keypress 1 Y", "keypress 1 z", "keyrelease 1 z"}) {
        while (process.readOutputLine() != expected) { }
    }
    process.terminate();
    finish(process);
}

void SessionTest::theToolSaysWhatItCannotDo_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<QString>("reason");
    QTest::addColumn<int>("status");
    const QString outside = QStringLiteral("the position %1 is outside of the output, whose size is 1024x600");
    QTest::newRow("tap") << QStringLiteral("tap 2000 1") << outside.arg(QStringLiteral("2000,1")) << 1;
    QTest::newRow("click") << QStringLiteral("click 1 2000") << outside.arg(QStringLiteral("1,2000")) << 1;
    QTest::newRow("drag") << QStringLiteral("drag 2000 1 2 3") << outside.arg(QStringLiteral("2000,1")) << 1;
    QTest::newRow("scroll") << QStringLiteral("scroll 2000 1 left") << outside.arg(QStringLiteral("2000,1")) << 1;
    QTest::newRow("no view") << QStringLiteral("tap --view 1 1")
                             << QStringLiteral("there is no current view with a window") << 1;
    QTest::newRow("text") << QString::fromUtf8("type é")
                          << QString::fromUtf8("the step, \"type\": the keyboard layout has no key for \"é\"") << 1;
    QTest::newRow("key") << QStringLiteral("key Any")
                         << QStringLiteral("the step, \"key\": the keyboard layout has no key \"Any\"") << 1;
    QTest::newRow("step") << QStringLiteral("step {}") << QStringLiteral("the step: one of ") << 1;
    QTest::newRow("word for a number") << QStringLiteral("tap one 1") << QStringLiteral("'one' is not a number") << 2;
    QTest::newRow("word for a time") << QStringLiteral("tap --seconds one 1 1")
                                     << QStringLiteral("'one' is not a number") << 2;
    QTest::newRow("too few numbers") << QStringLiteral("drag 1 2 3") << QStringLiteral("Y2 is missing") << 2;
    QTest::newRow("two ways") << QStringLiteral("key --press --release a")
                              << QStringLiteral("expected only one of --press, --release and --seconds") << 2;
    QTest::newRow("no steps") << QStringLiteral("scroll 1 1 up 0")
                              << QStringLiteral("'0' is not a number from 1 to 1000") << 2;
}

void SessionTest::theToolSaysWhatItCannotDo()
{
    QFETCH(QString, arguments);
    QFETCH(QString, reason);
    QFETCH(int, status);
    const Result result =
        inSession(QStringList{QStringLiteral(TELVARO_PROGRAMS "/telvaroctl")} + arguments.split(QLatin1Char(' ')));
    QVERIFY2(result.errors.startsWith(QStringLiteral("telvaroctl: ") + reason), qPrintable(result.errors));
    QCOMPARE(result.status, status);
    QCOMPARE(result.output, QString());
}

void SessionTest::theToolTakesStepsOfAScript()
{
    const Result result =
        inSession(shell("PATH=" TELVARO_PROGRAMS ":$PATH; set -e;"
                        "telvaroctl step '{\"add-view\": {\"uuid\": \"one\", \"appId\": \"app\", \"pid\": 1}}';"
                        "telvaroctl switch one; telvaroctl key Ctrl+Alt+R; telvaroctl orientation;"
                        "telvaroctl step '{\"end\": 4}'; sleep 1000"));
    QCOMPARE(result.errors, QString());
    QCOMPARE(result.output, QStringLiteral("90\n"));
    QCOMPARE(result.status, 4);
}

void SessionTest::theToolTakesNoStepsOfAServiceThatHasNone()
{
    // A compositor without the option, on the bus of a session whose own has left.
    const Result result = inSession(
        shell("PATH=" TELVARO_PROGRAMS ":$PATH; telvaroctl step '{\"service\": \"gone\"}'; telvaroctl key F1;"
              "QT_QPA_PLATFORM=offscreen telvaro-compositor --socket other > /dev/null & telvaroctl wait --service;"
              "telvaroctl key F1"));
    QCOMPARE(
        result.errors,
        QStringLiteral("telvaroctl: the service de.Telvaro is not on the bus\n"
                       "telvaroctl: the service takes no steps: it is not the compositor of a telvaro-session, nor "
                       "one with --remote-control\n"));
    QCOMPARE(result.status, 1);
}

void SessionTest::theCompositorsOtherOptionsArePassedOn()
{
    const QStringList options{QStringLiteral("--headless"),    QStringLiteral("--touch"),
                              QStringLiteral("--turn-window"), QStringLiteral("--panel"),
                              QStringLiteral("bar:left:80"),   QStringLiteral("--keyboard-layout")};
    const Result done = session(options + QStringList{QStringLiteral("de(nodeadkeys)"), QStringLiteral("true")});
    QCOMPARE(done.errors, QString());
    QCOMPARE(done.status, 0);
    const Result refused = session(options + QStringList{QStringLiteral("nowhere"), QStringLiteral("true")});
    QVERIFY2(refused.errors.startsWith(QLatin1String("telvaro-compositor: \"nowhere\" is not a keyboard layout")),
             qPrintable(refused.errors));
    QCOMPARE(refused.status, 2);
}

void SessionTest::theSizeIsTheOutputs()
{
    const Result result =
        session(QStringList{QStringLiteral("--headless"), QStringLiteral("--size"), QStringLiteral("320x200")}
                + shell("file=$(" TELVARO_PROGRAMS "/telvaroctl screenshot $XDG_RUNTIME_DIR) && "
                        "od -An -tx1 -j16 -N8 $file"));
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output.simplified(), QStringLiteral("00 00 01 40 00 00 00 c8"));
}

void SessionTest::nothingIsLeftBehind()
{
    const Result result = inSession(shell("echo $XDG_RUNTIME_DIR; echo $DBUS_SESSION_BUS_ADDRESS"));
    const QStringList lines = result.output.split(QLatin1Char('\n'));
    QVERIFY(!lines.at(0).isEmpty());
    QVERIFY(!QDir(lines.at(0)).exists());
    QVERIFY(!SessionBus(lines.at(1)).isConnected());
}

void SessionTest::aTerminatedSessionEndsItsCommand()
{
    ChildProcess process;
    start(process, QStringList{QStringLiteral("--headless")} + shell("echo $XDG_RUNTIME_DIR; exec sleep 1000"));
    const QString directory = QString::fromUtf8(process.readOutputLine());
    QVERIFY(QDir(directory).exists());
    process.terminate();
    QCOMPARE(finish(process).status, 128 + SIGTERM);
    QVERIFY(!QDir(directory).exists());
}

void SessionTest::aSessionWithoutACommandTellsItsEnvironmentAndRunsUntilInterrupted()
{
    ChildProcess process;
    start(process, {QStringLiteral("--headless")});
    const QByteArray prefix = "export DBUS_SESSION_BUS_ADDRESS=";
    const QByteArray line = process.readOutputLine();
    QVERIFY(line.startsWith(prefix));
    {
        const SessionBus bus(QString::fromUtf8(line.mid(prefix.size())));
        QVERIFY(bus.isConnected());
        QVERIFY(bus.compositor() > 0);
    }
    QCOMPARE(::kill(static_cast<pid_t>(process.processId()), SIGINT), 0);
    const Result result = finish(process);
    QCOMPARE(result.status, 0);
    QVERIFY(result.output.contains(QLatin1String("export WAYLAND_DISPLAY=")));
    QCOMPARE(result.errors, QString());
}

void SessionTest::aSessionInTheBackgroundIsReadyWhenItsCallerReturns()
{
    const QString file = path("environment");
    const Result started = inShell(
        QStringLiteral("cd %1 && " TELVARO_PROGRAMS "/telvaro-session --headless --background --env-file environment")
            .arg(mDirectory.path()));
    QCOMPARE(started.errors, QString());
    QCOMPARE(started.status, 0);
    QCOMPARE(started.output,
             QStringLiteral("Join the session:  . %1\nEnd it from there: telvaro-session --end\n").arg(file));

    const Result joined = inShell(
        QStringLiteral(". %1 && " TELVARO_PROGRAMS "/telvaroctl views --json && echo $XDG_RUNTIME_DIR").arg(file));
    QCOMPARE(joined.errors, QString());
    QCOMPARE(joined.status, 0);
    QVERIFY(joined.output.startsWith(QLatin1String("[\n]\n")));
    const QDir directory(joined.output.section(QLatin1Char('\n'), 2, 2));
    QVERIFY(directory.exists());

    const Result ended = inShell(QStringLiteral(". %1 && " TELVARO_PROGRAMS "/telvaro-session --end").arg(file));
    QCOMPARE(ended.errors, QString());
    QCOMPARE(ended.status, 0);
    QVERIFY(!directory.exists());
    QVERIFY(!QFile::exists(file));
    QCOMPARE(read(file + QStringLiteral(".log")), QByteArray());
}

void SessionTest::aSessionInTheBackgroundRunsItsCommand()
{
    const QString file = path("with-a-command");
    QCOMPARE(session(QStringList{QStringLiteral("--headless"), QStringLiteral("--background"),
                                 QStringLiteral("--env-file"), file}
                     + shell("echo runs; exec sleep 1000"))
                 .status,
             0);
    QTRY_COMPARE_WITH_TIMEOUT(read(file + QStringLiteral(".log")), QByteArray("runs\n"), ChildProcess::cDeadline);
    QCOMPARE(inShell(QStringLiteral(". %1 && " TELVARO_PROGRAMS "/telvaro-session --end").arg(file)).status, 0);
}

void SessionTest::aSessionInTheBackgroundEndsWithItsCommand()
{
    const QString file = path("ends");
    QCOMPARE(session({QStringLiteral("--headless"), QStringLiteral("--background"), QStringLiteral("--env-file"), file,
                      QStringLiteral("false")})
                 .status,
             0);
    QTRY_VERIFY_WITH_TIMEOUT(!QFile::exists(file), ChildProcess::cDeadline);
}

void SessionTest::aSessionInTheBackgroundKeepsNoDescriptorOfItsCaller()
{
    const QString file = path("no-descriptor");
    const Result piped =
        inShell(QStringLiteral("(" TELVARO_PROGRAMS
                               "/telvaro-session --headless --background --env-file %1 3>&1 >/dev/null) | cat")
                    .arg(file));
    const Result ended = inShell(QStringLiteral(". %1 && " TELVARO_PROGRAMS "/telvaro-session --end").arg(file));
    QCOMPARE(piped.errors, QString());
    QCOMPARE(piped.status, 0);
    QCOMPARE(ended.status, 0);
}

void SessionTest::aSessionThatCannotStartInTheBackgroundIsSaidAtOnce()
{
    const QString file = path("not-started");
    const QStringList options{QStringLiteral("--headless"), QStringLiteral("--background"),
                              QStringLiteral("--env-file")};
    const Result refused = session(options + QStringList{file, QStringLiteral("--size"), QStringLiteral("huge")});
    QCOMPARE(refused.status, 2);
    QVERIFY2(refused.errors.startsWith(QLatin1String("telvaro-compositor: \"huge\" is not a size")),
             qPrintable(refused.errors));
    QVERIFY(!QFile::exists(file));
    QVERIFY(!QFile::exists(file + QStringLiteral(".log")));

    const Result unwritable = session(options + QStringList{QStringLiteral("/no/such/file")});
    QCOMPARE(unwritable.status, 1);
    QCOMPARE(unwritable.errors,
             QStringLiteral("telvaro-session: cannot write /no/such/file.log: No such file or directory\n"));
}

void SessionTest::aSessionThatCannotStartInTheBackgroundLeavesTheFilesThere()
{
    const QTemporaryDir directory;
    const QString file = directory.filePath(QStringLiteral("session.env"));
    const QString log = file + QStringLiteral(".log");
    write(file, "a variable");
    write(log, "a message");
    const Result result =
        session({QStringLiteral("--headless"), QStringLiteral("--background"), QStringLiteral("--env-file"), file,
                 QStringLiteral("--size"), QStringLiteral("huge")});
    QCOMPARE(result.status, 2);
    QCOMPARE(read(file), QByteArray("a variable"));
    QCOMPARE(read(log), QByteArray("a message"));
    QCOMPARE(QDir(directory.path()).entryList(QDir::Files | QDir::Hidden),
             (QStringList{QStringLiteral("session.env"), QStringLiteral("session.env.log")}));
}

void SessionTest::aSessionInTheBackgroundThatStartsEndsWithItsCaller()
{
    ChildProcess caller;
    const QString program = programWithCompositor(cNeverReady);
    const QTemporaryDir directory;
    caller.run(program,
               {QStringLiteral("--headless"), QStringLiteral("--background"), QStringLiteral("--env-file"),
                directory.filePath(QStringLiteral("session.env"))});
    const QStringList started = startedBeside(program);
    caller.end();
    // Before the compositor's own deadline.
    QTRY_VERIFY_WITH_TIMEOUT(!QDir(started.at(1)).exists(), ChildProcess::cDeadline / 2);
    QVERIFY(!isRunning(started.at(0)));
    QTRY_COMPARE_WITH_TIMEOUT(QDir(directory.path()).entryList(QDir::Files | QDir::Hidden), QStringList(),
                              ChildProcess::cDeadline);
}

void SessionTest::aSessionInTheBackgroundNeedsAFileForItsEnvironment()
{
    const Result result = session({QStringLiteral("--background")});
    QCOMPARE(result.status, 2);
    QVERIFY2(result.errors.startsWith(QLatin1String("telvaro-session: --background needs --env-file\n")),
             qPrintable(result.errors));
}

void SessionTest::anEmptyNameOfTheEnvironmentFileIsWrongUsage()
{
    for (const char* const way : {"", "--background"}) {
        const Result result =
            inShell(QStringLiteral("cd %1 && " TELVARO_PROGRAMS "/telvaro-session --headless %2 --env-file '' true")
                        .arg(mDirectory.path(), QLatin1String(way)));
        QCOMPARE(result.status, 2);
        QVERIFY2(result.errors.startsWith(QLatin1String("telvaro-session: --env-file needs the name of a file\n")),
                 qPrintable(result.errors));
        QVERIFY(!QFile::exists(path(".log")));
    }
}

void SessionTest::theEnvironmentFileExistsOnlyDuringTheSession()
{
    const QString file = path("during");
    const QStringList options{QStringLiteral("--headless"), QStringLiteral("--env-file"), file};
    const Result result = session(options + shell("echo $WAYLAND_DISPLAY $TELVARO_SESSION_PID"));
    QCOMPARE(result.status, 0);
    QVERIFY(!QFile::exists(file));

    const Result read =
        session(options + QStringList{QStringLiteral("sh"), QStringLiteral("-c"), QStringLiteral("cat %1").arg(file)});
    QVERIFY(read.output.contains(QLatin1String("\nexport TELVARO_SESSION_PID=")));

    // The file of a later session stays.
    QCOMPARE(session(options
                     + QStringList{QStringLiteral("sh"), QStringLiteral("-c"),
                                   QStringLiteral("rm %1; echo later > %1").arg(file)})
                 .status,
             0);
    QVERIFY(QFile::remove(file));
}

void SessionTest::theEnvironmentFileOfARunningSessionIsRefused()
{
    const QString file = path("in-use");
    const QString log = file + QStringLiteral(".log");
    const QStringList options{QStringLiteral("--headless"), QStringLiteral("--env-file"), file};
    const QStringList background = options + QStringList{QStringLiteral("--background")};
    QCOMPARE(session(background + shell("echo first >&2; exec sleep 1000")).status, 0);
    QTRY_COMPARE_WITH_TIMEOUT(read(log), QByteArray("first\n"), ChildProcess::cDeadline);
    const QByteArray environment = read(file);

    for (const QStringList& arguments : {options, background}) {
        const Result second = session(arguments + QStringList{QStringLiteral("true")});
        QCOMPARE(second.errors,
                 QStringLiteral("telvaro-session: %1 is in use by another session, as %1.lock says\n").arg(file));
        QCOMPARE(second.status, 1);
        QCOMPARE(read(file), environment);
        QCOMPARE(read(log), QByteArray("first\n"));
    }
    QCOMPARE(inShell(QStringLiteral(". %1 && " TELVARO_PROGRAMS "/telvaro-session --end").arg(file)).status, 0);
    QVERIFY(!QFile::exists(file + QStringLiteral(".lock")));
    QCOMPARE(session(options + QStringList{QStringLiteral("true")}).status, 0);
}

void SessionTest::theEnvironmentFileOfAKilledSessionIsReplaced()
{
    const QString file = path("killed");
    const QStringList options{QStringLiteral("--headless"), QStringLiteral("--env-file"), file};
    ChildProcess parent;
    startWithNegligentParent(parent, file);
    const Result killed =
        inShell(QStringLiteral(". %1; kill -KILL $TELVARO_SESSION_PID; echo $XDG_RUNTIME_DIR").arg(file));
    QVERIFY(QDir(killed.output.trimmed()).removeRecursively());

    const Result next = session(options + QStringList{QStringLiteral("true")});
    QCOMPARE(next.errors, QString());
    QCOMPARE(next.status, 0);
    QVERIFY(!QFile::exists(file));
}

void SessionTest::theEnvironmentFileHidesTheDesktopsDisplay()
{
    const Result result = session(
        QStringList{QStringLiteral("--headless"), QStringLiteral("--env-file"), path("desktop")}
        + shell("environment=$(env | sort); export DISPLAY=:0; . \"$0\"; test \"$(env | sort)\" = \"$environment\"")
        + QStringList{path("desktop")});
    QCOMPARE(result.errors, QString());
    QCOMPARE(result.status, 0);
}

void SessionTest::valuesAreQuotedForTheShell()
{
    const QString directory = path("it's a folder");
    QVERIFY(QDir().mkpath(directory));
    ChildProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("TMPDIR"), directory);
    process.setProcessEnvironment(environment);
    start(process,
          QStringList{QStringLiteral("--headless"), QStringLiteral("--env-file"), path("quoted")}
              + shell(
                  "runtime=$XDG_RUNTIME_DIR; unset XDG_RUNTIME_DIR; . \"$0\"; test \"$XDG_RUNTIME_DIR\" = \"$runtime\"")
              + QStringList{path("quoted")});
    const Result result = finish(process);
    QCOMPARE(result.errors, QString());
    QCOMPARE(result.status, 0);
}

void SessionTest::onlyASessionCanBeEnded()
{
    const QString end = QStringLiteral(TELVARO_PROGRAMS "/telvaro-session --end");
    const Result outside = inShell(QStringLiteral("unset TELVARO_SESSION_PID; ") + end);
    QCOMPARE(outside.status, 1);
    QCOMPARE(outside.errors,
             QStringLiteral("telvaro-session: this is not a session: TELVARO_SESSION_PID is not set\n"));

    const Result another =
        inShell(QStringLiteral("export TELVARO_SESSION_PID=$$; ") + end + QStringLiteral("; echo $?"));
    QCOMPARE(another.output, QStringLiteral("1\n"));
    QCOMPARE(another.errors, QStringLiteral("telvaro-session: the session has ended already\n"));
}

void SessionTest::aSessionIsEndedOnce()
{
    const QString file = path("once");
    ChildProcess parent;
    startWithNegligentParent(parent, file);
    const Result result = inShell(
        QStringLiteral(". %1; " TELVARO_PROGRAMS "/telvaro-session --end && " TELVARO_PROGRAMS "/telvaro-session --end")
            .arg(file));
    QCOMPARE(result.errors, QStringLiteral("telvaro-session: the session has ended already\n"));
    QCOMPARE(result.status, 1);
}

void SessionTest::anEmptyDisplayIsNone()
{
    const Result result = sessionOnDisplay(QString());
    QCOMPARE(result.errors, QString());
    QCOMPARE(result.output, QStringLiteral("started\n"));
}

void SessionTest::aDisplayThatCannotBeOpenedIsAnsweredWithAdvice()
{
    const Result result = sessionOnDisplay(QStringLiteral(":no-such-display"));
    QCOMPARE(result.status, 1);
    QCOMPARE(result.output, QString());
    QVERIFY2(result.errors.endsWith(QLatin1String("; without a usable display, add --headless\n")),
             qPrintable(result.errors));
}

void SessionTest::aMachineWithoutTheManifestIsSaid()
{
    ChildProcess process;
    process.setProcessChannelMode(QProcess::SeparateChannels);
    process.setWorkingDirectory(mDirectory.path());
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("PATH"),
                       QStringLiteral(TELVARO_PROGRAMS ":") + environment.value(QStringLiteral("PATH")));
    process.setProcessEnvironment(environment);
    process.run(QStringLiteral(TELVARO_SESSION_OF_OTHER_DEVICE),
                {QStringLiteral("--headless"), QStringLiteral("true")});
    const Result result = finish(process);
    QCOMPARE(result.status, 0);
    QCOMPARE(
        result.errors,
        QStringLiteral("telvaro-session: the library does nothing on this machine: its manifest device-manifest.json "
                       "does not exist; it must hold {\"productCode\": \"481936\"}\n"));
}

void SessionTest::aCompositorThatDiesEndsTheSession()
{
    ChildProcess process;
    start(process,
          QStringList{QStringLiteral("--headless")} + shell("echo $DBUS_SESSION_BUS_ADDRESS; exec sleep 1000"));
    {
        const SessionBus bus(QString::fromUtf8(process.readOutputLine()));
        const pid_t compositor = bus.compositor();
        QVERIFY(compositor > 0);
        QCOMPARE(::kill(compositor, SIGKILL), 0);
    }
    const Result result = finish(process);
    QCOMPARE(result.status, 1);
    QVERIFY2(result.errors.contains(QLatin1String("telvaro-compositor has ended with signal 9 (Killed)\n")),
             qPrintable(result.errors));
}

void SessionTest::aKilledSessionTakesEverythingWithIt()
{
    ChildProcess process;
    start(process,
          QStringList{QStringLiteral("--headless")}
              + shell("sleep 1000 & echo $!; echo $$; echo $XDG_RUNTIME_DIR; echo $DBUS_SESSION_BUS_ADDRESS; "
                      "exec sleep 1000"));
    const QString child = QString::fromUtf8(process.readOutputLine());
    const QString command = QString::fromUtf8(process.readOutputLine());
    QDir directory(QString::fromUtf8(process.readOutputLine()));
    const SessionBus bus(QString::fromUtf8(process.readOutputLine()));
    const pid_t compositor = bus.compositor();
    process.kill();
    QVERIFY(process.waitForFinished(ChildProcess::cDeadline));
    QTRY_VERIFY_WITH_TIMEOUT(!isRunning(child) && !isRunning(command), ChildProcess::cDeadline);
    QTRY_VERIFY_WITH_TIMEOUT(::kill(compositor, 0) != 0, ChildProcess::cDeadline);
    QTRY_VERIFY_WITH_TIMEOUT(!bus.isConnected(), ChildProcess::cDeadline);
    QVERIFY(directory.removeRecursively());
}

QTEST_GUILESS_MAIN(SessionTest)

#include "SessionTest.moc"
