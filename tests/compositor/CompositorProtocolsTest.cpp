// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "CompositorBus.h"
#include "HostileClientFixture.h"
#include "ListeningPort.h"
#include "RemoteDesktop.h"
#include "TestMain.h"
#include "VirtualDesktop.h"

#include <limits>
#include <unistd.h>
#include <viewporter-client-protocol.h>
#include <wayland-client-protocol.h>
#include <xdg-shell-client-protocol.h>

namespace {

constexpr quint32 cDisplay = 1;
constexpr quint16 cRegistryGlobal = 0;
constexpr quint16 cPointerEnter = 0;
constexpr quint16 cPointerLeave = 1;
constexpr quint16 cPointerMotion = 2;
constexpr quint16 cPointerButton = 3;
constexpr quint16 cPointerAxis = 4;
constexpr quint16 cPointerFrame = 5;
constexpr quint16 cPointerAxisSource = 6;
constexpr quint16 cPointerAxisDiscrete = 8;
constexpr quint16 cShellPing = 0;
constexpr quint16 cToplevelConfigure = 0;
constexpr int cWheelUp = 4;
constexpr int cWheelDown = 5;

constexpr qint32 cHuge = std::numeric_limits<qint32>::max();
constexpr qint32 cLowest = std::numeric_limits<qint32>::min();

/// The globals as a wl_registry of its own lists them.
struct Registry
{
    quint32 id;
    QMap<QByteArray, QVector<QPair<quint32, quint32>>> globals;

    explicit Registry(WireClient& client)
        : id(client.newId())
    {
        client.send(WireMessage(cDisplay, WL_DISPLAY_GET_REGISTRY).number(id));
        client.synchronise();
        for (const WireClient::Event& event : client.events(id, cRegistryGlobal)) {
            const quint32 length = event.number(1);
            const QByteArray interface = event.arguments.mid(8, static_cast<int>(length) - 1);
            globals[interface].append({event.number(0), event.number(2 + static_cast<int>((length + 3) / 4))});
        }
    }

    quint32 bind(WireClient& client, const QByteArray& interface, quint32 version) const
    {
        const quint32 object = client.newId();
        client.send(WireMessage(id, WL_REGISTRY_BIND)
                        .number(globals.value(interface).first().first)
                        .text(interface)
                        .number(version)
                        .number(object));
        return object;
    }
};

quint32 createPointer(WireClient& client, quint32 seat)
{
    const quint32 pointer = client.newId();
    client.send(WireMessage(seat, WL_SEAT_GET_POINTER).number(pointer));
    return pointer;
}

/// The states in an xdg_toplevel.configure.
QVector<quint32> statesOf(const WireClient::Event& configure)
{
    QVector<quint32> states;
    for (quint32 i = 0; i < configure.number(2) / sizeof(quint32); ++i) {
        states.append(configure.number(3 + static_cast<int>(i)));
    }
    return states;
}

} // namespace

/// The versions of the globals and what they promise, and clients that abuse it.
class CompositorProtocolsTest : public HostileClientFixture
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void everyGlobalIsAnnouncedOnceAtItsVersion_data();
    void everyGlobalIsAnnouncedOnceAtItsVersion();
    void aGlobalOfQtIsOutOfReach();
    void damageInTheBufferIsShown_data();
    void damageInTheBufferIsShown();
    void aTransformedBufferIsShownUpright_data();
    void aTransformedBufferIsShownUpright();
    void aTransformedBufferIsCutByItsViewport();
    void pointerEventsComeInFrames();
    void anOldPointerGetsNoFrames();
    void theWheelTellsItsSourceAndSteps();
    void everyKeyboardOfAClientGetsTheKeys();
    void thePingGoesToTheShellOfTheWindow();
    void aWindowHasItsSizeAndStatesBeforeItIsMapped();
    void fullScreenIsGranted();
    void aClientThatBreaksTheProtocolHarmsOnlyItself_data();
    void aClientThatBreaksTheProtocolHarmsOnlyItself();

protected:
    void startCompositor() override;

private:
    /// Moves the pointer over the window's middle until the pointer object has entered it.
    void enter(WireClient& client, quint32 pointer);

    std::unique_ptr<VirtualDesktop> mDesktop;
};

