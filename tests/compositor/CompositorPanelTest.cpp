// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "CompositorBus.h"
#include "TestMain.h"
#include "TouchFixture.h"

#include <wayland-client-protocol.h>
#include <xdg-shell-client-protocol.h>

namespace {

constexpr quint16 cConfigure = 0;
constexpr quint16 cDown = 0;
constexpr quint16 cPopupDone = 1;
const QByteArray cBar("org.example.bar");

} // namespace

/// The window of the application that --panel names.
class CompositorPanelTest : public TouchFixture
{
    Q_OBJECT

private Q_SLOTS:
    void thePanelHasAStripBesideTheViews_data();
    void thePanelHasAStripBesideTheViews();
    void thePanelChoosesItsThickness();
    void thePanelIsNoView();
    void thePanelReceivesInputBesideTheCurrentView();
    void thePanelStaysWhenTheScreenTurns();
    void thePanelThatGoesLeavesItsPlace();
    void otherWindowsOfThePanelsApplicationAreViews();
    void thePanelOpensMenusAboveTheViewsAndItself();
    void aPressElsewhereDismissesThePopups_data();
    void aPressElsewhereDismissesThePopups();
    void theOnScreenKeyboardIsBesideThePanel_data();
    void theOnScreenKeyboardIsBesideThePanel();
    void aPanelLargerThanTheOutputLeavesHalfOfItToTheViews();
    void whatIsNoPanelIsRefused_data();
    void whatIsNoPanelIsRefused();

protected:
    void startCompositor() override
    {
    }

private:
    void startWithPanel(const QString& panel);
    static void paint(WireClient& client, quint32 surface, quint32 buffer, const QSize& size);
    /// Opens a window of an application, with its own size.
    static WireClient::Window open(WireClient& client, const QByteArray& appId, const QSize& size);
    /// Opens a popup around the top left corner of a window; returns the xdg_popup.
    static quint32 openPopup(WireClient& client, const WireClient::Window& window);
    static QSize configured(WireClient& client, const WireClient::Window& window);
    bool isWhite(int x, int y)
    {
        return screenShot().pixelColor(x, y) == Qt::white;
    }
};

void CompositorPanelTest::startWithPanel(const QString& panel)
{
    startWithFingers({QStringLiteral("--panel"), panel});
}

void CompositorPanelTest::paint(WireClient& client, quint32 surface, quint32 buffer, const QSize& size)
{
    client.attach(surface, buffer);
    client.damage(surface, QRect(QPoint(), size));
    client.commit(surface);
    client.synchronise();
}

WireClient::Window CompositorPanelTest::open(WireClient& client, const QByteArray& appId, const QSize& size)
{
    const WireClient::Window window = client.createWindow();
    client.send(WireMessage(window.toplevel, XDG_TOPLEVEL_SET_APP_ID).text(appId));
    client.configure(window.surface, window.xdgSurface);
    paint(client, window.surface, client.createBuffer(size), size);
    return window;
}

quint32 CompositorPanelTest::openPopup(WireClient& client, const WireClient::Window& window)
{
    const QSize size(80, 60);
    const quint32 surface = client.createSurface();
    const quint32 xdgSurface = client.createXdgSurface(surface);
    const quint32 popup = client.createPopup(xdgSurface, window.xdgSurface, client.createPositioner(size));
    client.configure(surface, xdgSurface);
    paint(client, surface, client.createBuffer(size), size);
    return popup;
}

QSize CompositorPanelTest::configured(WireClient& client, const WireClient::Window& window)
{
    client.synchronise();
    const auto events = client.events(window.toplevel, cConfigure);
    return events.isEmpty()
        ? QSize()
        : QSize(static_cast<int>(events.last().number(0)), static_cast<int>(events.last().number(1)));
}

