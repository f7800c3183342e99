// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "CompositorBus.h"
#include "HostileClientFixture.h"
#include "TestMain.h"

#include <limits>
#include <wayland-client-protocol.h>
#include <xdg-decoration-unstable-v1-client-protocol.h>
#include <xdg-shell-client-protocol.h>

namespace {

constexpr quint16 cSurfaceConfigure = 0;
constexpr quint16 cToplevelConfigure = 0;
constexpr quint16 cPopupConfigure = 0;
constexpr quint16 cPopupDone = 1;
constexpr quint16 cPopupRepositioned = 2;
constexpr quint16 cDecorationConfigure = 0;
constexpr quint16 cKeyboardEnter = 1;

constexpr qint32 cHuge = std::numeric_limits<qint32>::max();
constexpr qint32 cLowest = std::numeric_limits<qint32>::min();

/// The place of a window of 300 x 200 on the output of 1024 x 600 below the status bar.
constexpr QPoint cOrigin(362, 34 + 183);
constexpr QSize cWindowSize(300, 200);

QRect rectOf(const WireClient::Event& event)
{
    return {static_cast<int>(event.number(0)), static_cast<int>(event.number(1)), static_cast<int>(event.number(2)),
            static_cast<int>(event.number(3))};
}

QSize sizeOf(const WireClient::Event& event)
{
    return {static_cast<int>(event.number(0)), static_cast<int>(event.number(1))};
}

bool hasState(const WireClient::Event& configure, quint32 state)
{
    for (quint32 i = 0; i < configure.number(2) / sizeof(quint32); ++i) {
        if (configure.number(3 + static_cast<int>(i)) == state) {
            return true;
        }
    }
    return false;
}

struct Popup
{
    quint32 surface;
    quint32 xdgSurface;
    quint32 popup;
};

Popup createPopup(WireClient& client, quint32 parentXdgSurface, quint32 positioner)
{
    Popup popup = {};
    popup.surface = client.createSurface();
    popup.xdgSurface = client.createXdgSurface(popup.surface);
    popup.popup = client.createPopup(popup.xdgSurface, parentXdgSurface, positioner);
    return popup;
}

/// A mapped popup of 40 x 30, right below the left end of an anchor at 10, 10 of 10 x 10.
Popup openPopup(WireClient& client, quint32 parentXdgSurface, quint32 positioner = 0)
{
    const QSize size(40, 30);
    const Popup popup =
        createPopup(client, parentXdgSurface, positioner == 0 ? client.createPositioner(size) : positioner);
    client.show(popup.surface, client.createBuffer(size));
    return popup;
}

void closePopup(WireClient& client, const Popup& popup)
{
    client.send(WireMessage(popup.popup, XDG_POPUP_DESTROY));
    client.send(WireMessage(popup.xdgSurface, XDG_SURFACE_DESTROY));
    client.send(WireMessage(popup.surface, WL_SURFACE_DESTROY));
}

void grab(WireClient& client, const Popup& popup)
{
    client.send(WireMessage(popup.popup, XDG_POPUP_GRAB).number(client.bind("wl_seat")).number(0U));
}

quint32 createDecoration(WireClient& client, quint32 toplevel)
{
    const quint32 manager = client.bind("zxdg_decoration_manager_v1");
    const quint32 decoration = client.newId();
    client.send(
        WireMessage(manager, ZXDG_DECORATION_MANAGER_V1_GET_TOPLEVEL_DECORATION).number(decoration).number(toplevel));
    return decoration;
}

} // namespace

/// Windows and popups by the rules of xdg-shell, and clients that break them.
class CompositorShellTest : public HostileClientFixture
{
    Q_OBJECT

private Q_SLOTS:
    void aToolkitIsConfiguredOnceAndDrawsInThatSize();
    void aPopupIsPlacedByItsRules_data();
    void aPopupIsPlacedByItsRules();
    void aReactivePopupFollowsItsParent();
    void anOldPopupIsConfiguredOnce();
    void aPopupIsPlacedForTheSizeThatItsParentWillHave();
    void aPopupMovesWhenItsNewPlaceIsAcknowledged();
    void aGrabHasTheKeyboard();
    void aGrabOnADismissedPopupIsDismissed();
    void aDialogGoesToTheParentOfItsParent();
    void anUnmappedWindowBeginsAnew();
    void theWindowGeometryLiesWithinTheSurfaces();
    void aWindowOutlivesItsBuffer();
    void aPopupIsPaintedWhenItOpens();
    void aWindowIsAskedNotToDrawAFrame();
    void aFullScreenWindowHasTheWholeOutput();
    void aWindowThatIsNotFullScreenIsNotDisturbed();
    void aClientThatBreaksTheProtocolHarmsOnlyItself_data();
    void aClientThatBreaksTheProtocolHarmsOnlyItself();

private:
    std::unique_ptr<WireClient> connectClient(quint32 shellVersion = 3) const;
};

std::unique_ptr<WireClient> CompositorShellTest::connectClient(quint32 shellVersion) const
{
    auto client = wireClient();
    client->bind("xdg_wm_base", shellVersion);
    return client;
}

void CompositorShellTest::aToolkitIsConfiguredOnceAndDrawsInThatSize()
{
    QProcessEnvironment environment = mCompositor->clientEnvironment();
    environment.insert(QStringLiteral("WAYLAND_DEBUG"), QStringLiteral("1"));
    LineClient client(QStringLiteral("/bin/sh"), environment,
                      {QStringLiteral("-c"), QStringLiteral("exec \"$0\" 2>&1"), QStringLiteral(TELVARO_TEST_CLIENT)});
    client.send("open a One");
    TRY_COMPARE(CompositorBus::views().size(), 1);
    screenShot();
    client.send("title 1 Renamed");
    TRY_COMPARE(CompositorBus::views().first().info1, QStringLiteral("Renamed"));

    QByteArray surface;
    QMap<QByteArray, QByteArray> sizes;
    QSet<QByteArray> attachedSizes;
    int configures = 0;
    for (const QByteArray& line : client.takeEvents()) {
        const int argument = line.indexOf(", wl_surface@");
        if (line.contains(".get_xdg_surface(") && argument >= 0) {
            surface = line.mid(argument + 2).chopped(1);
        }
        configures += line.contains("xdg_toplevel@") && line.contains(".configure(") ? 1 : 0;
        if (line.contains(".create_buffer(new id ")) {
            const QList<QByteArray> arguments = line.mid(line.indexOf("wl_buffer@")).split(',');
            sizes.insert(arguments.at(0), arguments.at(2).trimmed() + 'x' + arguments.at(3).trimmed());
        }
        if (!surface.isEmpty() && line.contains(surface + ".attach(")) {
            attachedSizes.insert(sizes.value(line.mid(line.indexOf("wl_buffer@")).split(',').first()));
        }
    }
    QCOMPARE(configures, 1);
    QCOMPARE(attachedSizes, QSet<QByteArray>({"1024x566"}));
}

