// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/ClientTouch.h"
#include "ServerDesk.h"
#include "WireClient.h"

#include <QTest>

#include <wayland-client-protocol.h>

namespace {

constexpr quint16 cDown = 0;
constexpr quint16 cUp = 1;
constexpr quint16 cMotion = 2;
constexpr quint16 cFrame = 3;
constexpr quint16 cCancel = 4;
constexpr quint16 cSeatCapabilities = 0;

/// A client with a window and a number of wl_touch objects.
struct TouchClient
{
    TouchClient(ServerDesk& serving, int touchCount)
        : desk(serving)
    {
        ServerDesk::serve([&] {
            wire = std::make_unique<WireClient>(desk.socketPath());
            seat = wire->bind("wl_seat", 5);
            for (int i = 0; i < touchCount; ++i) {
                touches.append(wire->newId());
                wire->send(WireMessage(seat, WL_SEAT_GET_TOUCH).number(touches.last()));
            }
            surface = wire->openWindow("Touched").surface;
            wire->synchronise();
        });
        window = desk.windows.last();
    }
    ~TouchClient()
    {
        const auto before = desk.views.views().size();
        wire.reset();
        [&] {
            QTRY_VERIFY_WITH_TIMEOUT(desk.views.views().size() < before || before == 0, ChildProcess::cDeadline);
        }();
    }
    TouchClient(const TouchClient&) = delete;
    TouchClient& operator=(const TouchClient&) = delete;

    bool down(int finger, const QPointF& position, const QPointF& localPosition)
    {
        return desk.server.touch().down(finger, window, window->surface(), position, localPosition);
    }
    void synchronise()
    {
        ServerDesk::serve([this] {
            wire->synchronise();
        });
    }
    QVector<WireClient::Event> events(quint16 opcode, int index = 0)
    {
        return wire->events(touches.at(index), opcode);
    }
    QVector<quint16> opcodes(int index = 0)
    {
        synchronise();
        QVector<quint16> result;
        for (const WireClient::Event& event : wire->events(touches.at(index))) {
            result.append(event.opcode);
        }
        return result;
    }

    ServerDesk& desk;
    std::unique_ptr<WireClient> wire;
    quint32 seat = 0;
    quint32 surface = 0;
    QVector<quint32> touches;
    QPointer<ClientWindow> window;
};

double fixed(quint32 value)
{
    return static_cast<qint32>(value) / 256.0;
}

} // namespace

/// wl_touch, from the compositor's classes to a client's socket.
class ClientTouchTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void cleanupTestCase();

    void theSeatHasTouch();
    void aFingerGoesDownMovesAndIsLifted();
    void anyNumberOfFingersAreDown();
    void idsAreReused();
    void eachFingerIsGrabbedByItsSurface();
    void everyTouchObjectIsServed();
    void aCancelTakesAllFingers();
    void aFingerThatIsNotFollowedIsIgnored();
    void aSurfaceEndsUnderAFinger();
    void aClientEndsUnderAFinger();
    void aTouchObjectIsReleasedUnderAFinger();
    void aClientThatDoesNotReadIsSparedFurtherFingers();

private:
    ClientTouch& touch()
    {
        return mDesk->server.touch();
    }

    std::unique_ptr<ServerDesk> mDesk;
};

void ClientTouchTest::initTestCase()
{
    mDesk = std::make_unique<ServerDesk>();
}

void ClientTouchTest::cleanup()
{
    touch().cancel();
}

void ClientTouchTest::cleanupTestCase()
{
    mDesk.reset();
}

void ClientTouchTest::theSeatHasTouch()
{
    TouchClient client(*mDesk, 1);
    const auto capabilities = client.wire->events(client.seat, cSeatCapabilities);
    QCOMPARE(capabilities.first().number(0),
             quint32(WL_SEAT_CAPABILITY_POINTER | WL_SEAT_CAPABILITY_KEYBOARD | WL_SEAT_CAPABILITY_TOUCH));
}

