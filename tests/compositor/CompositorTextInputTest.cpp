// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "CompositorBus.h"
#include "TestMain.h"
#include "TouchFixture.h"

#include <text-input-unstable-v3-client-protocol.h>
#include <wayland-client-protocol.h>

#include <cstring>

namespace {

// Of zwp_text_input_v2, whose description is not among those that are installed.
constexpr quint16 cGetV2 = 1;
constexpr quint16 cEnableV2 = 1;
constexpr quint16 cDisableV2 = 2;
constexpr quint16 cShowPanelV2 = 3;
constexpr quint16 cHidePanelV2 = 4;
constexpr quint16 cSetContentTypeV2 = 6;
constexpr quint16 cUpdateStateV2 = 9;
constexpr quint16 cEnterV2 = 0;
constexpr quint16 cLeaveV2 = 1;
constexpr quint16 cPanelStateV2 = 2;
constexpr quint16 cCommitStringV2 = 6;

constexpr quint16 cEnterV3 = 0;
constexpr quint16 cLeaveV3 = 1;
constexpr quint16 cCommitStringV3 = 3;
constexpr quint16 cDoneV3 = 5;

constexpr quint16 cTouchUp = 1;
constexpr quint16 cKey = 3;
constexpr quint16 cConfigure = 0;

// Of linux/input-event-codes.h.
constexpr quint32 cKeyBackspace = 14;
constexpr quint32 cKeyShift = 42;
constexpr quint32 cKeyH = 35;

// Where the keys are below the work area of 1024x326, with the layout of the US.
const QPointF cH(614, 451);
const QPointF cQ(55, 393);
const QPointF cW(156, 393);
/// The key at the place of the US's Y, which has a Z on German keyboards.
const QPointF cSixthOfTop(512, 393);
const QPointF cShift(80, 509);
const QPointF cBackspace(944, 509);
const QPointF cClose(43, 567);
const QPointF cSymbols(140, 567);

QString textOf(const WireClient::Event& event)
{
    return QString::fromUtf8(event.arguments.constData() + 4);
}

} // namespace

/// Text fields and the on-screen keyboard.
class CompositorTextInputTest : public TouchFixture
{
    Q_OBJECT

private Q_SLOTS:
    void aTapIntoATextFieldOpensTheKeyboard_data();
    void aTapIntoATextFieldOpensTheKeyboard();
    void aTextFieldWithoutAFingerOpensNothing_data();
    void aTextFieldWithoutAFingerOpensNothing();
    void theFocusFollowsTheCurrentView();
    void shiftIsForOneLetterAndTwiceForMore();
    void theKeyboardHasDigitsAndSymbols();
    void aNumericFieldStartsWithDigits();
    void aPinIsNumeric();
    void withoutANumericFieldTheKeyboardStartsWithLetters();
    void thePanelMayBeRequestedBeforeTheFieldIsEnabled();
    void otherKeysAreKeys();
    void aHeldKeyIsReleasedWhenTheKeyboardChanges_data();
    void aHeldKeyIsReleasedWhenTheKeyboardChanges();
    void twoThumbsLoseNothing();
    void theKeyboardFollowsTheLayout();
    void theKeyboardTurnsWithTheOutput();
    void aFieldThatIsLeftForAnotherKeepsTheKeyboard();
    void aPersonClosesTheKeyboard();
    void openedByHandItTypesKeys();
    void aClientThatLeavesTakesTheKeyboardWithIt();
    void aTapIntoAFieldOfQtTypesThere();

private:
    struct Field
    {
        std::unique_ptr<WireClient> client;
        WireClient::Window window;
        quint32 input = 0;
        quint32 touch = 0;
        bool isV3 = false;
    };

    Field openField(bool isV3);
    /// Taps on the view and waits until the client has heard of it.
    void tapView(Field& field, const QPointF& position = {500, 100});
    void enable(Field& field);
    void disable(Field& field);
    /// Enables a field of text-input-unstable-v3 with a content_purpose.
    static void enable(Field& field, quint32 purpose);
    /// The height that the view was last configured to.
    static int height(Field& field);
    /// All that was typed through the text input.
    static QString text(Field& field);

    static constexpr int cWhole = 566;
    static constexpr int cBesideKeyboard = 326;
};

