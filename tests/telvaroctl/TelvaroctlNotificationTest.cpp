// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "TelvaroctlFixture.h"
#include "TestMain.h"

#include <QFileInfo>
#include <QTemporaryDir>

namespace {

const QString cPath = QStringLiteral("/org/freedesktop/Notifications");
const QString cInterface = QStringLiteral("org.freedesktop.Notifications");

} // namespace

class TelvaroctlNotificationTest : public TelvaroctlFixture
{
    Q_OBJECT

private Q_SLOTS:
    void overlayIsShownAndHidden();
    void notifySendsIconTextsAndActions();
    void notifySendsEveryOption();
    void notifyPrintsTheId();
    void notifyWaits_data();
    void notifyWaits();
    void notifyWaitsForItsOwnNotification();
    void notifyWaitsNoLongerThanAsked();
    void notifyEndsWithTheService();
    void notificationsAreClosed();
    void refusalsAreFailures_data();
    void refusalsAreFailures();
    void screenShotPrintsTheAnswerAndSendsAnAbsolutePath();
    void screenShotPrintsTheAnswerAsJson();
    void screenShotIntoNowhereIsAFailure();

private:
    /// Sets the id of the next notification.
    void setId(uint id, const QList<ServiceSignal>& before = {});
    void emitNotification(const char* member, const QStringList& arguments);
    static ServiceSignal notificationSignal(const char* member, const QStringList& arguments);
};

void TelvaroctlNotificationTest::setId(uint id, const QList<ServiceSignal>& before)
{
    Behaviour behaviour = Behaviour::reply({QStringLiteral("uint32 %1").arg(id)});
    for (const ServiceSignal& signal : before) {
        behaviour = behaviour.withSignal(signal);
    }
    mService.script(cPath, cInterface, QStringLiteral("Notify"), {behaviour});
}

void TelvaroctlNotificationTest::emitNotification(const char* member, const QStringList& arguments)
{
    mService.emitSignal(notificationSignal(member, arguments));
}

ServiceSignal TelvaroctlNotificationTest::notificationSignal(const char* member, const QStringList& arguments)
{
    return {cPath, cInterface, QString::fromUtf8(member), arguments};
}

void TelvaroctlNotificationTest::overlayIsShownAndHidden()
{
    QCOMPARE(telvaroctl({QStringLiteral("overlay"), QStringLiteral("show"), QStringLiteral("Please wait")}).status, 0);
    QCOMPARE(telvaroctl({QStringLiteral("overlay"), QStringLiteral("show"), QString()}).status, 0);
    QCOMPARE(telvaroctl("overlay hide").status, 0);
    QCOMPARE(takeWrites(),
             QStringList({QStringLiteral("/globaloverlay de.Telvaro.globaloverlay.Show s('Please wait')"),
                          QStringLiteral("/globaloverlay de.Telvaro.globaloverlay.Show s('')"),
                          QStringLiteral("/globaloverlay de.Telvaro.globaloverlay.Hide ()")}));
}

void TelvaroctlNotificationTest::notifySendsIconTextsAndActions()
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

void TelvaroctlNotificationTest::notifySendsEveryOption()
{
    const Result result =
        telvaroctl("notify --urgency critical --expire 1500 --replace 7 --hint byte:level:200 --hint int:x:-3 "
                   "--hint double:scale:1.5 --hint string:category:a:b --hint boolean:action-icons:false Title");
    QCOMPARE(result.status, 0);
    QCOMPARE(result.errors, QString());
    QCOMPARE(takeWrites(),
             QStringList(QStringLiteral(
                 "/org/freedesktop/Notifications org.freedesktop.Notifications.Notify susssasa{sv}i('', uint32 7, '', "
                 "'Title', '', @as [], {'action-icons': <false>, 'category': <'a:b'>, 'level': <byte 0xc8>, 'scale': "
                 "<1.5>, 'urgency': <byte 0x02>, 'x': <-3>}, 1500)")));
    QCOMPARE(telvaroctl("notify --expire -1 Title").status, 0);
    QVERIFY(takeWrites().constFirst().endsWith(QLatin1String(", -1)")));
}

void TelvaroctlNotificationTest::notifyPrintsTheId()
{
    setId(4294967295);
    const Result result = telvaroctl("notify --print-id Title");
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, QStringLiteral("4294967295\n"));
}

void TelvaroctlNotificationTest::notifyWaits_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("signal");
    QTest::addColumn<QString>("argument");
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("error");
    QTest::addColumn<int>("status");
    const QStringList withActions = words("--action yes=Yes --action no=No");
    QTest::newRow("action") << withActions << "ActionInvoked"
                            << "'no'"
                            << "no\n"
                            << QString() << 0;
    QTest::newRow("action and id") << withActions + words("--print-id") << "ActionInvoked"
                                   << "'no'"
                                   << "7\nno\n"
                                   << QString() << 0;
    QTest::newRow("expired") << withActions << "NotificationClosed"
                             << "uint32 1" << QString() << message("no action was chosen: it has expired") << 1;
    QTest::newRow("dismissed") << withActions << "NotificationClosed"
                               << "uint32 2" << QString() << message("no action was chosen: it was dismissed") << 1;
    QTest::newRow("closed") << withActions << "NotificationClosed"
                            << "uint32 3" << QString() << message("no action was chosen: it was closed by a call") << 1;
    QTest::newRow("unknown reason") << withActions << "NotificationClosed"
                                    << "uint32 9" << QString() << message("no action was chosen: it was closed") << 1;
    QTest::newRow("without actions") << QStringList() << "NotificationClosed"
                                     << "uint32 2" << QString() << QString() << 0;
}

