// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "CompositorBus.h"
#include "CompositorFixture.h"
#include "InterfaceFiles.h"
#include "TestMain.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDBusPendingCall>
#include <QDBusReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>

#include <stdexcept>

using CompositorBus::View;

namespace {

const QString cNotificationName = QStringLiteral("org.freedesktop.Notifications");
const QString cError = QStringLiteral("org.example.Error.Broken");

QStringList uuidsOf(const QList<View>& views)
{
    QStringList uuids;
    for (const View& view : views) {
        uuids.append(view.uuid);
    }
    return uuids;
}

QVariant screen(const char* property)
{
    return CompositorBus::get(CompositorBus::cScreenPath, CompositorBus::cScreen, QString::fromLatin1(property));
}

QDBusMessage readOrientation()
{
    return CompositorBus::call(CompositorBus::cScreenPath, CompositorBus::cProperties, QStringLiteral("Get"),
                               {CompositorBus::cScreen, QStringLiteral("orientation")});
}

QDBusMessage showOverlay(const char* text = "text")
{
    return CompositorBus::call(CompositorBus::cOverlayPath, CompositorBus::cOverlay, QStringLiteral("Show"),
                               {QString::fromUtf8(text)});
}

QDBusPendingCall callLater(const QString& path, const QString& interface, const QString& member,
                           const QVariantList& arguments = {}, int timeout = -1)
{
    QDBusMessage message =
        QDBusMessage::createMethodCall(QStringLiteral(TELVARO_SERVICE_NAME), path, interface, member);
    message.setArguments(arguments);
    return PrivateBus::connection().asyncCall(message, timeout);
}

bool isOwned(const QString& name)
{
    return PrivateBus::connection().interface()->isServiceRegistered(name);
}

/// One call of every method, with valid arguments.
QVariantList argumentsOf(const QString& method)
{
    static const QMap<QString, QVariantList> arguments{
        {QStringLiteral("de.Telvaro.globaloverlay.Show"), {QString()}},
        {QStringLiteral("de.Telvaro.globaloverlay.Hide"), {}},
        {QStringLiteral("de.Telvaro.screenshot.ScreenShot"), {QStringLiteral("/")}},
        {QStringLiteral("org.freedesktop.Notifications.Notify"),
         {QString(), 0U, QString(), QString(), QString(), QStringList(), QVariantMap(), 0}},
        {QStringLiteral("org.freedesktop.Notifications.CloseNotification"), {1U}},
        {QStringLiteral("org.freedesktop.Notifications.GetCapabilities"), {}},
        {QStringLiteral("org.freedesktop.Notifications.GetServerInformation"), {}},
    };
    if (!arguments.contains(method)) {
        throw std::runtime_error("no arguments for " + method.toStdString());
    }
    return arguments.value(method);
}

QString pathOf(const QString& interface)
{
    return interface == CompositorBus::cNotifications ? CompositorBus::cNotificationsPath
                                                      : QLatin1Char('/') + interface.section(QLatin1Char('.'), -1);
}

/// The state of a process in the kernel's letters.
char stateOf(qint64 process)
{
    QFile file(QStringLiteral("/proc/%1/stat").arg(process));
    file.open(QIODevice::ReadOnly);
    const QByteArray content = file.readAll();
    return content.mid(content.lastIndexOf(')') + 2, 1).at(0);
}

} // namespace

class CompositorScriptTest : public CompositorFixture
{
    Q_OBJECT

private Q_SLOTS:
    void viewsOfAScriptAreThereBeforeAnybodyAsks();
    void aViewAppearsAndVanishesAtItsTime();
    void aViewOfAScriptCanBeSwitchedTo();
    void windowsAndViewsOfAScriptLiveSideBySide();
    void aViewOfAScriptHasExactlyTheRecordThatItSays();
    void aViewOfAScriptChanges();
    void viewsAreArranged();
    void anyTextCanBeTheCurrentView();
    void aPropertyChangesAndIsSignalled_data();
    void aPropertyChangesAndIsSignalled();
    void theScreenSaverStartsAndEnds();
    void theTimeoutBlanksOnlyWhereTheScriptPermitsIt();
    void aMethodIsCalled();
    void aNotificationIsPosted();
    void stepsOfOneTimeAreTakenInTheirOrder();
    void aStepWaitsForAsManyCallsAsItSays();
    void aStepWaitsForTheViewOfAnApplication();
    void aStepWaitsForATitle();
    void aStepWaitsUntilAViewIsTheCurrentOne();
    void aStepWaitsForTheEndOfAView();
    void aStepWaitsUntilAViewDoesNotRespond();
    void theTimeOfAStepThatWaitsBeginsWithTheEvent();
    void whatTheScriptItselfCallsIsNoEventAndMeetsNoFault();
    void everyMemberOfTheInterfacesCanFail();
    void aFaultOfAnInterfaceIsForAllItsMembers();
    void aFaultOfAReadIsAlsoForGetAll();
    void aFaultOfAReadIsNotForAWrite();
    void aFaultEndsAfterItsCalls();
    void aFaultEndsAfterItsTime();
    void aFaultEndsWhenTheScriptSaysSo();
    void ofTwoFaultsTheLaterOneCounts();
    void aDelayedAnswerIsTheRightOne_data();
    void aDelayedAnswerIsTheRightOne();
    void aDelayedRefusalIsTheRightOne();
    void aDelayedErrorComesLater();
    void whoWaitsForADelayedAnswerKeepsNobodyElseWaiting();
    void aSilentCallIsNeverAnswered();
    void theServiceGoesAndComesBack();
    void aFrozenCompositorAnswersWhenItHasThawed();
    void aHangingViewDoesNotRespond();
    void aHangingApplicationIsStopped();
    void aFrozenCompositorDoesNotBlameTheApplications();
    void aStoppedApplicationRunsOnAfterTheCompositorsEnd();
    void aRestartLosesClientsAndTheService();
    void restartsKeepNoDescriptors();
    void anEndDuringARestartLeavesNoSocket();
    void theEndHasItsStatus_data();
    void theEndHasItsStatus();
    void buttonsArePressedWhenTheirViewIsThere();
    void aStepThatCannotBeTakenEndsTheCompositor_data();
    void aStepThatCannotBeTakenEndsTheCompositor();

private:
    /// Each test starts the compositor with a script.
    void startCompositor() override
    {
    }

    void play(const QByteArray& steps);
    QString scriptFile() const
    {
        return mDirectory.filePath(QStringLiteral("script.json"));
    }
    void write(const QByteArray& steps) const;

    QTemporaryDir mDirectory;
};

void CompositorScriptTest::write(const QByteArray& steps) const
{
    QFile file(scriptFile());
    if (!file.open(QIODevice::WriteOnly) || file.write(steps) != steps.size()) {
        throw std::runtime_error("cannot write " + scriptFile().toStdString());
    }
}

void CompositorScriptTest::play(const QByteArray& steps)
{
    write(steps);
    // Drops the changes by the first steps: they precede this reply on the bus, and no script can inject a fault into
    // it.
    mMonitor.reset();
    mCompositor->start({QStringLiteral("--script"), scriptFile()});
    CompositorBus::callChecked(CompositorBus::cScreenPath, QStringLiteral("org.freedesktop.DBus.Introspectable"),
                               QStringLiteral("Introspect"));
    mMonitor = std::make_unique<PropertyMonitor>();
}