void CompositorShellTest::aPopupIsPlacedByItsRules_data()
{
    QTest::addColumn<QRect>("anchorRect");
    QTest::addColumn<quint32>("anchor");
    QTest::addColumn<quint32>("gravity");
    QTest::addColumn<quint32>("adjustment");
    QTest::addColumn<QPoint>("offset");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QRect>("place");
    const QRect middle(100, 100, 20, 10);
    // A popup at the right end of the output: its window ends 362 pixels before it.
    const QRect right(610, 100, 20, 10);
    const QSize size(80, 40);
    const auto row = [](const char* name, const QRect& anchorRect, quint32 anchor, quint32 gravity, quint32 adjustment,
                        const QPoint& offset, const QSize& popupSize, const QRect& place) {
        QTest::newRow(name) << anchorRect << anchor << gravity << adjustment << offset << popupSize << place;
    };
    row("no rule", middle, 0, 0, 0, {}, size, QRect(70, 85, 80, 40));
    row("top", middle, 1, 1, 0, {}, size, QRect(70, 60, 80, 40));
    row("bottom", middle, 2, 2, 0, {}, size, QRect(70, 110, 80, 40));
    row("left", middle, 3, 3, 0, {}, size, QRect(20, 85, 80, 40));
    row("right", middle, 4, 4, 0, {}, size, QRect(120, 85, 80, 40));
    row("top left", middle, 5, 5, 0, {}, size, QRect(20, 60, 80, 40));
    row("bottom left", middle, 6, 6, 0, {}, size, QRect(20, 110, 80, 40));
    row("top right", middle, 7, 7, 0, {}, size, QRect(120, 60, 80, 40));
    row("bottom right", middle, 8, 8, 0, {}, size, QRect(120, 110, 80, 40));
    row("anchored below, towards the right", middle, 6, 8, 0, {3, 4}, size, QRect(103, 114, 80, 40));
    row("constrained without a rule", right, 8, 8, 0, {}, size, QRect(630, 110, 80, 40));
    row("flipped", right, 4, 4, 4, {5, 0}, size, QRect(535, 85, 80, 40));
    row("flipped in vain, as nothing fits", right, 4, 4, 4, {}, QSize(2000, 40), QRect(630, 85, 2000, 40));
    row("slid", right, 4, 4, 1, {}, size, QRect(662 - 80, 85, 80, 40));
    row("slid to the edge opposite to the gravity", right, 4, 4, 1, {}, QSize(2000, 40), QRect(-362, 85, 2000, 40));
    row("slid to the other edge", right, 3, 3, 1, {}, QSize(2000, 40), QRect(662 - 2000, 85, 2000, 40));
    row("resized", right, 4, 4, 16, {}, size, QRect(630, 85, 32, 40));
    row("slid downwards", QRect(100, -180, 20, 10), 1, 1, 2, {}, size, QRect(70, -183, 80, 40));
    row("flipped downwards", QRect(100, -180, 20, 10), 1, 1, 8, {}, size, QRect(70, -170, 80, 40));
    row("resized in its height", QRect(100, 350, 20, 10), 2, 2, 32, {}, size, QRect(70, 360, 80, 23));
}

void CompositorShellTest::aPopupIsPlacedByItsRules()
{
    QFETCH(QRect, anchorRect);
    QFETCH(quint32, anchor);
    QFETCH(quint32, gravity);
    QFETCH(quint32, adjustment);
    QFETCH(QPoint, offset);
    QFETCH(QSize, size);
    QFETCH(QRect, place);
    const auto client = connectClient();
    const WireClient::Window window = client->openWindow("Parent");
    const quint32 positioner = client->createPositioner(size);
    client->send(WireMessage(positioner, XDG_POSITIONER_SET_ANCHOR_RECT)
                     .number(anchorRect.x())
                     .number(anchorRect.y())
                     .number(anchorRect.width())
                     .number(anchorRect.height()));
    client->send(WireMessage(positioner, XDG_POSITIONER_SET_ANCHOR).number(anchor));
    client->send(WireMessage(positioner, XDG_POSITIONER_SET_GRAVITY).number(gravity));
    client->send(WireMessage(positioner, XDG_POSITIONER_SET_CONSTRAINT_ADJUSTMENT).number(adjustment));
    client->send(WireMessage(positioner, XDG_POSITIONER_SET_OFFSET).number(offset.x()).number(offset.y()));
    const Popup popup = createPopup(*client, window.xdgSurface, positioner);
    // The rules are copied when they are used.
    client->send(WireMessage(positioner, XDG_POSITIONER_SET_OFFSET).number(7).number(7));
    QVERIFY2(client->synchronise(), client->errorText());
    QCOMPARE(client->events(popup.popup, cPopupConfigure).size(), 0);
    client->configure(popup.surface, popup.xdgSurface);
    QVERIFY2(client->synchronise(), client->errorText());
    const auto configures = client->events(popup.popup, cPopupConfigure);
    QCOMPARE(configures.size(), 1);
    QCOMPARE(client->events(popup.xdgSurface, cSurfaceConfigure).size(), 1);
    QCOMPARE(rectOf(configures.first()), place);
}