void CompositorProtocolsTest::initTestCase()
{
    mDesktop = std::make_unique<VirtualDesktop>();
}

void CompositorProtocolsTest::startCompositor()
{
    mCompositor->environment().insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    mCompositor->environment().insert(QStringLiteral("DISPLAY"), mDesktop->display());
    mCompositor->start();
    mDesktop->movePointer(5, 595);
}

void CompositorProtocolsTest::enter(WireClient& client, quint32 pointer)
{
    int step = 0;
    const auto hasEntered = [&] {
        mDesktop->movePointer(500 + ++step % 2, 300);
        return client.synchronise() && !client.events(pointer, cPointerMotion).isEmpty();
    };
    TRY_VERIFY(hasEntered());
}

void CompositorProtocolsTest::everyGlobalIsAnnouncedOnceAtItsVersion_data()
{
    QTest::addColumn<quint32>("version");
    QTest::newRow("wl_compositor") << 4U;
    QTest::newRow("wl_seat") << 6U;
    QTest::newRow("wl_output") << 3U;
    QTest::newRow("xdg_wm_base") << 3U;
    QTest::newRow("zxdg_decoration_manager_v1") << 1U;
    QTest::newRow("wp_presentation") << 1U;
    QTest::newRow("zwlr_screencopy_manager_v1") << 3U;
}

void CompositorProtocolsTest::everyGlobalIsAnnouncedOnceAtItsVersion()
{
    QFETCH(quint32, version);
    const auto client = wireClient();
    const QByteArray interface = QTest::currentDataTag();
    const Registry registry(*client);
    QCOMPARE(registry.globals.value(interface).size(), 1);
    QCOMPARE(registry.globals.value(interface).first().second, version);
    registry.bind(*client, interface, version);
    QVERIFY2(client->synchronise(), client->errorText());
}

void CompositorProtocolsTest::aGlobalOfQtIsOutOfReach()
{
    expectComplaints(1);
    const auto client = wireClient();
    const Registry registry(*client);
    quint32 lowest = std::numeric_limits<quint32>::max();
    for (const auto& globals : registry.globals) {
        lowest = std::min(lowest, globals.first().first);
    }
    // The first global that Qt creates is its wl_compositor.
    QVERIFY(lowest > 1);
    client->send(
        WireMessage(registry.id, WL_REGISTRY_BIND).number(1U).text("wl_compositor").number(3U).number(client->newId()));
    QVERIFY(!client->synchronise());
    QCOMPARE(client->errorCode(), 0);
}

void CompositorProtocolsTest::damageInTheBufferIsShown_data()
{
    QTest::addColumn<qint32>("scale");
    QTest::newRow("scale 1") << 1;
    QTest::newRow("scale 2") << 2;
}

void CompositorProtocolsTest::damageInTheBufferIsShown()
{
    QFETCH(qint32, scale);
    mCompositor->end();
    mCompositor = std::make_unique<CompositorProcess>();
    mCompositor->environment().insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("vnc:size=1024x600,port=0"));
    mCompositor->start({});
    expectComplaints(5);
    const auto client = wireClient();
    client->bind("wl_compositor", 4);
    const WireClient::Window window = client->createWindow();
    client->configure(window.surface, window.xdgSurface);
    const quint32 buffer = client->createBuffer(QSize(400, 200));
    client->send(WireMessage(window.surface, WL_SURFACE_SET_BUFFER_SCALE).number(scale));
    client->attach(window.surface, buffer);
    client->commit(window.surface);
    QVERIFY2(client->synchronise(), client->errorText());
    RemoteDesktop desktop(listeningPort(mCompositor->processId(), QStringLiteral("tcp")));
    const QPoint middle(512, 34 + 283);
    const auto colour = [&desktop](const QPoint& position) {
        return desktop.picture().pixelColor(position);
    };
    TRY_COMPARE(colour(middle), QColor(Qt::white));

    // Everything turns black, but only the right half is damaged: that is what may be shown.
    QByteArray black(400 * 200 * 4, '\0');
    for (int alpha = 3; alpha < black.size(); alpha += 4) {
        black[alpha] = '\xff';
    }
    QCOMPARE(pwrite(client->memory(), black.constData(), static_cast<std::size_t>(black.size()), 0), black.size());
    client->attach(window.surface, buffer);
    client->send(WireMessage(window.surface, WL_SURFACE_DAMAGE_BUFFER).number(200).number(0).number(200).number(200));
    client->commit(window.surface);
    QVERIFY2(client->synchronise(), client->errorText());
    TRY_COMPARE(colour(middle + QPoint(20, 0)), QColor(Qt::black));
    const QImage picture = desktop.picture();
    QCOMPARE(picture.pixelColor(middle - QPoint(20, 0)), QColor(Qt::white));
    QCOMPARE(picture.pixelColor(middle + QPoint(200 / scale - 2, 0)), QColor(Qt::black));
    QVERIFY(picture.pixelColor(middle + QPoint(200 / scale + 2, 0)) != QColor(Qt::black));
}