CompositorTextInputTest::Field CompositorTextInputTest::openField(bool isV3)
{
    Field field;
    field.isV3 = isV3;
    field.client = wireClient();
    const quint32 seat = field.client->bind("wl_seat", 4);
    const quint32 manager = field.client->bind(isV3 ? "zwp_text_input_manager_v3" : "zwp_text_input_manager_v2");
    field.input = field.client->newId();
    field.client->send(WireMessage(manager, isV3 ? ZWP_TEXT_INPUT_MANAGER_V3_GET_TEXT_INPUT : cGetV2)
                           .number(field.input)
                           .number(seat));
    field.touch = field.client->newId();
    field.client->send(WireMessage(seat, WL_SEAT_GET_TOUCH).number(field.touch));
    field.window = openWindow(*field.client, "Field");
    return field;
}

void CompositorTextInputTest::tapView(Field& field, const QPointF& position)
{
    const auto taps = [&field] {
        field.client->synchronise();
        return field.client->events(field.touch, cTouchUp).size();
    };
    const int before = taps();
    tap(position);
    TRY_COMPARE(taps(), before + 1);
}

void CompositorTextInputTest::enable(Field& field)
{
    if (field.isV3) {
        field.client->send(WireMessage(field.input, ZWP_TEXT_INPUT_V3_ENABLE));
        field.client->send(WireMessage(field.input, ZWP_TEXT_INPUT_V3_COMMIT));
    } else {
        field.client->send(WireMessage(field.input, cEnableV2).number(field.window.surface));
        field.client->send(WireMessage(field.input, cShowPanelV2));
    }
    field.client->synchronise();
}

void CompositorTextInputTest::disable(Field& field)
{
    if (field.isV3) {
        field.client->send(WireMessage(field.input, ZWP_TEXT_INPUT_V3_DISABLE));
        field.client->send(WireMessage(field.input, ZWP_TEXT_INPUT_V3_COMMIT));
    } else {
        field.client->send(WireMessage(field.input, cDisableV2).number(field.window.surface));
    }
    field.client->synchronise();
}

void CompositorTextInputTest::enable(Field& field, quint32 purpose)
{
    field.client->send(WireMessage(field.input, ZWP_TEXT_INPUT_V3_ENABLE));
    field.client->send(WireMessage(field.input, ZWP_TEXT_INPUT_V3_SET_CONTENT_TYPE).number(0U).number(purpose));
    field.client->send(WireMessage(field.input, ZWP_TEXT_INPUT_V3_COMMIT));
    field.client->synchronise();
}

int CompositorTextInputTest::height(Field& field)
{
    field.client->synchronise();
    const auto events = field.client->events(field.window.toplevel, cConfigure);
    return events.isEmpty() ? 0 : static_cast<int>(events.last().number(1));
}

QString CompositorTextInputTest::text(Field& field)
{
    field.client->synchronise();
    QString result;
    for (const auto& event : field.client->events(field.input, field.isV3 ? cCommitStringV3 : cCommitStringV2)) {
        result += textOf(event);
    }
    return result;
}

void CompositorTextInputTest::aTapIntoATextFieldOpensTheKeyboard_data()
{
    QTest::addColumn<bool>("isV3");
    QTest::newRow("text-input-unstable-v2") << false;
    QTest::newRow("text-input-unstable-v3") << true;
}

void CompositorTextInputTest::aTapIntoATextFieldOpensTheKeyboard()
{
    QFETCH(const bool, isV3);
    Field field = openField(isV3);
    QCOMPARE(field.client->events(field.input, isV3 ? cEnterV3 : cEnterV2).size(), 1);
    QCOMPARE(height(field), cWhole);
    tapView(field);
    enable(field);
    TRY_COMPARE(height(field), cBesideKeyboard);
    tap(cH);
    tap(cQ);
    TRY_COMPARE(text(field), QStringLiteral("hq"));
    if (isV3) {
        // The serial is the number of the client's commits.
        QCOMPARE(field.client->events(field.input, cDoneV3).last().number(0), 1U);
    } else {
        QCOMPARE(field.client->events(field.input, cPanelStateV2).last().number(0), 1U);
    }
    disable(field);
    TRY_COMPARE(height(field), cWhole);
    if (!isV3) {
        QCOMPARE(field.client->events(field.input, cPanelStateV2).last().number(0), 0U);
    }
}

void CompositorTextInputTest::aTextFieldWithoutAFingerOpensNothing_data()
{
    aTapIntoATextFieldOpensTheKeyboard_data();
}