void CompositorPanelTest::thePanelHasAStripBesideTheViews_data()
{
    QTest::addColumn<QString>("edge");
    QTest::addColumn<QRect>("panel");
    QTest::addColumn<QRect>("view");
    // Below the status bar of 34 pixels.
    QTest::newRow("bottom") << QStringLiteral("bottom") << QRect(0, 500, 1024, 100) << QRect(0, 34, 1024, 466);
    QTest::newRow("top") << QStringLiteral("top") << QRect(0, 34, 1024, 100) << QRect(0, 134, 1024, 466);
    QTest::newRow("left") << QStringLiteral("left") << QRect(0, 34, 100, 566) << QRect(100, 34, 924, 566);
    QTest::newRow("right") << QStringLiteral("right") << QRect(924, 34, 100, 566) << QRect(0, 34, 924, 566);
}

void CompositorPanelTest::thePanelHasAStripBesideTheViews()
{
    QFETCH(const QString, edge);
    QFETCH(const QRect, panel);
    QFETCH(const QRect, view);
    startWithPanel(QStringLiteral("org.example.bar:%1:100").arg(edge));
    const auto client = wireClient();
    const WireClient::Window bar = open(*client, cBar, panel.size());
    TRY_COMPARE(configured(*client, bar), panel.size());
    const auto other = wireClient();
    const WireClient::Window window = open(*other, "org.example.other", QSize(200, 100));
    TRY_COMPARE(configured(*other, window), view.size());
    // The panel is white as a whole, the view in its middle.
    const QImage picture = screenShot();
    for (const QPoint& corner : {panel.topLeft(), panel.bottomRight()}) {
        QCOMPARE(picture.pixelColor(corner), QColor(Qt::white));
    }
    QCOMPARE(picture.pixelColor(view.center()), QColor(Qt::white));
    QVERIFY(picture.pixelColor(view.center() - QPoint(150, 0)) != Qt::white);
}

void CompositorPanelTest::thePanelChoosesItsThickness()
{
    startWithPanel(QString::fromLatin1(cBar));
    const auto client = wireClient();
    const WireClient::Window bar = open(*client, cBar, QSize(400, 80));
    TRY_COMPARE(configured(*client, bar), QSize(1024, 80));
    // It was asked for its size before.
    QCOMPARE(client->events(bar.toplevel, cConfigure).first().number(1), 0U);
}

void CompositorPanelTest::thePanelIsNoView()
{
    startWithPanel(QString::fromLatin1(cBar));
    const auto other = wireClient();
    open(*other, "org.example.other", QSize(200, 100));
    TRY_COMPARE(CompositorBus::views().size(), 1);
    const QString current = CompositorBus::currentView();
    const auto client = wireClient();
    const WireClient::Window bar = open(*client, cBar, QSize(400, 80));
    TRY_COMPARE(configured(*client, bar), QSize(1024, 80));
    QCOMPARE(CompositorBus::views().size(), 1);
    QCOMPARE(CompositorBus::currentView(), current);
}

void CompositorPanelTest::thePanelReceivesInputBesideTheCurrentView()
{
    startWithPanel(QStringLiteral("org.example.bar:bottom:100"));
    const auto client = wireClient();
    const quint32 touch = client->newId();
    client->send(WireMessage(client->bind("wl_seat", 4), WL_SEAT_GET_TOUCH).number(touch));
    const WireClient::Window bar = open(*client, cBar, QSize(1024, 100));
    const auto other = wireClient();
    open(*other, "org.example.other", QSize(200, 100));
    screenShot();
    put({{1, {300, 540}}});
    const auto downs = [&] {
        client->synchronise();
        return client->events(touch, cDown);
    };
    TRY_COMPARE(downs().size(), 1);
    QCOMPARE(downs().first().number(2), bar.surface);
    // Fixed point, with the rounding of TUIO's coordinates.
    QVERIFY(qAbs(static_cast<int>(downs().first().number(5)) / 256.0 - 40) <= 2);
    put({});
}