void CompositorProtocolsTest::aTransformedBufferIsShownUpright_data()
{
    QTest::addColumn<qint32>("transform");
    QTest::addColumn<QSize>("size");
    // The corner of a buffer of 120 x 60 that is the upright content's top left, and the one that is its top right.
    QTest::addColumn<QPoint>("topLeft");
    QTest::addColumn<QPoint>("topRight");
    const QSize wide(120, 60);
    const QSize tall(60, 120);
    const QPoint nw(0, 0);
    const QPoint ne(1, 0);
    const QPoint sw(0, 1);
    const QPoint se(1, 1);
    QTest::newRow("normal") << qint32(WL_OUTPUT_TRANSFORM_NORMAL) << wide << nw << ne;
    QTest::newRow("90") << qint32(WL_OUTPUT_TRANSFORM_90) << tall << sw << nw;
    QTest::newRow("180") << qint32(WL_OUTPUT_TRANSFORM_180) << wide << se << sw;
    QTest::newRow("270") << qint32(WL_OUTPUT_TRANSFORM_270) << tall << ne << se;
    QTest::newRow("flipped") << qint32(WL_OUTPUT_TRANSFORM_FLIPPED) << wide << ne << nw;
    QTest::newRow("flipped 90") << qint32(WL_OUTPUT_TRANSFORM_FLIPPED_90) << tall << nw << sw;
    QTest::newRow("flipped 180") << qint32(WL_OUTPUT_TRANSFORM_FLIPPED_180) << wide << sw << se;
    QTest::newRow("flipped 270") << qint32(WL_OUTPUT_TRANSFORM_FLIPPED_270) << tall << se << ne;
}

namespace {

constexpr int cWidth = 120;
constexpr int cHeight = 60;

/// Another colour in each quarter of the buffer.
QColor colourOf(const QPoint& corner)
{
    return {corner.x() == 0 ? 255 : 0, corner.y() == 0 ? 255 : 0, 128};
}

void openTransformed(WireClient& client, qint32 transform, const QSize& viewport)
{
    client.bind("wl_compositor", 4);
    const WireClient::Window window = client.createWindow();
    client.configure(window.surface, window.xdgSurface);
    const quint32 buffer = client.createBuffer(QSize(cWidth, cHeight));
    QImage image(cWidth, cHeight, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < cHeight; ++y) {
        for (int x = 0; x < cWidth; ++x) {
            image.setPixelColor(x, y, colourOf(QPoint(x * 2 / cWidth, y * 2 / cHeight)));
        }
    }
    QCOMPARE(pwrite(client.memory(), image.constBits(), static_cast<std::size_t>(image.sizeInBytes()), 0),
             image.sizeInBytes());
    if (!viewport.isEmpty()) {
        const quint32 viewporter = client.bind("wp_viewporter");
        const quint32 object = client.newId();
        client.send(WireMessage(viewporter, WP_VIEWPORTER_GET_VIEWPORT).number(object).number(window.surface));
        // The left half of the upright content, in the viewport's size.
        client.send(WireMessage(object, WP_VIEWPORT_SET_SOURCE).number(0).number(0).number(30 * 256).number(120 * 256));
        client.send(
            WireMessage(object, WP_VIEWPORT_SET_DESTINATION).number(viewport.width()).number(viewport.height()));
    }
    client.send(WireMessage(window.surface, WL_SURFACE_SET_BUFFER_TRANSFORM).number(transform));
    client.attach(window.surface, buffer);
    client.send(WireMessage(window.surface, WL_SURFACE_DAMAGE_BUFFER).number(0).number(0).number(cHuge).number(cHuge));
    client.commit(window.surface);
    QVERIFY2(client.synchronise(), client.errorText());
    TRY_COMPARE(CompositorBus::views().size(), 1);
}

} // namespace

