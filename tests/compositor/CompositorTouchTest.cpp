// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "CompositorBus.h"
#include "CompositorFixture.h"
#include "NotificationClient.h"
#include "TestMain.h"
#include "TouchFixture.h"
#include "VirtualDesktop.h"

#include <wayland-client-protocol.h>

namespace {

constexpr quint16 cDown = 0;
constexpr quint16 cUp = 1;
constexpr quint16 cMotion = 2;
constexpr quint16 cFrame = 3;
constexpr quint16 cCancel = 4;

} // namespace

class CompositorTouchTest : public TouchFixture
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void aFingerReachesTheView();
    void aFingerKeepsItsSurface();
    void twoFingersReachTheViewAtTheSameTime();
    void fingersFollowTheTurn();
    void aClientWithoutTouchGetsThePointer();
    void aFingerOpensTheMenuAndSwitches();
    void aFingerClosesACard();
    void aFingerReachesTheViewBelowTheOverlay();
    void aSwitchOfViewsCancelsTheFingers();
    void aTurnOfTheScreenCancelsTheFingers();
    void aCancelledFingerIsNoClick();
    void theScreenSaverTakesTheFinger();
    void aFingerThatEndsTheScreenSaverDoesNothingElse();
    void theMouseIsAFingerWhereItIsWanted();

private:
    struct View
    {
        std::unique_ptr<WireClient> client;
        WireClient::Window window;
        quint32 touch = 0;
        quint32 pointer = 0;
    };

    /// A client with a window that fills the work area.
    View openView(const QByteArray& title, bool hasTouch = true);
    static QVector<quint16> opcodes(View& view);
    static QPointF position(const WireClient::Event& event, int index);

    std::unique_ptr<VirtualDesktop> mDesktop;
};

void CompositorTouchTest::initTestCase()
{
    mDesktop = std::make_unique<VirtualDesktop>();
}

CompositorTouchTest::View CompositorTouchTest::openView(const QByteArray& title, bool hasTouch)
{
    View view;
    view.client = wireClient();
    const quint32 seat = view.client->bind("wl_seat", 4);
    const quint32 device = view.client->newId();
    view.client->send(WireMessage(seat, hasTouch ? WL_SEAT_GET_TOUCH : WL_SEAT_GET_POINTER).number(device));
    (hasTouch ? view.touch : view.pointer) = device;
    view.window = openWindow(*view.client, title);
    return view;
}

QVector<quint16> CompositorTouchTest::opcodes(View& view)
{
    view.client->synchronise();
    QVector<quint16> result;
    for (const WireClient::Event& event : view.client->events(view.touch)) {
        result.append(event.opcode);
    }
    return result;
}

QPointF CompositorTouchTest::position(const WireClient::Event& event, int index)
{
    const auto fixed = [&event](int i) {
        return static_cast<qint32>(event.number(i)) / 256.0;
    };
    return {fixed(index), fixed(index + 1)};
}

void CompositorTouchTest::aFingerReachesTheView()
{
    View view = openView("Window");
    put({{1, {500, 400}}});
    TRY_COMPARE(opcodes(view), QVector<quint16>({cDown, cFrame}));
    put({{1, {510, 420}}});
    TRY_COMPARE(opcodes(view), QVector<quint16>({cDown, cFrame, cMotion, cFrame}));
    put({});
    TRY_COMPARE(opcodes(view), QVector<quint16>({cDown, cFrame, cMotion, cFrame, cUp, cFrame}));
    // serial, time, surface, id, x, y
    const WireClient::Event down = view.client->events(view.touch, cDown).at(0);
    QCOMPARE(down.number(2), view.window.surface);
    QVERIFY((position(down, 4) - QPointF(500, 366)).manhattanLength() <= 2);
    // time, id, x, y
    QVERIFY((position(view.client->events(view.touch, cMotion).at(0), 2) - QPointF(510, 386)).manhattanLength() <= 2);
}