void CompositorPanelTest::thePanelStaysWhenTheScreenTurns()
{
    startWithPanel(QString::fromLatin1(cBar));
    const auto client = wireClient();
    const WireClient::Window bar = open(*client, cBar, QSize(400, 80));
    TRY_COMPARE(configured(*client, bar), QSize(1024, 80));
    CompositorBus::set(CompositorBus::cScreenPath, CompositorBus::cScreen, QStringLiteral("orientation"),
                       QStringLiteral("90"));
    TRY_COMPARE(configured(*client, bar), QSize(600, 80));
    CompositorBus::set(CompositorBus::cScreenPath, CompositorBus::cScreen, QStringLiteral("fullScreen"), true);
    const auto other = wireClient();
    const WireClient::Window window = open(*other, "org.example.other", QSize(200, 100));
    TRY_COMPARE(configured(*other, window), QSize(600, 944));
}

void CompositorPanelTest::thePanelThatGoesLeavesItsPlace()
{
    startWithPanel(QString::fromLatin1(cBar));
    const auto other = wireClient();
    const WireClient::Window window = open(*other, "org.example.other", QSize(200, 100));
    auto client = wireClient();
    open(*client, cBar, QSize(400, 80));
    TRY_COMPARE(configured(*other, window), QSize(1024, 486));
    client->disconnect();
    TRY_COMPARE(configured(*other, window), QSize(1024, 566));
    client = wireClient();
    open(*client, cBar, QSize(400, 60));
    TRY_COMPARE(configured(*other, window), QSize(1024, 506));
}

void CompositorPanelTest::otherWindowsOfThePanelsApplicationAreViews()
{
    startWithPanel(QString::fromLatin1(cBar));
    const auto client = wireClient();
    open(*client, cBar, QSize(400, 80));
    const WireClient::Window second = open(*client, cBar, QSize(200, 100));
    TRY_COMPARE(CompositorBus::views().size(), 1);
    TRY_COMPARE(configured(*client, second), QSize(1024, 486));
}

void CompositorPanelTest::thePanelOpensMenusAboveTheViewsAndItself()
{
    startWithPanel(QStringLiteral("org.example.bar:bottom:100"));
    const auto client = wireClient();
    const WireClient::Window bar = open(*client, cBar, QSize(1024, 100));
    TRY_COMPARE(configured(*client, bar), QSize(1024, 100));
    const quint32 black = client->createBuffer(client->createPool(1024 * 100 * 4, 1024 * 100 * 4), 1024, 100, 1024 * 4,
                                               WL_SHM_FORMAT_XRGB8888);
    paint(*client, bar.surface, black, QSize(1024, 100));
    TRY_VERIFY(!isWhite(5, 520));
    openPopup(*client, bar);
    TRY_VERIFY(isWhite(5, 480));
    QVERIFY(isWhite(5, 520));
}

void CompositorPanelTest::aPressElsewhereDismissesThePopups_data()
{
    QTest::addColumn<bool>("isOfPanel");
    QTest::addColumn<bool>("hasTouch");
    QTest::newRow("the panel's, by a finger") << true << true;
    QTest::newRow("the panel's, by the pointer") << true << false;
    QTest::newRow("the view's, by a finger") << false << true;
    QTest::newRow("the view's, by the pointer") << false << false;
}