void CompositorShellTest::aReactivePopupFollowsItsParent()
{
    const auto client = connectClient();
    const WireClient::Window window = client->openWindow("Parent");
    const auto openAtTheEdge = [&](bool isReactive) {
        const quint32 positioner = client->createPositioner(QSize(40, 30));
        client->send(WireMessage(positioner, XDG_POSITIONER_SET_ANCHOR_RECT).number(700).number(0).number(1).number(1));
        client->send(WireMessage(positioner, XDG_POSITIONER_SET_CONSTRAINT_ADJUSTMENT)
                         .number(quint32(XDG_POSITIONER_CONSTRAINT_ADJUSTMENT_SLIDE_X)));
        if (isReactive) {
            client->send(WireMessage(positioner, XDG_POSITIONER_SET_REACTIVE));
        }
        return openPopup(*client, window.xdgSurface, positioner);
    };
    const Popup reactive = openAtTheEdge(true);
    const Popup fixed = openAtTheEdge(false);
    QVERIFY2(client->synchronise(), client->errorText());
    screenShot();
    client->synchronise();
    QCOMPARE(client->events(reactive.popup, cPopupConfigure).size(), 1);

    // The window grows to both sides, so that the edge of the output is farther from its left end.
    client->attach(window.surface, client->createBuffer(QSize(500, 200)));
    client->commit(window.surface);
    client->synchronise();
    screenShot();
    QVERIFY2(client->synchronise(), client->errorText());
    const auto configures = client->events(reactive.popup, cPopupConfigure);
    QCOMPARE(configures.size(), 2);
    QCOMPARE(rectOf(configures.at(0)).x(), 662 - 40);
    QCOMPARE(rectOf(configures.at(1)).x(), 700 - 20);
    QCOMPARE(client->events(fixed.popup, cPopupConfigure).size(), 1);
}

void CompositorShellTest::anOldPopupIsConfiguredOnce()
{
    const auto client = connectClient(2);
    const WireClient::Window window = client->openWindow("Parent");
    client->bind("xdg_wm_base", 3);
    const quint32 positioner = client->createPositioner(QSize(40, 30));
    client->send(WireMessage(positioner, XDG_POSITIONER_SET_REACTIVE));
    client->send(WireMessage(positioner, XDG_POSITIONER_SET_CONSTRAINT_ADJUSTMENT).number(63U));
    client->send(WireMessage(positioner, XDG_POSITIONER_SET_ANCHOR_RECT).number(700).number(0).number(1).number(1));
    client->bind("xdg_wm_base", 2);
    const Popup popup = openPopup(*client, window.xdgSurface, positioner);
    client->attach(window.surface, client->createBuffer(QSize(500, 200)));
    client->commit(window.surface);
    client->synchronise();
    screenShot();
    QVERIFY2(client->synchronise(), client->errorText());
    QCOMPARE(client->events(popup.popup, cPopupConfigure).size(), 1);
}

void CompositorShellTest::aPopupIsPlacedForTheSizeThatItsParentWillHave()
{
    const auto client = connectClient();
    const WireClient::Window window = client->openWindow("Parent");
    const quint32 positioner = client->createPositioner(QSize(40, 30));
    client->send(WireMessage(positioner, XDG_POSITIONER_SET_ANCHOR_RECT).number(900).number(0).number(1).number(1));
    client->send(WireMessage(positioner, XDG_POSITIONER_SET_CONSTRAINT_ADJUSTMENT)
                     .number(quint32(XDG_POSITIONER_CONSTRAINT_ADJUSTMENT_SLIDE_X)));
    client->send(WireMessage(positioner, XDG_POSITIONER_SET_PARENT_SIZE).number(1024).number(566));
    client->send(WireMessage(positioner, XDG_POSITIONER_SET_PARENT_CONFIGURE).number(1U));
    const Popup popup = openPopup(*client, window.xdgSurface, positioner);
    QVERIFY2(client->synchronise(), client->errorText());
    QCOMPARE(rectOf(client->events(popup.popup, cPopupConfigure).first()).x(), 900 - 20);
}

void CompositorShellTest::aPopupMovesWhenItsNewPlaceIsAcknowledged()
{
    const auto client = connectClient();
    const WireClient::Window window = client->openWindow("Parent");
    client->attach(window.surface, client->createBuffer(cWindowSize));
    const Popup popup = openPopup(*client, window.xdgSurface);
    QVERIFY2(client->synchronise(), client->errorText());
    TRY_COMPARE(CompositorBus::views().size(), 1);
    const auto isAt = [this](const QPoint& position) {
        // The window and the popup are white, what is around them is not.
        return screenShot().pixelColor(cOrigin + position) == QColor(Qt::white);
    };
    QVERIFY(!isAt(QPoint(-40, 5)));

    const quint32 positioner = client->createPositioner(QSize(40, 30));
    client->send(WireMessage(positioner, XDG_POSITIONER_SET_OFFSET).number(-45).number(0));
    client->send(WireMessage(popup.popup, XDG_POPUP_REPOSITION).number(positioner).number(4711U));
    QVERIFY2(client->synchronise(), client->errorText());
    const auto tokens = client->events(popup.popup, cPopupRepositioned);
    QCOMPARE(tokens.size(), 1);
    QCOMPARE(tokens.first().number(0), 4711U);
    QCOMPARE(rectOf(client->events(popup.popup, cPopupConfigure).last()), QRect(-60, -10, 40, 30));
    QCOMPARE(client->events(popup.popup).last().opcode, cPopupConfigure);
    QVERIFY(!isAt(QPoint(-40, 5)));
    client->commit(popup.surface);
    QVERIFY(client->synchronise());
    QVERIFY(!isAt(QPoint(-40, 5)));
    client->acknowledge(popup.xdgSurface);
    client->commit(popup.surface);
    QVERIFY2(client->synchronise(), client->errorText());
    QVERIFY(isAt(QPoint(-40, 5)));
}