void CompositorScriptTest::viewsOfAScriptAreThereBeforeAnybodyAsks()
{
    play(R"([
        {"add-view": {"uuid": "one", "appId": "org.example.Player", "pid": 4711, "title": "Song",
                      "processName": "player", "attributes": {"volume": 11, "gain": 0.5, "muted": true, "width": 5}}},
        {"add-view": {"uuid": "two", "appId": "org.example.Player", "pid": 4294967295}}
    ])");
    const QList<View> views = CompositorBus::views();
    QCOMPARE(uuidsOf(views), QStringList({QStringLiteral("one"), QStringLiteral("two")}));
    QCOMPARE(CompositorBus::currentView(), QStringLiteral("two"));

    const View one = views.at(0);
    QCOMPARE(one.appId, QStringLiteral("org.example.Player"));
    QCOMPARE(one.info1, QStringLiteral("Song"));
    QCOMPARE(one.info2, QStringLiteral("player"));
    QCOMPARE(one.info3, QStringLiteral("background"));
    QCOMPARE(one.info4, QStringLiteral("window"));
    QCOMPARE(one.pid, 4711U);
    QCOMPARE(one.sortIndex, 0U);
    const QVariantMap expected{
        {QStringLiteral("title"), QStringLiteral("Song")},
        {QStringLiteral("processName"), QStringLiteral("player")},
        {QStringLiteral("current"), false},
        {QStringLiteral("responding"), true},
        {QStringLiteral("dialog"), false},
        {QStringLiteral("width"), 5},
        {QStringLiteral("height"), 0},
        {QStringLiteral("volume"), 11},
        {QStringLiteral("gain"), 0.5},
        {QStringLiteral("muted"), true},
    };
    QCOMPARE(one.attributes, expected);

    const View two = views.at(1);
    QCOMPARE(two.info1, QStringLiteral("org.example.Player"));
    QCOMPARE(two.info3, QStringLiteral("current"));
    QCOMPARE(two.pid, 4294967295U);
    QCOMPARE(two.sortIndex, 1U);
}

void CompositorScriptTest::aViewAppearsAndVanishesAtItsTime()
{
    QElapsedTimer timer;
    timer.start();
    play(R"([
        {"at": 0.8, "remove-view": "one"},
        {"at": 0.4, "add-view": {"uuid": "one", "appId": "app", "pid": 1}}
    ])");
    TRY_COMPARE(uuidsOf(CompositorBus::views()), QStringList(QStringLiteral("one")));
    QVERIFY2(timer.elapsed() >= 400, qPrintable(QString::number(timer.elapsed())));
    TRY_COMPARE(uuidsOf(CompositorBus::views()), QStringList());
    QVERIFY2(timer.elapsed() >= 800, qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(mMonitor->takeNames(),
             QStringList({QStringLiteral("views"), QStringLiteral("currentView"), QStringLiteral("views"),
                          QStringLiteral("currentView")}));
}

void CompositorScriptTest::aViewOfAScriptCanBeSwitchedTo()
{
    play(R"([
        {"add-view": {"uuid": "one", "appId": "app", "pid": 1}},
        {"add-view": {"uuid": "two", "appId": "app", "pid": 1}}
    ])");
    const auto switchTo = [](const char* uuid) {
        return CompositorBus::errorOf(CompositorBus::set(CompositorBus::cTaskSwitcherPath, CompositorBus::cTaskSwitcher,
                                                         QStringLiteral("currentView"), QString::fromLatin1(uuid)));
    };
    QCOMPARE(switchTo("one"), QString());
    QCOMPARE(CompositorBus::currentView(), QStringLiteral("one"));
    QCOMPARE(mMonitor->waitFor(QStringLiteral("currentView")).currentView, QStringLiteral("one"));
    QVERIFY(switchTo("three").startsWith(QLatin1String("org.freedesktop.DBus.Error.InvalidArgs: ")));
    QCOMPARE(CompositorBus::currentView(), QStringLiteral("one"));
}

void CompositorScriptTest::windowsAndViewsOfAScriptLiveSideBySide()
{
    play(R"([
        {"add-view": {"uuid": "script", "appId": "app", "pid": 1, "title": "Script"}},
        {"after": {"call": "de.Telvaro.globaloverlay.Hide"}, "remove-view": "script"}
    ])");
    const auto client = testClient();
    client->send("open app Window");
    client->waitFor("activated 1");
    const View window = CompositorBus::viewWithTitle(QStringLiteral("Window"));
    QCOMPARE(CompositorBus::views().size(), 2);
    QCOMPARE(CompositorBus::currentView(), window.uuid);
    QCOMPARE(window.sortIndex, 1U);
    const QImage withWindow = screenShot();

    CompositorBus::set(CompositorBus::cTaskSwitcherPath, CompositorBus::cTaskSwitcher, QStringLiteral("currentView"),
                       QStringLiteral("script"));
    client->waitFor("deactivated 1");
    QVERIFY(screenShot() != withWindow);
    CompositorBus::callChecked(CompositorBus::cOverlayPath, CompositorBus::cOverlay, QStringLiteral("Hide"));
    client->waitFor("activated 1");
    QCOMPARE(uuidsOf(CompositorBus::views()), QStringList(window.uuid));
    client->send("close 1");
    TRY_COMPARE(CompositorBus::views().size(), 0);
}

void CompositorScriptTest::aViewOfAScriptHasExactlyTheRecordThatItSays()
{
    play(R"([
        {"add-view": {"uuid": "one", "appId": "", "pid": 0, "title": "Song", "attributes": {"volume": 11},
                      "record": {"info1": "a", "info2": "", "info3": "c", "info4": "d", "sortIndex": 7,
                                 "attributes": {"muted": true}}}},
        {"add-view": {"uuid": "two", "appId": "", "pid": 1, "record": {"info3": "busy"}}}
    ])");
    const QList<View> views = CompositorBus::views();
    const View one = views.at(0);
    QCOMPARE(one.appId, QString());
    QCOMPARE(one.pid, 0U);
    QCOMPARE(QStringList({one.info1, one.info2, one.info3, one.info4}),
             QStringList({QStringLiteral("a"), QString(), QStringLiteral("c"), QStringLiteral("d")}));
    QCOMPARE(one.sortIndex, 7U);
    QCOMPARE(one.attributes, QVariantMap({{QStringLiteral("muted"), true}}));

    const View two = views.at(1);
    QCOMPARE(two.info3, QStringLiteral("busy"));
    QCOMPARE(two.info4, QStringLiteral("window"));
    QCOMPARE(two.sortIndex, 8U);
    QCOMPARE(two.attributes.value(QStringLiteral("current")), QVariant(true));
}