void CompositorTextInputTest::aTextFieldWithoutAFingerOpensNothing()
{
    QFETCH(const bool, isV3);
    Field field = openField(isV3);
    enable(field);
    QCOMPARE(height(field), cWhole);
    // The keyboard's place is the view's.
    tapView(field, cH);
    QCOMPARE(text(field), QString());
    QCOMPARE(height(field), cWhole);
}

void CompositorTextInputTest::theFocusFollowsTheCurrentView()
{
    Field first = openField(true);
    const QString uuid = CompositorBus::currentView();
    Field second = openField(false);
    first.client->synchronise();
    QCOMPARE(first.client->events(first.input, cLeaveV3).size(), 1);
    QCOMPARE(second.client->events(second.input, cEnterV2).last().number(1), second.window.surface);
    CompositorBus::set(CompositorBus::cTaskSwitcherPath, CompositorBus::cTaskSwitcher, QStringLiteral("currentView"),
                       uuid);
    first.client->synchronise();
    second.client->synchronise();
    QCOMPARE(first.client->events(first.input, cEnterV3).size(), 2);
    QCOMPARE(second.client->events(second.input, cLeaveV2).size(), 1);
}

void CompositorTextInputTest::shiftIsForOneLetterAndTwiceForMore()
{
    Field field = openField(true);
    tapView(field);
    enable(field);
    tap(cShift);
    tap(cH);
    tap(cH);
    tap(cShift);
    tap(cShift);
    tap(cH);
    tap(cQ);
    tap(cShift);
    tap(cQ);
    TRY_COMPARE(text(field), QStringLiteral("HhHQq"));
}

void CompositorTextInputTest::theKeyboardHasDigitsAndSymbols()
{
    Field field = openField(true);
    tapView(field);
    enable(field);
    tap(cSymbols);
    tap(cQ);
    tap(cSymbols);
    tap(cQ);
    TRY_COMPARE(text(field), QStringLiteral("1q"));
    // Every character of the layout is on one of the pages.
    tap(cSymbols);
    for (const int page : {1, 2}) {
        for (const int y : {393, 451, 509}) {
            for (int x = 55; x < 1024; x += 101) {
                if (y != 509 || (x > 100 && x < 900)) {
                    tap(QPointF(x, y));
                }
            }
        }
        if (page == 1) {
            tap(cShift);
        }
    }
    TRY_VERIFY(text(field).contains(QLatin1Char('?')) && text(field).contains(QLatin1Char('\\')));
    for (const QChar symbol : QStringLiteral("0123456789!@#$%^&*()-_=+[{]}\\|;:'\"<>/?`~")) {
        QVERIFY2(text(field).contains(symbol), qPrintable(QString(symbol)));
    }
}

void CompositorTextInputTest::aNumericFieldStartsWithDigits()
{
    Field field = openField(false);
    constexpr quint32 cDigits = 2;
    field.client->send(WireMessage(field.input, cSetContentTypeV2).number(0U).number(cDigits));
    field.client->send(WireMessage(field.input, cUpdateStateV2).number(0U).number(0U));
    tapView(field);
    enable(field);
    tap(cW);
    TRY_COMPARE(text(field), QStringLiteral("2"));
    // The next field is for all characters.
    field.client->send(WireMessage(field.input, cSetContentTypeV2).number(0U).number(0U));
    field.client->send(WireMessage(field.input, cUpdateStateV2).number(0U).number(3U));
    field.client->synchronise();
    tap(cW);
    TRY_COMPARE(text(field), QStringLiteral("2w"));
}

void CompositorTextInputTest::aPinIsNumeric()
{
    Field field = openField(true);
    tapView(field);
    enable(field, ZWP_TEXT_INPUT_V3_CONTENT_PURPOSE_PIN);
    tap(cW);
    TRY_COMPARE(text(field), QStringLiteral("2"));
}

void CompositorTextInputTest::withoutANumericFieldTheKeyboardStartsWithLetters()
{
    Field other = openField(true);
    const quint32 keyboard = other.client->newId();
    other.client->send(WireMessage(other.client->bind("wl_seat", 4), WL_SEAT_GET_KEYBOARD).number(keyboard));
    Field field = openField(true);
    tapView(field);
    enable(field, ZWP_TEXT_INPUT_V3_CONTENT_PURPOSE_DIGITS);
    TRY_COMPARE(height(field), cBesideKeyboard);
    field.client->disconnect();
    TRY_COMPARE(height(other), cWhole);
    // The menu, and in it the ninth command below the one view.
    tap({300, 10});
    tap({200, 66 + 9 * 36});
    TRY_COMPARE(height(other), cBesideKeyboard);
    tap(cH);
    const auto code = [&] {
        other.client->synchronise();
        const auto events = other.client->events(keyboard, cKey);
        return events.isEmpty() ? 0U : events.first().number(2);
    };
    TRY_COMPARE(code(), cKeyH);
}