void CompositorProtocolsTest::aTransformedBufferIsShownUpright()
{
    QFETCH(qint32, transform);
    QFETCH(QSize, size);
    QFETCH(QPoint, topLeft);
    QFETCH(QPoint, topRight);
    const auto client = wireClient();
    openTransformed(*client, transform, QSize());
    const QVariantMap attributes = CompositorBus::views().first().attributes;
    QCOMPARE(attributes.value(QStringLiteral("width")).toInt(), size.width());
    QCOMPARE(attributes.value(QStringLiteral("height")).toInt(), size.height());
    const QImage picture = screenShot();
    const QRect frame(QPoint((1024 - size.width()) / 2, 34 + (566 - size.height()) / 2), size);
    QCOMPARE(picture.pixelColor(frame.topLeft()), colourOf(topLeft));
    QCOMPARE(picture.pixelColor(frame.topRight()), colourOf(topRight));
    QCOMPARE(picture.pixelColor(frame.bottomLeft()), colourOf(QPoint(1, 1) - topRight));
    QCOMPARE(picture.pixelColor(frame.bottomRight()), colourOf(QPoint(1, 1) - topLeft));
    QCOMPARE(picture.pixelColor(frame.center() - QPoint(3, 3)), colourOf(topLeft));
}

void CompositorProtocolsTest::aTransformedBufferIsCutByItsViewport()
{
    const auto client = wireClient();
    const QSize size(300, 200);
    openTransformed(*client, WL_OUTPUT_TRANSFORM_90, size);
    const QImage picture = screenShot();
    const QRect frame(QPoint((1024 - size.width()) / 2, 34 + (566 - size.height()) / 2), size);
    // Of the upright content only its left half is shown: above the buffer's south-west, below its south-east.
    QCOMPARE(picture.pixelColor(frame.topLeft() + QPoint(12, 12)), colourOf(QPoint(0, 1)));
    QCOMPARE(picture.pixelColor(frame.topRight() + QPoint(-12, 12)), colourOf(QPoint(0, 1)));
    QCOMPARE(picture.pixelColor(frame.bottomRight() - QPoint(12, 12)), colourOf(QPoint(1, 1)));
}

void CompositorProtocolsTest::pointerEventsComeInFrames()
{
    const auto client = wireClient();
    const quint32 pointer = createPointer(*client, client->bind("wl_seat", 5));
    client->openWindow("Window");
    TRY_COMPARE(CompositorBus::views().size(), 1);
    enter(*client, pointer);
    const QVector<quint16> entered = client->opcodes(pointer).mid(0, 3);
    QCOMPARE(entered, QVector<quint16>({cPointerEnter, cPointerMotion, cPointerFrame}));

    mDesktop->click();
    const auto buttons = [&] {
        client->synchronise();
        return client->events(pointer, cPointerButton).size();
    };
    TRY_COMPARE(buttons(), 2);
    mDesktop->movePointer(5, 595);
    const auto hasLeft = [&] {
        return client->synchronise() && !client->events(pointer, cPointerLeave).isEmpty();
    };
    TRY_VERIFY(hasLeft());
    const QVector<quint16> opcodes = client->opcodes(pointer);
    for (int i = 0; i < opcodes.size(); ++i) {
        if (opcodes.at(i) == cPointerButton || opcodes.at(i) == cPointerLeave || opcodes.at(i) == cPointerMotion) {
            QCOMPARE(opcodes.value(i + 1), cPointerFrame);
        }
    }
}