void CompositorScriptTest::aViewOfAScriptChanges()
{
    play(R"([
        {"add-view": {"uuid": "one", "appId": "player", "pid": 1, "attributes": {"volume": 11}}},
        {"after": {"call": "de.Telvaro.globaloverlay.Hide"},
         "change-view": {"uuid": "one", "title": "Other song", "attributes": {"gain": 0.5}}},
        {"after": {"call": "de.Telvaro.globaloverlay.Show"},
         "change-view": {"uuid": "one", "appId": "radio", "pid": 2, "processName": "tuner",
                         "record": {"info1": "on air", "sortIndex": 3}}}
    ])");
    CompositorBus::callChecked(CompositorBus::cOverlayPath, CompositorBus::cOverlay, QStringLiteral("Hide"));
    QCOMPARE(mMonitor->waitFor(QStringLiteral("views")).properties, QStringList(QStringLiteral("views")));
    const View song = CompositorBus::views().constFirst();
    QCOMPARE(song.info1, QStringLiteral("Other song"));
    QCOMPARE(song.info2, QStringLiteral("player"));
    QCOMPARE(song.attributes.value(QStringLiteral("title")), QVariant(QStringLiteral("Other song")));
    QCOMPARE(song.attributes.value(QStringLiteral("gain")), QVariant(0.5));
    QVERIFY(!song.attributes.contains(QStringLiteral("volume")));

    QCOMPARE(CompositorBus::errorOf(showOverlay()), QString());
    mMonitor->waitFor(QStringLiteral("views"));
    const View radio = CompositorBus::views().constFirst();
    QCOMPARE(radio.uuid, QStringLiteral("one"));
    QCOMPARE(radio.appId, QStringLiteral("radio"));
    QCOMPARE(radio.pid, 2U);
    QCOMPARE(radio.sortIndex, 3U);
    QCOMPARE(radio.info1, QStringLiteral("on air"));
    QCOMPARE(radio.info2, QStringLiteral("tuner"));
    QCOMPARE(radio.attributes.value(QStringLiteral("title")), QVariant(QStringLiteral("Other song")));
}

void CompositorScriptTest::viewsAreArranged()
{
    play(R"([
        {"add-view": {"uuid": "one", "appId": "app", "pid": 1}},
        {"add-view": {"uuid": "two", "appId": "app", "pid": 1}},
        {"add-view": {"uuid": "three", "appId": "app", "pid": 1}},
        {"after": {"call": "de.Telvaro.globaloverlay.Hide"}, "order-views": ["three", "one"]}
    ])");
    CompositorBus::callChecked(CompositorBus::cOverlayPath, CompositorBus::cOverlay, QStringLiteral("Hide"));
    mMonitor->waitFor(QStringLiteral("views"));
    QCOMPARE(uuidsOf(CompositorBus::views()),
             QStringList({QStringLiteral("three"), QStringLiteral("two"), QStringLiteral("one")}));
    QCOMPARE(CompositorBus::currentView(), QStringLiteral("three"));
}

void CompositorScriptTest::anyTextCanBeTheCurrentView()
{
    play(R"([
        {"add-view": {"uuid": "one", "appId": "app", "pid": 1}},
        {"current-view": ""},
        {"after": {"call": "de.Telvaro.globaloverlay.Hide"}, "current-view": "home"},
        {"after": {"call": "de.Telvaro.globaloverlay.Show"}, "current-view": "one"}
    ])");
    QCOMPARE(CompositorBus::currentView(), QString());
    QCOMPARE(CompositorBus::views().constFirst().info3, QStringLiteral("background"));
    CompositorBus::callChecked(CompositorBus::cOverlayPath, CompositorBus::cOverlay, QStringLiteral("Hide"));
    QCOMPARE(mMonitor->waitFor(QStringLiteral("currentView")).currentView, QStringLiteral("home"));
    QCOMPARE(CompositorBus::errorOf(showOverlay()), QString());
    QCOMPARE(mMonitor->waitFor(QStringLiteral("currentView")).currentView, QStringLiteral("one"));
    QCOMPARE(CompositorBus::views().constFirst().info3, QStringLiteral("current"));
}

void CompositorScriptTest::aPropertyChangesAndIsSignalled_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("property");
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QVariant>("value");
    using namespace CompositorBus;
    QTest::newRow("text") << cScreenPath << QStringLiteral("de.Telvaro.screen.orientation") << QByteArray("\"270\"")
                          << QVariant(QStringLiteral("270"));
    QTest::newRow("bool") << cScreenPath << QStringLiteral("de.Telvaro.screen.fullScreen") << QByteArray("true")
                          << QVariant(true);
    QTest::newRow("other bool") << cScreenPath << QStringLiteral("de.Telvaro.screen.screenSaverEnabled")
                                << QByteArray("false") << QVariant(false);
    QTest::newRow("number") << cScreenPath << QStringLiteral("de.Telvaro.screen.screenSaverTimeoutSeconds")
                            << QByteArray("17") << QVariant(17);
    QTest::newRow("current view") << cTaskSwitcherPath << QStringLiteral("de.Telvaro.taskswitcher.currentView")
                                  << QByteArray("\"one\"") << QVariant(QStringLiteral("one"));
}

void CompositorScriptTest::aPropertyChangesAndIsSignalled()
{
    QFETCH(QString, path);
    QFETCH(QString, property);
    QFETCH(QByteArray, json);
    QFETCH(QVariant, value);
    const QString interface = property.section(QLatin1Char('.'), 0, -2);
    const QString name = property.section(QLatin1Char('.'), -1);
    play(R"([
        {"add-view": {"uuid": "one", "appId": "app", "pid": 1}},
        {"add-view": {"uuid": "two", "appId": "app", "pid": 1}},
        {"after": {"call": "de.Telvaro.globaloverlay.Hide"}, "set": {")"
         + property.toUtf8() + "\": " + json + "}}]");
    QVERIFY(CompositorBus::get(path, interface, name) != value);
    CompositorBus::callChecked(CompositorBus::cOverlayPath, CompositorBus::cOverlay, QStringLiteral("Hide"));
    const PropertyMonitor::Change change = mMonitor->waitFor(name);
    QCOMPARE(change.interface, interface);
    QCOMPARE(change.values.value(name), value);
    QCOMPARE(CompositorBus::get(path, interface, name), value);
}

void CompositorScriptTest::theScreenSaverStartsAndEnds()
{
    play(R"([
        {"set": {"de.Telvaro.screen.screenSaverActive": true}},
        {"after": {"call": "de.Telvaro.globaloverlay.Hide"}, "set": {"de.Telvaro.screen.screenSaverActive": false}}
    ])");
    QCOMPARE(screen("screenSaverActive"), QVariant(true));
    QImage black = screenShot();
    black.fill(Qt::black);
    QCOMPARE(screenShot(), black);
    CompositorBus::callChecked(CompositorBus::cOverlayPath, CompositorBus::cOverlay, QStringLiteral("Hide"));
    QCOMPARE(mMonitor->waitFor(QStringLiteral("screenSaverActive")).values.first(), QVariant(false));
    QCOMPARE(screen("screenSaverActive"), QVariant(false));
    QVERIFY(screenShot() != black);
}

void CompositorScriptTest::theTimeoutBlanksOnlyWhereTheScriptPermitsIt()
{
    QElapsedTimer timer;
    timer.start();
    play(R"([
        {"blanking": "scripted"},
        {"set": {"de.Telvaro.screen.screenSaverTimeoutSeconds": 1}},
        {"at": 1.5, "blanking": "automatic"}
    ])");
    QCOMPARE(mMonitor->waitFor(QStringLiteral("screenSaverActive")).values.first(), QVariant(true));
    // The first timeout, after one second, has been ignored.
    QVERIFY2(timer.elapsed() >= 2000, qPrintable(QString::number(timer.elapsed())));
}

