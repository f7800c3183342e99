// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "CompositorBus.h"
#include "CompositorFixture.h"
#include "NotificationClient.h"
#include "TestMain.h"
#include "VirtualDesktop.h"

#include <QDir>

/// The menu, the keys of the compositor's own and the cards' buttons, on a desktop in memory.
class CompositorMenuTest : public CompositorFixture
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void theStatusBarOpensTheMenuInWhichAClickSwitches();
    void aClickBesideTheMenuOnlyClosesIt();
    void theMenuIsUsedByKeys();
    void theMenuTakesTheWheel();
    void theMenuHasPagesWhereItHasNoRoom();
    void theMenuFollowsTheViews();
    void aRowThatMovesAwayFromTheFingerIsNotChosen();
    void altTabGoesThroughTheViewsInTheOrderOfTheirUse();
    void escapeEndsAltTabWithoutASwitch();
    void keysStepThroughTheViewsOfTheApplication();
    void aKeyOrTheMenuClosesTheView();
    void closingAViewThatDoesNotRespondEndsItsClient();
    void aKeyTurnsTheScreen();
    void aKeyTogglesFullScreen();
    void aKeyBlanksTheScreenUntilTheNextOne();
    void aKeyTakesAScreenshot();
    void theViewHearsNothingOfTheCompositorsKeys();
    void theWindowTurnsInsteadOfItsContents();
    void aCardHasAButtonThatClosesIt();
    void aCardHidesWhatIsBelowIt();
    void aCardShowsAProgress();

protected:
    void startCompositor() override;

private:
    static constexpr int cRowHeight = 36;
    /// Clicks on a row of the menu.
    void clickRow(int row);
    void click(int x, int y);
    /// The part of the picture below the status bar, whose clock goes on.
    static QImage workArea(const QImage& picture)
    {
        return picture.copy(picture.rect().adjusted(0, 34, 0, 0));
    }

    std::unique_ptr<VirtualDesktop> mDesktop;
    QTemporaryDir mHome;
};

void CompositorMenuTest::initTestCase()
{
    mDesktop = std::make_unique<VirtualDesktop>();
    QFile script(mHome.filePath(QStringLiteral("script.json")));
    QVERIFY(script.open(QIODevice::WriteOnly));
    script.write(R"([{"add-view": {"uuid": "one", "appId": "app", "pid": 1}},
                     {"add-view": {"uuid": "two", "appId": "other", "pid": 2}},
                     {"add-view": {"uuid": "three", "appId": "app", "pid": 1}}])");
}

void CompositorMenuTest::startCompositor()
{
    mCompositor->environment().insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    mCompositor->environment().insert(QStringLiteral("DISPLAY"), mDesktop->display());
    mCompositor->environment().insert(QStringLiteral("HOME"), mHome.path());
    mCompositor->environment().remove(QStringLiteral("XDG_CONFIG_HOME"));
    mCompositor->start({QStringLiteral("--script"), mHome.filePath(QStringLiteral("script.json"))});
    mDesktop->movePointer(5, 595);
}

void CompositorMenuTest::click(int x, int y)
{
    mDesktop->movePointer(x, y);
    mDesktop->click();
}

void CompositorMenuTest::clickRow(int row)
{
    click(200, 66 + row * cRowHeight);
}

void CompositorMenuTest::theStatusBarOpensTheMenuInWhichAClickSwitches()
{
    QCOMPARE(CompositorBus::currentView(), QStringLiteral("three"));
    click(300, 10);
    clickRow(2);
    TRY_COMPARE(CompositorBus::currentView(), QStringLiteral("one"));
    click(300, 10);
    clickRow(1);
    TRY_COMPARE(CompositorBus::currentView(), QStringLiteral("three"));
}

void CompositorMenuTest::aClickBesideTheMenuOnlyClosesIt()
{
    const QImage before = workArea(screenShot());
    click(300, 10);
    TRY_VERIFY(workArea(screenShot()) != before);
    click(900, 300);
    TRY_COMPARE(workArea(screenShot()), before);
    QCOMPARE(CompositorBus::currentView(), QStringLiteral("three"));
}

