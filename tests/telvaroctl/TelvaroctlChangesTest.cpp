// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "TelvaroctlFixture.h"
#include "TestMain.h"

#include "PrivateBus.h"
#include "ValueText.h"

#include <QDateTime>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <csignal>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/types.h>

class TelvaroctlChangesTest : public TelvaroctlFixture
{
    Q_OBJECT

private Q_SLOTS:
    void watchPrintsEachSignalUntilInterrupted_data();
    void watchPrintsEachSignalUntilInterrupted();
    void watchFollowsTheService_data();
    void watchFollowsTheService();
    void watchNeedsABus();
    void watchEndsIfItsOutputCannotBeWritten();
    void aSignalEndsAWatchWhoseReaderDoesNotRead();
    void aSignalEndsAWatchWhoseBusDoesNotAnswer();
    void watchFollowsATemplate();
    void watchPrintsTheTime_data();
    void watchPrintsTheTime();
    void waitEndsAtOnceIfItIsSoAlready_data();
    void waitEndsAtOnceIfItIsSoAlready();
    void waitFailsAtItsLimit_data();
    void waitFailsAtItsLimit();
    void waitEndsWithTheChange_data();
    void waitEndsWithTheChange();
    void aCommandEndsWithTheBus_data();
    void aCommandEndsWithTheBus();

private:
    /// Returns once telvaroctl is listening.
    static void startWatch(ChildProcess& watch, const QStringList& arguments);
};

void TelvaroctlChangesTest::startWatch(ChildProcess& watch, const QStringList& arguments)
{
    start(watch, arguments);
    watch.setReadChannel(QProcess::StandardError);
    QCOMPARE(QString::fromUtf8(watch.readOutputLine()), QStringLiteral("telvaroctl: watching " TELVARO_SERVICE_NAME));
    watch.setReadChannel(QProcess::StandardOutput);
}

void TelvaroctlChangesTest::watchPrintsEachSignalUntilInterrupted_data()
{
    QTest::addColumn<bool>("asJson");
    QTest::addColumn<int>("interrupt");
    QTest::newRow("text, SIGINT") << false << SIGINT;
    QTest::newRow("json, SIGTERM") << true << SIGTERM;
}

void TelvaroctlChangesTest::watchPrintsEachSignalUntilInterrupted()
{
    QFETCH(bool, asJson);
    QFETCH(int, interrupt);
    setTwoViews();
    ChildProcess watch;
    startWatch(watch, words(asJson ? "watch --json" : "watch"));

    emitViews({view("u-2", "notes", 4711, 1, "Recipes")});
    emitCurrentView("u-2");
    // What is as it was is no change.
    emitCurrentView("u-2");
    mService.emitSignal(ServiceSignal::propertiesChanged(
        QStringLiteral("/screen"), QStringLiteral("de.Telvaro.screen"),
        QStringLiteral("{'screenSaverActive': <true>, 'screenSaverEnabled': <false>, 'screenSaverTimeoutSeconds': <9>, "
                       "'orientation': <'90'>, 'fullScreen': <true>}")));

    const QStringList expected = asJson
        ? QStringList(
            {QStringLiteral("{\"signal\":\"viewsChanged\"}"),
             QStringLiteral(
                 "{\"appId\":\"notes\",\"signal\":\"currentViewChanged\",\"title\":\"Recipes\",\"value\":\"u-2\"}"),
             QStringLiteral("{\"signal\":\"screenSaverActiveChanged\",\"value\":true}"),
             QStringLiteral("{\"signal\":\"screenSaverEnabledChanged\",\"value\":false}"),
             QStringLiteral("{\"signal\":\"screenSaverTimeoutChanged\",\"value\":9}"),
             QStringLiteral("{\"signal\":\"screenOrientationChanged\",\"value\":\"90\"}"),
             QStringLiteral("{\"signal\":\"fullScreenChanged\",\"value\":true}")})
        : QStringList({QStringLiteral("viewsChanged"), QStringLiteral("currentViewChanged u-2 notes"),
                       QStringLiteral("screenSaverActiveChanged true"),
                       QStringLiteral("screenSaverEnabledChanged false"), QStringLiteral("screenSaverTimeoutChanged 9"),
                       QStringLiteral("screenOrientationChanged 90"), QStringLiteral("fullScreenChanged true")});
    for (const QString& line : expected) {
        QCOMPARE(QString::fromUtf8(watch.readOutputLine()), line);
    }
    QCOMPARE(::kill(static_cast<pid_t>(watch.processId()), interrupt), 0);
    QVERIFY(watch.waitForFinished(ChildProcess::cDeadline));
    QCOMPARE(watch.exitStatus(), QProcess::NormalExit);
    QCOMPARE(watch.exitCode(), 0);
    QCOMPARE(QString::fromUtf8(watch.readAllStandardOutput()), QString());
}