void CompositorScriptTest::aMethodIsCalled()
{
    play(R"([
        {"after": {"get": "de.Telvaro.screen.orientation"},
         "call": {"de.Telvaro.globaloverlay.Show": ["The battery is low"]}},
        {"after": {"get": "de.Telvaro.screen.orientation", "times": 2}, "call": {"de.Telvaro.globaloverlay.Hide": []}}
    ])");
    const QImage without = screenShot();
    readOrientation();
    const QImage with = screenShot();
    QVERIFY(with != without);
    readOrientation();
    QCOMPARE(screenShot().copy(0, 40, 1024, 560), without.copy(0, 40, 1024, 560));
    QVERIFY(showOverlay("The battery is low").type() == QDBusMessage::ReplyMessage);
    QCOMPARE(screenShot().copy(0, 40, 1024, 560), with.copy(0, 40, 1024, 560));
}

void CompositorScriptTest::aNotificationIsPosted()
{
    play(R"([
        {"call": {"org.freedesktop.Notifications.Notify":
            ["mail", 0, "mail-unread", "New mail", "From Ann", ["read", "Read"], {"urgency": 2}, -1]}}
    ])");
    const auto close = [] {
        return CompositorBus::call(CompositorBus::cNotificationsPath, CompositorBus::cNotifications,
                                   QStringLiteral("CloseNotification"), {1U})
            .type();
    };
    QCOMPARE(close(), QDBusMessage::ReplyMessage);
    QCOMPARE(close(), QDBusMessage::ErrorMessage);
}

void CompositorScriptTest::stepsOfOneTimeAreTakenInTheirOrder()
{
    QByteArray steps = "[";
    QStringList expected;
    for (int i = 0; i < 20; ++i) {
        const QByteArray number = QByteArray::number(i);
        steps += R"({"at": 0.2, "add-view": {"appId": "app", "pid": 1, "uuid": ")" + number + "\"}},";
        expected.append(QString::fromLatin1(number));
    }
    steps.back() = ']';
    play(steps);
    TRY_COMPARE(uuidsOf(CompositorBus::views()), expected);
}

void CompositorScriptTest::aStepWaitsForAsManyCallsAsItSays()
{
    play(R"([
        {"after": {"call": "de.Telvaro.globaloverlay.Show", "times": 3},
         "set": {"de.Telvaro.screen.orientation": "90"}},
        {"after": {"set": "de.Telvaro.screen.fullScreen"}, "set": {"de.Telvaro.screen.orientation": "180"}},
        {"after": {"interface": "org.freedesktop.Notifications"}, "set": {"de.Telvaro.screen.orientation": "270"}}
    ])");
    for (const char* const orientation : {"0", "0", "90", "90"}) {
        showOverlay();
        QCOMPARE(screen("orientation").toString(), QString::fromLatin1(orientation));
    }
    screen("fullScreen");
    QCOMPARE(screen("orientation"), QVariant(QStringLiteral("90")));
    CompositorBus::set(CompositorBus::cScreenPath, CompositorBus::cScreen, QStringLiteral("fullScreen"), true);
    QCOMPARE(screen("orientation"), QVariant(QStringLiteral("180")));
    CompositorBus::callChecked(CompositorBus::cNotificationsPath, CompositorBus::cNotifications,
                               QStringLiteral("GetCapabilities"));
    QCOMPARE(screen("orientation"), QVariant(QStringLiteral("270")));
    showOverlay();
    QCOMPARE(screen("orientation"), QVariant(QStringLiteral("270")));
}

void CompositorScriptTest::aStepWaitsForTheViewOfAnApplication()
{
    play(R"([
        {"after": {"view": "org.example.App", "times": 2},
         "add-view": {"uuid": "answer", "appId": "app", "pid": 1, "title": "Answer"}}
    ])");
    const auto client = testClient();
    client->send("open org.example.App first");
    client->waitFor("activated 1");
    client->send("title 1 another");
    client->send("open org.example.Other second");
    client->waitFor("activated 2");
    QCOMPARE(CompositorBus::views().size(), 2);
    client->send("open org.example.App third");
    TRY_COMPARE(CompositorBus::views().size(), 4);
    QCOMPARE(CompositorBus::views().last().info1, QStringLiteral("Answer"));
}

void CompositorScriptTest::aStepWaitsForATitle()
{
    play(R"([
        {"after": {"view": "org.example.App", "title": "Saved"}, "set": {"de.Telvaro.screen.orientation": "90"}},
        {"after": {"view": "org.example.App", "title": "Saved", "times": 2},
         "set": {"de.Telvaro.screen.orientation": "180"}}
    ])");
    const auto client = testClient();
    client->send("open org.example.App New");
    client->waitFor("activated 1");
    QCOMPARE(screen("orientation"), QVariant(QStringLiteral("0")));
    client->send("title 1 Saved");
    QCOMPARE(mMonitor->waitFor(QStringLiteral("orientation")).values.first(), QVariant(QStringLiteral("90")));
    client->send("title 1 Saved again");
    client->send("title 1 Saved");
    QCOMPARE(mMonitor->waitFor(QStringLiteral("orientation")).values.first(), QVariant(QStringLiteral("180")));
}

void CompositorScriptTest::aStepWaitsUntilAViewIsTheCurrentOne()
{
    play(R"([
        {"add-view": {"uuid": "one", "appId": "first", "pid": 1}},
        {"add-view": {"uuid": "two", "appId": "second", "pid": 1}},
        {"after": {"current": "first", "times": 2}, "set": {"de.Telvaro.screen.orientation": "90"}}
    ])");
    QCOMPARE(screen("orientation"), QVariant(QStringLiteral("0")));
    CompositorBus::set(CompositorBus::cTaskSwitcherPath, CompositorBus::cTaskSwitcher, QStringLiteral("currentView"),
                       QStringLiteral("one"));
    QCOMPARE(screen("orientation"), QVariant(QStringLiteral("90")));
}

void CompositorScriptTest::aStepWaitsForTheEndOfAView()
{
    play(R"([{"after": {"gone": "org.example.App"}, "set": {"de.Telvaro.screen.orientation": "90"}}])");
    const auto client = testClient();
    client->send("open org.example.App Window");
    client->waitFor("activated 1");
    client->send("title 1 Other");
    TRY_COMPARE(CompositorBus::views().first().info1, QStringLiteral("Other"));
    QCOMPARE(screen("orientation"), QVariant(QStringLiteral("0")));
    client->send("close 1");
    QCOMPARE(mMonitor->waitFor(QStringLiteral("orientation")).values.first(), QVariant(QStringLiteral("90")));
}

void CompositorScriptTest::aStepWaitsUntilAViewDoesNotRespond()
{
    play(R"([
        {"add-view": {"uuid": "one", "appId": "app", "pid": 1}},
        {"after": {"unresponsive": "app"}, "set": {"de.Telvaro.screen.orientation": "90"}},
        {"after": {"call": "de.Telvaro.globaloverlay.Hide"}, "hang": {"view": "app"}}
    ])");
    QCOMPARE(screen("orientation"), QVariant(QStringLiteral("0")));
    CompositorBus::callChecked(CompositorBus::cOverlayPath, CompositorBus::cOverlay, QStringLiteral("Hide"));
    QCOMPARE(mMonitor->waitFor(QStringLiteral("orientation")).values.first(), QVariant(QStringLiteral("90")));
}

