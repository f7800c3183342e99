// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ChildProcess.h"
#include "WireClient.h"
#include "state/Output.h"
#include "state/ViewList.h"
#include "wayland/ClientPopup.h"
#include "wayland/ClientWindow.h"
#include "wayland/WaylandServer.h"

#include <QGuiApplication>
#include <QTemporaryDir>
#include <QTest>
#include <QWaylandSeat>
#include <QWaylandSurface>
#include <QWindow>

#include <chrono>
#include <functional>
#include <future>
#include <wayland-client-protocol.h>

namespace {

constexpr quint16 cDown = 0;
constexpr quint16 cUp = 1;
constexpr quint16 cMotion = 2;
constexpr quint16 cFrame = 3;
constexpr quint16 cCancel = 4;
constexpr quint16 cSeatCapabilities = 0;

/// The Wayland server without a shell: the test puts the fingers down.
struct Desk
{
    explicit Desk(const QString& runtimeDirectory)
        : socket(runtimeDirectory + QStringLiteral("/wayland-touch"))
    {
        QObject::connect(&server, &WaylandServer::windowCreated, [this](ClientWindow* created) {
            windows.append(created);
            created->configure(QSize(400, 300), false, true);
        });
        server.start("wayland-touch");
    }

    /// Runs a client's work in a thread of its own and serves it.
    static void serve(const std::function<void()>& work)
    {
        auto future = std::async(std::launch::async, work);
        while (future.wait_for(std::chrono::seconds(0)) != std::future_status::ready) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        }
        future.get();
    }

    QString socket;
    Output output{QSize(400, 300)};
    QWindow window;
    ViewList views;
    WaylandServer server{output, window, views};
    QVector<QPointer<ClientWindow>> windows;
};

