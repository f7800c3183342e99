// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "CompositorBus.h"
#include "CompositorFixture.h"
#include "TestMain.h"
#include "WireClient.h"

#include <QDBusPendingCall>
#include <QElapsedTimer>

#include <linux/input-event-codes.h>
#include <wayland-client-protocol.h>

namespace {

const QString cDeskPath = QStringLiteral("/desk");
const QString cDesk = QStringLiteral("de.Telvaro.desk");
const QString cTake = QStringLiteral("Take");
const QSize cWorkArea(1024, 566);

QVariant isScreenSaverActive()
{
    return CompositorBus::get(CompositorBus::cScreenPath, CompositorBus::cScreen, QStringLiteral("screenSaverActive"));
}

QVariant orientation()
{
    return CompositorBus::get(CompositorBus::cScreenPath, CompositorBus::cScreen, QStringLiteral("orientation"));
}

/// Returns why the step was not taken; empty when it was.
QString refusal(const QByteArray& step)
{
    return CompositorBus::errorOf(CompositorBus::call(cDeskPath, cDesk, cTake, {QString::fromUtf8(step)}));
}

QDBusPendingCall takeLater(const char* step)
{
    QDBusMessage message =
        QDBusMessage::createMethodCall(QStringLiteral(TELVARO_SERVICE_NAME), cDeskPath, cDesk, cTake);
    message.setArguments({QString::fromUtf8(step)});
    return PrivateBus::connection().asyncCall(message);
}

} // namespace

/// The input that programs inject by the steps of a script, given over the bus.
class CompositorInjectedInputTest : public CompositorFixture
{
    Q_OBJECT

private Q_SLOTS:
    void aTapIsAFinger();
    void aClickHasItsButton_data();
    void aClickHasItsButton();
    void positionsAreThoseOfTheOutputOrTheView();
    void positionsFollowTheTurn();
    void aDragMovesInTheTimeThatItSays_data();
    void aDragMovesInTheTimeThatItSays();
    void theWheelScrolls();
    void aPointerThatMovesPressesNothing();
    void textIsTyped_data();
    void textIsTyped();
    void aLongTextIsTypedToItsEnd();
    void aHungClientDoesNotHoldUpTheInput();
    void textThatTheLayoutLacksIsRefused();
    void keysArePressedAndReleased();
    void aHeldKeyIsReleasedLater();
    void everyKeyHasItsName_data();
    void everyKeyHasItsName();
    void keysWithoutANameAreRefused_data();
    void keysWithoutANameAreRefused();
    void aLayoutOfTheEnvironmentThatDoesNotExistIsIgnored();
    void inputEndsTheScreenSaverAndNothingElse();
    void inputReachesTheCompositorsOwnLayers();
    void commandsOfTheDeskAreExecuted();
    void gesturesWaitForEachOther();
    void aGestureWaitsUntilTheWindowHasItsSize();
    void placesWhereNobodyCanTapAreRefused();
    void stepsOfOtherKindsAreTaken();
    void aWindowKeepsItsPlaceAndItsProcess();
    void stepsThatAreWrongAreRefused_data();
    void stepsThatAreWrongAreRefused();
    void withoutTheOptionNobodyIsInControl();

protected:
    void startCompositor() override
    {
        mCompositor->start({QStringLiteral("--remote-control")});
    }

private:
    void restartWith(const QStringList& options, const QString& layoutOfEnvironment = {});
    std::unique_ptr<LineClient> openWindow();
    /// A client with a full window and the input device that `request` of its seat returns.
    std::unique_ptr<WireClient> openWire(quint16 request, quint32* device);
};

void CompositorInjectedInputTest::restartWith(const QStringList& options, const QString& layoutOfEnvironment)
{
    mCompositor->end();
    mCompositor = std::make_unique<CompositorProcess>();
    mCompositor->environment().insert(QStringLiteral("XKB_DEFAULT_LAYOUT"), layoutOfEnvironment);
    mCompositor->start(options);
}

std::unique_ptr<LineClient> CompositorInjectedInputTest::openWindow()
{
    auto client = testClient();
    client->send("open app Window");
    client->waitFor("activated 1");
    return client;
}

