// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "CompositorBus.h"
#include "CompositorFixture.h"
#include "NotificationClient.h"
#include "TestMain.h"
#include "VirtualDesktop.h"

/// Mouse and keyboard input on a virtual desktop.
class CompositorInputTest : public CompositorFixture
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void clicksReachTheCurrentView();
    void clicksFollowTheTurn_data();
    void clicksFollowTheTurn();
    void keysReachTheCurrentView();
    void theWheelReachesTheCurrentView();
    void aPressedButtonKeepsThePointer();
    void aTurnOfTheScreenEndsThePress();
    void menusOpenAndClose();
    void menusStayOnTheOutput();
    void comboBoxesWork();
    void aDialogTakesTheInput();
    void inputFollowsTheSwitch();
    void anActionButtonInvokesItsAction();
    void aResidentNotificationStays();
    void aClickOnACardDismissesIt();
    void aClickOnACardIsTheDefaultAction();
    void aCardTakesTheClickFromTheView();
    void inputEndsTheScreenSaverAndDoesNothingElse_data();
    void inputEndsTheScreenSaverAndDoesNothingElse();
    void aKeyEndsTheScreenSaver();
    void theScreenSaverWaitsForTheEndOfInput();
    void clicksAndKeysReachTheViewBelowTheOverlay();
    void aHungClientStaysConnectedWhateverTheInput();

protected:
    void startCompositor() override;

private:
    std::unique_ptr<LineClient> openWindow();
    /// Waits until the compositor has the client's buffer of this size.
    void waitForSize(const QByteArray& size, const QString& title = QStringLiteral("Window"));
    void setScreen(const QString& property, const QVariant& value);

    std::unique_ptr<VirtualDesktop> mDesktop;
};

void CompositorInputTest::initTestCase()
{
    mDesktop = std::make_unique<VirtualDesktop>();
}

void CompositorInputTest::startCompositor()
{
    mCompositor->environment().insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    mCompositor->environment().insert(QStringLiteral("DISPLAY"), mDesktop->display());
    mCompositor->start();
    // Outside of every area that a test clicks.
    mDesktop->movePointer(5, 595);
}

std::unique_ptr<LineClient> CompositorInputTest::openWindow()
{
    auto client = testClient();
    client->send("open a Window");
    client->waitFor("activated 1");
    waitForSize("1024x566");
    return client;
}

void CompositorInputTest::waitForSize(const QByteArray& size, const QString& title)
{
    const auto current = [&title] {
        const QVariantMap attributes = CompositorBus::viewWithTitle(title).attributes;
        return QByteArray::number(attributes.value(QStringLiteral("width")).toInt()) + 'x'
            + QByteArray::number(attributes.value(QStringLiteral("height")).toInt());
    };
    TRY_COMPARE(current(), size);
    // Input regions are applied when the window is painted.
    screenShot();
}

void CompositorInputTest::setScreen(const QString& property, const QVariant& value)
{
    CompositorBus::set(CompositorBus::cScreenPath, CompositorBus::cScreen, property, value);
}

void CompositorInputTest::clicksReachTheCurrentView()
{
    const auto client = openWindow();
    mDesktop->movePointer(500, 400);
    mDesktop->click();
    QCOMPARE(client->waitFor("press 1"), QByteArray("500,366"));
    QCOMPARE(client->waitFor("release 1"), QByteArray("500,366"));
}

void CompositorInputTest::clicksFollowTheTurn_data()
{
    QTest::addColumn<QString>("orientation");
    QTest::addColumn<QByteArray>("size");
    QTest::addColumn<QByteArray>("position");
    // The desktop's pixel 700,250, seen in the turned output and below its status bar.
    QTest::newRow("90") << QStringLiteral("90") << QByteArray("600x990") << QByteArray("250,289");
    QTest::newRow("180") << QStringLiteral("180") << QByteArray("1024x566") << QByteArray("323,315");
    QTest::newRow("270") << QStringLiteral("270") << QByteArray("600x990") << QByteArray("349,666");
}