void ClientTouchTest::aFingerGoesDownMovesAndIsLifted()
{
    TouchClient client(*mDesk, 1);
    QVERIFY(client.down(7, QPointF(110, 60), QPointF(10.5, 20)));
    QVERIFY(touch().isDown(7));
    QVERIFY(touch().isTouched(client.window->surface()->surface()->waylandClient()));
    touch().sendFrame();
    touch().move(7, QPointF(115, 50));
    touch().sendFrame();
    touch().up(7);
    touch().sendFrame();
    QVERIFY(!touch().isDown(7));
    QCOMPARE(client.opcodes(), QVector<quint16>({cDown, cFrame, cMotion, cFrame, cUp, cFrame}));

    const WireClient::Event down = client.events(cDown).first();
    QCOMPARE(down.number(2), client.surface);
    QCOMPARE(down.number(3), 0U);
    QCOMPARE(fixed(down.number(4)), 10.5);
    QCOMPARE(fixed(down.number(5)), 20.0);
    const WireClient::Event motion = client.events(cMotion).first();
    QCOMPARE(motion.number(1), 0U);
    QCOMPARE(fixed(motion.number(2)), 15.5);
    QCOMPARE(fixed(motion.number(3)), 10.0);
    QCOMPARE(client.events(cUp).first().number(2), 0U);
}

void ClientTouchTest::anyNumberOfFingersAreDown()
{
    TouchClient client(*mDesk, 1);
    constexpr int count = 20;
    for (int finger = 0; finger < count; ++finger) {
        QVERIFY(client.down(1000 + finger, QPointF(finger, 0), QPointF(finger, 0)));
    }
    touch().sendFrame();
    client.synchronise();
    QCOMPARE(client.events(cDown).size(), count);
    QCOMPARE(client.events(cFrame).size(), 1);
    QCOMPARE(client.events(cDown).last().number(3), quint32(count - 1));
}

void ClientTouchTest::idsAreReused()
{
    TouchClient client(*mDesk, 1);
    QVERIFY(client.down(1, QPointF(), QPointF()));
    QVERIFY(client.down(2, QPointF(), QPointF()));
    QVERIFY(!client.down(2, QPointF(), QPointF()));
    touch().up(1);
    QVERIFY(client.down(3, QPointF(), QPointF()));
    client.synchronise();
    const auto downs = client.events(cDown);
    QCOMPARE(downs.size(), 3);
    QCOMPARE(downs.at(1).number(3), 1U);
    QCOMPARE(downs.at(2).number(3), 0U);
}

void ClientTouchTest::eachFingerIsGrabbedByItsSurface()
{
    TouchClient first(*mDesk, 1);
    TouchClient second(*mDesk, 1);
    QVERIFY(first.down(1, QPointF(10, 10), QPointF(10, 10)));
    QVERIFY(second.down(2, QPointF(200, 10), QPointF(0, 10)));
    touch().move(1, QPointF(250, 10));
    touch().move(2, QPointF(190, 10));
    touch().sendFrame();
    QCOMPARE(first.opcodes(), QVector<quint16>({cDown, cMotion, cFrame}));
    QCOMPARE(second.opcodes(), QVector<quint16>({cDown, cMotion, cFrame}));
    QCOMPARE(fixed(first.events(cMotion).first().number(2)), 250.0);
    QCOMPARE(fixed(second.events(cMotion).first().number(2)), -10.0);
}

void ClientTouchTest::everyTouchObjectIsServed()
{
    TouchClient client(*mDesk, 3);
    QVERIFY(client.down(1, QPointF(), QPointF()));
    touch().up(1);
    touch().sendFrame();
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(client.opcodes(i), QVector<quint16>({cDown, cUp, cFrame}));
    }
}

void ClientTouchTest::aCancelTakesAllFingers()
{
    TouchClient first(*mDesk, 1);
    TouchClient second(*mDesk, 1);
    QVERIFY(first.down(1, QPointF(), QPointF()));
    QVERIFY(first.down(2, QPointF(), QPointF()));
    QVERIFY(second.down(3, QPointF(), QPointF()));
    touch().sendFrame();
    touch().cancel();
    touch().move(1, QPointF(5, 5));
    touch().up(1);
    touch().up(3);
    touch().sendFrame();
    QCOMPARE(first.opcodes(), QVector<quint16>({cDown, cDown, cFrame, cCancel}));
    QCOMPARE(second.opcodes(), QVector<quint16>({cDown, cFrame, cCancel}));
    QVERIFY(!touch().isDown(1));
}

