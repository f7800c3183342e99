// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "CompositorBus.h"
#include "CompositorFixture.h"
#include "TestMain.h"
#include "VirtualDesktop.h"
#include "WireClient.h"

#include <unistd.h>
#include <wayland-client-protocol.h>

/// Drag and drop, and drags that are cancelled.
class CompositorDragTest : public CompositorFixture
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void aDragIsFollowedAndDropped();
    void aDragWithNothingPressedIsCancelled();
    void aDragWithoutASourceLeavesThePointerWhereItIs();
    void aDragEndsWithItsSource();
    void aDragEndsWithItsClient();
    void aDragOverAClientThatKnowsOfNoneIsHarmless();
    void aDragSurvivesTheEndOfWhatItIsOver();
    void aSecondDragIsCancelled();
    void theImageOfADragFollowsThePointer();
    void theImageOfADragMayVanish();
    void aCursorIsSetByWhoHasThePointer();
    void aCursorIsAskedForItsNextImage();

protected:
    void startCompositor() override;

private:
    struct Dragger
    {
        std::unique_ptr<WireClient> client;
        WireClient::Window window = {};
        quint32 manager = 0;
        quint32 device = 0;
        quint32 pointer = 0;
    };

    Dragger openDragger(const QByteArray& title);
    static quint32 createSource(const Dragger& dragger);
    static void startDrag(const Dragger& dragger, quint32 source);
    /// As above, with a white image; returns its surface.
    static quint32 startDragWithImage(const Dragger& dragger, const QSize& size);
    /// Moves the pointer until the object has received the event.
    void moveUntil(const Dragger& dragger, quint32 object, quint16 opcode);
    void pressOn(const Dragger& dragger);
    static void waitForEvent(const Dragger& dragger, quint32 object, quint16 opcode);
    /// Verifies that the pointer still reaches the client's window.
    void checkPointer(const Dragger& dragger);

    std::unique_ptr<VirtualDesktop> mDesktop;
    int mStep = 0;
};

namespace {

// Event opcodes.
constexpr quint16 cPointerMotion = 2;
constexpr quint16 cPointerButton = 3;
constexpr quint16 cDeviceEnter = 1;
constexpr quint16 cDeviceLeave = 2;
constexpr quint16 cDeviceMotion = 3;
constexpr quint16 cDeviceDrop = 4;
constexpr quint16 cSourceCancelled = 2;

} // namespace

void CompositorDragTest::initTestCase()
{
    mDesktop = std::make_unique<VirtualDesktop>();
}

void CompositorDragTest::startCompositor()
{
    mCompositor->environment().insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    mCompositor->environment().insert(QStringLiteral("DISPLAY"), mDesktop->display());
    mCompositor->start();
    mDesktop->movePointer(5, 595);
}

CompositorDragTest::Dragger CompositorDragTest::openDragger(const QByteArray& title)
{
    Dragger dragger;
    dragger.client = wireClient();
    const quint32 seat = dragger.client->bind("wl_seat");
    dragger.manager = dragger.client->bind("wl_data_device_manager");
    dragger.device = dragger.client->newId();
    dragger.client->send(
        WireMessage(dragger.manager, WL_DATA_DEVICE_MANAGER_GET_DATA_DEVICE).number(dragger.device).number(seat));
    dragger.pointer = dragger.client->newId();
    dragger.client->send(WireMessage(seat, WL_SEAT_GET_POINTER).number(dragger.pointer));
    dragger.window = dragger.client->openWindow(title);
    dragger.client->synchronise();
    return dragger;
}

quint32 CompositorDragTest::createSource(const Dragger& dragger)
{
    const quint32 source = dragger.client->newId();
    dragger.client->send(WireMessage(dragger.manager, WL_DATA_DEVICE_MANAGER_CREATE_DATA_SOURCE).number(source));
    dragger.client->send(WireMessage(source, WL_DATA_SOURCE_OFFER).text("text/plain"));
    return source;
}