void TelvaroctlChangesTest::watchFollowsTheService_data()
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

void TelvaroctlChangesTest::watchFollowsTheService()
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

void TelvaroctlChangesTest::watchNeedsABus()
{
    const QByteArray ownBus = PrivateBus::address().toUtf8();
    PrivateBus::setAddress("unix:path=/nonexistent");
    const Result atOnce = telvaroctl("watch");
    ChildProcess watch;
    {
        PrivateBus bus;
        startWatch(watch, words("watch"));
        PrivateBus::setAddress(ownBus);
        bus.kill();
        QVERIFY(watch.waitForFinished(ChildProcess::cDeadline));
    }
    QCOMPARE(atOnce.status, 1);
    QCOMPARE(atOnce.errors, message("there is no bus at unix:path=/nonexistent"));
    QCOMPARE(watch.exitCode(), 1);
    QCOMPARE(QString::fromUtf8(watch.readAllStandardError()), message("the bus has ended"));
    QCOMPARE(QString::fromUtf8(watch.readAllStandardOutput()), QString());
}

void TelvaroctlChangesTest::watchEndsIfItsOutputCannotBeWritten()
{
    setTwoViews();
    ChildProcess watch;
    watch.setStandardOutputFile(QStringLiteral("/dev/full"));
    startWatch(watch, words("watch"));
    emitCurrentView("u-2");
    const Result result = finish(watch);
    QCOMPARE(result.errors, message("standard output cannot be written: No space left on device"));
    QCOMPARE(result.status, 1);
}

void TelvaroctlChangesTest::aSignalEndsAWatchWhoseReaderDoesNotRead()
{
    setTwoViews();
    const QTemporaryDir directory;
    const QByteArray pipe = QFile::encodeName(directory.filePath(QStringLiteral("pipe")));
    QCOMPARE(::mkfifo(pipe.constData(), 0600), 0);
    QFile reader;
    QVERIFY(reader.open(::open(pipe.constData(), O_RDWR | O_CLOEXEC), QIODevice::ReadOnly, QFile::AutoCloseHandle));
    ChildProcess watch;
    watch.setStandardOutputFile(QFile::decodeName(pipe));
    startWatch(watch, {QStringLiteral("watch"), QStringLiteral("--format"), QStringLiteral("{{title}}")});
    const int capacity = ::fcntl(reader.handle(), F_GETPIPE_SZ);
    emitViews({view("u-3", "notes", 4711, 0, QByteArray(2 * capacity, 'x').constData())});
    emitCurrentView("u-3");
    QVERIFY(QTest::qWaitFor(
        [&reader, capacity] {
            int size = 0;
            return ::ioctl(reader.handle(), FIONREAD, &size) == 0 && size > capacity / 2;
        },
        ChildProcess::cDeadline));
    QCOMPARE(::kill(static_cast<pid_t>(watch.processId()), SIGTERM), 0);
    QVERIFY(watch.waitForFinished(ChildProcess::cDeadline));
}

void TelvaroctlChangesTest::aSignalEndsAWatchWhoseBusDoesNotAnswer()
{
    const QByteArray ownBus = PrivateBus::address().toUtf8();
    PrivateBus bus;
    bus.freeze();
    ChildProcess watch;
    start(watch, words("watch --timeout 1000"));
    PrivateBus::setAddress(ownBus);
    // Qt's D-Bus thread starts before it connects.
    QVERIFY(QTest::qWaitFor(
        [&watch] {
            return QDir(QStringLiteral("/proc/%1/task").arg(watch.processId())).count() > 3;
        },
        ChildProcess::cDeadline));
    QCOMPARE(::kill(static_cast<pid_t>(watch.processId()), SIGTERM), 0);
    QVERIFY(watch.waitForFinished(ChildProcess::cDeadline));
    bus.thaw();
}