void CompositorProtocolsTest::anOldPointerGetsNoFrames()
{
    const auto client = wireClient();
    const quint32 pointer = createPointer(*client, client->bind("wl_seat", 4));
    client->openWindow("Window");
    TRY_COMPARE(CompositorBus::views().size(), 1);
    enter(*client, pointer);
    mDesktop->click(cWheelDown);
    const auto hasScrolled = [&] {
        return client->synchronise() && !client->events(pointer, cPointerAxis).isEmpty();
    };
    TRY_VERIFY(hasScrolled());
    for (const quint16 opcode : client->opcodes(pointer)) {
        QVERIFY(opcode < cPointerFrame);
    }
}

void CompositorProtocolsTest::theWheelTellsItsSourceAndSteps()
{
    const auto client = wireClient();
    const quint32 pointer = createPointer(*client, client->bind("wl_seat", 5));
    client->openWindow("Window");
    TRY_COMPARE(CompositorBus::views().size(), 1);
    enter(*client, pointer);
    const int before = client->opcodes(pointer).size();
    mDesktop->click(cWheelDown);
    mDesktop->click(cWheelUp);
    const auto scrolls = [&] {
        client->synchronise();
        return client->events(pointer, cPointerAxis).size();
    };
    TRY_COMPARE(scrolls(), 2);
    QVector<quint16> opcodes = client->opcodes(pointer).mid(before);
    // Between the steps the pointer is where it was: X repeats that.
    for (int i = opcodes.size() - 2; i >= 0; --i) {
        if (opcodes.at(i) == cPointerMotion) {
            opcodes.remove(i, 2);
        }
    }
    const QVector<quint16> step = {cPointerAxisSource, cPointerAxisDiscrete, cPointerAxis, cPointerFrame};
    QCOMPARE(opcodes, step + step);
    const QVector<WireClient::Event> discrete = client->events(pointer, cPointerAxisDiscrete);
    QCOMPARE(static_cast<qint32>(discrete.at(0).number(1)), 1);
    QCOMPARE(static_cast<qint32>(discrete.at(1).number(1)), -1);
    QCOMPARE(static_cast<qint32>(client->events(pointer, cPointerAxis).at(0).number(2)), 10 * 256);
    QCOMPARE(client->events(pointer, cPointerAxisSource).at(0).number(0), quint32(WL_POINTER_AXIS_SOURCE_WHEEL));
}

void CompositorProtocolsTest::everyKeyboardOfAClientGetsTheKeys()
{
    constexpr quint16 keymapEvent = 0;
    constexpr quint16 enterEvent = 1;
    constexpr quint16 leaveEvent = 2;
    constexpr quint16 keyEvent = 3;
    constexpr quint16 modifiersEvent = 4;
    const auto client = wireClient();
    const auto createKeyboard = [&](quint32 seat) {
        const quint32 keyboard = client->newId();
        client->send(WireMessage(seat, WL_SEAT_GET_KEYBOARD).number(keyboard));
        return keyboard;
    };
    const quint32 seat = client->bind("wl_seat", 5);
    const quint32 ended = createKeyboard(seat);
    QVector<quint32> keyboards = {createKeyboard(seat), createKeyboard(seat),
                                  createKeyboard(client->bind("wl_seat", 4))};
    const WireClient::Window window = client->openWindow("Window");
    TRY_COMPARE(CompositorBus::views().size(), 1);
    // One that is created while the client has the focus, and one that ends.
    keyboards.append(createKeyboard(seat));
    client->send(WireMessage(ended, WL_KEYBOARD_RELEASE));
    const auto count = [&](quint32 keyboard, quint16 event) {
        client->synchronise();
        return client->events(keyboard, event).size();
    };
    for (const quint32 keyboard : qAsConst(keyboards)) {
        TRY_COMPARE(count(keyboard, enterEvent), 1);
        QCOMPARE(client->events(keyboard, enterEvent).first().number(1), window.surface);
        QCOMPARE(count(keyboard, keymapEvent), 1);
    }

    mDesktop->keyDown(QStringLiteral("Shift_L"));
    mDesktop->key(QStringLiteral("a"));
    mDesktop->keyUp(QStringLiteral("Shift_L"));
    for (const quint32 keyboard : qAsConst(keyboards)) {
        TRY_COMPARE(count(keyboard, keyEvent), 4);
        QVector<quint32> pressed;
        QVector<quint32> released;
        for (const WireClient::Event& event : client->events(keyboard, keyEvent)) {
            (event.number(3) == 1 ? pressed : released).append(event.number(2));
        }
        constexpr quint32 shift = 42;
        constexpr quint32 a = 30;
        QCOMPARE(pressed, QVector<quint32>({shift, a}));
        QCOMPARE(released, QVector<quint32>({a, shift}));
        // After the focus, with Shift held, and without it.
        TRY_COMPARE(count(keyboard, modifiersEvent), 3);
        const auto modifiers = client->events(keyboard, modifiersEvent);
        QCOMPARE(modifiers.at(0).number(1), 0U);
        QCOMPARE(modifiers.at(1).number(1), 1U);
        QCOMPARE(modifiers.at(2).number(1), 0U);
        // Shift is held before the letter is pressed.
        const QVector<quint16> opcodes = client->opcodes(keyboard);
        QVERIFY(opcodes.indexOf(modifiersEvent, opcodes.indexOf(keyEvent)) == opcodes.indexOf(keyEvent) + 1);
    }
    client->openWindow("Other");
    for (const quint32 keyboard : qAsConst(keyboards)) {
        TRY_COMPARE(count(keyboard, leaveEvent), 1);
        TRY_COMPARE(count(keyboard, enterEvent), 2);
    }
}