void CompositorInputTest::clicksFollowTheTurn()
{
    QFETCH(QString, orientation);
    QFETCH(QByteArray, size);
    QFETCH(QByteArray, position);
    const auto client = openWindow();
    setScreen(QStringLiteral("orientation"), orientation);
    waitForSize(size);
    mDesktop->movePointer(700, 250);
    mDesktop->click();
    const QList<QByteArray> place = client->waitFor("press 1").split(',');
    const QList<QByteArray> wanted = position.split(',');
    // A pixel's middle may round to either side.
    QVERIFY(qAbs(place.at(0).toInt() - wanted.at(0).toInt()) <= 1);
    QVERIFY(qAbs(place.at(1).toInt() - wanted.at(1).toInt()) <= 1);
}

void CompositorInputTest::keysReachTheCurrentView()
{
    const auto client = openWindow();
    mDesktop->key(QStringLiteral("a"));
    client->waitFor("keypress 1 a");
    client->waitFor("keyrelease 1 a");
    mDesktop->key(QStringLiteral("shift+b"));
    client->waitFor("keypress 1 B");
    mDesktop->key(QStringLiteral("7"));
    client->waitFor("keypress 1 7");
}

void CompositorInputTest::theWheelReachesTheCurrentView()
{
    const auto client = openWindow();
    mDesktop->movePointer(500, 400);
    mDesktop->click(4);
    QCOMPARE(client->waitFor("wheel 1"), QByteArray("120"));
    mDesktop->click(5);
    QCOMPARE(client->waitFor("wheel 1"), QByteArray("-120"));
}

void CompositorInputTest::aPressedButtonKeepsThePointer()
{
    const auto client = openWindow();
    mDesktop->movePointer(500, 400);
    mDesktop->press();
    client->waitFor("press 1 500,366");
    mDesktop->movePointer(400, 10);
    mDesktop->release();
    QCOMPARE(client->waitFor("release 1"), QByteArray("400,-24"));
}

void CompositorInputTest::aTurnOfTheScreenEndsThePress()
{
    const auto client = openWindow();
    mDesktop->movePointer(500, 400);
    mDesktop->press();
    client->waitFor("press 1 500,366");
    setScreen(QStringLiteral("orientation"), QStringLiteral("180"));
    client->takeEvents();
    mDesktop->movePointer(400, 300);
    mDesktop->release();
    mDesktop->key(QStringLiteral("z"));
    for (const QByteArray& event : client->takeEventsUntil("keypress 1 z")) {
        QVERIFY2(!event.startsWith("release"), event.constData());
    }
    mDesktop->click();
    client->waitFor("press 1 ");
    client->waitFor("release 1 ");
}

void CompositorInputTest::menusOpenAndClose()
{
    const auto client = openWindow();
    mDesktop->movePointer(20, 46);
    mDesktop->click();
    client->waitFor("menu 1");
    QCOMPARE(CompositorBus::views().size(), 1);
    // The menu hangs below its title: "Open" is its second line.
    TRY_COMPARE(screenShot().pixelColor(60, 100), QColor(Qt::white));
    mDesktop->movePointer(40, 90);
    mDesktop->click();
    client->waitFor("menuclosed 1");
    client->waitFor("action 1 Open");

    mDesktop->movePointer(20, 46);
    mDesktop->click();
    client->waitFor("menu 1");
    mDesktop->key(QStringLiteral("Escape"));
    client->waitFor("menuclosed 1");

    mDesktop->click();
    client->waitFor("menu 1");
    mDesktop->movePointer(500, 10);
    mDesktop->click();
    client->waitFor("menuclosed 1");
}

void CompositorInputTest::menusStayOnTheOutput()
{
    // Qt creates xdg_popups only after an input event, whose serial they need.
    setScreen(QStringLiteral("orientation"), QStringLiteral("90"));
    const auto client = testClient();
    client->send("open a Window");
    client->waitFor("activated 1");
    waitForSize("600x990");
    mDesktop->movePointer(978, 20);
    mDesktop->click();
    client->waitFor("menu 1");
    TRY_COMPARE(screenShot().pixelColor(1023 - 100, 60), QColor(Qt::white));
}

void CompositorInputTest::comboBoxesWork()
{
    const auto client = openWindow();
    mDesktop->movePointer(60, 110);
    mDesktop->click();
    TRY_VERIFY(screenShot().pixelColor(120, 140) != QColor::fromHsv(67, 60, 235));
    mDesktop->key(QStringLiteral("Down"));
    mDesktop->key(QStringLiteral("Down"));
    mDesktop->key(QStringLiteral("Return"));
    QCOMPARE(client->waitFor("chosen 1"), QByteArray("Three"));
    QCOMPARE(CompositorBus::views().size(), 1);
}