void CompositorShellTest::aGrabHasTheKeyboard()
{
    const auto client = connectClient();
    const quint32 seat = client->bind("wl_seat");
    const quint32 keyboard = client->newId();
    client->send(WireMessage(seat, WL_SEAT_GET_KEYBOARD).number(keyboard));
    const WireClient::Window window = client->openWindow("Parent");
    const auto focus = [&] {
        client->synchronise();
        const auto enters = client->events(keyboard, cKeyboardEnter);
        return enters.isEmpty() ? 0U : enters.last().number(1);
    };
    TRY_COMPARE(focus(), window.surface);
    const Popup plain = openPopup(*client, window.xdgSurface);
    QCOMPARE(focus(), window.surface);
    closePopup(*client, plain);

    const Popup menu = createPopup(*client, window.xdgSurface, client->createPositioner(QSize(40, 30)));
    grab(*client, menu);
    client->show(menu.surface, client->createBuffer(QSize(40, 30)));
    TRY_COMPARE(focus(), menu.surface);
    const Popup submenu = createPopup(*client, menu.xdgSurface, client->createPositioner(QSize(40, 30)));
    grab(*client, submenu);
    client->show(submenu.surface, client->createBuffer(QSize(40, 30)));
    TRY_COMPARE(focus(), submenu.surface);
    closePopup(*client, submenu);
    TRY_COMPARE(focus(), menu.surface);
    closePopup(*client, menu);
    TRY_COMPARE(focus(), window.surface);
    QVERIFY2(client->synchronise(), client->errorText());
}

void CompositorShellTest::aGrabOnADismissedPopupIsDismissed()
{
    const auto client = connectClient();
    const WireClient::Window window = client->openWindow("Parent");
    const Popup menu = createPopup(*client, window.xdgSurface, client->createPositioner(QSize(40, 30)));
    grab(*client, menu);
    client->show(menu.surface, client->createBuffer(QSize(40, 30)));
    QVERIFY2(client->synchronise(), client->errorText());
    TRY_COMPARE(CompositorBus::views().size(), 1);
    CompositorBus::set(CompositorBus::cScreenPath, CompositorBus::cScreen, QStringLiteral("orientation"),
                       QStringLiteral("90"));
    client->synchronise();
    QCOMPARE(client->events(menu.popup, cPopupDone).size(), 1);
    const Popup submenu = createPopup(*client, menu.xdgSurface, client->createPositioner(QSize(40, 30)));
    grab(*client, submenu);
    QVERIFY2(client->synchronise(), client->errorText());
    QCOMPARE(client->events(submenu.popup, cPopupDone).size(), 1);
    QCOMPARE(client->events(menu.popup, cPopupDone).size(), 1);
}

void CompositorShellTest::aDialogGoesToTheParentOfItsParent()
{
    const auto client = connectClient();
    const WireClient::Window main = client->openWindow("Main");
    const WireClient::Window dialog = client->openWindow("Dialog");
    const WireClient::Window question = client->openWindow("Question");
    const WireClient::Window hidden = client->createWindow();
    const auto setParent = [&](const WireClient::Window& child, const WireClient::Window& parent) {
        client->send(WireMessage(child.toplevel, XDG_TOPLEVEL_SET_PARENT).number(parent.toplevel));
        QVERIFY2(client->synchronise(), client->errorText());
    };
    const auto kindOf = [](const char* title) {
        return CompositorBus::viewWithTitle(QString::fromLatin1(title)).info4;
    };
    // A window that is not mapped is nobody's parent.
    setParent(question, hidden);
    TRY_COMPARE(CompositorBus::views().size(), 3);
    QCOMPARE(kindOf("Question"), QStringLiteral("window"));
    setParent(dialog, main);
    setParent(question, dialog);
    TRY_COMPARE(kindOf("Question"), QStringLiteral("dialog"));
    client->send(WireMessage(dialog.toplevel, XDG_TOPLEVEL_DESTROY));
    TRY_COMPARE(CompositorBus::views().size(), 2);
    QCOMPARE(kindOf("Question"), QStringLiteral("dialog"));
    client->attach(main.surface, 0);
    client->commit(main.surface);
    TRY_COMPARE(CompositorBus::views().size(), 1);
    QCOMPARE(kindOf("Question"), QStringLiteral("window"));
}

void CompositorShellTest::anUnmappedWindowBeginsAnew()
{
    const auto client = connectClient();
    const WireClient::Window window = client->openWindow("Window");
    client->send(WireMessage(window.toplevel, XDG_TOPLEVEL_SET_FULLSCREEN).number(0U));
    QVERIFY2(client->synchronise(), client->errorText());
    TRY_COMPARE(CompositorBus::views().size(), 1);
    const auto configures = [&] {
        client->synchronise();
        return client->events(window.toplevel, cToplevelConfigure);
    };
    const int before = configures().size();
    client->attach(window.surface, 0);
    client->commit(window.surface);
    // Acknowledges what was sent to the window that has gone.
    client->acknowledge(window.xdgSurface);
    QVERIFY2(client->synchronise(), client->errorText());
    TRY_COMPARE(CompositorBus::views().size(), 0);
    QCOMPARE(configures().size(), before);
    client->show(window.surface, client->createBuffer(cWindowSize));
    QVERIFY2(client->synchronise(), client->errorText());
    TRY_COMPARE(CompositorBus::views().size(), 1);
    QCOMPARE(configures().size(), before + 1);
    QCOMPARE(sizeOf(configures().last()), QSize(1024, 566));
    QVERIFY(hasState(configures().last(), XDG_TOPLEVEL_STATE_MAXIMIZED));
    QCOMPARE(CompositorBus::views().first().info1, QString());
}

void CompositorShellTest::theWindowGeometryLiesWithinTheSurfaces()
{
    const auto client = connectClient();
    const WireClient::Window window = client->openWindow("Window");
    TRY_COMPARE(CompositorBus::views().size(), 1);
    const auto size = [] {
        const QVariantMap attributes = CompositorBus::views().first().attributes;
        return QSize(attributes.value(QStringLiteral("width")).toInt(),
                     attributes.value(QStringLiteral("height")).toInt());
    };
    QCOMPARE(size(), cWindowSize);
    // Without a geometry it is what the surface and its subsurfaces cover.
    const quint32 part = client->createSurface();
    const quint32 subsurface = client->createSubsurface(part, window.surface);
    client->send(WireMessage(subsurface, WL_SUBSURFACE_SET_DESYNC));
    client->send(WireMessage(subsurface, WL_SUBSURFACE_SET_POSITION).number(290).number(190));
    client->attach(part, client->createBuffer(QSize(50, 40)));
    client->commit(part);
    client->commit(window.surface);
    client->commit(window.surface);
    TRY_COMPARE(size(), QSize(340, 230));
    const auto setGeometry = [&](const QRect& rect) {
        client->send(WireMessage(window.xdgSurface, XDG_SURFACE_SET_WINDOW_GEOMETRY)
                         .number(rect.x())
                         .number(rect.y())
                         .number(rect.width())
                         .number(rect.height()));
        client->synchronise();
    };
    setGeometry(QRect(10, 10, 100, 80));
    QCOMPARE(size(), QSize(340, 230));
    client->commit(window.surface);
    TRY_COMPARE(size(), QSize(100, 80));
    setGeometry(QRect(300, 100, 1000, 1000));
    client->commit(window.surface);
    TRY_COMPARE(size(), QSize(40, 130));
}