void CompositorProtocolsTest::thePingGoesToTheShellOfTheWindow()
{
    expectComplaints(1);
    const auto client = wireClient();
    const Registry registry(*client);
    const quint32 used = registry.bind(*client, "xdg_wm_base", 1);
    const quint32 unused = registry.bind(*client, "xdg_wm_base", 1);
    const quint32 surface = client->createSurface();
    const quint32 xdgSurface = client->newId();
    client->send(WireMessage(used, XDG_WM_BASE_GET_XDG_SURFACE).number(xdgSurface).number(surface));
    client->createToplevel(xdgSurface);
    client->configure(surface, xdgSurface);
    client->attach(surface, client->createBuffer(QSize(300, 200)));
    client->commit(surface);
    const auto isPinged = [&] {
        return client->synchronise() && !client->events(used, cShellPing).isEmpty();
    };
    TRY_VERIFY(isPinged());
    client->send(WireMessage(used, XDG_WM_BASE_PONG).number(client->events(used, cShellPing).first().number(0)));
    QVERIFY2(client->synchronise(), client->errorText());
    QCOMPARE(client->events(unused, cShellPing).size(), 0);

    // With its shell gone the client is not pinged, and ends by its own fault.
    client->send(WireMessage(used, XDG_WM_BASE_DESTROY));
    QVERIFY(!client->synchronise());
}

void CompositorProtocolsTest::aWindowHasItsSizeAndStatesBeforeItIsMapped()
{
    const auto client = wireClient();
    const WireClient::Window window = client->createWindow();
    client->commit(window.surface);
    QVERIFY2(client->synchronise(), client->errorText());
    const auto configures = client->events(window.toplevel, cToplevelConfigure);
    QCOMPARE(configures.size(), 1);
    QCOMPARE(QSize(static_cast<int>(configures.at(0).number(0)), static_cast<int>(configures.at(0).number(1))),
             QSize(1024, 566));
    QCOMPARE(statesOf(configures.at(0)),
             QVector<quint32>({XDG_TOPLEVEL_STATE_MAXIMIZED, XDG_TOPLEVEL_STATE_ACTIVATED}));

    client->acknowledge(window.xdgSurface);
    client->attach(window.surface, client->createBuffer(QSize(1024, 566)));
    client->commit(window.surface);
    QVERIFY2(client->synchronise(), client->errorText());
    TRY_COMPARE(CompositorBus::views().size(), 1);
    screenShot();
    QVERIFY(client->synchronise());
    QCOMPARE(client->events(window.toplevel, cToplevelConfigure).size(), 1);
}