void CompositorScriptTest::theTimeOfAStepThatWaitsBeginsWithTheEvent()
{
    play(R"([{"after": {"call": "de.Telvaro.globaloverlay.Show"}, "at": 0.3,
              "set": {"de.Telvaro.screen.orientation": "90"}}])");
    QElapsedTimer timer;
    timer.start();
    showOverlay();
    mMonitor->waitFor(QStringLiteral("orientation"));
    QVERIFY2(timer.elapsed() >= 299, qPrintable(QString::number(timer.elapsed())));
}

void CompositorScriptTest::whatTheScriptItselfCallsIsNoEventAndMeetsNoFault()
{
    play(R"([
        {"fault": {"interface": "de.Telvaro.globaloverlay", "silent": true}},
        {"fault": {"set": "de.Telvaro.screen.orientation", "silent": true}},
        {"after": {"call": "de.Telvaro.globaloverlay.Show"}, "set": {"de.Telvaro.screen.orientation": "90"}},
        {"call": {"de.Telvaro.globaloverlay.Show": ["text"]}},
        {"set": {"de.Telvaro.screen.orientation": "180"}}
    ])");
    QCOMPARE(screen("orientation"), QVariant(QStringLiteral("180")));
    callLater(CompositorBus::cOverlayPath, CompositorBus::cOverlay, QStringLiteral("Show"), {QString()});
    TRY_COMPARE(screen("orientation"), QVariant(QStringLiteral("90")));
}

void CompositorScriptTest::everyMemberOfTheInterfacesCanFail()
{
    // Each with its own name as the text.
    const QStringList members = InterfaceFiles().members();
    QVERIFY(members.size() >= 14);
    QJsonArray steps;
    for (const QString& member : members) {
        const bool isProperty = member.contains(QLatin1Char(':'));
        const QString name = QString(member).replace(QLatin1Char(':'), QLatin1Char('.'));
        steps.append(QJsonObject{{QStringLiteral("fault"),
                                  QJsonObject{{isProperty ? QStringLiteral("get") : QStringLiteral("call"), name},
                                              {QStringLiteral("error"), cError},
                                              {QStringLiteral("text"), name}}}});
    }
    play(QJsonDocument(steps).toJson());

    for (const QString& member : members) {
        const QString name = QString(member).replace(QLatin1Char(':'), QLatin1Char('.'));
        const QString interface = name.section(QLatin1Char('.'), 0, -2);
        const QString last = name.section(QLatin1Char('.'), -1);
        const QDBusMessage reply = member.contains(QLatin1Char(':'))
            ? CompositorBus::call(pathOf(interface), CompositorBus::cProperties, QStringLiteral("Get"),
                                  {interface, last})
            : CompositorBus::call(pathOf(interface), interface, last, argumentsOf(member));
        QCOMPARE(CompositorBus::errorOf(reply), cError + QStringLiteral(": ") + name);
    }
}

void CompositorScriptTest::aFaultOfAnInterfaceIsForAllItsMembers()
{
    play(R"([{"fault": {"interface": "de.Telvaro.screen", "error": "org.example.Error.Broken"}}])");
    QCOMPARE(readOrientation().errorName(), cError);
    QCOMPARE(CompositorBus::set(CompositorBus::cScreenPath, CompositorBus::cScreen, QStringLiteral("fullScreen"), true)
                 .errorName(),
             cError);
    QCOMPARE(CompositorBus::call(CompositorBus::cScreenPath, CompositorBus::cProperties, QStringLiteral("GetAll"),
                                 {CompositorBus::cScreen})
                 .errorName(),
             cError);
    QCOMPARE(CompositorBus::currentView(), QString());
    QCOMPARE(CompositorBus::errorOf(showOverlay()), QString());
}

void CompositorScriptTest::aFaultOfAReadIsAlsoForGetAll()
{
    play(R"([{"fault": {"get": "de.Telvaro.screen.orientation", "error": "org.example.Error.Broken"}}])");
    const auto getAll = [](const QString& path, const QString& interface) {
        return CompositorBus::call(path, CompositorBus::cProperties, QStringLiteral("GetAll"), {interface}).errorName();
    };
    QCOMPARE(getAll(CompositorBus::cScreenPath, CompositorBus::cScreen), cError);
    QCOMPARE(getAll(CompositorBus::cTaskSwitcherPath, CompositorBus::cTaskSwitcher), QString());
}

void CompositorScriptTest::aFaultOfAReadIsNotForAWrite()
{
    play(R"([
        {"fault": {"get": "de.Telvaro.screen.fullScreen", "error": "org.example.Error.Broken", "text": "read"}},
        {"fault": {"set": "de.Telvaro.screen.orientation", "error": "org.example.Error.Broken", "text": "write"}}
    ])");
    const auto set = [](const char* property, const QVariant& value) {
        return CompositorBus::set(CompositorBus::cScreenPath, CompositorBus::cScreen, QString::fromLatin1(property),
                                  value);
    };
    QCOMPARE(set("fullScreen", true).type(), QDBusMessage::ReplyMessage);
    QCOMPARE(set("orientation", QStringLiteral("90")).errorMessage(), QStringLiteral("write"));
    QCOMPARE(readOrientation().type(), QDBusMessage::ReplyMessage);
    QVERIFY_EXCEPTION_THROWN(screen("fullScreen"), std::runtime_error);
}

void CompositorScriptTest::aFaultEndsAfterItsCalls()
{
    play(R"([{"fault": {"get": "de.Telvaro.screen.orientation", "error": "org.example.Error.Broken", "times": 2}}])");
    QCOMPARE(readOrientation().errorName(), cError);
    screen("fullScreen");
    QCOMPARE(readOrientation().errorName(), cError);
    QCOMPARE(readOrientation().type(), QDBusMessage::ReplyMessage);
}

void CompositorScriptTest::aFaultEndsAfterItsTime()
{
    play(R"([{"after": {"call": "de.Telvaro.globaloverlay.Hide"},
              "fault": {"get": "de.Telvaro.screen.orientation", "error": "org.example.Error.Broken",
                        "seconds": 0.5}}])");
    QCOMPARE(readOrientation().type(), QDBusMessage::ReplyMessage);
    QElapsedTimer timer;
    timer.start();
    CompositorBus::callChecked(CompositorBus::cOverlayPath, CompositorBus::cOverlay, QStringLiteral("Hide"));
    const QString first = readOrientation().errorName();
    // On a slow machine the fault may be over already, which is correct, too.
    QVERIFY(first == cError || timer.elapsed() >= 499);
    TRY_COMPARE(readOrientation().type(), QDBusMessage::ReplyMessage);
    QVERIFY2(timer.elapsed() >= 499, qPrintable(QString::number(timer.elapsed())));
}