void CompositorShellTest::aWindowOutlivesItsBuffer()
{
    const auto client = connectClient();
    const WireClient::Window window = client->openWindow("Window");
    TRY_COMPARE(CompositorBus::views().size(), 1);
    const quint32 buffer = client->createBuffer(cWindowSize);
    client->attach(window.surface, buffer);
    client->commit(window.surface);
    client->synchronise();
    const QImage shown = screenShot();
    QCOMPARE(shown.pixelColor(cOrigin), QColor(Qt::white));
    client->send(WireMessage(buffer, WL_BUFFER_DESTROY));
    for (int i = 0; i < 3; ++i) {
        client->damage(window.surface, QRect(QPoint(), cWindowSize));
        client->commit(window.surface);
        QVERIFY2(client->synchronise(), client->errorText());
        QCOMPARE(screenShot(), shown);
    }
    QCOMPARE(CompositorBus::views().size(), 1);
    QCOMPARE(CompositorBus::views().first().attributes.value(QStringLiteral("width")).toInt(), cWindowSize.width());
    client->attach(window.surface, 0);
    client->commit(window.surface);
    TRY_COMPARE(CompositorBus::views().size(), 0);
}

void CompositorShellTest::aPopupIsPaintedWhenItOpens()
{
    const auto client = connectClient();
    const WireClient::Window window = client->openWindow("Parent");
    TRY_COMPARE(CompositorBus::views().size(), 1);
    const Popup popup = createPopup(*client, window.xdgSurface, client->createPositioner(QSize(40, 30)));
    client->configure(popup.surface, popup.xdgSurface);
    const auto isCalledBack = [&client](quint32 callback) {
        return client->synchronise() && client->events(callback).size() == 1;
    };
    // The frames that the window has requested are over.
    const quint32 before = client->newId();
    client->send(WireMessage(window.surface, WL_SURFACE_FRAME).number(before));
    client->commit(window.surface);
    TRY_VERIFY(isCalledBack(before));
    const quint32 callback = client->newId();
    client->send(WireMessage(popup.surface, WL_SURFACE_FRAME).number(callback));
    client->attach(popup.surface, client->createBuffer(QSize(40, 30)));
    client->commit(popup.surface);
    TRY_VERIFY(isCalledBack(callback));
}

void CompositorShellTest::aWindowIsAskedNotToDrawAFrame()
{
    const auto client = connectClient();
    const WireClient::Window window = client->createWindow();
    const quint32 decoration = createDecoration(*client, window.toplevel);
    QVERIFY2(client->synchronise(), client->errorText());
    QCOMPARE(client->events(decoration).size(), 0);
    client->show(window.surface, client->createBuffer(cWindowSize));
    QVERIFY2(client->synchronise(), client->errorText());
    const auto modes = [&] {
        client->synchronise();
        QVector<quint32> result;
        for (const WireClient::Event& event : client->events(decoration, cDecorationConfigure)) {
            result.append(event.number(0));
        }
        return result;
    };
    const quint32 client_side = ZXDG_TOPLEVEL_DECORATION_V1_MODE_CLIENT_SIDE;
    const quint32 server_side = ZXDG_TOPLEVEL_DECORATION_V1_MODE_SERVER_SIDE;
    QCOMPARE(modes(), QVector<quint32>({server_side}));
    QCOMPARE(client->events(window.xdgSurface, cSurfaceConfigure).size(), 1);
    client->send(WireMessage(decoration, ZXDG_TOPLEVEL_DECORATION_V1_SET_MODE).number(client_side));
    QCOMPARE(modes(), QVector<quint32>({server_side, client_side}));
    QCOMPARE(client->events(window.xdgSurface, cSurfaceConfigure).size(), 2);
    client->send(WireMessage(decoration, ZXDG_TOPLEVEL_DECORATION_V1_UNSET_MODE));
    QCOMPARE(modes(), QVector<quint32>({server_side, client_side, server_side}));
    client->send(WireMessage(decoration, ZXDG_TOPLEVEL_DECORATION_V1_DESTROY));
    QVERIFY2(client->synchronise(), client->errorText());
}

void CompositorShellTest::aFullScreenWindowHasTheWholeOutput()
{
    const auto client = connectClient();
    const WireClient::Window window = client->createWindow();
    client->send(WireMessage(window.toplevel, XDG_TOPLEVEL_SET_TITLE).text("Player"));
    client->send(WireMessage(window.toplevel, XDG_TOPLEVEL_SET_FULLSCREEN).number(0U));
    client->configure(window.surface, window.xdgSurface);
    QVERIFY2(client->synchronise(), client->errorText());
    const auto configures = client->events(window.toplevel, cToplevelConfigure);
    QCOMPARE(configures.size(), 1);
    QCOMPARE(sizeOf(configures.first()), QSize(1024, 600));
    QVERIFY(hasState(configures.first(), XDG_TOPLEVEL_STATE_FULLSCREEN));
    client->attach(window.surface, client->createBuffer(QSize(1024, 600)));
    client->commit(window.surface);
    QVERIFY2(client->synchronise(), client->errorText());
    TRY_COMPARE(CompositorBus::views().size(), 1);
    const auto isBarHidden = [this] {
        return screenShot().pixelColor(500, 5) == QColor(Qt::white);
    };
    QVERIFY(isBarHidden());
    QCOMPARE(CompositorBus::get(CompositorBus::cScreenPath, CompositorBus::cScreen, QStringLiteral("fullScreen")),
             QVariant(false));

    // A dialog of it leaves the bar hidden, another view does not.
    const WireClient::Window dialog = client->openWindow("Dialog");
    TRY_COMPARE(CompositorBus::views().size(), 2);
    TRY_VERIFY(!isBarHidden());
    client->send(WireMessage(dialog.toplevel, XDG_TOPLEVEL_SET_PARENT).number(window.toplevel));
    QVERIFY2(client->synchronise(), client->errorText());
    const QColor dimmed = screenShot().pixelColor(500, 5);
    QVERIFY(dimmed.red() == dimmed.green() && dimmed.red() > 100 && dimmed.red() < 200);
    client->send(WireMessage(dialog.toplevel, XDG_TOPLEVEL_DESTROY));
    TRY_VERIFY(isBarHidden());

    client->send(WireMessage(window.toplevel, XDG_TOPLEVEL_UNSET_FULLSCREEN));
    QVERIFY2(client->synchronise(), client->errorText());
    QCOMPARE(sizeOf(client->events(window.toplevel, cToplevelConfigure).last()), QSize(1024, 566));
    QVERIFY(!isBarHidden());
}