void CompositorProtocolsTest::fullScreenIsGranted()
{
    const auto client = wireClient();
    const WireClient::Window window = client->openWindow("Window");
    TRY_COMPARE(CompositorBus::views().size(), 1);
    const auto states = [&] {
        client->synchronise();
        return statesOf(client->events(window.toplevel, cToplevelConfigure).last());
    };
    QVERIFY(states().contains(XDG_TOPLEVEL_STATE_MAXIMIZED));
    client->send(WireMessage(window.toplevel, XDG_TOPLEVEL_SET_FULLSCREEN).number(0U));
    TRY_COMPARE(states(), QVector<quint32>({XDG_TOPLEVEL_STATE_FULLSCREEN, XDG_TOPLEVEL_STATE_ACTIVATED}));
    client->send(WireMessage(window.toplevel, XDG_TOPLEVEL_UNSET_FULLSCREEN));
    TRY_COMPARE(states(), QVector<quint32>({XDG_TOPLEVEL_STATE_MAXIMIZED, XDG_TOPLEVEL_STATE_ACTIVATED}));
    // The service's property is about all views, and stays.
    QCOMPARE(CompositorBus::get(CompositorBus::cScreenPath, CompositorBus::cScreen, QStringLiteral("fullScreen")),
             QVariant(false));
}