void ClientTouchTest::aFingerThatIsNotFollowedIsIgnored()
{
    TouchClient client(*mDesk, 1);
    QVERIFY(!touch().down(1, client.window, nullptr, QPointF(), QPointF()));
    QVERIFY(!touch().down(1, nullptr, client.window->surface(), QPointF(), QPointF()));
    touch().move(1, QPointF());
    touch().up(1);
    touch().cancel();
    touch().sendFrame();
    QCOMPARE(client.opcodes(), QVector<quint16>());
}

void ClientTouchTest::aSurfaceEndsUnderAFinger()
{
    TouchClient client(*mDesk, 1);
    QVERIFY(client.down(1, QPointF(), QPointF()));
    touch().sendFrame();
    quint32 part = 0;
    ServerDesk::serve([&] {
        const quint32 subcompositor = client.wire->bind("wl_subcompositor");
        part = client.wire->createSurface();
        client.wire->send(WireMessage(subcompositor, WL_SUBCOMPOSITOR_GET_SUBSURFACE)
                              .number(client.wire->newId())
                              .number(part)
                              .number(client.surface));
        client.wire->attach(part, client.wire->createBuffer(QSize(50, 50)));
        client.wire->commit(part);
        client.wire->commit(client.surface);
        client.wire->synchronise();
    });
    client.window->surface()->update();
    QPointF local;
    QPointer<ClientSurface> inner = client.window->surface()->surfaceAt(QPointF(20, 20), &local);
    QVERIFY(inner != nullptr && inner != client.window->surface());
    QVERIFY(touch().down(2, client.window, inner, QPointF(20, 20), local));
    ServerDesk::serve([&] {
        client.wire->send(WireMessage(part, WL_SURFACE_DESTROY));
        client.wire->synchronise();
    });
    touch().move(2, QPointF(30, 30));
    touch().up(2);
    touch().move(1, QPointF(1, 1));
    touch().up(1);
    touch().sendFrame();
    QCOMPARE(client.opcodes(), QVector<quint16>({cDown, cFrame, cDown, cMotion, cUp, cFrame}));
}

void ClientTouchTest::aClientEndsUnderAFinger()
{
    TouchClient witness(*mDesk, 1);
    {
        TouchClient client(*mDesk, 1);
        QVERIFY(client.down(1, QPointF(), QPointF()));
    }
    touch().move(1, QPointF(30, 30));
    QVERIFY(witness.down(2, QPointF(), QPointF()));
    touch().sendFrame();
    touch().up(1);
    touch().cancel();
    QCOMPARE(witness.opcodes(), QVector<quint16>({cDown, cFrame, cCancel}));
}

void ClientTouchTest::aTouchObjectIsReleasedUnderAFinger()
{
    TouchClient client(*mDesk, 2);
    QVERIFY(client.down(1, QPointF(), QPointF()));
    ServerDesk::serve([&] {
        client.wire->send(WireMessage(client.touches.first(), WL_TOUCH_RELEASE));
        client.wire->synchronise();
    });
    touch().move(1, QPointF(1, 1));
    touch().up(1);
    touch().sendFrame();
    QCOMPARE(client.opcodes(1), QVector<quint16>({cDown, cMotion, cUp, cFrame}));
    ServerDesk::serve([&] {
        client.wire->send(WireMessage(client.seat, WL_SEAT_RELEASE));
        client.wire->synchronise();
    });
    QVERIFY(client.down(1, QPointF(), QPointF()));
    touch().cancel();
    QCOMPARE(client.opcodes(1).last(), cCancel);
}

void ClientTouchTest::aClientThatDoesNotReadIsSparedFurtherFingers()
{
    TouchClient client(*mDesk, 1);
    bool isSpared = false;
    int sent = 0;
    for (int i = 0; i < 1000 && !isSpared; ++i) {
        isSpared = !client.down(1, QPointF(), QPointF());
        sent += isSpared ? 0 : 1;
        touch().up(1);
        touch().sendFrame();
    }
    QVERIFY(isSpared);
    client.synchronise();
    QCOMPARE(client.events(cDown).size(), sent);
    QCOMPARE(client.events(cUp).size(), sent);
    // It has read everything and answered the ping.
    const auto isFollowed = [&] {
        const bool isDown = client.down(1, QPointF(), QPointF());
        touch().up(1);
        return isDown;
    };
    QTRY_VERIFY_WITH_TIMEOUT(isFollowed(), ChildProcess::cDeadline);
}

SERVER_TEST_MAIN(ClientTouchTest)

#include "ClientTouchTest.moc"