void CompositorShellTest::aWindowThatIsNotFullScreenIsNotDisturbed()
{
    const auto client = connectClient();
    const WireClient::Window other = client->openWindow("Other");
    const WireClient::Window player = client->openWindow("Player");
    client->send(WireMessage(player.toplevel, XDG_TOPLEVEL_SET_FULLSCREEN).number(0U));
    TRY_COMPARE(CompositorBus::views().size(), 2);
    QVERIFY2(client->synchronise(), client->errorText());
    const QString uuid = CompositorBus::viewWithTitle(QStringLiteral("Other")).uuid;
    CompositorBus::set(CompositorBus::cTaskSwitcherPath, CompositorBus::cTaskSwitcher, QStringLiteral("currentView"),
                       uuid);
    client->synchronise();
    for (const WireClient::Event& configure : client->events(other.toplevel, cToplevelConfigure)) {
        QCOMPARE(sizeOf(configure), QSize(1024, 566));
    }
    QCOMPARE(sizeOf(client->events(player.toplevel, cToplevelConfigure).last()), QSize(1024, 600));
    QVERIFY(!hasState(client->events(player.toplevel, cToplevelConfigure).last(), XDG_TOPLEVEL_STATE_ACTIVATED));
}

void CompositorShellTest::aClientThatBreaksTheProtocolHarmsOnlyItself_data()
{
    QTest::addColumn<Attack>("attack");
    QTest::addColumn<int>("error");
    const auto row = [](const char* name, int error, const Attack& attack) {
        QTest::newRow(name) << attack << error;
    };
    const auto positionerRow = [&](const char* name, int error, quint16 opcode, const QVector<qint32>& numbers) {
        row(name, error, [opcode, numbers](WireClient& client) {
            WireMessage message(client.createPositioner(QSize(20, 20)), opcode);
            for (const qint32 number : numbers) {
                message.number(number);
            }
            client.send(message);
        });
    };
    const auto toplevelRow = [&](const char* name, int error, quint16 opcode, const QVector<qint32>& numbers) {
        row(name, error, [opcode, numbers](WireClient& client) {
            const WireClient::Window window = client.openWindow("Window");
            WireMessage message(window.toplevel, opcode);
            for (const qint32 number : numbers) {
                message.number(number == cLowest ? static_cast<qint32>(client.bind("wl_seat")) : number);
            }
            client.send(message);
            client.commit(window.surface);
        });
    };
    constexpr qint32 seat = cLowest;

    positionerRow("a popup without a width", XDG_POSITIONER_ERROR_INVALID_INPUT, XDG_POSITIONER_SET_SIZE, {0, 10});
    positionerRow("a popup of a negative height", XDG_POSITIONER_ERROR_INVALID_INPUT, XDG_POSITIONER_SET_SIZE,
                  {10, -1});
    positionerRow("an anchor of a negative size", XDG_POSITIONER_ERROR_INVALID_INPUT, XDG_POSITIONER_SET_ANCHOR_RECT,
                  {0, 0, -1, 10});
    positionerRow("an anchor without a size", cNoError, XDG_POSITIONER_SET_ANCHOR_RECT, {0, 0, 0, 0});
    positionerRow("an anchor that is none", XDG_POSITIONER_ERROR_INVALID_INPUT, XDG_POSITIONER_SET_ANCHOR, {9});
    positionerRow("a gravity that is none", XDG_POSITIONER_ERROR_INVALID_INPUT, XDG_POSITIONER_SET_GRAVITY, {-1});
    positionerRow("an adjustment that is none", cNoError, XDG_POSITIONER_SET_CONSTRAINT_ADJUSTMENT, {-1});
    positionerRow("a parent of a negative size", cNoError, XDG_POSITIONER_SET_PARENT_SIZE, {cHuge, -1});
    positionerRow("a configuration of the parent that was none", cNoError, XDG_POSITIONER_SET_PARENT_CONFIGURE, {4711});

    toplevelRow("a minimum size that is negative", XDG_TOPLEVEL_ERROR_INVALID_SIZE, XDG_TOPLEVEL_SET_MIN_SIZE, {-1, 0});
    toplevelRow("a maximum size that is negative", XDG_TOPLEVEL_ERROR_INVALID_SIZE, XDG_TOPLEVEL_SET_MAX_SIZE, {0, -1});
    toplevelRow("a move", cNoError, XDG_TOPLEVEL_MOVE, {seat, 0});
    toplevelRow("a menu", cNoError, XDG_TOPLEVEL_SHOW_WINDOW_MENU, {seat, 0, cHuge, -1});
    toplevelRow("a resize", cNoError, XDG_TOPLEVEL_RESIZE, {seat, 0, XDG_TOPLEVEL_RESIZE_EDGE_BOTTOM_RIGHT});
    toplevelRow("a resize at two opposite edges", XDG_TOPLEVEL_ERROR_INVALID_RESIZE_EDGE, XDG_TOPLEVEL_RESIZE,
                {seat, 0, XDG_TOPLEVEL_RESIZE_EDGE_TOP | XDG_TOPLEVEL_RESIZE_EDGE_BOTTOM});
    toplevelRow("a resize at an edge that is none", XDG_TOPLEVEL_ERROR_INVALID_RESIZE_EDGE, XDG_TOPLEVEL_RESIZE,
                {seat, 0, 16});
    toplevelRow("a window that minimizes itself", cNoError, XDG_TOPLEVEL_SET_MINIMIZED, {});
    row("a minimum size beyond the maximum", XDG_TOPLEVEL_ERROR_INVALID_SIZE, [](WireClient& client) {
        const WireClient::Window window = client.openWindow("Window");
        client.send(WireMessage(window.toplevel, XDG_TOPLEVEL_SET_MIN_SIZE).number(100).number(100));
        client.send(WireMessage(window.toplevel, XDG_TOPLEVEL_SET_MAX_SIZE).number(0).number(99));
        client.commit(window.surface);
    });
    row("a maximum size that is raised with the minimum", cNoError, [](WireClient& client) {
        const WireClient::Window window = client.openWindow("Window");
        client.send(WireMessage(window.toplevel, XDG_TOPLEVEL_SET_MAX_SIZE).number(10).number(10));
        client.commit(window.surface);
        client.send(WireMessage(window.toplevel, XDG_TOPLEVEL_SET_MIN_SIZE).number(100).number(100));
        client.send(WireMessage(window.toplevel, XDG_TOPLEVEL_SET_MAX_SIZE).number(200).number(200));
        client.commit(window.surface);
    });
    row("a window that is its own parent", XDG_TOPLEVEL_ERROR_INVALID_PARENT, [](WireClient& client) {
        const WireClient::Window window = client.openWindow("Window");
        client.send(WireMessage(window.toplevel, XDG_TOPLEVEL_SET_PARENT).number(window.toplevel));
    });
    row("windows that are parents in a circle", XDG_TOPLEVEL_ERROR_INVALID_PARENT, [](WireClient& client) {
        QVector<WireClient::Window> windows;
        for (int i = 0; i < 3; ++i) {
            windows.append(client.openWindow("Window"));
        }
        for (int i = 0; i < 3; ++i) {
            client.send(
                WireMessage(windows.at(i).toplevel, XDG_TOPLEVEL_SET_PARENT).number(windows.at((i + 1) % 3).toplevel));
        }
    });
    row("ten thousand states", cNoError, [](WireClient& client) {
        const WireClient::Window window = client.openWindow("Window");
        for (int i = 0; i < 10000; ++i) {
            client.send(i % 2 == 0 ? WireMessage(window.toplevel, XDG_TOPLEVEL_SET_FULLSCREEN).number(0U)
                                   : WireMessage(window.toplevel, XDG_TOPLEVEL_UNSET_FULLSCREEN));
            if (i % 50 == 0) {
                client.synchronise();
            }
        }
    });

    row("a buffer before the configuration", XDG_SURFACE_ERROR_UNCONFIGURED_BUFFER, [](WireClient& client) {
        const WireClient::Window window = client.createWindow();
        client.attach(window.surface, client.createBuffer(cWindowSize));
        client.commit(window.surface);
    });
    row("a buffer before the answer to the configuration", XDG_SURFACE_ERROR_UNCONFIGURED_BUFFER,
        [](WireClient& client) {
            const WireClient::Window window = client.createWindow();
            client.commit(window.surface);
            client.synchronise();
            client.attach(window.surface, client.createBuffer(cWindowSize));
            client.commit(window.surface);
        });
    row("a buffer before the role", XDG_SURFACE_ERROR_UNCONFIGURED_BUFFER, [](WireClient& client) {
        const quint32 surface = client.createSurface();
        client.createXdgSurface(surface);
        client.attach(surface, client.createBuffer(cWindowSize));
        client.commit(surface);
    });
    row("a buffer before the shell", XDG_WM_BASE_ERROR_INVALID_SURFACE_STATE, [](WireClient& client) {
        const quint32 surface = client.createSurface();
        client.attach(surface, client.createBuffer(cWindowSize));
        client.createXdgSurface(surface);
    });
    row("a buffer in an unmapped window", XDG_SURFACE_ERROR_UNCONFIGURED_BUFFER, [](WireClient& client) {
        const WireClient::Window window = client.openWindow("Window");
        client.attach(window.surface, 0);
        client.commit(window.surface);
        client.attach(window.surface, client.createBuffer(cWindowSize));
        client.commit(window.surface);
    });
    row("an answer to a configuration twice", XDG_SURFACE_ERROR_INVALID_SERIAL, [](WireClient& client) {
        const WireClient::Window window = client.openWindow("Window");
        client.synchronise();
        client.acknowledge(window.xdgSurface);
        client.acknowledge(window.xdgSurface);
    });
    row("a cursor that becomes a window", XDG_WM_BASE_ERROR_ROLE, [](WireClient& client) {
        const WireClient::Window window = client.openWindow("Window");
        const quint32 surface = client.createSurface();
        client.createSubsurface(surface, window.surface);
        client.createXdgSurface(surface);
    });
    row("a window that becomes a popup", XDG_WM_BASE_ERROR_ROLE, [](WireClient& client) {
        const WireClient::Window parent = client.openWindow("Parent");
        const WireClient::Window window = client.createWindow();
        client.send(WireMessage(window.toplevel, XDG_TOPLEVEL_DESTROY));
        client.createPopup(window.xdgSurface, parent.xdgSurface, client.createPositioner(QSize(20, 20)));
    });
    row("a window that is made again", cNoError, [](WireClient& client) {
        WireClient::Window window = client.createWindow();
        for (int i = 0; i < 10; ++i) {
            client.configure(window.surface, window.xdgSurface);
            client.send(WireMessage(window.toplevel, XDG_TOPLEVEL_DESTROY));
            window.toplevel = client.createToplevel(window.xdgSurface);
        }
    });
    row("an xdg surface that goes before its window", XDG_SURFACE_ERROR_DEFUNCT_ROLE_OBJECT, [](WireClient& client) {
        client.send(WireMessage(client.openWindow("Window").xdgSurface, XDG_SURFACE_DESTROY));
    });
    row("a surface that goes before its xdg surface", XDG_WM_BASE_ERROR_DEFUNCT_SURFACES, [](WireClient& client) {
        client.send(WireMessage(client.openWindow("Window").surface, WL_SURFACE_DESTROY));
    });
    row("a shell that goes before its surfaces", XDG_WM_BASE_ERROR_DEFUNCT_SURFACES, [](WireClient& client) {
        const quint32 shell = client.bind("xdg_wm_base", 3);
        client.createXdgSurface(client.createSurface());
        client.send(WireMessage(shell, XDG_WM_BASE_DESTROY));
    });
    row("a shell that goes after its surfaces", cNoError, [](WireClient& client) {
        const quint32 shell = client.bind("xdg_wm_base", 3);
        const WireClient::Window window = client.openWindow("Window");
        client.send(WireMessage(window.toplevel, XDG_TOPLEVEL_DESTROY));
        client.send(WireMessage(window.xdgSurface, XDG_SURFACE_DESTROY));
        // Its pings are not answered any more.
        client.bind("xdg_wm_base", 3);
        client.send(WireMessage(shell, XDG_WM_BASE_DESTROY));
    });

    row("a popup that goes before its own popups", XDG_WM_BASE_ERROR_NOT_THE_TOPMOST_POPUP, [](WireClient& client) {
        const Popup menu = openPopup(client, client.openWindow("Parent").xdgSurface);
        openPopup(client, menu.xdgSurface);
        client.send(WireMessage(menu.popup, XDG_POPUP_DESTROY));
    });
    row("a grab of a popup that is mapped", XDG_POPUP_ERROR_INVALID_GRAB, [](WireClient& client) {
        grab(client, openPopup(client, client.openWindow("Parent").xdgSurface));
    });
    row("a grab on a popup without a grab", XDG_POPUP_ERROR_INVALID_GRAB, [](WireClient& client) {
        const Popup menu = openPopup(client, client.openWindow("Parent").xdgSurface);
        grab(client, createPopup(client, menu.xdgSurface, client.createPositioner(QSize(20, 20))));
    });
    row("two grabs on one window", XDG_WM_BASE_ERROR_NOT_THE_TOPMOST_POPUP, [](WireClient& client) {
        const quint32 parent = client.openWindow("Parent").xdgSurface;
        for (int i = 0; i < 2; ++i) {
            grab(client, createPopup(client, parent, client.createPositioner(QSize(20, 20))));
        }
    });
    row("a popup that moves by incomplete rules", XDG_WM_BASE_ERROR_INVALID_POSITIONER, [](WireClient& client) {
        const quint32 shell = client.bind("xdg_wm_base", 3);
        const Popup popup = openPopup(client, client.openWindow("Parent").xdgSurface);
        const quint32 positioner = client.newId();
        client.send(WireMessage(shell, XDG_WM_BASE_CREATE_POSITIONER).number(positioner));
        client.send(WireMessage(popup.popup, XDG_POPUP_REPOSITION).number(positioner).number(1U));
    });
    row("a popup that moves before it is mapped, a thousand times", cNoError, [](WireClient& client) {
        const quint32 parent = client.openWindow("Parent").xdgSurface;
        const quint32 positioner = client.createPositioner(QSize(20, 20));
        const Popup popup = createPopup(client, parent, positioner);
        for (quint32 i = 0; i < 1000; ++i) {
            client.send(WireMessage(popup.popup, XDG_POPUP_REPOSITION).number(positioner).number(i));
        }
        client.configure(popup.surface, popup.xdgSurface);
    });
    row("a popup that moves and never answers", cNoError, [](WireClient& client) {
        const quint32 positioner = client.createPositioner(QSize(20, 20));
        const Popup popup = openPopup(client, client.openWindow("Parent").xdgSurface, positioner);
        for (quint32 i = 0; i < 3000; ++i) {
            client.send(WireMessage(popup.popup, XDG_POPUP_REPOSITION).number(positioner).number(i));
            if (i % 50 == 0) {
                client.synchronise();
            }
        }
        client.synchronise();
        client.acknowledge(popup.xdgSurface);
        client.commit(popup.surface);
    });
    row("a popup whose parent goes before it moves", cNoError, [](WireClient& client) {
        const WireClient::Window window = client.openWindow("Parent");
        const quint32 positioner = client.createPositioner(QSize(20, 20));
        const Popup popup = openPopup(client, window.xdgSurface, positioner);
        client.send(WireMessage(window.toplevel, XDG_TOPLEVEL_DESTROY));
        client.send(WireMessage(window.xdgSurface, XDG_SURFACE_DESTROY));
        client.send(WireMessage(window.surface, WL_SURFACE_DESTROY));
        client.send(WireMessage(popup.popup, XDG_POPUP_REPOSITION).number(positioner).number(1U));
        client.commit(popup.surface);
        closePopup(client, popup);
    });

    row("two decorations of one window", ZXDG_TOPLEVEL_DECORATION_V1_ERROR_ALREADY_CONSTRUCTED, [](WireClient& client) {
        const quint32 toplevel = client.createWindow().toplevel;
        createDecoration(client, toplevel);
        createDecoration(client, toplevel);
    });
    row("a decoration after the buffer", ZXDG_TOPLEVEL_DECORATION_V1_ERROR_UNCONFIGURED_BUFFER, [](WireClient& client) {
        createDecoration(client, client.openWindow("Window").toplevel);
    });
    row("a decoration mode that is none", cNoError, [](WireClient& client) {
        const WireClient::Window window = client.createWindow();
        const quint32 decoration = createDecoration(client, window.toplevel);
        client.send(WireMessage(decoration, ZXDG_TOPLEVEL_DECORATION_V1_SET_MODE).number(4711U));
        client.show(window.surface, client.createBuffer(cWindowSize));
    });
    row("a decoration that outlives its window", cNoError, [](WireClient& client) {
        const WireClient::Window window = client.createWindow();
        const quint32 decoration = createDecoration(client, window.toplevel);
        client.send(WireMessage(window.toplevel, XDG_TOPLEVEL_DESTROY));
        client.send(WireMessage(decoration, ZXDG_TOPLEVEL_DECORATION_V1_SET_MODE).number(1U));
        client.send(WireMessage(decoration, ZXDG_TOPLEVEL_DECORATION_V1_DESTROY));
    });
}

void CompositorShellTest::aClientThatBreaksTheProtocolHarmsOnlyItself()
{
    attackFrom(*connectClient());
}

TELVARO_TEST_MAIN(CompositorShellTest)

#include "CompositorShellTest.moc"