void CompositorDragTest::startDrag(const Dragger& dragger, quint32 source)
{
    const quint32 icon = dragger.client->createSurface();
    dragger.client->send(WireMessage(dragger.device, WL_DATA_DEVICE_START_DRAG)
                             .number(source)
                             .number(dragger.window.surface)
                             .number(icon)
                             .number(0U));
    QVERIFY2(dragger.client->synchronise(), dragger.client->errorText());
}

quint32 CompositorDragTest::startDragWithImage(const Dragger& dragger, const QSize& size)
{
    const quint32 source = createSource(dragger);
    const quint32 icon = dragger.client->createSurface();
    dragger.client->send(WireMessage(dragger.device, WL_DATA_DEVICE_START_DRAG)
                             .number(source)
                             .number(dragger.window.surface)
                             .number(icon)
                             .number(0U));
    dragger.client->attach(icon, dragger.client->createBuffer(size));
    dragger.client->damage(icon, QRect(QPoint(), size));
    dragger.client->commit(icon);
    dragger.client->synchronise();
    return icon;
}

void CompositorDragTest::waitForEvent(const Dragger& dragger, quint32 object, quint16 opcode)
{
    const auto hasEvent = [&] {
        return dragger.client->synchronise() && !dragger.client->events(object, opcode).isEmpty();
    };
    TRY_VERIFY(hasEvent());
}

void CompositorDragTest::moveUntil(const Dragger& dragger, quint32 object, quint16 opcode)
{
    const int before = dragger.client->events(object, opcode).size();
    const auto hasMoved = [&] {
        ++mStep;
        mDesktop->movePointer(500 + mStep % 2, 300);
        return dragger.client->synchronise() && dragger.client->events(object, opcode).size() > before;
    };
    TRY_VERIFY(hasMoved());
}

void CompositorDragTest::pressOn(const Dragger& dragger)
{
    moveUntil(dragger, dragger.pointer, cPointerMotion);
    mDesktop->press();
    waitForEvent(dragger, dragger.pointer, cPointerButton);
}

void CompositorDragTest::checkPointer(const Dragger& dragger)
{
    moveUntil(dragger, dragger.pointer, cPointerMotion);
    const int before = dragger.client->events(dragger.pointer, cPointerButton).size();
    mDesktop->click();
    const auto hasClicked = [&] {
        return dragger.client->synchronise()
            && dragger.client->events(dragger.pointer, cPointerButton).size() >= before + 2;
    };
    TRY_VERIFY(hasClicked());
}

void CompositorDragTest::aDragIsFollowedAndDropped()
{
    const Dragger dragger = openDragger("Dragger");
    pressOn(dragger);
    startDrag(dragger, createSource(dragger));
    moveUntil(dragger, dragger.device, cDeviceMotion);
    QCOMPARE(dragger.client->events(dragger.device, cDeviceEnter).size(), 1);
    mDesktop->release();
    waitForEvent(dragger, dragger.device, cDeviceDrop);
    checkPointer(dragger);
}

void CompositorDragTest::aDragWithNothingPressedIsCancelled()
{
    const Dragger dragger = openDragger("Dragger");
    moveUntil(dragger, dragger.pointer, cPointerMotion);
    const quint32 source = createSource(dragger);
    startDrag(dragger, source);
    waitForEvent(dragger, source, cSourceCancelled);
    checkPointer(dragger);
    QCOMPARE(dragger.client->events(dragger.device, cDeviceEnter).size(), 0);
}

void CompositorDragTest::aDragWithoutASourceLeavesThePointerWhereItIs()
{
    const Dragger dragger = openDragger("Dragger");
    pressOn(dragger);
    startDrag(dragger, 0);
    moveUntil(dragger, dragger.pointer, cPointerMotion);
    mDesktop->release();
    checkPointer(dragger);
}