void CompositorProtocolsTest::aClientThatBreaksTheProtocolHarmsOnlyItself_data()
{
    QTest::addColumn<Attack>("attack");
    QTest::addColumn<int>("error");
    const auto row = [](const char* name, int error, const Attack& attack) {
        QTest::newRow(name) << attack << error;
    };
    const auto damage = [](WireClient& client, qint32 x, qint32 y, qint32 width, qint32 height) {
        client.bind("wl_compositor", 4);
        const quint32 surface = client.openWindow("Damaged").surface;
        client.send(WireMessage(surface, WL_SURFACE_DAMAGE_BUFFER).number(x).number(y).number(width).number(height));
        client.commit(surface);
    };

    row("damage of a buffer in an old surface", cAnyError, [](WireClient& client) {
        client.bind("wl_compositor", 3);
        client.send(
            WireMessage(client.createSurface(), WL_SURFACE_DAMAGE_BUFFER).number(0).number(0).number(1).number(1));
    });
    row("damage of a buffer that overflows", cNoError, [damage](WireClient& client) {
        damage(client, cHuge, cHuge, cHuge, cHuge);
    });
    row("damage of a buffer of a negative size", cNoError, [damage](WireClient& client) {
        damage(client, cLowest, cLowest, cLowest, cLowest);
    });
    row("damage of no buffer", cNoError, [](WireClient& client) {
        client.bind("wl_compositor", 4);
        const quint32 surface = client.createSurface();
        client.send(WireMessage(surface, WL_SURFACE_DAMAGE_BUFFER).number(0).number(0).number(9).number(9));
        client.send(WireMessage(surface, WL_SURFACE_SET_BUFFER_TRANSFORM).number(1));
        client.commit(surface);
        client.commit(surface);
    });
    row("a transposed buffer larger than its scale", cNoError, [](WireClient& client) {
        client.bind("wl_compositor", 4);
        const quint32 surface = client.openWindow("Scaled").surface;
        client.send(WireMessage(surface, WL_SURFACE_SET_BUFFER_SCALE).number(cHuge));
        client.send(WireMessage(surface, WL_SURFACE_SET_BUFFER_TRANSFORM).number(3));
        client.attach(surface, client.createBuffer(QSize(3, 5)));
        client.send(WireMessage(surface, WL_SURFACE_DAMAGE_BUFFER).number(0).number(0).number(9).number(9));
        client.commit(surface);
    });
    row("a transform that is none", WL_SURFACE_ERROR_INVALID_TRANSFORM, [](WireClient& client) {
        client.bind("wl_compositor", 4);
        client.send(WireMessage(client.createSurface(), WL_SURFACE_SET_BUFFER_TRANSFORM).number(8));
    });
    row("a transformed buffer whose memory is taken away", WL_SHM_ERROR_INVALID_FD, [](WireClient& client) {
        client.bind("wl_compositor", 4);
        const quint32 surface = client.openWindow("Robbed").surface;
        client.send(WireMessage(surface, WL_SURFACE_SET_BUFFER_TRANSFORM).number(5));
        client.attach(surface, client.createBuffer(QSize(300, 200)));
        QCOMPARE(ftruncate(client.memory(), 0), 0);
        client.commit(surface);
    });
    row("a viewport beyond a transposed buffer", cNoError, [](WireClient& client) {
        client.bind("wl_compositor", 4);
        const quint32 surface = client.openWindow("Viewed").surface;
        const quint32 viewporter = client.bind("wp_viewporter");
        const quint32 viewport = client.newId();
        client.send(WireMessage(viewporter, WP_VIEWPORTER_GET_VIEWPORT).number(viewport).number(surface));
        client.send(WireMessage(viewport, WP_VIEWPORT_SET_SOURCE)
                        .number(1000 * 256)
                        .number(0)
                        .number(8000000 * 256)
                        .number(7 * 256));
        client.send(WireMessage(viewport, WP_VIEWPORT_SET_DESTINATION).number(cHuge).number(1));
        client.send(WireMessage(surface, WL_SURFACE_SET_BUFFER_TRANSFORM).number(1));
        client.commit(surface);
    });
    row("a seat that is released", cNoError, [](WireClient& client) {
        const quint32 seat = client.bind("wl_seat", 5);
        const quint32 pointer = createPointer(client, seat);
        client.send(WireMessage(seat, WL_SEAT_RELEASE));
        client.send(WireMessage(pointer, WL_POINTER_RELEASE));
        client.openWindow("Seatless");
    });
    row("a seat after its release", cAnyError, [](WireClient& client) {
        const quint32 seat = client.bind("wl_seat", 5);
        client.send(WireMessage(seat, WL_SEAT_RELEASE));
        createPointer(client, seat);
    });
    row("an output that is released", cNoError, [](WireClient& client) {
        const quint32 output = client.bind("wl_output", 3);
        const quint32 toplevel = client.openWindow("Outputless").toplevel;
        client.send(WireMessage(output, WL_OUTPUT_RELEASE));
        client.send(WireMessage(toplevel, XDG_TOPLEVEL_SET_FULLSCREEN).number(0U));
    });
    row("full screen on an output after its release", cAnyError, [](WireClient& client) {
        const quint32 output = client.bind("wl_output", 3);
        const quint32 toplevel = client.openWindow("Outputless").toplevel;
        client.send(WireMessage(output, WL_OUTPUT_RELEASE));
        client.send(WireMessage(toplevel, XDG_TOPLEVEL_SET_FULLSCREEN).number(output));
    });
    row("a thousand seats and outputs", cNoError, [](WireClient& client) {
        for (int i = 0; i < 1000; ++i) {
            client.send(WireMessage(client.bind("wl_seat", 5), WL_SEAT_RELEASE));
            client.send(WireMessage(client.bind("wl_output", 3), WL_OUTPUT_RELEASE));
            if (i % 50 == 0) {
                client.synchronise();
            }
        }
    });
    row("a shell that goes before its windows", cAnyError, [](WireClient& client) {
        const quint32 shell = client.bind("xdg_wm_base", 2);
        client.openWindow("Shell-less");
        client.send(WireMessage(shell, XDG_WM_BASE_DESTROY));
        client.openWindow("Other");
    });
    row("more keyboards than there are fingers", cNoError, [](WireClient& client) {
        const quint32 seat = client.bind("wl_seat", 5);
        for (int i = 0; i < 3000; ++i) {
            const quint32 keyboard = client.newId();
            client.send(WireMessage(seat, WL_SEAT_GET_KEYBOARD).number(keyboard));
            if (i % 50 == 0) {
                client.synchronise();
            }
            if (i % 2 == 0) {
                client.send(WireMessage(keyboard, WL_KEYBOARD_RELEASE));
            }
        }
        client.openWindow("Keys");
    });
    row("a version that is not there", cAnyError, [](WireClient& client) {
        client.bind("wl_compositor", 5);
    });
    row("version 0", cAnyError, [](WireClient& client) {
        client.bind("wl_seat", 0);
    });
}

void CompositorProtocolsTest::aClientThatBreaksTheProtocolHarmsOnlyItself()
{
    attackFrom(*wireClient(), [this] {
        mDesktop->movePointer(500, 300);
        mDesktop->click();
    });
}

TELVARO_TEST_MAIN(CompositorProtocolsTest)

#include "CompositorProtocolsTest.moc"