void CompositorScriptTest::aFaultEndsWhenTheScriptSaysSo()
{
    play(R"([
        {"fault": {"get": "de.Telvaro.screen.orientation", "error": "org.example.Error.Broken"}},
        {"fault": {"set": "de.Telvaro.screen.orientation", "error": "org.example.Error.Broken"}},
        {"after": {"call": "de.Telvaro.globaloverlay.Show"}, "end-fault": {"get": "de.Telvaro.screen.orientation"}}
    ])");
    QCOMPARE(readOrientation().errorName(), cError);
    showOverlay();
    QCOMPARE(readOrientation().type(), QDBusMessage::ReplyMessage);
    QCOMPARE(CompositorBus::set(CompositorBus::cScreenPath, CompositorBus::cScreen, QStringLiteral("orientation"),
                                QStringLiteral("90"))
                 .errorName(),
             cError);
}

void CompositorScriptTest::ofTwoFaultsTheLaterOneCounts()
{
    play(R"([
        {"fault": {"get": "de.Telvaro.screen.orientation", "error": "org.example.Error.Broken", "text": "first"}},
        {"fault": {"interface": "de.Telvaro.screen", "error": "org.example.Error.Broken", "text": "second", "times": 1}}
    ])");
    QCOMPARE(readOrientation().errorMessage(), QStringLiteral("second"));
    QCOMPARE(readOrientation().errorMessage(), QStringLiteral("first"));
}

void CompositorScriptTest::aDelayedAnswerIsTheRightOne_data()
{
    QTest::addColumn<QByteArray>("calls");
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("interface");
    QTest::addColumn<QString>("member");
    QTest::addColumn<QVariantList>("arguments");
    using namespace CompositorBus;
    QTest::newRow("views") << QByteArray(R"("get": "de.Telvaro.taskswitcher.views")") << cTaskSwitcherPath
                           << cProperties << QStringLiteral("Get")
                           << QVariantList{cTaskSwitcher, QStringLiteral("views")};
    QTest::newRow("all properties") << QByteArray(R"("get": "de.Telvaro.screen.fullScreen")") << cScreenPath
                                    << cProperties << QStringLiteral("GetAll") << QVariantList{cScreen};
    QTest::newRow("method without a result")
        << QByteArray(R"("call": "de.Telvaro.globaloverlay.Show")") << cOverlayPath << cOverlay
        << QStringLiteral("Show") << QVariantList{QStringLiteral("text")};
    QTest::newRow("method with several results")
        << QByteArray(R"("call": "org.freedesktop.Notifications.GetServerInformation")") << cNotificationsPath
        << cNotifications << QStringLiteral("GetServerInformation") << QVariantList{};
    QTest::newRow("method with many arguments") << QByteArray(R"("call": "org.freedesktop.Notifications.Notify")")
                                                << cNotificationsPath << cNotifications << QStringLiteral("Notify")
                                                << QVariantList{QString(),
                                                                5U,
                                                                QString(),
                                                                QStringLiteral("Summary"),
                                                                QString(),
                                                                QStringList{QStringLiteral("a"), QStringLiteral("b")},
                                                                QVariantMap{{QStringLiteral("urgency"), 1}},
                                                                0};
}

void CompositorScriptTest::aDelayedAnswerIsTheRightOne()
{
    QFETCH(QByteArray, calls);
    QFETCH(QString, path);
    QFETCH(QString, interface);
    QFETCH(QString, member);
    QFETCH(QVariantList, arguments);
    play(R"([
        {"add-view": {"uuid": "one", "appId": "app", "pid": 1, "attributes": {"a": true, "b": "c"}}},
        {"call": {"org.freedesktop.Notifications.Notify": ["", 0, "", "", "", [], {}, 0]}},
        {"fault": {)"
         + calls + R"(, "delay": 0.3, "times": 1}}])");
    // Replacing an existing notification returns its id.
    if (member == QLatin1String("Notify")) {
        arguments[1] = 1U;
    }
    QElapsedTimer timer;
    timer.start();
    const QDBusMessage delayed = CompositorBus::call(path, interface, member, arguments);
    QVERIFY2(timer.elapsed() >= 299, qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(CompositorBus::errorOf(delayed), QString());
    const QDBusMessage prompt = CompositorBus::call(path, interface, member, arguments);
    QCOMPARE(delayed.signature(), prompt.signature());
    if (member == QLatin1String("Get")) {
        const auto viewsOf = [](const QDBusMessage& reply) {
            QList<View> views;
            reply.arguments().value(0).value<QDBusVariant>().variant().value<QDBusArgument>() >> views;
            return views;
        };
        QCOMPARE(viewsOf(delayed).size(), 1);
        QCOMPARE(viewsOf(delayed).first().uuid, QStringLiteral("one"));
        QCOMPARE(viewsOf(delayed).first().attributes, viewsOf(prompt).first().attributes);
    } else if (member == QLatin1String("GetAll")) {
        QCOMPARE(qdbus_cast<QVariantMap>(delayed.arguments().value(0)),
                 qdbus_cast<QVariantMap>(prompt.arguments().value(0)));
    } else {
        QCOMPARE(delayed.arguments(), prompt.arguments());
    }
}

void CompositorScriptTest::aDelayedRefusalIsTheRightOne()
{
    play(R"([
        {"fault": {"set": "de.Telvaro.screen.orientation", "delay": 0.2, "times": 1}},
        {"fault": {"call": "org.freedesktop.Notifications.CloseNotification", "delay": 0.2, "times": 1}}
    ])");
    const auto refused = [] {
        return CompositorBus::errorOf(CompositorBus::set(CompositorBus::cScreenPath, CompositorBus::cScreen,
                                                         QStringLiteral("orientation"), QStringLiteral("45")));
    };
    const QString delayed = refused();
    QVERIFY(delayed.startsWith(QLatin1String("org.freedesktop.DBus.Error.InvalidArgs: \"45\"")));
    QCOMPARE(delayed, refused());
    const auto close = [] {
        return CompositorBus::call(CompositorBus::cNotificationsPath, CompositorBus::cNotifications,
                                   QStringLiteral("CloseNotification"), {99U});
    };
    const QDBusMessage closed = close();
    QCOMPARE(closed.type(), QDBusMessage::ErrorMessage);
    QCOMPARE(closed.signature(), close().signature());
}

void CompositorScriptTest::aDelayedErrorComesLater()
{
    play(R"([{"fault": {"get": "de.Telvaro.screen.orientation", "error": "org.example.Error.Broken", "delay": 0.3}}])");
    QElapsedTimer timer;
    timer.start();
    const QDBusMessage reply = readOrientation();
    QVERIFY2(timer.elapsed() >= 299, qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(reply.errorName(), cError);
    QCOMPARE(reply.errorMessage(), QString());
}

void CompositorScriptTest::whoWaitsForADelayedAnswerKeepsNobodyElseWaiting()
{
    play(R"([{"fault": {"set": "de.Telvaro.screen.orientation", "delay": 0.5}}])");
    QDBusPendingCall delayed = callLater(CompositorBus::cScreenPath, CompositorBus::cProperties, QStringLiteral("Set"),
                                         {CompositorBus::cScreen, QStringLiteral("orientation"),
                                          QVariant::fromValue(QDBusVariant(QStringLiteral("90")))});
    QCOMPARE(screen("orientation"), QVariant(QStringLiteral("0")));
    QVERIFY(!delayed.isFinished());
    delayed.waitForFinished();
    QVERIFY(!delayed.isError());
    QCOMPARE(screen("orientation"), QVariant(QStringLiteral("90")));
}

void CompositorScriptTest::aSilentCallIsNeverAnswered()
{
    play(R"([{"fault": {"call": "de.Telvaro.globaloverlay.Show", "silent": true, "times": 1}}])");
    constexpr int cPatience = 700;
    QDBusPendingCall silent =
        callLater(CompositorBus::cOverlayPath, CompositorBus::cOverlay, QStringLiteral("Show"), {QString()}, cPatience);
    QCOMPARE(screen("orientation"), QVariant(QStringLiteral("0")));
    QCOMPARE(CompositorBus::errorOf(showOverlay()), QString());
    silent.waitForFinished();
    QCOMPARE(silent.error().type(), QDBusError::NoReply);
}

void CompositorScriptTest::theServiceGoesAndComesBack()
{
    play(R"([
        {"after": {"call": "de.Telvaro.globaloverlay.Show"}, "service": "gone"},
        {"after": {"call": "de.Telvaro.globaloverlay.Hide"}, "service": "back"}
    ])");
    const QString service = QStringLiteral(TELVARO_SERVICE_NAME);
    QVERIFY(isOwned(service));
    QVERIFY(isOwned(cNotificationName));
    const QString owner = PrivateBus::connection().interface()->serviceOwner(service);
    QDBusServiceWatcher watcher(service, PrivateBus::connection());
    const QSignalSpy gone(&watcher, &QDBusServiceWatcher::serviceUnregistered);
    const QSignalSpy back(&watcher, &QDBusServiceWatcher::serviceRegistered);
    showOverlay();
    TRY_COMPARE(gone.count(), 1);
    QVERIFY(!isOwned(service));
    QVERIFY(!isOwned(cNotificationName));
    QCOMPARE(readOrientation().errorName(), QStringLiteral("org.freedesktop.DBus.Error.ServiceUnknown"));

    // The service is reachable only by its unique name.
    const QDBusMessage hide = QDBusMessage::createMethodCall(owner, CompositorBus::cOverlayPath,
                                                             CompositorBus::cOverlay, QStringLiteral("Hide"));
    QCOMPARE(PrivateBus::connection().call(hide).type(), QDBusMessage::ReplyMessage);
    TRY_COMPARE(back.count(), 1);
    TRY_VERIFY(isOwned(cNotificationName));
    QCOMPARE(PrivateBus::connection().interface()->serviceOwner(service).value(), owner);
    QCOMPARE(screen("orientation"), QVariant(QStringLiteral("0")));
}

void CompositorScriptTest::aFrozenCompositorAnswersWhenItHasThawed()
{
    play(R"([{"after": {"call": "de.Telvaro.globaloverlay.Show"}, "freeze": 0.6}])");
    QElapsedTimer timer;
    timer.start();
    showOverlay();
    const QDBusMessage introspection =
        CompositorBus::call(CompositorBus::cScreenPath, QStringLiteral("org.freedesktop.DBus.Introspectable"),
                            QStringLiteral("Introspect"));
    QCOMPARE(introspection.type(), QDBusMessage::ReplyMessage);
    QVERIFY2(timer.elapsed() >= 599, qPrintable(QString::number(timer.elapsed())));
}

void CompositorScriptTest::aHangingViewDoesNotRespond()
{
    // The process with the view's number is not the script's.
    play(R"([
        {"add-view": {"uuid": "one", "appId": "app", "pid": )"
         + QByteArray::number(QCoreApplication::applicationPid()) + R"(}},
        {"after": {"call": "de.Telvaro.globaloverlay.Hide"}, "hang": {"view": "app", "seconds": 0.3}}
    ])");
    CompositorBus::callChecked(CompositorBus::cOverlayPath, CompositorBus::cOverlay, QStringLiteral("Hide"));
    TRY_COMPARE(CompositorBus::views().first().info3, QStringLiteral("current unresponsive"));
    TRY_COMPARE(CompositorBus::views().first().info3, QStringLiteral("current"));
}

void CompositorScriptTest::aFrozenCompositorDoesNotBlameTheApplications()
{
    play(R"([
        {"after": {"call": "de.Telvaro.globaloverlay.Show"}, "freeze": 4.5},
        {"after": {"unresponsive": "app"}, "end": 1}
    ])");
    const auto client = testClient();
    client->send("open app Window");
    client->waitFor("activated 1");
    showOverlay();
    // The first calls may be handled before the client's pong is.
    for (int i = 0; i < 10; ++i) {
        QCOMPARE(CompositorBus::views().first().info3, QStringLiteral("current"));
    }
}