void CompositorInputTest::aDialogTakesTheInput()
{
    const auto client = openWindow();
    client->send("dialog 1 Question");
    TRY_COMPARE(CompositorBus::views().size(), 2);
    client->waitFor("deactivated 1");
    // The window beneath receives no event.
    mDesktop->movePointer(100, 500);
    mDesktop->click();
    mDesktop->key(QStringLiteral("Return"));
    for (const QByteArray& event : client->takeEventsUntil("dialog 1 1")) {
        QVERIFY2(!event.startsWith("press"), event.constData());
    }
    client->waitFor("activated 1");
    TRY_COMPARE(CompositorBus::views().size(), 1);
}

void CompositorInputTest::inputFollowsTheSwitch()
{
    const auto client = openWindow();
    client->send("open a Second");
    client->waitFor("activated 2");
    waitForSize("1024x566", QStringLiteral("Second"));
    mDesktop->movePointer(500, 400);
    mDesktop->click();
    client->waitFor("press 2");
    mDesktop->key(QStringLiteral("a"));
    client->waitFor("keypress 2 a");
    CompositorBus::set(CompositorBus::cTaskSwitcherPath, CompositorBus::cTaskSwitcher, QStringLiteral("currentView"),
                       CompositorBus::viewWithTitle(QStringLiteral("Window")).uuid);
    client->waitFor("activated 1");
    // The pointer has not moved but is over a different window now.
    mDesktop->click();
    client->waitFor("press 1 500,366");
    mDesktop->key(QStringLiteral("b"));
    client->waitFor("keypress 1 b");
}

void CompositorInputTest::anActionButtonInvokesItsAction()
{
    NotificationClient notifications;
    NotificationClient::Content content;
    content.actions =
        QStringList{QStringLiteral("yes"), QStringLiteral("Yes"), QStringLiteral("no"), QStringLiteral("No")};
    const uint id = NotificationClient::notify(content);
    mDesktop->movePointer(920, 110);
    mDesktop->click();
    QCOMPARE(notifications.waitForEvent(), QStringLiteral("action %1 no").arg(id));
    QCOMPARE(notifications.waitForEvent(), QStringLiteral("closed %1 2").arg(id));
    QCOMPARE(notifications.takeEvents(), QStringList());
}

void CompositorInputTest::aResidentNotificationStays()
{
    NotificationClient notifications;
    NotificationClient::Content content;
    content.actions = QStringList{QStringLiteral("yes"), QStringLiteral("Yes")};
    content.hints.insert(QStringLiteral("resident"), true);
    const uint id = NotificationClient::notify(content);
    mDesktop->movePointer(830, 110);
    mDesktop->click();
    mDesktop->click();
    QCOMPARE(notifications.waitForEvent(), QStringLiteral("action %1 yes").arg(id));
    QCOMPARE(notifications.waitForEvent(), QStringLiteral("action %1 yes").arg(id));
    QCOMPARE(NotificationClient::close(id), QString());
}

void CompositorInputTest::aClickOnACardDismissesIt()
{
    NotificationClient notifications;
    NotificationClient::Content content;
    content.actions = QStringList{QStringLiteral("yes"), QStringLiteral("Yes")};
    const uint id = NotificationClient::notify(content);
    mDesktop->movePointer(700, 60);
    mDesktop->click();
    QCOMPARE(notifications.waitForEvent(), QStringLiteral("closed %1 2").arg(id));
    QCOMPARE(notifications.takeEvents(), QStringList());
}

void CompositorInputTest::aClickOnACardIsTheDefaultAction()
{
    NotificationClient notifications;
    NotificationClient::Content content;
    content.actions = QStringList{QStringLiteral("default"), QStringLiteral("Open")};
    const uint id = NotificationClient::notify(content);
    mDesktop->movePointer(700, 60);
    mDesktop->click();
    QCOMPARE(notifications.waitForEvent(), QStringLiteral("action %1 default").arg(id));
    QCOMPARE(notifications.waitForEvent(), QStringLiteral("closed %1 2").arg(id));
}

void CompositorInputTest::aCardTakesTheClickFromTheView()
{
    const auto client = openWindow();
    client->takeEvents();
    NotificationClient notifications;
    NotificationClient::notify({});
    mDesktop->movePointer(700, 60);
    mDesktop->click();
    notifications.waitForEvent();
    // Without the card, the same place belongs to the view.
    mDesktop->click();
    QCOMPARE(client->takeEventsUntil("press 1 700,26"), QList<QByteArray>({"press 1 700,26"}));
}