void CompositorTouchTest::aFingerKeepsItsSurface()
{
    View view = openView("Window");
    put({{1, {500, 400}}});
    put({{1, {500, 10}}});
    put({});
    TRY_COMPARE(opcodes(view), QVector<quint16>({cDown, cFrame, cMotion, cFrame, cUp, cFrame}));
    QVERIFY(position(view.client->events(view.touch, cMotion).at(0), 2).y() < 0);
}

void CompositorTouchTest::twoFingersReachTheViewAtTheSameTime()
{
    View view = openView("Window");
    put({{1, {300, 300}}, {2, {600, 300}}});
    TRY_COMPARE(opcodes(view), QVector<quint16>({cDown, cDown, cFrame}));
    put({{1, {250, 300}}, {2, {650, 300}}});
    TRY_COMPARE(opcodes(view).mid(3), QVector<quint16>({cMotion, cMotion, cFrame}));
    const auto downs = view.client->events(view.touch, cDown);
    QVERIFY(downs.at(0).number(3) != downs.at(1).number(3));
    put({{2, {650, 300}}});
    TRY_COMPARE(opcodes(view).mid(6), QVector<quint16>({cUp, cFrame}));
}

void CompositorTouchTest::fingersFollowTheTurn()
{
    View view = openView("Window");
    CompositorBus::set(CompositorBus::cScreenPath, CompositorBus::cScreen, QStringLiteral("orientation"),
                       QStringLiteral("180"));
    put({{1, {700, 250}}});
    TRY_COMPARE(opcodes(view), QVector<quint16>({cDown, cFrame}));
    const QPointF place = position(view.client->events(view.touch, cDown).at(0), 4);
    QVERIFY((place - QPointF(324, 316)).manhattanLength() <= 3);
}

void CompositorTouchTest::aClientWithoutTouchGetsThePointer()
{
    constexpr quint16 cButton = 3;
    View view = openView("Window", false);
    put({{1, {500, 400}}});
    put({});
    const auto buttons = [&view] {
        view.client->synchronise();
        return view.client->events(view.pointer, cButton).size();
    };
    TRY_COMPARE(buttons(), 2);
}

void CompositorTouchTest::aFingerOpensTheMenuAndSwitches()
{
    View first = openView("First");
    const QString uuid = CompositorBus::currentView();
    View second = openView("Second");
    QVERIFY(CompositorBus::currentView() != uuid);
    put({{1, {300, 10}}});
    put({});
    put({{2, {200, 102}}});
    put({});
    TRY_COMPARE(CompositorBus::currentView(), uuid);
    QCOMPARE(opcodes(first), QVector<quint16>());
    QCOMPARE(opcodes(second), QVector<quint16>());
}

void CompositorTouchTest::aFingerClosesACard()
{
    NotificationClient notifications;
    const uint id = NotificationClient::notify({});
    put({{1, {700, 60}}});
    put({});
    QCOMPARE(notifications.waitForEvent(), QStringLiteral("closed %1 2").arg(id));
}

void CompositorTouchTest::aFingerReachesTheViewBelowTheOverlay()
{
    View view = openView("Window");
    CompositorBus::callChecked(CompositorBus::cOverlayPath, CompositorBus::cOverlay, QStringLiteral("Show"),
                               {QStringLiteral("Please wait")});
    put({{1, {512, 300}}});
    put({});
    TRY_COMPARE(opcodes(view), QVector<quint16>({cDown, cFrame, cUp, cFrame}));
}

void CompositorTouchTest::aSwitchOfViewsCancelsTheFingers()
{
    View first = openView("First");
    const QString uuid = CompositorBus::currentView();
    View second = openView("Second");
    put({{1, {500, 400}}});
    TRY_COMPARE(opcodes(second), QVector<quint16>({cDown, cFrame}));
    CompositorBus::set(CompositorBus::cTaskSwitcherPath, CompositorBus::cTaskSwitcher, QStringLiteral("currentView"),
                       uuid);
    TRY_COMPARE(opcodes(second), QVector<quint16>({cDown, cFrame, cCancel}));
    put({{1, {520, 400}}});
    put({});
    // The next finger is the new view's, and comes after all that the old one could have caused.
    put({{2, {500, 400}}});
    TRY_COMPARE(opcodes(first), QVector<quint16>({cDown, cFrame}));
    QCOMPARE(opcodes(second), QVector<quint16>({cDown, cFrame, cCancel}));
}