void CompositorMenuTest::theMenuIsUsedByKeys()
{
    mDesktop->key(QStringLiteral("F1"));
    mDesktop->key(QStringLiteral("Down"));
    mDesktop->key(QStringLiteral("Down"));
    mDesktop->key(QStringLiteral("Up"));
    mDesktop->key(QStringLiteral("Return"));
    TRY_COMPARE(CompositorBus::currentView(), QStringLiteral("two"));
    // From the first row to the last, which blanks the screen.
    mDesktop->key(QStringLiteral("F1"));
    mDesktop->key(QStringLiteral("Up"));
    mDesktop->key(QStringLiteral("Return"));
    TRY_VERIFY(
        CompositorBus::get(CompositorBus::cScreenPath, CompositorBus::cScreen, QStringLiteral("screenSaverActive"))
            .toBool());
}

void CompositorMenuTest::theMenuTakesTheWheel()
{
    mDesktop->key(QStringLiteral("F1"));
    mDesktop->click(5);
    // The horizontal wheel selects nothing.
    mDesktop->click(6);
    mDesktop->click(7);
    mDesktop->click(7);
    mDesktop->key(QStringLiteral("Return"));
    TRY_COMPARE(CompositorBus::currentView(), QStringLiteral("two"));
}

void CompositorMenuTest::theMenuHasPagesWhereItHasNoRoom()
{
    // Upright there is no less room, so the window becomes small: six rows and the one that leads to more.
    mCompositor->end();
    mCompositor = std::make_unique<CompositorProcess>();
    mCompositor->environment().insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    mCompositor->environment().insert(QStringLiteral("DISPLAY"), mDesktop->display());
    mCompositor->start({QStringLiteral("--size"), QStringLiteral("400x320"), QStringLiteral("--script"),
                        mHome.filePath(QStringLiteral("script.json"))});
    click(300, 10);
    clickRow(6);
    // The second page begins with the seventh row: previous view, next and previous of the application.
    clickRow(1);
    TRY_COMPARE(CompositorBus::currentView(), QStringLiteral("one"));
}

void CompositorMenuTest::theMenuFollowsTheViews()
{
    mDesktop->key(QStringLiteral("F1"));
    CompositorBus::set(CompositorBus::cTaskSwitcherPath, CompositorBus::cTaskSwitcher, QStringLiteral("currentView"),
                       QStringLiteral("one"));
    TRY_COMPARE(CompositorBus::currentView(), QStringLiteral("one"));
    // The selection stays on "three", which is the second now.
    mDesktop->key(QStringLiteral("Down"));
    mDesktop->key(QStringLiteral("Return"));
    TRY_COMPARE(CompositorBus::currentView(), QStringLiteral("two"));
}

void CompositorMenuTest::aRowThatMovesAwayFromTheFingerIsNotChosen()
{
    mDesktop->key(QStringLiteral("F1"));
    const QImage before = workArea(screenShot());
    mDesktop->movePointer(200, 66 + cRowHeight);
    mDesktop->press();
    // The row of "two" is selected.
    TRY_VERIFY(workArea(screenShot()) != before);
    CompositorBus::set(CompositorBus::cTaskSwitcherPath, CompositorBus::cTaskSwitcher, QStringLiteral("currentView"),
                       QStringLiteral("one"));
    // Now "three" is there. The menu stays open, with its selection.
    mDesktop->release();
    mDesktop->key(QStringLiteral("Return"));
    TRY_COMPARE(CompositorBus::currentView(), QStringLiteral("two"));
}

void CompositorMenuTest::altTabGoesThroughTheViewsInTheOrderOfTheirUse()
{
    mDesktop->key(QStringLiteral("alt+Tab"));
    TRY_COMPARE(CompositorBus::currentView(), QStringLiteral("two"));
    mDesktop->key(QStringLiteral("alt+Tab"));
    TRY_COMPARE(CompositorBus::currentView(), QStringLiteral("three"));
    mDesktop->keyDown(QStringLiteral("alt"));
    mDesktop->key(QStringLiteral("Tab"));
    mDesktop->key(QStringLiteral("Tab"));
    QCOMPARE(CompositorBus::currentView(), QStringLiteral("three"));
    mDesktop->keyUp(QStringLiteral("alt"));
    TRY_COMPARE(CompositorBus::currentView(), QStringLiteral("one"));
    mDesktop->key(QStringLiteral("alt+shift+Tab"));
    TRY_COMPARE(CompositorBus::currentView(), QStringLiteral("two"));
}