void TelvaroctlChangesTest::watchFollowsATemplate()
{
    setTwoViews();
    ChildProcess watch;
    startWatch(watch,
               {QStringLiteral("watch"), QStringLiteral("--format"),
                QStringLiteral("{{signal}}|{{value}}|{{appId}}|{{title}}|{{sortIndex}}")});
    emitCurrentView("u-2");
    QCOMPARE(QString::fromUtf8(watch.readOutputLine()), QStringLiteral("currentViewChanged|u-2|notes|Recipes|1"));
    emitViews({});
    emitViews({view("u-2", "notes", 4711, 1, "Recipes")});
    QCOMPARE(QString::fromUtf8(watch.readOutputLine()), QStringLiteral("viewsChanged||||"));
}

void TelvaroctlChangesTest::watchPrintsTheTime_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("pattern");
    const QString time = QStringLiteral("(\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\\.\\d{3}(Z|[+-]\\d\\d:\\d\\d))");
    QTest::newRow("text") << words("watch --timestamps") << QStringLiteral("^%1 viewsChanged$").arg(time);
    QTest::newRow("json") << words("watch --timestamps --json")
                          << QStringLiteral("^\\{\"signal\":\"viewsChanged\",\"time\":\"%1\"\\}$").arg(time);
    QTest::newRow("template") << words("watch --format {{time}}") << QStringLiteral("^%1$").arg(time);
}

void TelvaroctlChangesTest::watchPrintsTheTime()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, pattern);
    setTwoViews();
    ChildProcess watch;
    startWatch(watch, arguments);
    const QDateTime before = QDateTime::currentDateTime();
    emitViews({view("u-2", "notes", 4711, 1, "Recipes")});
    const QString line = QString::fromUtf8(watch.readOutputLine());
    const QRegularExpressionMatch match = QRegularExpression(pattern).match(line);
    QVERIFY2(match.hasMatch(), qPrintable(line));
    const QDateTime time = QDateTime::fromString(match.captured(1), Qt::ISODateWithMs);
    QVERIFY(time.isValid());
    QVERIFY(time >= before);
    QVERIFY(time <= QDateTime::currentDateTime());
}

void TelvaroctlChangesTest::waitEndsAtOnceIfItIsSoAlready_data()
{
    QTest::addColumn<QStringList>("arguments");
    for (const char* command :
         {"wait", "wait --service", "wait --app notes", "wait --view u-2", "wait --current",
          "wait --app notes --current", "wait --view u-1 --current", "wait --app clock --gone",
          "wait --view u-9 --gone", "wait --view u-2 --current --gone", "wait --app notes --view u-2",
          "wait --app notes --index 1", "wait --app notes --index 2 --gone"}) {
        QTest::newRow(command) << words(command);
    }
}

void TelvaroctlChangesTest::waitEndsAtOnceIfItIsSoAlready()
{
    QFETCH(QStringList, arguments);
    setTwoViews();
    const Result result = telvaroctl(arguments);
    QCOMPARE(result.errors, QString());
    QCOMPARE(result.output, QString());
    QCOMPARE(result.status, 0);
}

void TelvaroctlChangesTest::waitFailsAtItsLimit_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("error");
    const auto row = [](const char* line, const char* error) {
        QTest::newRow(line) << words(line) << message(error);
    };
    row("wait --app clock", "waited in vain for a view of 'clock'");
    row("wait --app notes --index 2", "waited in vain for a view of 'notes' with the index 2");
    row("wait --view u-9", "waited in vain for the view 'u-9'");
    row("wait --view u-2 --current", "waited in vain for the view 'u-2' that is current");
    row("wait --app notes --view u-9", "waited in vain for the view 'u-9'");
    row("wait --gone", "waited in vain for the end of a view");
    row("wait --app notes --gone", "waited in vain for the end of a view of 'notes'");
    row("wait --current --gone", "waited in vain for the end of a view that is current");
    row("wait --service --gone", "waited in vain for the end of the service");
}

void TelvaroctlChangesTest::waitFailsAtItsLimit()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, error);
    setTwoViews();
    const Result result = telvaroctl(arguments + words("--timeout 1"));
    QCOMPARE(result.errors, error);
    QCOMPARE(result.status, 1);
}