void CompositorPanelTest::aPressElsewhereDismissesThePopups()
{
    QFETCH(const bool, isOfPanel);
    QFETCH(const bool, hasTouch);
    startWithPanel(QStringLiteral("org.example.bar:bottom:100"));
    const auto client = wireClient();
    const auto other = wireClient();
    for (WireClient* const wire : {client.get(), other.get()}) {
        const quint32 seat = wire->bind("wl_seat", 4);
        wire->send(WireMessage(seat, hasTouch ? WL_SEAT_GET_TOUCH : WL_SEAT_GET_POINTER).number(wire->newId()));
    }
    const WireClient::Window bar = open(*client, cBar, QSize(1024, 100));
    const WireClient::Window window = open(*other, "org.example.other", QSize(1024, 466));
    TRY_COMPARE(configured(*other, window), QSize(1024, 466));
    WireClient& owner = isOfPanel ? *client : *other;
    const quint32 popup = openPopup(owner, isOfPanel ? bar : window);
    screenShot();
    const QPointF onPanel(500, 550);
    const QPointF onView(500, 300);
    const auto dismissals = [&] {
        owner.synchronise();
        return owner.events(popup, cPopupDone).size();
    };
    // Its own client closes it as it likes.
    tap(isOfPanel ? onPanel : onView);
    tap(isOfPanel ? onView : onPanel);
    TRY_COMPARE(dismissals(), 1);
}

void CompositorPanelTest::theOnScreenKeyboardIsBesideThePanel_data()
{
    QTest::addColumn<QString>("edge");
    QTest::addColumn<QRect>("panel");
    QTest::newRow("left") << QStringLiteral("left") << QRect(0, 34, 100, 566);
    QTest::newRow("right") << QStringLiteral("right") << QRect(924, 34, 100, 566);
    QTest::newRow("bottom") << QStringLiteral("bottom") << QRect(0, 500, 1024, 100);
    QTest::newRow("top") << QStringLiteral("top") << QRect(0, 34, 1024, 100);
}

void CompositorPanelTest::theOnScreenKeyboardIsBesideThePanel()
{
    QFETCH(const QString, edge);
    QFETCH(const QRect, panel);
    startWithFingers({QStringLiteral("--remote-control"), QStringLiteral("--panel"),
                      QStringLiteral("org.example.bar:%1:100").arg(edge)});
    const auto client = wireClient();
    const WireClient::Window bar = open(*client, cBar, panel.size());
    TRY_COMPARE(configured(*client, bar), panel.size());
    const auto other = wireClient();
    const WireClient::Window window = open(*other, "org.example.other", QSize(200, 100));
    const int whole = configured(*other, window).height();
    CompositorBus::callChecked(QStringLiteral("/desk"), QStringLiteral("de.Telvaro.desk"), QStringLiteral("Take"),
                               {QStringLiteral(R"({"key": "Ctrl+Alt+K"})")});
    TRY_VERIFY(configured(*other, window).height() < whole);
    const QImage picture = screenShot();
    for (const QPoint& corner : {panel.topLeft(), panel.topRight(), panel.bottomLeft(), panel.bottomRight()}) {
        QCOMPARE(picture.pixelColor(corner), QColor(Qt::white));
    }
}

void CompositorPanelTest::aPanelLargerThanTheOutputLeavesHalfOfItToTheViews()
{
    startWithPanel(QStringLiteral("org.example.bar:right:9999"));
    const auto client = wireClient();
    const WireClient::Window bar = open(*client, cBar, QSize(400, 80));
    TRY_COMPARE(configured(*client, bar), QSize(512, 566));
}

void CompositorPanelTest::whatIsNoPanelIsRefused_data()
{
    QTest::addColumn<QString>("panel");
    for (const char* const panel :
         {"", ":bottom", "bar:middle", "bar:bottom:", "bar:bottom:0", "bar:bottom:-1", "bar:bottom:10000", "bar:10"}) {
        QTest::newRow(panel) << QString::fromLatin1(panel);
    }
}

void CompositorPanelTest::whatIsNoPanelIsRefused()
{
    QFETCH(const QString, panel);
    CompositorProcess compositor;
    QCOMPARE(compositor.runToEnd({QStringLiteral("--panel"), panel}), 2);
    QVERIFY2(compositor.errors().contains("is not a panel: APPID[:EDGE[:SIZE]]"), compositor.errors());
    mCompositor->start();
}

TELVARO_TEST_MAIN(CompositorPanelTest)

#include "CompositorPanelTest.moc"