void CompositorMenuTest::escapeEndsAltTabWithoutASwitch()
{
    mDesktop->keyDown(QStringLiteral("alt"));
    mDesktop->key(QStringLiteral("Tab"));
    mDesktop->key(QStringLiteral("Escape"));
    mDesktop->keyUp(QStringLiteral("alt"));
    // What comes next finds the view that was current before.
    mDesktop->key(QStringLiteral("alt+Tab"));
    TRY_COMPARE(CompositorBus::currentView(), QStringLiteral("two"));
}

void CompositorMenuTest::keysStepThroughTheViewsOfTheApplication()
{
    mDesktop->key(QStringLiteral("ctrl+alt+Next"));
    TRY_COMPARE(CompositorBus::currentView(), QStringLiteral("one"));
    mDesktop->key(QStringLiteral("ctrl+alt+Prior"));
    TRY_COMPARE(CompositorBus::currentView(), QStringLiteral("three"));
    mDesktop->key(QStringLiteral("ctrl+alt+Prior"));
    TRY_COMPARE(CompositorBus::currentView(), QStringLiteral("one"));
}

void CompositorMenuTest::aKeyOrTheMenuClosesTheView()
{
    const auto client = testClient();
    client->send("open a First");
    client->waitFor("activated 1");
    client->send("open a Second");
    client->waitFor("activated 2");
    mDesktop->key(QStringLiteral("ctrl+alt+w"));
    client->waitFor("closed 2");
    client->waitFor("activated 1");
    click(300, 10);
    click(386, 66);
    client->waitFor("closed 1");
    TRY_COMPARE(CompositorBus::views().size(), 3);
}

void CompositorMenuTest::closingAViewThatDoesNotRespondEndsItsClient()
{
    const auto hung = testClient();
    hung->send("open a Hung");
    hung->waitFor("activated 1");
    const auto other = testClient();
    other->send("open b Other");
    other->waitFor("activated 1");
    const QString uuid = CompositorBus::viewWithTitle(QStringLiteral("Hung")).uuid;
    hung->freeze();
    CompositorBus::set(CompositorBus::cTaskSwitcherPath, CompositorBus::cTaskSwitcher, QStringLiteral("currentView"),
                       uuid);
    const auto isResponding = [] {
        return CompositorBus::viewWithTitle(QStringLiteral("Hung")).attributes.value(QStringLiteral("responding"));
    };
    TRY_COMPARE(isResponding(), QVariant(false));
    mDesktop->key(QStringLiteral("ctrl+alt+w"));
    TRY_VERIFY(!hung->isRunning());
    TRY_COMPARE(CompositorBus::views().size(), 4);
    QVERIFY(other->isRunning());
}

void CompositorMenuTest::aKeyTurnsTheScreen()
{
    for (const char* const orientation : {"90", "180", "270", "0"}) {
        mDesktop->key(QStringLiteral("ctrl+alt+r"));
        QCOMPARE(mMonitor->waitFor(QStringLiteral("orientation")).values.value(QStringLiteral("orientation")),
                 QVariant(QString::fromLatin1(orientation)));
    }
}

void CompositorMenuTest::aKeyTogglesFullScreen()
{
    for (const bool isFullScreen : {true, false}) {
        mDesktop->key(QStringLiteral("ctrl+alt+f"));
        QCOMPARE(mMonitor->waitFor(QStringLiteral("fullScreen")).values.value(QStringLiteral("fullScreen")),
                 QVariant(isFullScreen));
    }
}

void CompositorMenuTest::aKeyBlanksTheScreenUntilTheNextOne()
{
    const auto isActive = [] {
        return CompositorBus::get(CompositorBus::cScreenPath, CompositorBus::cScreen,
                                  QStringLiteral("screenSaverActive"))
            .toBool();
    };
    // The releases of the three keys follow the press that blanks.
    mDesktop->key(QStringLiteral("ctrl+alt+b"));
    TRY_VERIFY(isActive());
    mDesktop->keyUp(QStringLiteral("alt"));
    QVERIFY(isActive());
    mDesktop->key(QStringLiteral("a"));
    TRY_VERIFY(!isActive());
}