void CompositorDragTest::aDragEndsWithItsSource()
{
    const Dragger dragger = openDragger("Dragger");
    pressOn(dragger);
    const quint32 source = createSource(dragger);
    startDrag(dragger, source);
    moveUntil(dragger, dragger.device, cDeviceMotion);
    dragger.client->send(WireMessage(source, WL_DATA_SOURCE_DESTROY));
    waitForEvent(dragger, dragger.device, cDeviceLeave);
    mDesktop->release();
    checkPointer(dragger);
    QCOMPARE(dragger.client->events(dragger.device, cDeviceDrop).size(), 0);
}

void CompositorDragTest::aDragEndsWithItsClient()
{
    const Dragger other = openDragger("Other");
    {
        const Dragger dragger = openDragger("Dragger");
        TRY_COMPARE(CompositorBus::views().size(), 2);
        pressOn(dragger);
        startDrag(dragger, createSource(dragger));
        moveUntil(dragger, dragger.device, cDeviceMotion);
    }
    TRY_COMPARE(CompositorBus::views().size(), 1);
    mDesktop->release();
    checkPointer(other);
}

void CompositorDragTest::aDragOverAClientThatKnowsOfNoneIsHarmless()
{
    const auto ignorant = protocolClient();
    ignorant->send("open a Ignorant");
    TRY_COMPARE(CompositorBus::views().size(), 1);
    const Dragger dragger = openDragger("Dragger");
    TRY_COMPARE(CompositorBus::views().size(), 2);
    pressOn(dragger);
    const quint32 source = createSource(dragger);
    startDrag(dragger, source);
    moveUntil(dragger, dragger.device, cDeviceMotion);
    const QString own = CompositorBus::viewWithTitle(QStringLiteral("Dragger")).uuid;
    CompositorBus::set(CompositorBus::cTaskSwitcherPath, CompositorBus::cTaskSwitcher, QStringLiteral("currentView"),
                       CompositorBus::viewWithTitle(QStringLiteral("Ignorant")).uuid);
    mDesktop->movePointer(510, 310);
    waitForEvent(dragger, dragger.device, cDeviceLeave);
    mDesktop->release();
    waitForEvent(dragger, source, cSourceCancelled);
    CompositorBus::set(CompositorBus::cTaskSwitcherPath, CompositorBus::cTaskSwitcher, QStringLiteral("currentView"),
                       own);
    checkPointer(dragger);
}

void CompositorDragTest::aDragSurvivesTheEndOfWhatItIsOver()
{
    const Dragger dragger = openDragger("Dragger");
    TRY_COMPARE(CompositorBus::views().size(), 1);
    pressOn(dragger);
    startDrag(dragger, createSource(dragger));
    moveUntil(dragger, dragger.device, cDeviceMotion);
    {
        const Dragger target = openDragger("Target");
        TRY_COMPARE(CompositorBus::views().size(), 2);
        moveUntil(target, target.device, cDeviceMotion);
    }
    TRY_COMPARE(CompositorBus::views().size(), 1);
    moveUntil(dragger, dragger.device, cDeviceMotion);
    mDesktop->release();
    waitForEvent(dragger, dragger.device, cDeviceDrop);
    checkPointer(dragger);
}

void CompositorDragTest::aSecondDragIsCancelled()
{
    const Dragger dragger = openDragger("Dragger");
    pressOn(dragger);
    const quint32 first = createSource(dragger);
    const quint32 second = createSource(dragger);
    startDrag(dragger, first);
    startDrag(dragger, second);
    waitForEvent(dragger, second, cSourceCancelled);
    moveUntil(dragger, dragger.device, cDeviceMotion);
    mDesktop->release();
    waitForEvent(dragger, dragger.device, cDeviceDrop);
    QCOMPARE(dragger.client->events(first, cSourceCancelled).size(), 0);
}