void CompositorTextInputTest::thePanelMayBeRequestedBeforeTheFieldIsEnabled()
{
    Field field = openField(false);
    tapView(field);
    field.client->send(WireMessage(field.input, cShowPanelV2));
    QCOMPARE(height(field), cWhole);
    field.client->send(WireMessage(field.input, cEnableV2).number(field.window.surface));
    TRY_COMPARE(height(field), cBesideKeyboard);
}

void CompositorTextInputTest::otherKeysAreKeys()
{
    Field field = openField(true);
    const quint32 keyboard = field.client->newId();
    field.client->send(WireMessage(field.client->bind("wl_seat", 4), WL_SEAT_GET_KEYBOARD).number(keyboard));
    tapView(field);
    enable(field);
    const auto keys = [&] {
        field.client->synchronise();
        return field.client->events(keyboard, cKey);
    };
    // Held as long as the finger: clients repeat it.
    put({{1, cBackspace}});
    TRY_COMPARE(keys().size(), 1);
    QCOMPARE(keys().at(0).number(2), cKeyBackspace);
    QCOMPARE(keys().at(0).number(3), quint32(WL_KEYBOARD_KEY_STATE_PRESSED));
    put({});
    TRY_COMPARE(keys().size(), 2);
    QCOMPARE(keys().at(1).number(3), quint32(WL_KEYBOARD_KEY_STATE_RELEASED));
    QCOMPARE(text(field), QString());
    // Typing on the keyboard counts as a finger.
    disable(field);
    TRY_COMPARE(height(field), cWhole);
    enable(field);
    TRY_COMPARE(height(field), cBesideKeyboard);
}

void CompositorTextInputTest::aHeldKeyIsReleasedWhenTheKeyboardChanges_data()
{
    QTest::addColumn<bool>("turns");
    QTest::newRow("the screen turns") << true;
    QTest::newRow("a numeric field gets the focus") << false;
}

void CompositorTextInputTest::aHeldKeyIsReleasedWhenTheKeyboardChanges()
{
    QFETCH(const bool, turns);
    Field field = openField(true);
    const quint32 keyboard = field.client->newId();
    field.client->send(WireMessage(field.client->bind("wl_seat", 4), WL_SEAT_GET_KEYBOARD).number(keyboard));
    tapView(field);
    enable(field);
    const auto states = [&] {
        field.client->synchronise();
        QVector<quint32> result;
        for (const auto& event : field.client->events(keyboard, cKey)) {
            result.append(event.number(3));
        }
        return result;
    };
    put({{1, cBackspace}});
    TRY_COMPARE(states(), QVector<quint32>({WL_KEYBOARD_KEY_STATE_PRESSED}));
    if (turns) {
        CompositorBus::set(CompositorBus::cScreenPath, CompositorBus::cScreen, QStringLiteral("orientation"),
                           QStringLiteral("180"));
    } else {
        enable(field, ZWP_TEXT_INPUT_V3_CONTENT_PURPOSE_DIGITS);
    }
    const QVector<quint32> expected{WL_KEYBOARD_KEY_STATE_PRESSED, WL_KEYBOARD_KEY_STATE_RELEASED};
    TRY_COMPARE(states(), expected);
    put({});
    QCOMPARE(states(), expected);
}

void CompositorTextInputTest::twoThumbsLoseNothing()
{
    Field field = openField(true);
    tapView(field);
    enable(field);
    put({{1, cH}});
    put({{1, cH}, {2, cQ}});
    put({{2, cQ}});
    put({});
    TRY_COMPARE(text(field), QStringLiteral("hq"));
}

void CompositorTextInputTest::theKeyboardFollowsTheLayout()
{
    mCompositor->end();
    mCompositor = std::make_unique<CompositorProcess>();
    startWithFingers({QStringLiteral("--keyboard-layout"), QStringLiteral("de")});
    Field field = openField(true);
    tapView(field);
    enable(field);
    tap(cSixthOfTop);
    // The eleventh key of the row is one that a US keyboard does not have.
    tap({973, 393});
    TRY_COMPARE(text(field), QString::fromUtf8("zü"));
}