void CompositorScriptTest::aHangingApplicationIsStopped()
{
    play(R"([{"after": {"call": "de.Telvaro.globaloverlay.Hide"}, "hang": {"view": "app", "seconds": 0.3}}])");
    const auto client = testClient();
    client->send("open app Window");
    client->waitFor("activated 1");
    QElapsedTimer timer;
    timer.start();
    CompositorBus::callChecked(CompositorBus::cOverlayPath, CompositorBus::cOverlay, QStringLiteral("Hide"));
    CompositorBus::currentView();
    TRY_COMPARE(stateOf(client->processId()), 'T');
    client->send("ping");
    client->waitFor("pong");
    QVERIFY2(timer.elapsed() >= 299, qPrintable(QString::number(timer.elapsed())));
}

void CompositorScriptTest::aStoppedApplicationRunsOnAfterTheCompositorsEnd()
{
    play(R"([{"after": {"current": "app"}, "hang": {"view": "app"}}])");
    const auto client = protocolClient();
    client->send("open app Window");
    TRY_COMPARE(stateOf(client->processId()), 'T');
    QCOMPARE(mCompositor->end(), 0);
    client->waitFor("disconnected");
    // The cleanup expects a running compositor.
    mCompositor = std::make_unique<CompositorProcess>();
    play("[]");
}

void CompositorScriptTest::aRestartLosesClientsAndTheService()
{
    play(R"([
        {"add-view": {"uuid": "one", "appId": "script", "pid": 1}},
        {"call": {"org.freedesktop.Notifications.Notify": ["", 0, "", "Mail", "", [], {}, 0]}},
        {"call": {"de.Telvaro.globaloverlay.Show": ["text"]}},
        {"after": {"current": "app"}, "restart": 0.5},
        {"after": {"current": "app", "times": 2}, "set": {"de.Telvaro.screen.orientation": "90"}}
    ])");
    // Reads the properties that have changed, which the service does not live to see.
    mMonitor.reset();
    const QString service = QStringLiteral(TELVARO_SERVICE_NAME);
    const QString socket = mCompositor->runtimeDirectory() + QLatin1Char('/') + mCompositor->display();
    QDBusServiceWatcher watcher(service, PrivateBus::connection());
    const QSignalSpy gone(&watcher, &QDBusServiceWatcher::serviceUnregistered);
    const QSignalSpy back(&watcher, &QDBusServiceWatcher::serviceRegistered);

    const auto client = protocolClient();
    client->send("open app Window");
    client->waitFor("disconnected");
    QVERIFY(!QFile::exists(socket));
    TRY_COMPARE(gone.count(), 1);
    TRY_COMPARE(back.count(), 1);
    TRY_VERIFY(QFile::exists(socket));
    TRY_VERIFY(isOwned(cNotificationName));
    QCOMPARE(CompositorBus::views().size(), 0);
    QCOMPARE(CompositorBus::currentView(), QString());
    QCOMPARE(CompositorBus::call(CompositorBus::cNotificationsPath, CompositorBus::cNotifications,
                                 QStringLiteral("CloseNotification"), {1U})
                 .type(),
             QDBusMessage::ErrorMessage);

    const auto other = testClient();
    other->send("open app Window");
    other->waitFor("activated 1");
    QCOMPARE(CompositorBus::views().size(), 1);
    TRY_COMPARE(screen("orientation"), QVariant(QStringLiteral("90")));
}