void TelvaroctlNotificationTest::notifyWaits()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, signal);
    QFETCH(QString, argument);
    QFETCH(QString, output);
    QFETCH(QString, error);
    QFETCH(int, status);
    // Before the reply, which is the earliest.
    setId(7, {notificationSignal(qPrintable(signal), {QStringLiteral("uint32 7"), argument})});
    const Result result = telvaroctl(words("notify --wait Title") + arguments);
    QCOMPARE(result.errors, error);
    QCOMPARE(result.output, output);
    QCOMPARE(result.status, status);
}

void TelvaroctlNotificationTest::notifyWaitsForItsOwnNotification()
{
    setId(7);
    ChildProcess wait;
    start(wait, words("notify --wait --print-id --action yes=Yes Title"));
    QCOMPARE(QString::fromUtf8(wait.readOutputLine()), QStringLiteral("7"));
    emitNotification("NotificationClosed", {QStringLiteral("uint32 8"), QStringLiteral("uint32 2")});
    emitNotification("ActionInvoked", {QStringLiteral("uint32 6"), QStringLiteral("'yes'")});
    emitNotification("ActionInvoked", {QStringLiteral("uint32 7"), QStringLiteral("'really'")});
    const Result result = finish(wait);
    QCOMPARE(result.output, QStringLiteral("really\n"));
    QCOMPARE(result.status, 0);
}

void TelvaroctlNotificationTest::notifyWaitsNoLongerThanAsked()
{
    setId(7);
    const Result result = telvaroctl("notify --wait --print-id --timeout 1 Title");
    QCOMPARE(result.errors, message("the notification has not been closed in time"));
    QCOMPARE(result.output, QStringLiteral("7\n"));
    QCOMPARE(result.status, 1);
}

void TelvaroctlNotificationTest::notifyEndsWithTheService()
{
    setId(7);
    ChildProcess wait;
    start(wait, words("notify --wait --print-id Title"));
    QCOMPARE(QString::fromUtf8(wait.readOutputLine()), QStringLiteral("7"));
    const auto absence = releaseName();
    const Result result = finish(wait);
    QCOMPARE(result.errors, notOnTheBus());
    QCOMPARE(result.status, 1);
}

void TelvaroctlNotificationTest::notificationsAreClosed()
{
    mService.script(cPath, cInterface, QStringLiteral("CloseNotification"), {Behaviour::reply()});
    const Result result = telvaroctl("notify --close 7");
    QCOMPARE(result.errors, QString());
    QCOMPARE(result.status, 0);
    QCOMPARE(takeWrites(),
             QStringList(QStringLiteral(
                 "/org/freedesktop/Notifications org.freedesktop.Notifications.CloseNotification u(uint32 7)")));
    mService.script(cPath, cInterface, QStringLiteral("CloseNotification"),
                    {Behaviour::error(QStringLiteral("org.freedesktop.DBus.Error.Failed"), QString())});
    const Result unknown = telvaroctl("notify --close 8");
    QCOMPARE(unknown.errors, message("there is no notification 8"));
    QCOMPARE(unknown.status, 1);
}

void TelvaroctlNotificationTest::refusalsAreFailures_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("interface");
    QTest::addColumn<QString>("member");
    const QString overlay = QStringLiteral("/globaloverlay");
    const QString overlayInterface = QStringLiteral("de.Telvaro.globaloverlay");
    QTest::newRow("show") << words("overlay show text") << overlay << overlayInterface << "Show";
    QTest::newRow("hide") << words("overlay hide") << overlay << overlayInterface << "Hide";
    QTest::newRow("notify") << words("notify text") << cPath << cInterface << "Notify";
    QTest::newRow("close") << words("notify --close 1") << cPath << cInterface << "CloseNotification";
    QTest::newRow("screenshot") << words("screenshot /") << "/screenshot"
                                << "de.Telvaro.screenshot"
                                << "ScreenShot";
}

void TelvaroctlNotificationTest::refusalsAreFailures()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, path);
    QFETCH(QString, interface);
    QFETCH(QString, member);
    mService.script(path, interface, member,
                    {Behaviour::error(QStringLiteral("org.example.Error.No"), QStringLiteral("not today"))});
    const Result result = telvaroctl(arguments);
    QCOMPARE(result.errors, message("org.example.Error.No: not today"));
    QCOMPARE(result.output, QString());
    QCOMPARE(result.status, 1);
}

void TelvaroctlNotificationTest::screenShotPrintsTheAnswerAndSendsAnAbsolutePath()
{
    QTemporaryDir directory;
    const Result result = telvaroctl({QStringLiteral("screenshot"), QStringLiteral(".")}, directory.path());
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, QStringLiteral("/shots/1.png\n"));
    QCOMPARE(takeWrites(),
             QStringList(QStringLiteral("/screenshot de.Telvaro.screenshot.ScreenShot s('%1')")
                             .arg(QFileInfo(directory.path()).canonicalFilePath())));
}

void TelvaroctlNotificationTest::screenShotPrintsTheAnswerAsJson()
{
    const Result result = telvaroctl("screenshot --json /");
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, QStringLiteral("{\n    \"path\": \"/shots/1.png\"\n}\n"));
}

void TelvaroctlNotificationTest::screenShotIntoNowhereIsAFailure()
{
    QCOMPARE(telvaroctl("screenshot --json /no/such/directory").output, QString());
    const Result result = telvaroctl("screenshot /no/such/directory");
    QCOMPARE(result.status, 1);
    QCOMPARE(result.output, QString());
    QCOMPARE(result.errors, message("there is no directory '/no/such/directory'"));
    QCOMPARE(takeWrites(), QStringList());
}

TELVARO_TEST_MAIN(TelvaroctlNotificationTest)

#include "TelvaroctlNotificationTest.moc"