std::unique_ptr<WireClient> CompositorInjectedInputTest::openWire(quint16 request, quint32* device)
{
    auto client = wireClient();
    const quint32 seat = client->bind("wl_seat", 4);
    *device = client->newId();
    client->send(WireMessage(seat, request).number(*device));
    const WireClient::Window window = client->createWindow();
    client->configure(window.surface, window.xdgSurface);
    client->attach(window.surface, client->createBuffer(cWorkArea));
    client->damage(window.surface, QRect(QPoint(), cWorkArea));
    client->commit(window.surface);
    client->synchronise();
    return client;
}

void CompositorInjectedInputTest::aTapIsAFinger()
{
    quint32 touch = 0;
    const auto client = openWire(WL_SEAT_GET_TOUCH, &touch);
    QCOMPARE(refusal(R"({"tap": {"x": 500, "y": 434}})"), QString());
    client->synchronise();
    QVector<quint16> opcodes;
    for (const WireClient::Event& event : client->events(touch)) {
        opcodes.append(event.opcode);
    }
    constexpr quint16 cDown = 0;
    constexpr quint16 cUp = 1;
    constexpr quint16 cFrame = 3;
    QCOMPARE(opcodes, QVector<quint16>({cDown, cFrame, cUp, cFrame}));
    // serial, time, surface, id, x, y; the numbers have 8 bits behind the point.
    QCOMPARE(client->events(touch, cDown).at(0).number(4), 500U << 8);
    QCOMPARE(client->events(touch, cDown).at(0).number(5), 400U << 8);
}

void CompositorInjectedInputTest::aClickHasItsButton_data()
{
    QTest::addColumn<QByteArray>("key");
    QTest::addColumn<quint32>("code");
    QTest::newRow("none") << QByteArray() << quint32(BTN_LEFT);
    QTest::newRow("left") << QByteArray(R"(, "button": "left")") << quint32(BTN_LEFT);
    QTest::newRow("right") << QByteArray(R"(, "button": "right")") << quint32(BTN_RIGHT);
    QTest::newRow("middle") << QByteArray(R"(, "button": "middle")") << quint32(BTN_MIDDLE);
}

void CompositorInjectedInputTest::aClickHasItsButton()
{
    QFETCH(QByteArray, key);
    QFETCH(quint32, code);
    quint32 pointer = 0;
    const auto client = openWire(WL_SEAT_GET_POINTER, &pointer);
    const QByteArray step = R"({"click": {"x": 500, "y": 434)" + key + "}}";
    QCOMPARE(refusal(step), QString());
    client->synchronise();
    constexpr quint16 cButton = 3;
    const QVector<WireClient::Event> events = client->events(pointer, cButton);
    QCOMPARE(events.size(), 2);
    // serial, time, button, state
    QCOMPARE(events.at(0).number(2), code);
    QCOMPARE(events.at(0).number(3), quint32(WL_POINTER_BUTTON_STATE_PRESSED));
    QCOMPARE(events.at(1).number(2), code);
    QCOMPARE(events.at(1).number(3), quint32(WL_POINTER_BUTTON_STATE_RELEASED));
}

void CompositorInjectedInputTest::positionsAreThoseOfTheOutputOrTheView()
{
    const auto client = openWindow();
    QCOMPARE(refusal(R"({"click": {"x": 300, "y": 334}})"), QString());
    QCOMPARE(client->waitFor("press 1 "), QByteArray("300,300"));
    QCOMPARE(refusal(R"({"click": {"x": 310, "y": 334, "in": "output"}})"), QString());
    QCOMPARE(client->waitFor("press 1 "), QByteArray("310,300"));
    QCOMPARE(refusal(R"({"click": {"x": 320, "y": 300, "in": "view"}})"), QString());
    QCOMPARE(client->waitFor("press 1 "), QByteArray("320,300"));
    QCOMPARE(refusal(R"({"tap": {"x": 330.5, "y": 300, "in": "view"}})"), QString());
    QCOMPARE(client->waitFor("release 1 "), QByteArray("320,300"));
    QVERIFY(client->waitFor("press 1 ").endsWith(",300"));
}