void CompositorDragTest::theImageOfADragFollowsThePointer()
{
    const Dragger dragger = openDragger("Dragger");
    pressOn(dragger);
    const quint32 icon = startDragWithImage(dragger, QSize(40, 40));
    const auto isWhite = [this](int x, int y) {
        return screenShot().pixelColor(x, y) == Qt::white;
    };
    // Beside the window, which is white too.
    mDesktop->movePointer(100, 500);
    TRY_VERIFY(isWhite(105, 505));
    QVERIFY(isWhite(138, 538));
    QVERIFY(!isWhite(142, 505));
    mDesktop->movePointer(900, 100);
    TRY_VERIFY(isWhite(905, 105));
    QVERIFY(!isWhite(105, 505));
    // The client moves it relative to the pointer.
    dragger.client->send(
        WireMessage(icon, WL_SURFACE_ATTACH).number(dragger.client->createBuffer(QSize(40, 40))).number(-60).number(0));
    dragger.client->damage(icon, QRect(0, 0, 40, 40));
    dragger.client->commit(icon);
    TRY_VERIFY(isWhite(845, 105));
    QVERIFY(!isWhite(905, 105));
    mDesktop->release();
    TRY_VERIFY(!isWhite(845, 105));
    checkPointer(dragger);
}

void CompositorDragTest::theImageOfADragMayVanish()
{
    const Dragger dragger = openDragger("Dragger");
    pressOn(dragger);
    const quint32 icon = startDragWithImage(dragger, QSize(40, 40));
    mDesktop->movePointer(100, 500);
    const auto isWhite = [this] {
        return screenShot().pixelColor(105, 505) == Qt::white;
    };
    TRY_VERIFY(isWhite());
    dragger.client->send(WireMessage(icon, WL_SURFACE_DESTROY));
    TRY_VERIFY(!isWhite());
    moveUntil(dragger, dragger.device, cDeviceMotion);
    mDesktop->release();
    waitForEvent(dragger, dragger.device, cDeviceDrop);
}

void CompositorDragTest::aCursorIsSetByWhoHasThePointer()
{
    const Dragger dragger = openDragger("Pointed");
    moveUntil(dragger, dragger.pointer, cPointerMotion);
    const quint32 surface = dragger.client->createSurface();
    dragger.client->attach(surface, dragger.client->createBuffer(QSize(32, 32)));
    dragger.client->commit(surface);
    dragger.client->send(
        WireMessage(dragger.pointer, WL_POINTER_SET_CURSOR).number(0U).number(surface).number(1U).number(1U));
    QVERIFY(dragger.client->synchronise());

    // A cursor whose memory is truncated, and a cursor that is a window.
    dragger.client->attach(surface, dragger.client->createBuffer(QSize(32, 32)));
    QCOMPARE(ftruncate(dragger.client->memory(), 0), 0);
    dragger.client->commit(surface);
    TRY_VERIFY(!dragger.client->synchronise());
    expectComplaints(5);
    const Dragger other = openDragger("Other");
    moveUntil(other, other.pointer, cPointerMotion);
    other.client->send(WireMessage(other.pointer, WL_POINTER_SET_CURSOR)
                           .number(0U)
                           .number(other.window.surface)
                           .number(1U)
                           .number(1U));
    QVERIFY(!other.client->synchronise());
}

void CompositorDragTest::aCursorIsAskedForItsNextImage()
{
    const Dragger dragger = openDragger("Pointed");
    moveUntil(dragger, dragger.pointer, cPointerMotion);
    const quint32 surface = dragger.client->createSurface();
    dragger.client->send(
        WireMessage(dragger.pointer, WL_POINTER_SET_CURSOR).number(0U).number(surface).number(1U).number(1U));
    for (int i = 0; i < 3; ++i) {
        const quint32 callback = dragger.client->newId();
        dragger.client->send(WireMessage(surface, WL_SURFACE_FRAME).number(callback));
        dragger.client->attach(surface, dragger.client->createBuffer(QSize(32, 32)));
        dragger.client->commit(surface);
        const auto isCalledBack = [&] {
            return dragger.client->synchronise() && dragger.client->events(callback).size() == 1;
        };
        TRY_VERIFY(isCalledBack());
    }
}

TELVARO_TEST_MAIN(CompositorDragTest)

#include "CompositorDragTest.moc"