void CompositorScriptTest::restartsKeepNoDescriptors()
{
    play(R"([
        {"after": {"current": "app"}, "restart": 0},
        {"after": {"current": "app", "times": 2}, "restart": 0},
        {"after": {"current": "app", "times": 3}, "restart": 0}
    ])");
    mMonitor.reset();
    QDBusServiceWatcher watcher(QStringLiteral(TELVARO_SERVICE_NAME), PrivateBus::connection());
    const QSignalSpy back(&watcher, &QDBusServiceWatcher::serviceRegistered);
    const QDir descriptors(QStringLiteral("/proc/%1/fd").arg(mCompositor->processId()));
    const auto count = [&descriptors] {
        return descriptors.entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size();
    };
    int before = 0;
    for (int restarts = 1; restarts <= 3; ++restarts) {
        const auto client = protocolClient();
        client->send("open app Window");
        client->waitFor("disconnected");
        TRY_COMPARE(back.count(), restarts);
        if (restarts == 1) {
            before = count();
        }
    }
    TRY_COMPARE(count(), before);
}

void CompositorScriptTest::anEndDuringARestartLeavesNoSocket()
{
    play(R"([{"after": {"current": "app"}, "restart": 60}])");
    mMonitor.reset();
    const auto client = protocolClient();
    client->send("open app Window");
    client->waitFor("disconnected");
    QCOMPARE(mCompositor->end(), 0);
    QCOMPARE(mCompositor->sockets(), QStringList());
    // The cleanup expects a running compositor.
    mCompositor = std::make_unique<CompositorProcess>();
    play("[]");
}

void CompositorScriptTest::theEndHasItsStatus_data()
{
    QTest::addColumn<QByteArray>("steps");
    QTest::addColumn<int>("status");
    QTest::newRow("at once") << QByteArray(R"([{"end": 3}])") << 3;
    QTest::newRow("later") << QByteArray(R"([{"at": 0.05, "end": 255}])") << 255;
    QTest::newRow("success") << QByteArray(R"([{"at": 0.05, "end": 0}])") << 0;
}

void CompositorScriptTest::theEndHasItsStatus()
{
    QFETCH(QByteArray, steps);
    QFETCH(int, status);
    write(steps);
    CompositorProcess compositor;
    QCOMPARE(compositor.runToEnd({QStringLiteral("--script"), scriptFile()}), status);
    QCOMPARE(compositor.errors(), QByteArray());
    QVERIFY(compositor.output().endsWith("\nEXIT_STATUS=" + QByteArray::number(status) + '\n'));
    QCOMPARE(compositor.sockets(), QStringList());
    // The cleanup expects a running compositor.
    play("[]");
}

void CompositorScriptTest::buttonsArePressedWhenTheirViewIsThere()
{
    play(R"([
        {"after": {"current": "app"}, "click": {"x": 300, "y": 200, "in": "view"}},
        {"after": {"current": "app"}, "type": "Hi"},
        {"after": {"current": "app"}, "key": "Shift+x"}
    ])");
    const auto client = testClient();
    client->send("open app Window");
    client->waitFor("press 1 300,200");
    client->waitFor("release 1 300,200");
    client->waitFor("keypress 1 H");
    client->waitFor("keypress 1 i");
    client->waitFor("keypress 1 X");
}

void CompositorScriptTest::aStepThatCannotBeTakenEndsTheCompositor_data()
{
    QTest::addColumn<QByteArray>("action");
    QTest::addColumn<QByteArray>("reason");
    QTest::newRow("view that is there") << QByteArray(R"("add-view": {"uuid": "one", "appId": "app", "pid": 1})")
                                        << QByteArray("there is a view \"one\" already");
    QTest::newRow("view that is not there")
        << QByteArray(R"("remove-view": "two")") << QByteArray("there is no view \"two\"");
    QTest::newRow("change of a view that is not there")
        << QByteArray(R"("change-view": {"uuid": "two", "title": "t"})") << QByteArray("there is no view \"two\"");
    QTest::newRow("order with a view that is not there")
        << QByteArray(R"("order-views": ["one", "two"])") << QByteArray("there is no view \"two\"");
    QTest::newRow("current view that is not there")
        << QByteArray(R"("set": {"de.Telvaro.taskswitcher.currentView": "two"})")
        << QByteArray("org.freedesktop.DBus.Error.InvalidArgs: there is no view \"two\"; the uuid of one of the views "
                      "is expected");
    QTest::newRow("value that is refused")
        << QByteArray(R"("set": {"de.Telvaro.screen.orientation": "45"})")
        << QByteArray("org.freedesktop.DBus.Error.InvalidArgs: \"45\" is not an orientation; one of \"0\", \"90\", "
                      "\"180\", \"270\" is expected");
    QTest::newRow("screen saver that is disabled")
        << QByteArray(R"("set": {"de.Telvaro.screen.screenSaverActive": true})")
        << QByteArray("the screen saver is disabled");
    QTest::newRow("application without a view to hang")
        << QByteArray(R"("hang": {"view": "nobody"})") << QByteArray("there is no view of the application \"nobody\"");
    QTest::newRow("tap outside") << QByteArray(R"("tap": {"x": 5000, "y": 1})")
                                 << QByteArray("the position 5000,1 is outside of the output, whose size is 1024x600");
    QTest::newRow("method that fails") << QByteArray(
        R"("call": {"de.Telvaro.screenshot.ScreenShot": ["/proc/no/such/directory"]})")
                                       << QByteArray();
}

void CompositorScriptTest::aStepThatCannotBeTakenEndsTheCompositor()
{
    QFETCH(QByteArray, action);
    QFETCH(QByteArray, reason);
    const QByteArray begin = R"([
        {"add-view": {"uuid": "one", "appId": "app", "pid": 1}},
        {"set": {"de.Telvaro.screen.screenSaverEnabled": false}},
        {)";
    const QByteArray expected = "telvaro-compositor: " + scriptFile().toLocal8Bit() + ": step 3: " + reason;
    for (const QByteArray& time : {QByteArray(), QByteArray("\"at\": 0.05, ")}) {
        write(begin + time + action + "}]");
        CompositorProcess compositor;
        QCOMPARE(compositor.runToEnd({QStringLiteral("--script"), scriptFile()}), 1);
        const QByteArray errors = compositor.errors();
        QVERIFY2(errors.startsWith(expected), errors.constData());
        QCOMPARE(errors.count('\n'), 1);
        QVERIFY(reason.isEmpty() || errors == expected + '\n');
        QCOMPARE(compositor.sockets(), QStringList());
        QCOMPARE(compositor.output().isEmpty(), time.isEmpty());
    }
    // The cleanup expects a running compositor.
    play("[]");
}

TELVARO_TEST_MAIN(CompositorScriptTest)

#include "CompositorScriptTest.moc"