void CompositorInjectedInputTest::positionsFollowTheTurn()
{
    const auto client = openWindow();
    QCOMPARE(refusal(R"({"set": {"de.Telvaro.screen.orientation": "90"}})"), QString());
    QCOMPARE(refusal(R"({"click": {"x": 590, "y": 934}})"), QString());
    QCOMPARE(client->waitFor("press 1 "), QByteArray("590,900"));
}

void CompositorInjectedInputTest::aDragMovesInTheTimeThatItSays_data()
{
    QTest::addColumn<QByteArray>("key");
    QTest::newRow("finger") << QByteArray();
    QTest::newRow("finger by name") << QByteArray(R"(, "with": "finger")");
    QTest::newRow("pointer") << QByteArray(R"(, "with": "pointer")");
}

void CompositorInjectedInputTest::aDragMovesInTheTimeThatItSays()
{
    QFETCH(QByteArray, key);
    const auto client = openWindow();
    const QByteArray step = R"({"drag": {"from": [300, 334], "to": [400, 434], "seconds": 0.4)" + key + "}}";
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(refusal(step), QString());
    QVERIFY2(timer.elapsed() >= 399, qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(client->waitFor("press 1 "), QByteArray("300,300"));
    QCOMPARE(client->waitFor("release 1 "), QByteArray("400,400"));
}

void CompositorInjectedInputTest::theWheelScrolls()
{
    const auto client = openWindow();
    QCOMPARE(refusal(R"({"scroll": {"x": 300, "y": 300, "down": 2}})"), QString());
    QCOMPARE(client->waitFor("wheel 1 "), QByteArray("-240"));
    QCOMPARE(refusal(R"({"scroll": {"x": 300, "y": 300, "down": -1}})"), QString());
    QCOMPARE(client->waitFor("wheel 1 "), QByteArray("120"));
    QCOMPARE(refusal(R"({"scroll": {"x": 300, "y": 300, "right": 1}})"), QString());
    QCOMPARE(client->waitFor("wheel 1 "), QByteArray("0"));
}

void CompositorInjectedInputTest::aPointerThatMovesPressesNothing()
{
    quint32 pointer = 0;
    const auto client = openWire(WL_SEAT_GET_POINTER, &pointer);
    QCOMPARE(refusal(R"({"pointer": {"x": 500, "y": 434}})"), QString());
    client->synchronise();
    constexpr quint16 cEnter = 0;
    constexpr quint16 cButton = 3;
    QCOMPARE(client->events(pointer, cEnter).size(), 1);
    QCOMPARE(client->events(pointer, cButton).size(), 0);
}

void CompositorInjectedInputTest::textIsTyped_data()
{
    QTest::addColumn<QString>("layout");
    QTest::addColumn<QString>("text");
    QTest::newRow("us") << QStringLiteral("us") << QStringLiteral("Hello, World! 12*3=36 {z} @#~\\");
    QTest::newRow("de") << QStringLiteral("de") << QString::fromUtf8("Zürich: Äpfel & Öl @ 2€ {y} ß~");
    QTest::newRow("ru") << QStringLiteral("ru") << QString::fromUtf8("Привет");
}

void CompositorInjectedInputTest::textIsTyped()
{
    QFETCH(QString, layout);
    QFETCH(QString, text);
    restartWith({QStringLiteral("--remote-control"), QStringLiteral("--keyboard-layout"), layout});
    const auto client = openWindow();
    QString escaped = text;
    escaped.replace(QLatin1Char('\\'), QStringLiteral("\\\\"));
    const QByteArray step = "{\"type\": \"" + escaped.toUtf8() + "\\n\"}";
    QCOMPARE(refusal(step), QString());
    QByteArray typed;
    const QByteArray press = "keypress 1 ";
    const QList<QByteArray> events = client->takeEventsUntil("keyrelease 1 \r");
    for (const QByteArray& event : events) {
        // Modifiers are keys without a text.
        typed += event.startsWith(press) ? event.mid(press.size()) : QByteArray();
    }
    QCOMPARE(QString::fromUtf8(typed), text + QLatin1Char('\r'));
}

void CompositorInjectedInputTest::aLongTextIsTypedToItsEnd()
{
    const auto client = openWindow();
    // More keys than may be sent to a client that has read none, and less output than a pipe holds.
    const QByteArray text = QByteArray("aB").repeated(200);
    const QByteArray step = "{\"type\": \"" + text + "\\n\"}";
    QCOMPARE(refusal(step), QString());
    int count = 0;
    const QList<QByteArray> events = client->takeEventsUntil("keyrelease 1 \r");
    for (const QByteArray& event : events) {
        count += event == "keypress 1 a" || event == "keypress 1 B" ? 1 : 0;
    }
    QCOMPARE(count, text.size());
}

void CompositorInjectedInputTest::aHungClientDoesNotHoldUpTheInput()
{
    const auto client = openWindow();
    client->freeze();
    const QByteArray step = "{\"type\": \"" + QByteArray("x").repeated(300) + "\"}";
    QCOMPARE(refusal(step), QString());
    QCOMPARE(CompositorBus::viewWithTitle(QStringLiteral("Window")).attributes.value(QStringLiteral("responding")),
             QVariant(false));
    client->thaw();
    client->waitFor("keypress 1 x");
}

void CompositorInjectedInputTest::textThatTheLayoutLacksIsRefused()
{
    const auto client = openWindow();
    QCOMPARE(refusal(R"({"type": "aé"})"),
             QString::fromUtf8("org.freedesktop.DBus.Error.Failed: the step, \"type\": "
                               "the keyboard layout has no key for \"é\""));
    QCOMPARE(refusal(R"({"type": "\u0007"})"),
             QStringLiteral("org.freedesktop.DBus.Error.Failed: the step, \"type\": "
                            "the keyboard layout has no key for U+0007"));
    // Nothing of the first text was typed.
    QCOMPARE(refusal(R"({"type": "b"})"), QString());
    QCOMPARE(client->waitFor("keypress 1"), QByteArray("b"));
}

void CompositorInjectedInputTest::keysArePressedAndReleased()
{
    const auto client = openWindow();
    QCOMPARE(refusal(R"({"key": "x"})"), QString());
    client->waitFor("keypress 1 x");
    client->waitFor("keyrelease 1 x");
    QCOMPARE(refusal(R"({"key": "Shift+x"})"), QString());
    client->waitFor("keypress 1 X");
    QCOMPARE(refusal(R"({"key": {"press": "Shift"}})"), QString());
    QCOMPARE(refusal(R"({"key": "y"})"), QString());
    client->waitFor("keypress 1 Y");
    QCOMPARE(refusal(R"({"key": {"release": "Shift"}})"), QString());
    QCOMPARE(refusal(R"({"key": "y"})"), QString());
    client->waitFor("keypress 1 y");
}

void CompositorInjectedInputTest::aHeldKeyIsReleasedLater()
{
    const auto client = openWindow();
    QElapsedTimer timer;
    timer.start();
    // Shorter than the time after which the client repeats the key.
    QCOMPARE(refusal(R"({"key": {"hold": "x", "seconds": 0.3}})"), QString());
    QVERIFY2(timer.elapsed() >= 299, qPrintable(QString::number(timer.elapsed())));
    client->waitFor("keypress 1 x");
    client->waitFor("keyrelease 1 x");
}

void CompositorInjectedInputTest::everyKeyHasItsName_data()
{
    QTest::addColumn<QByteArray>("keys");
    for (const char* const keys : {"F1",
                                   "Escape",
                                   "Esc",
                                   "Return",
                                   "Enter",
                                   "Tab",
                                   "Space",
                                   "Backspace",
                                   "Delete",
                                   "Del",
                                   "Insert",
                                   "Home",
                                   "End",
                                   "PgUp",
                                   "PgDown",
                                   "Page_Up",
                                   "Left",
                                   "Up",
                                   "Right",
                                   "Down",
                                   "Menu",
                                   "Print",
                                   "Pause",
                                   "CapsLock",
                                   "F12",
                                   "a",
                                   "A",
                                   "+",
                                   "-",
                                   "Ctrl",
                                   "Ctrl++",
                                   "ctrl+alt+del",
                                   "AltGr+Super+Meta+Shift+q",
                                   "XF86AudioMute"}) {
        QTest::newRow(keys) << QByteArray(keys);
    }
}

void CompositorInjectedInputTest::everyKeyHasItsName()
{
    QFETCH(QByteArray, keys);
    restartWith({QStringLiteral("--remote-control"), QStringLiteral("--keyboard-layout"), QStringLiteral("de")});
    const QByteArray step = "{\"key\": \"" + keys + "\"}";
    QCOMPARE(refusal(step), QString());
}

void CompositorInjectedInputTest::keysWithoutANameAreRefused_data()
{
    QTest::addColumn<QByteArray>("keys");
    QTest::addColumn<QByteArray>("reason");
    QTest::newRow("unknown") << QByteArray("Any") << QByteArray("the keyboard layout has no key \"Any\"");
    QTest::newRow("no modifier") << QByteArray("Left+Right")
                                 << QByteArray("\"Left\" is not a modifier: one of Ctrl, Alt, Shift, AltGr, Super is "
                                               "expected before a \"+\"");
    QTest::newRow("only with Shift") << QByteArray("!") << QByteArray("the keyboard layout has no key \"!\"");
    QTest::newRow("nothing behind") << QByteArray("Ctrl+") << QByteArray("the keyboard layout has no key \"\"");
}

void CompositorInjectedInputTest::keysWithoutANameAreRefused()
{
    QFETCH(QByteArray, keys);
    QFETCH(QByteArray, reason);
    const QByteArray step = "{\"key\": \"" + keys + "\"}";
    QCOMPARE(refusal(step), QString::fromUtf8("org.freedesktop.DBus.Error.Failed: the step, \"key\": " + reason));
}

void CompositorInjectedInputTest::aLayoutOfTheEnvironmentThatDoesNotExistIsIgnored()
{
    expectComplaints(1);
    restartWith({QStringLiteral("--remote-control")}, QStringLiteral("nowhere"));
    const auto client = openWindow();
    QCOMPARE(refusal(R"({"key": "y"})"), QString());
    client->waitFor("keypress 1 y");
    const QImage closed = screenShot();
    QCOMPARE(refusal(R"({"key": "Ctrl+Alt+K"})"), QString());
    QVERIFY(screenShot() != closed);
    QCOMPARE(mCompositor->errors(),
             "telvaro-compositor: there is no keyboard layout as XKB_DEFAULT_LAYOUT and the variables with it describe "
             "it; they are ignored\n");
}

void CompositorInjectedInputTest::inputEndsTheScreenSaverAndNothingElse()
{
    const auto client = openWindow();
    QCOMPARE(refusal(R"({"set": {"de.Telvaro.screen.screenSaverActive": true}})"), QString());
    QCOMPARE(isScreenSaverActive(), QVariant(true));
    QCOMPARE(refusal(R"({"tap": {"x": 300, "y": 334}})"), QString());
    QCOMPARE(isScreenSaverActive(), QVariant(false));
    QCOMPARE(refusal(R"({"tap": {"x": 400, "y": 334}})"), QString());
    QCOMPARE(client->waitFor("press 1 "), QByteArray("400,300"));
}

void CompositorInjectedInputTest::inputReachesTheCompositorsOwnLayers()
{
    const auto client = openWindow();
    const auto menu = [this] {
        return screenShot().copy(0, 40, 1024, 560);
    };
    const QImage closed = menu();
    for (const char* const step : {R"({"tap": {"x": 100, "y": 10}})", R"({"key": "F1"})"}) {
        QCOMPARE(refusal(step), QString());
        QVERIFY(menu() != closed);
        // The keys are the menu's as long as it is open.
        QCOMPARE(refusal(R"({"key": "Escape"})"), QString());
        QCOMPARE(menu(), closed);
    }
    QCOMPARE(refusal(R"({"key": "x"})"), QString());
    QCOMPARE(client->waitFor("keypress 1"), QByteArray("x"));
}

void CompositorInjectedInputTest::commandsOfTheDeskAreExecuted()
{
    const auto client = openWindow();
    QCOMPARE(refusal(R"({"key": "Ctrl+Alt+R"})"), QString());
    QCOMPARE(orientation(), QVariant(QStringLiteral("90")));
    QCOMPARE(refusal(R"({"key": "Ctrl+Alt+B"})"), QString());
    QCOMPARE(isScreenSaverActive(), QVariant(true));
    QCOMPARE(refusal(R"({"key": "Shift"})"), QString());
    QCOMPARE(isScreenSaverActive(), QVariant(false));
    QCOMPARE(refusal(R"({"key": "Ctrl+Alt+W"})"), QString());
    client->waitFor("closed 1");
}

void CompositorInjectedInputTest::gesturesWaitForEachOther()
{
    const auto client = openWindow();
    const QDBusPendingCall drag = takeLater(R"({"drag": {"from": [300, 334], "to": [400, 334], "seconds": 0.3}})");
    QCOMPARE(refusal(R"({"type": "a"})"), QString());
    client->waitFor("keypress 1 a");
    const QDBusPendingCall other = takeLater(R"({"tap": {"x": 500, "y": 334, "seconds": 0.2}})");
    QCOMPARE(refusal(R"({"click": {"x": 600, "y": 334}})"), QString());
    QVERIFY(drag.isFinished() && !drag.isError());
    QVERIFY(other.isFinished() && !other.isError());
    QCOMPARE(client->waitFor("press 1 "), QByteArray("500,300"));
    QCOMPARE(client->waitFor("release 1 "), QByteArray("500,300"));
    QCOMPARE(client->waitFor("press 1 "), QByteArray("600,300"));
}

void CompositorInjectedInputTest::aGestureWaitsUntilTheWindowHasItsSize()
{
    const auto client = openWindow();
    // The client has yet to draw itself in the new size when the tap is due.
    for (int i = 0; i < 2; ++i) {
        QCOMPARE(refusal(R"({"set": {"de.Telvaro.screen.orientation": "90"}})"), QString());
        QCOMPARE(refusal(R"({"click": {"x": 10, "y": 950, "in": "view"}})"), QString());
        client->waitFor("press 1 10,950");
        QCOMPARE(refusal(R"({"set": {"de.Telvaro.screen.orientation": "0"}})"), QString());
        QCOMPARE(refusal(R"({"click": {"x": 1000, "y": 100, "in": "view"}})"), QString());
        client->waitFor("press 1 1000,100");
    }
}

void CompositorInjectedInputTest::placesWhereNobodyCanTapAreRefused()
{
    const QString failed = QStringLiteral("org.freedesktop.DBus.Error.Failed: ");
    QCOMPARE(refusal(R"({"tap": {"x": 1023.5, "y": 10}})"), QString());
    QCOMPARE(refusal(R"({"tap": {"x": 1024, "y": 10}})"),
             failed + QStringLiteral("the position 1024,10 is outside of the output, whose size is 1024x600"));
    QCOMPARE(refusal(R"({"drag": {"from": [0, 0], "to": [0, -18]}})"),
             failed + QStringLiteral("the position 0,-1 is outside of the output, whose size is 1024x600"));
    QCOMPARE(refusal(R"({"click": {"x": 1, "y": 1, "in": "view"}})"),
             failed + QStringLiteral("there is no current view with a window"));
    QCOMPARE(refusal(R"({"add-view": {"uuid": "u", "appId": "a", "pid": 1}})"), QString());
    QCOMPARE(refusal(R"({"click": {"x": 1, "y": 1, "in": "view"}})"),
             failed + QStringLiteral("there is no current view with a window"));
    const auto client = openWindow();
    QCOMPARE(refusal(R"({"click": {"x": 1, "y": 570, "in": "view"}})"),
             failed + QStringLiteral("the position 1,604 is outside of the output, whose size is 1024x600"));
}

void CompositorInjectedInputTest::stepsOfOtherKindsAreTaken()
{
    QCOMPARE(refusal(R"({"add-view": {"uuid": "u", "appId": "a", "pid": 1}})"), QString());
    QCOMPARE(CompositorBus::currentView(), QStringLiteral("u"));
    QCOMPARE(refusal(R"({"fault": {"get": "de.Telvaro.taskswitcher.currentView", "error": "a.b"}})"), QString());
    QVERIFY_EXCEPTION_THROWN(CompositorBus::currentView(), std::runtime_error);
    QCOMPARE(refusal(R"({"end-fault": {"get": "de.Telvaro.taskswitcher.currentView"}})"), QString());
    QCOMPARE(CompositorBus::currentView(), QStringLiteral("u"));
    QCOMPARE(refusal(R"({"remove-view": "v"})"),
             QStringLiteral("org.freedesktop.DBus.Error.Failed: there is no view \"v\""));
}

void CompositorInjectedInputTest::aWindowKeepsItsPlaceAndItsProcess()
{
    const auto client = openWindow();
    const CompositorBus::View window = CompositorBus::viewWithTitle(QStringLiteral("Window"));
    const QByteArray uuid = '"' + window.uuid.toUtf8() + '"';
    const QString failed = QStringLiteral("org.freedesktop.DBus.Error.Failed: the view \"%1\" is a window, ");
    QCOMPARE(refusal("{\"remove-view\": " + uuid + '}'),
             failed.arg(window.uuid) + QStringLiteral("which only its application removes"));
    QCOMPARE(refusal("{\"change-view\": {\"uuid\": " + uuid + R"(, "pid": 1, "title": "Other"}})"),
             failed.arg(window.uuid) + QStringLiteral("whose \"pid\" is that of its process"));
    QCOMPARE(CompositorBus::viewWithTitle(QStringLiteral("Window")).pid, window.pid);
    QCOMPARE(refusal("{\"change-view\": {\"uuid\": " + uuid + R"(, "title": "Other"}})"), QString());
    QCOMPARE(CompositorBus::viewWithTitle(QStringLiteral("Other")).pid, window.pid);
}

void CompositorInjectedInputTest::stepsThatAreWrongAreRefused_data()
{
    QTest::addColumn<QByteArray>("step");
    QTest::addColumn<QByteArray>("reason");
    QTest::newRow("no JSON") << QByteArray("tap") << QByteArray("line 1: not JSON: illegal value");
    QTest::newRow("list") << QByteArray("[]") << QByteArray("the step: an object is expected");
    QTest::newRow("time") << QByteArray(R"({"at": 1, "tap": {"x": 1, "y": 1}})")
                          << QByteArray("the step: unknown key \"at\"; the keys here are \"tap\"");
    QTest::newRow("event") << QByteArray(R"({"after": {"view": "a"}, "tap": {"x": 1, "y": 1}})")
                           << QByteArray("the step: unknown key \"after\"; the keys here are \"tap\"");
    QTest::newRow("no position") << QByteArray(R"({"tap": {"x": 1}})")
                                 << QByteArray("the step, \"tap\": \"y\" is missing");
}

void CompositorInjectedInputTest::stepsThatAreWrongAreRefused()
{
    QFETCH(QByteArray, step);
    QFETCH(QByteArray, reason);
    QCOMPARE(refusal(step), QString::fromUtf8("org.freedesktop.DBus.Error.Failed: " + reason));
}

void CompositorInjectedInputTest::withoutTheOptionNobodyIsInControl()
{
    restartWith({});
    QVERIFY(refusal(R"({"key": "F1"})").startsWith(QLatin1String("org.freedesktop.DBus.Error.UnknownObject: ")));
    const auto introspect = [] {
        return CompositorBus::callChecked(QStringLiteral("/"), QStringLiteral("org.freedesktop.DBus.Introspectable"),
                                          QStringLiteral("Introspect"))
            .value(0)
            .toString();
    };
    QVERIFY(!introspect().contains(QLatin1String("name=\"desk\"")));
    restartWith({QStringLiteral("--remote-control")});
    QVERIFY(introspect().contains(QLatin1String("<node name=\"desk\"/>")));
}

TELVARO_TEST_MAIN(CompositorInjectedInputTest)

#include "CompositorInjectedInputTest.moc"