void CompositorTouchTest::aTurnOfTheScreenCancelsTheFingers()
{
    View view = openView("Window");
    put({{1, {500, 400}}});
    TRY_COMPARE(opcodes(view), QVector<quint16>({cDown, cFrame}));
    CompositorBus::set(CompositorBus::cScreenPath, CompositorBus::cScreen, QStringLiteral("orientation"),
                       QStringLiteral("180"));
    TRY_COMPARE(opcodes(view), QVector<quint16>({cDown, cFrame, cCancel}));
    put({{1, {520, 400}}});
    put({{2, {500, 400}}});
    TRY_COMPARE(opcodes(view), QVector<quint16>({cDown, cFrame, cCancel, cDown, cFrame}));
}

void CompositorTouchTest::aCancelledFingerIsNoClick()
{
    constexpr quint16 cLeave = 1;
    constexpr quint16 cButton = 3;
    View first = openView("First");
    const QString uuid = CompositorBus::currentView();
    View second = openView("Second", false);
    const auto count = [&second](quint16 opcode) {
        second.client->synchronise();
        return second.client->events(second.pointer, opcode).size();
    };
    put({{1, {500, 400}}});
    TRY_COMPARE(count(cButton), 1);
    CompositorBus::set(CompositorBus::cTaskSwitcherPath, CompositorBus::cTaskSwitcher, QStringLiteral("currentView"),
                       uuid);
    TRY_COMPARE(count(cLeave), 1);
    put({});
    put({{2, {500, 400}}});
    TRY_COMPARE(opcodes(first), QVector<quint16>({cDown, cFrame}));
    QCOMPARE(count(cButton), 1);
}

void CompositorTouchTest::theScreenSaverTakesTheFinger()
{
    View view = openView("Window");
    put({{1, {500, 400}}});
    TRY_COMPARE(opcodes(view), QVector<quint16>({cDown, cFrame}));
    CompositorBus::set(CompositorBus::cScreenPath, CompositorBus::cScreen, QStringLiteral("screenSaverTimeoutSeconds"),
                       1);
    TRY_COMPARE(opcodes(view), QVector<quint16>({cDown, cFrame, cCancel}));
}

void CompositorTouchTest::aFingerThatEndsTheScreenSaverDoesNothingElse()
{
    View view = openView("Window");
    CompositorBus::set(CompositorBus::cScreenPath, CompositorBus::cScreen, QStringLiteral("screenSaverTimeoutSeconds"),
                       1);
    mMonitor->waitFor(QStringLiteral("screenSaverActive"));
    put({{1, {500, 400}}});
    QCOMPARE(mMonitor->waitFor(QStringLiteral("screenSaverActive")).values.value(QStringLiteral("screenSaverActive")),
             QVariant(false));
    put({});
    put({{2, {500, 400}}});
    TRY_COMPARE(opcodes(view), QVector<quint16>({cDown, cFrame}));
}

void CompositorTouchTest::theMouseIsAFingerWhereItIsWanted()
{
    mCompositor->end();
    mCompositor = std::make_unique<CompositorProcess>();
    mCompositor->environment().insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    mCompositor->environment().insert(QStringLiteral("DISPLAY"), mDesktop->display());
    mCompositor->start({QStringLiteral("--touch")});
    View view = openView("Window");
    mDesktop->movePointer(500, 400);
    mDesktop->click();
    TRY_COMPARE(opcodes(view), QVector<quint16>({cDown, cFrame, cUp, cFrame}));
    // With Ctrl a second one lies opposite.
    mDesktop->keyDown(QStringLiteral("ctrl"));
    mDesktop->press();
    TRY_COMPARE(opcodes(view).mid(4), QVector<quint16>({cDown, cDown, cFrame}));
    const QPointF place = position(view.client->events(view.touch, cDown).at(2), 4);
    QVERIFY((place - QPointF(524, 166)).manhattanLength() <= 3);
}

TELVARO_TEST_MAIN(CompositorTouchTest)

#include "CompositorTouchTest.moc"