/// A client with a window and a number of wl_touch objects.
struct TouchClient
{
    TouchClient(Desk& serving, int touchCount)
        : desk(serving)
    {
        Desk::serve([&] {
            wire = std::make_unique<WireClient>(desk.socket);
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

    void send(int id, Qt::TouchPointState state, const QPointF& position = QPointF())
    {
        desk.server.defaultSeat()->sendTouchPointEvent(waylandSurface(), id, position, state);
    }
    void sendFrame()
    {
        desk.server.defaultSeat()->sendTouchFrameEvent(waylandSurface()->client());
    }
    void sendCancel()
    {
        desk.server.defaultSeat()->sendTouchCancelEvent(waylandSurface()->client());
    }
    QWaylandSurface* waylandSurface()
    {
        return window->surface()->surface();
    }
    void synchronise()
    {
        Desk::serve([this] {
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

    Desk& desk;
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
    void cleanupTestCase();

    void theSeatHasTouch();
    void aFingerGoesDownMovesAndIsLifted();
    void anyNumberOfFingersAreDown();
    void everyTouchObjectIsServed();
    void onlyTheClientOfTheSurfaceIsServed();
    void aCancelReachesItsClient();
    void aTouchObjectIsReleasedUnderAFinger();
    void aSurfaceIsDestroyedUnderAFinger();

private:
    std::unique_ptr<Desk> mDesk;
};

void ClientTouchTest::initTestCase()
{
    mDesk = std::make_unique<Desk>(QString::fromLocal8Bit(qgetenv("XDG_RUNTIME_DIR")));
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
    client.send(7, Qt::TouchPointPressed, QPointF(10.5, 20));
    client.sendFrame();
    client.send(7, Qt::TouchPointMoved, QPointF(15.5, -10));
    client.send(7, Qt::TouchPointStationary, QPointF(15.5, -10));
    client.sendFrame();
    client.send(7, Qt::TouchPointReleased, QPointF(15.5, -10));
    client.sendFrame();
    QCOMPARE(client.opcodes(), QVector<quint16>({cDown, cFrame, cMotion, cFrame, cUp, cFrame}));

    const WireClient::Event down = client.events(cDown).first();
    QCOMPARE(down.number(2), client.surface);
    QCOMPARE(down.number(3), 7U);
    QCOMPARE(fixed(down.number(4)), 10.5);
    QCOMPARE(fixed(down.number(5)), 20.0);
    const WireClient::Event motion = client.events(cMotion).first();
    QCOMPARE(motion.number(1), 7U);
    QCOMPARE(fixed(motion.number(2)), 15.5);
    QCOMPARE(fixed(motion.number(3)), -10.0);
    QCOMPARE(client.events(cUp).first().number(2), 7U);
}

void ClientTouchTest::anyNumberOfFingersAreDown()
{
    TouchClient client(*mDesk, 1);
    constexpr int count = 20;
    for (int finger = 0; finger < count; ++finger) {
        client.send(finger, Qt::TouchPointPressed);
    }
    client.sendFrame();
    client.synchronise();
    QCOMPARE(client.events(cDown).size(), count);
    QCOMPARE(client.events(cFrame).size(), 1);
    QCOMPARE(client.events(cDown).last().number(3), quint32(count - 1));
}

void ClientTouchTest::everyTouchObjectIsServed()
{
    TouchClient client(*mDesk, 3);
    client.send(1, Qt::TouchPointPressed);
    client.send(1, Qt::TouchPointReleased);
    client.sendFrame();
    client.sendCancel();
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(client.opcodes(i), QVector<quint16>({cDown, cUp, cFrame, cCancel}));
    }
}

void ClientTouchTest::onlyTheClientOfTheSurfaceIsServed()
{
    TouchClient first(*mDesk, 1);
    TouchClient second(*mDesk, 1);
    first.send(1, Qt::TouchPointPressed);
    first.sendFrame();
    QCOMPARE(first.opcodes(), QVector<quint16>({cDown, cFrame}));
    QCOMPARE(second.opcodes(), QVector<quint16>());
}

void ClientTouchTest::aCancelReachesItsClient()
{
    TouchClient first(*mDesk, 1);
    TouchClient second(*mDesk, 1);
    first.send(1, Qt::TouchPointPressed);
    second.send(2, Qt::TouchPointPressed);
    first.sendCancel();
    QCOMPARE(first.opcodes(), QVector<quint16>({cDown, cCancel}));
    QCOMPARE(second.opcodes(), QVector<quint16>({cDown}));
}

void ClientTouchTest::aTouchObjectIsReleasedUnderAFinger()
{
    TouchClient client(*mDesk, 2);
    client.send(1, Qt::TouchPointPressed);
    Desk::serve([&] {
        client.wire->send(WireMessage(client.touches.first(), WL_TOUCH_RELEASE));
        client.wire->send(WireMessage(client.seat, WL_SEAT_RELEASE));
        client.wire->synchronise();
    });
    client.send(1, Qt::TouchPointReleased);
    client.sendFrame();
    QCOMPARE(client.opcodes(1), QVector<quint16>({cDown, cUp, cFrame}));
}

void ClientTouchTest::aSurfaceIsDestroyedUnderAFinger()
{
    TouchClient client(*mDesk, 1);
    QWaylandSeat* const seat = mDesk->server.defaultSeat();
    int sent = 0;
    QWaylandSurface* const surface = client.waylandSurface();
    connect(surface, &QWaylandSurface::surfaceDestroyed, seat, [&] {
        seat->sendTouchPointEvent(surface, 1, QPointF(), Qt::TouchPointReleased);
        seat->sendTouchFrameEvent(surface->client());
        ++sent;
    });
    client.send(1, Qt::TouchPointPressed);
    Desk::serve([&] {
        client.wire->disconnect();
    });
    QTRY_COMPARE_WITH_TIMEOUT(sent, 1, ChildProcess::cDeadline);
}

int main(int argc, char** argv)
{
    const QTemporaryDir runtimeDirectory;
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(runtimeDirectory.path()));
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    ClientTouchTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "ClientTouchTest.moc"
