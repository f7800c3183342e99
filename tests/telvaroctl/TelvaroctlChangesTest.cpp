// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "TelvaroctlFixture.h"
#include "TestMain.h"

#include "PrivateBus.h"

#include <QDateTime>
#include <QDeadlineTimer>
#include <QRegularExpression>

#include <csignal>

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
    void watchFollowsATemplate();
    void watchPrintsTheTime_data();
    void watchPrintsTheTime();
    void waitEndsAtOnceIfItIsSoAlready_data();
    void waitEndsAtOnceIfItIsSoAlready();
    void waitFailsAtItsLimit_data();
    void waitFailsAtItsLimit();
    void waitEndsWithTheChange_data();
    void waitEndsWithTheChange();
    void waitEndsWithTheBus();

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
        QStringLiteral("{'screenSaverActive': <true>, 'orientation': <'90'>, 'fullScreen': <true>}")));

    const QStringList expected = asJson
        ? QStringList(
            {QStringLiteral("{\"signal\":\"viewsChanged\"}"),
             QStringLiteral(
                 "{\"appId\":\"notes\",\"signal\":\"currentViewChanged\",\"title\":\"Recipes\",\"value\":\"u-2\"}"),
             QStringLiteral("{\"signal\":\"screenSaverActiveChanged\",\"value\":true}"),
             QStringLiteral("{\"signal\":\"screenOrientationChanged\",\"value\":\"90\"}"),
             QStringLiteral("{\"signal\":\"fullScreenChanged\",\"value\":true}")})
        : QStringList({QStringLiteral("viewsChanged"), QStringLiteral("currentViewChanged u-2 notes"),
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

void TelvaroctlChangesTest::waitEndsWithTheBus()
{
    const QByteArray ownBus = PrivateBus::address().toUtf8();
    ChildProcess wait;
    {
        PrivateBus bus;
        ScriptedServiceProcess service;
        service.start();
        service.own();
        start(wait, words("wait --service --gone"));
        PrivateBus::setAddress(ownBus);
        // It listens before it reads.
        QVERIFY(QTest::qWaitFor(
            [&service] {
                return !service.takeCalls().isEmpty();
            },
            ChildProcess::cDeadline));
        bus.kill();
    }
    const Result result = finish(wait);
    QCOMPARE(result.status, 1);
    QCOMPARE(result.errors, message("the bus has ended"));
}

TELVARO_TEST_MAIN(TelvaroctlChangesTest)

#include "TelvaroctlChangesTest.moc"