void CompositorTextInputTest::theKeyboardTurnsWithTheOutput()
{
    Field field = openField(true);
    CompositorBus::set(CompositorBus::cScreenPath, CompositorBus::cScreen, QStringLiteral("orientation"),
                       QStringLiteral("180"));
    const auto turned = [](const QPointF& position) {
        return QPointF(cOutput.width(), cOutput.height()) - position;
    };
    tapView(field, turned({500, 100}));
    enable(field);
    tap(turned(cH));
    TRY_COMPARE(text(field), QStringLiteral("h"));
    // Upright it is as wide as the output is high.
    CompositorBus::set(CompositorBus::cScreenPath, CompositorBus::cScreen, QStringLiteral("orientation"),
                       QStringLiteral("90"));
    TRY_COMPARE(height(field), 1024 - cStatusBar - 300);
}

void CompositorTextInputTest::aFieldThatIsLeftForAnotherKeepsTheKeyboard()
{
    Field field = openField(true);
    tapView(field);
    enable(field);
    TRY_COMPARE(height(field), cBesideKeyboard);
    const int configurations = field.client->events(field.window.toplevel, cConfigure).size();
    field.client->send(WireMessage(field.input, ZWP_TEXT_INPUT_V3_DISABLE));
    field.client->send(WireMessage(field.input, ZWP_TEXT_INPUT_V3_COMMIT));
    enable(field);
    // The keyboard that closes with the field would have closed by then.
    disable(field);
    TRY_COMPARE(height(field), cWhole);
    QCOMPARE(field.client->events(field.window.toplevel, cConfigure).size(), configurations + 1);
}

void CompositorTextInputTest::aPersonClosesTheKeyboard()
{
    Field field = openField(false);
    tapView(field);
    enable(field);
    TRY_COMPARE(height(field), cBesideKeyboard);
    tap(cClose);
    TRY_COMPARE(height(field), cWhole);
    // The next tap into the field opens it again, and the client may close it too.
    tapView(field);
    field.client->send(WireMessage(field.input, cShowPanelV2));
    TRY_COMPARE(height(field), cBesideKeyboard);
    field.client->send(WireMessage(field.input, cHidePanelV2));
    TRY_COMPARE(height(field), cWhole);
}

void CompositorTextInputTest::openedByHandItTypesKeys()
{
    Field field = openField(true);
    const quint32 keyboard = field.client->newId();
    field.client->send(WireMessage(field.client->bind("wl_seat", 4), WL_SEAT_GET_KEYBOARD).number(keyboard));
    // The menu, and in it the ninth command below the one view.
    tap({300, 10});
    tap({200, 66 + 9 * 36});
    TRY_COMPARE(height(field), cBesideKeyboard);
    tap(cShift);
    tap(cH);
    QVector<QPair<quint32, quint32>> keys;
    const auto read = [&] {
        field.client->synchronise();
        keys.clear();
        for (const auto& event : field.client->events(keyboard, cKey)) {
            keys.append({event.number(2), event.number(3)});
        }
        return keys;
    };
    const QVector<QPair<quint32, quint32>> expected{{cKeyShift, 1}, {cKeyH, 1}, {cKeyH, 0}, {cKeyShift, 0}};
    TRY_COMPARE(read(), expected);
    QCOMPARE(text(field), QString());
    // It does not go with the view.
    field.client->disconnect();
    Field other = openField(true);
    TRY_COMPARE(height(other), cBesideKeyboard);
    tap(cClose);
    TRY_COMPARE(height(other), cWhole);
}

void CompositorTextInputTest::aClientThatLeavesTakesTheKeyboardWithIt()
{
    Field other = openField(true);
    Field field = openField(true);
    tapView(field);
    enable(field);
    TRY_COMPARE(height(field), cBesideKeyboard);
    field.client->disconnect();
    TRY_COMPARE(height(other), cWhole);
}

void CompositorTextInputTest::aTapIntoAFieldOfQtTypesThere()
{
    const auto client = testClient();
    client->send("open a Window");
    client->waitFor("size 1 1024x566");
    client->send("field 1");
    client->waitFor("field 1");
    screenShot();
    tap({300, 34 + 140});
    client->waitFor("size 1 1024x326");
    tap(cH);
    client->waitFor("text 1 h");
    tap(cShift);
    tap(cQ);
    client->waitFor("text 1 hQ");
    tap(cBackspace);
    client->waitFor("text 1 h");
    tap(cClose);
    client->waitFor("size 1 1024x566");
}

TELVARO_TEST_MAIN(CompositorTextInputTest)

#include "CompositorTextInputTest.moc"