void CompositorInputTest::inputEndsTheScreenSaverAndDoesNothingElse_data()
{
    QTest::addColumn<int>("button");
    QTest::newRow("click") << 1;
    QTest::newRow("wheel") << 5;
}

void CompositorInputTest::inputEndsTheScreenSaverAndDoesNothingElse()
{
    QFETCH(const int, button);
    const auto client = openWindow();
    mDesktop->movePointer(500, 400);
    setScreen(QStringLiteral("screenSaverTimeoutSeconds"), 1);
    mMonitor->waitFor(QStringLiteral("screenSaverActive"));
    client->takeEvents();
    mDesktop->click(button);
    QCOMPARE(mMonitor->waitFor(QStringLiteral("screenSaverActive")).values.value(QStringLiteral("screenSaverActive")),
             QVariant(false));
    // Events are ordered, so the key arrives after the button.
    mDesktop->key(QStringLiteral("z"));
    const QList<QByteArray> events = client->takeEventsUntil("keypress 1 z");
    QCOMPARE(events, QList<QByteArray>({"keypress 1 z"}));
}

void CompositorInputTest::aKeyEndsTheScreenSaver()
{
    const auto client = openWindow();
    setScreen(QStringLiteral("screenSaverTimeoutSeconds"), 1);
    mMonitor->waitFor(QStringLiteral("screenSaverActive"));
    client->takeEvents();
    mDesktop->key(QStringLiteral("x"));
    QCOMPARE(mMonitor->waitFor(QStringLiteral("screenSaverActive")).values.value(QStringLiteral("screenSaverActive")),
             QVariant(false));
    setScreen(QStringLiteral("screenSaverEnabled"), false);
    mDesktop->key(QStringLiteral("y"));
    QCOMPARE(client->takeEventsUntil("keypress 1 y"), QList<QByteArray>({"keypress 1 y"}));
}

void CompositorInputTest::theScreenSaverWaitsForTheEndOfInput()
{
    setScreen(QStringLiteral("screenSaverTimeoutSeconds"), 1);
    QElapsedTimer timer;
    timer.start();
    for (int x = 0; timer.elapsed() < 2000; ++x) {
        mDesktop->movePointer(100 + x % 800, 300);
    }
    QCOMPARE(
        CompositorBus::get(CompositorBus::cScreenPath, CompositorBus::cScreen, QStringLiteral("screenSaverActive")),
        QVariant(false));
    mMonitor->waitFor(QStringLiteral("screenSaverActive"));
}

void CompositorInputTest::clicksAndKeysReachTheViewBelowTheOverlay()
{
    const auto client = openWindow();
    CompositorBus::callChecked(CompositorBus::cOverlayPath, CompositorBus::cOverlay, QStringLiteral("Show"),
                               {QStringLiteral("Please wait")});
    mDesktop->movePointer(512, 300);
    mDesktop->click();
    QCOMPARE(client->waitFor("press 1"), QByteArray("512,266"));
    mDesktop->key(QStringLiteral("x"));
    client->waitFor("keypress 1 x");
}

void CompositorInputTest::aHungClientStaysConnectedWhateverTheInput()
{
    const auto client = openWindow();
    client->freeze();
    QElapsedTimer timer;
    timer.start();
    int count = 0;
    const auto isResponding = [] {
        return CompositorBus::viewWithTitle(QStringLiteral("Window")).attributes.value(QStringLiteral("responding"));
    };
    while (isResponding().toBool() && timer.elapsed() < ChildProcess::cDeadline) {
        mDesktop->movePointer(100 + ++count % 800, 300);
    }
    QCOMPARE(isResponding(), QVariant(false));
    for (int i = 0; i < 200; ++i) {
        mDesktop->movePointer(100 + i, 300);
    }
    client->thaw();
    TRY_COMPARE(isResponding(), QVariant(true));
    mDesktop->movePointer(600, 300);
    mDesktop->click();
    QCOMPARE(client->waitFor("press 1"), QByteArray("600,266"));
    QVERIFY(client->isRunning());
}

TELVARO_TEST_MAIN(CompositorInputTest)

#include "CompositorInputTest.moc"