void TelvaroctlChangesTest::waitEndsWithTheChange_data()
{
    QTest::addColumn<QStringList>("arguments");
    // What is so first, what is not yet enough, and what is.
    QTest::addColumn<QString>("change");
    QTest::newRow("view") << words("wait --app maps") << "maps";
    QTest::newRow("view by id") << words("wait --view m-1") << "maps";
    QTest::newRow("end of a view") << words("wait --app notes --gone") << "maps";
    QTest::newRow("current view") << words("wait --view u-2 --current") << "current";
    QTest::newRow("service") << words("wait --service") << "service";
    QTest::newRow("view of a service") << words("wait --app notes") << "service";
    QTest::newRow("end of the service") << words("wait --service --gone") << "end";
    QTest::newRow("views end with the service") << words("wait --app notes --gone") << "end";
}

void TelvaroctlChangesTest::waitEndsWithTheChange()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, change);
    setTwoViews();
    auto absence = change == QLatin1String("service") ? releaseName() : nullptr;
    // A limit on commands that do not wait does not end it.
    const QByteArray generous = qgetenv("TELVAROCTL_TIMEOUT");
    qputenv("TELVAROCTL_TIMEOUT", "5");
    ChildProcess wait;
    start(wait, arguments + words("--verbose"));
    qputenv("TELVAROCTL_TIMEOUT", generous);
    QVERIFY(!wait.waitForFinished(300));
    if (change == QLatin1String("service")) {
        absence = {};
    } else if (change == QLatin1String("end")) {
        absence = releaseName();
    }
    // A process that starts slowly misses the first notification.
    const bool isNotified = change == QLatin1String("maps") || change == QLatin1String("current");
    const QDeadlineTimer deadline(ChildProcess::cDeadline);
    do {
        if (change == QLatin1String("maps")) {
            emitViews({view("m-1", "maps", 1, 0, "Map")});
        } else if (change == QLatin1String("current")) {
            emitCurrentView("u-2");
        }
    } while (isNotified && !wait.waitForFinished(300) && !deadline.hasExpired());
    const Result result = finish(wait);
    QCOMPARE(result.errors, QString());
    QCOMPARE(result.status, 0);
}

void TelvaroctlChangesTest::aCommandEndsWithTheBus_data()
{
    QTest::addColumn<QStringList>("arguments");
    for (const char* command : {"wait --service --gone", "wait --gone", "wait --app notes --gone", "notify --wait a",
                                "views", "screen", "switch u-2", "tap 1 1"}) {
        QTest::newRow(command) << words(command);
    }
}

void TelvaroctlChangesTest::aCommandEndsWithTheBus()
{
    QFETCH(QStringList, arguments);
    const QByteArray ownBus = PrivateBus::address().toUtf8();
    ChildProcess command;
    {
        PrivateBus bus;
        ScriptedServiceProcess service;
        service.start();
        service.own();
        service.setViews(ValueText::views({view("u-1", "notes", 4711, 0, "Shopping")}));
        service.script(QStringLiteral("/org/freedesktop/Notifications"),
                       QStringLiteral("org.freedesktop.Notifications"), QStringLiteral("Notify"),
                       {Behaviour::reply({QStringLiteral("uint32 7")})});
        service.script(QStringLiteral("/desk"), QStringLiteral("de.Telvaro.desk"), QStringLiteral("Take"),
                       {Behaviour::silence()});
        // A read that is replied to would end these.
        if (arguments.size() < 3) {
            for (const char* path : {"/taskswitcher", "/screen"}) {
                for (const char* method : {"Get", "Set"}) {
                    service.script(QString::fromUtf8(path), QStringLiteral("org.freedesktop.DBus.Properties"),
                                   QString::fromUtf8(method), {Behaviour::silence()});
                }
            }
        }
        start(command, arguments);
        PrivateBus::setAddress(ownBus);
        // It listens before it sends.
        QVERIFY(QTest::qWaitFor(
            [&service] {
                return !service.takeCalls().isEmpty();
            },
            ChildProcess::cDeadline));
        bus.kill();
    }
    const Result result = finish(command);
    QCOMPARE(result.errors, message("the bus has ended"));
    QCOMPARE(result.status, 1);
}

TELVARO_TEST_MAIN(TelvaroctlChangesTest)

#include "TelvaroctlChangesTest.moc"