void CompositorMenuTest::aKeyTakesAScreenshot()
{
    QDir pictures(mHome.filePath(QStringLiteral("Pictures")));
    NotificationClient notifications;
    const QImage expected = workArea(screenShot());
    mDesktop->key(QStringLiteral("ctrl+alt+p"));
    TRY_COMPARE(pictures.entryList(QDir::Files).size(), 1);
    const QString file = pictures.filePath(pictures.entryList(QDir::Files).constFirst());
    QImage image;
    TRY_VERIFY(image.load(file));
    QCOMPARE(workArea(image.convertToFormat(QImage::Format_RGB32)), expected);
    // A card says so, below which the picture has nothing.
    TRY_VERIFY(workArea(screenShot()) != expected);
}

void CompositorMenuTest::theViewHearsNothingOfTheCompositorsKeys()
{
    const auto client = testClient();
    client->send("open a Window");
    client->waitFor("activated 1");
    client->takeEvents();
    mDesktop->key(QStringLiteral("F1"));
    mDesktop->key(QStringLiteral("x"));
    mDesktop->key(QStringLiteral("Escape"));
    mDesktop->key(QStringLiteral("z"));
    const QList<QByteArray> events = client->takeEventsUntil("keyrelease 1 z");
    QList<QByteArray> keys;
    for (const QByteArray& event : events) {
        if (event.startsWith("key")) {
            keys.append(event);
        }
    }
    QCOMPARE(keys, QList<QByteArray>({"keypress 1 z", "keyrelease 1 z"}));
}

void CompositorMenuTest::theWindowTurnsInsteadOfItsContents()
{
    mCompositor->end();
    mCompositor = std::make_unique<CompositorProcess>();
    mCompositor->environment().insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    mCompositor->environment().insert(QStringLiteral("DISPLAY"), mDesktop->display());
    mCompositor->start(
        {QStringLiteral("--turn-window"), QStringLiteral("--script"), mHome.filePath(QStringLiteral("script.json"))});
    CompositorBus::set(CompositorBus::cScreenPath, CompositorBus::cScreen, QStringLiteral("orientation"),
                       QStringLiteral("90"));
    // The picture is the device's, whose contents are turned.
    QCOMPARE(screenShot().size(), QSize(1024, 600));
    // The menu is where it is in a window that is 600 pixels wide and upright.
    click(300, 10);
    clickRow(1);
    TRY_COMPARE(CompositorBus::currentView(), QStringLiteral("two"));
}

void CompositorMenuTest::aCardHasAButtonThatClosesIt()
{
    NotificationClient notifications;
    NotificationClient::Content content;
    content.actions = QStringList{QStringLiteral("default"), QStringLiteral("Open")};
    const uint id = NotificationClient::notify(content);
    click(994, 64);
    QCOMPARE(notifications.waitForEvent(), QStringLiteral("closed %1 2").arg(id));
    QCOMPARE(notifications.takeEvents(), QStringList());
}

void CompositorMenuTest::aCardHidesWhatIsBelowIt()
{
    const auto cardColour = [this] {
        NotificationClient::notify({});
        const QImage image = screenShot();
        return image.pixelColor(700, 50);
    };
    const QColor overDarkness = cardColour();
    const auto client = testClient();
    client->send("open a Window");
    client->waitFor("activated 1");
    TRY_COMPARE(CompositorBus::views().size(), 4);
    QCOMPARE(cardColour(), overDarkness);
}

void CompositorMenuTest::aCardShowsAProgress()
{
    NotificationClient::Content content;
    content.hints.insert(QStringLiteral("value"), 25);
    NotificationClient::notify(content);
    const QImage quarter = screenShot();
    content.hints.insert(QStringLiteral("value"), 75);
    content.replacesId = 1;
    NotificationClient::notify(content);
    const QImage most = screenShot();
    // The coloured part reaches the middle of the card in one of the pictures.
    const auto colouredPixels = [](const QImage& image) {
        int count = 0;
        for (int y = 34; y < 150; ++y) {
            for (int x = 653; x < 1011; ++x) {
                count += image.pixelColor(x, y) == QColor(0x4f, 0xa8, 0xe8) ? 1 : 0;
            }
        }
        return count;
    };
    QVERIFY(colouredPixels(quarter) > 0);
    const double ratio = double(colouredPixels(most)) / colouredPixels(quarter);
    QVERIFY2(ratio > 2.8 && ratio < 3.3, qPrintable(QString::number(ratio)));
}

TELVARO_TEST_MAIN(CompositorMenuTest)

#include "CompositorMenuTest.moc"
