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
    void aCommandThatCannotBeStartedIsSaid();
    void optionsAfterTheCommandAreTheCommands();
    void helpAndVersion();
    void wrongUsageIsSaid();
    void whatTheCompositorRefusesIsWrongUsage();
    void aCompositorThatDoesNotStartIsAFailure();
    void theScriptIsPlayedWhenTheCommandBegins();
    void aScriptThatIsWrongIsWrongUsage();
    void aStepThatCannotBeTakenEndsTheSession();
    void aScriptEndsTheSessionWithItsStatus();
    void theSizeIsTheOutputs();
    void theCompositorsOtherOptionsArePassedOn();
    void nothingIsLeftBehind();
    void aTerminatedSessionEndsItsCommand();
    void aSessionWithoutACommandTellsItsEnvironmentAndRunsUntilInterrupted();
    void aCompositorThatDiesEndsTheSession();
    void aKilledSessionTakesEverythingWithIt();

private:
    QString script(const QByteArray& steps) const;

    QTemporaryDir mDirectory;
};

QString SessionTest::script(const QByteArray& steps) const
{
    QFile file(mDirectory.filePath(QStringLiteral("script.json")));
    if (!file.open(QIODevice::WriteOnly) || file.write(steps) != steps.size()) {
        throw std::runtime_error("cannot write " + file.fileName().toStdString());
    }
    return file.fileName();
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

void SessionTest::theCompositorsOtherOptionsArePassedOn()
{
    const QStringList options{QStringLiteral("--headless"), QStringLiteral("--touch"), QStringLiteral("--turn-window"),
                              QStringLiteral("--keyboard-layout")};
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
              + shell("echo $$; echo $XDG_RUNTIME_DIR; echo $DBUS_SESSION_BUS_ADDRESS; exec sleep 1000"));
    const auto command = static_cast<pid_t>(process.readOutputLine().toInt());
    QDir directory(QString::fromUtf8(process.readOutputLine()));
    const SessionBus bus(QString::fromUtf8(process.readOutputLine()));
    const pid_t compositor = bus.compositor();
    process.kill();
    QVERIFY(process.waitForFinished(ChildProcess::cDeadline));
    QTRY_VERIFY_WITH_TIMEOUT(::kill(command, 0) != 0, ChildProcess::cDeadline);
    QTRY_VERIFY_WITH_TIMEOUT(::kill(compositor, 0) != 0, ChildProcess::cDeadline);
    QTRY_VERIFY_WITH_TIMEOUT(!bus.isConnected(), ChildProcess::cDeadline);
    QVERIFY(directory.removeRecursively());
}

QTEST_GUILESS_MAIN(SessionTest)

#include "SessionTest.moc"
