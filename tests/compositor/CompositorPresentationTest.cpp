// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "CompositorBus.h"
#include "CompositorFixture.h"
#include "TestMain.h"
#include "WireClient.h"

#include <ctime>
#include <presentation-time-client-protocol.h>
#include <wayland-client-protocol.h>
#include <xdg-shell-client-protocol.h>

namespace {

constexpr quint16 cClockId = 0;
constexpr quint16 cSyncOutput = 0;
constexpr quint16 cPresented = 1;
constexpr quint16 cDiscarded = 2;
constexpr qint64 cNanoseconds = 1000000000;

qint64 now()
{
    timespec time = {};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return time.tv_sec * cNanoseconds + time.tv_nsec;
}

} // namespace

/// wp_presentation: when a client's content was shown.
class CompositorPresentationTest : public CompositorFixture
{
    Q_OBJECT

private Q_SLOTS:
    void thePresentationHasATime();
    void feedbackIsForTheNextCommit();
    void aContentThatIsReplacedUnseenIsDiscarded();
    void aContentWhoseSurfaceGoesIsDiscarded();
    void feedbackWithoutEndHarmsNobody();

private:
    struct Client
    {
        explicit Client(const CompositorProcess& compositor)
            : wire(compositor.runtimeDirectory() + QLatin1Char('/') + compositor.display())
            , presentation(wire.bind("wp_presentation"))
        {
        }
        quint32 requestFeedback(quint32 surface)
        {
            const quint32 feedback = wire.newId();
            mEvents.insert(feedback, {});
            wire.send(WireMessage(presentation, WP_PRESENTATION_FEEDBACK).number(surface).number(feedback));
            return feedback;
        }
        void commit(quint32 surface)
        {
            wire.damage(surface, QRect(0, 0, 10, 10));
            wire.commit(surface);
        }
        /// The opcodes of the events of `object` so far.
        QVector<quint16> opcodes(quint32 object)
        {
            wire.synchronise();
            // The id of an object that has ended is used again.
            for (auto events = mEvents.begin(); events != mEvents.end(); ++events) {
                if (events->isEmpty()) {
                    *events = wire.events(events.key());
                }
            }
            QVector<quint16> result;
            for (const WireClient::Event& event : mEvents.value(object)) {
                result.append(event.opcode);
            }
            return result;
        }
        WireClient::Event lastEvent(quint32 object) const
        {
            return mEvents.value(object).last();
        }

        WireClient wire;
        quint32 presentation;

    private:
        /// Of each feedback object.
        QMap<quint32, QVector<WireClient::Event>> mEvents;
    };
};

void CompositorPresentationTest::thePresentationHasATime()
{
    Client client(*mCompositor);
    client.wire.bind("wl_output", 3);
    const WireClient::Window window = client.wire.openWindow("Player");
    TRY_COMPARE(CompositorBus::views().size(), 1);
    const auto clocks = client.wire.events(client.presentation, cClockId);
    QCOMPARE(clocks.size(), 1);
    QCOMPARE(clocks.first().number(0), quint32(CLOCK_MONOTONIC));

    qint64 last = now();
    for (int i = 0; i < 3; ++i) {
        const quint32 one = client.requestFeedback(window.surface);
        const quint32 other = client.requestFeedback(window.surface);
        client.commit(window.surface);
        TRY_COMPARE(client.opcodes(one), QVector<quint16>({cSyncOutput, cPresented}));
        TRY_COMPARE(client.opcodes(other), QVector<quint16>({cSyncOutput, cPresented}));
        const WireClient::Event event = client.lastEvent(one);
        const qint64 seconds = (qint64(event.number(0)) << 32) + event.number(1);
        QVERIFY(event.number(2) < cNanoseconds);
        const qint64 time = seconds * cNanoseconds + event.number(2);
        QVERIFY(time > last);
        QVERIFY(time < now());
        last = time;
        QCOMPARE(event.number(3), 16000000U);
        QCOMPARE(event.arguments.mid(16), QByteArray(12, '\0'));
        QCOMPARE(client.lastEvent(other).arguments, event.arguments);
    }
}

void CompositorPresentationTest::feedbackIsForTheNextCommit()
{
    Client client(*mCompositor);
    const WireClient::Window window = client.wire.openWindow("Player");
    TRY_COMPARE(CompositorBus::views().size(), 1);
    client.commit(window.surface);
    const quint32 feedback = client.requestFeedback(window.surface);
    client.wire.synchronise();
    screenShot();
    client.wire.openWindow("Probe");
    TRY_COMPARE(CompositorBus::views().size(), 2);
    QCOMPARE(client.opcodes(feedback), QVector<quint16>());
    client.commit(window.surface);
    QCOMPARE(client.opcodes(feedback), QVector<quint16>());
    CompositorBus::set(CompositorBus::cTaskSwitcherPath, CompositorBus::cTaskSwitcher, QStringLiteral("currentView"),
                       CompositorBus::viewWithTitle(QStringLiteral("Player")).uuid);
    TRY_COMPARE(client.opcodes(feedback), QVector<quint16>({cPresented}));
}

void CompositorPresentationTest::aContentThatIsReplacedUnseenIsDiscarded()
{
    Client client(*mCompositor);
    const WireClient::Window window = client.wire.openWindow("Player");
    client.wire.openWindow("Above");
    TRY_COMPARE(CompositorBus::views().size(), 2);
    const quint32 first = client.requestFeedback(window.surface);
    client.commit(window.surface);
    QCOMPARE(client.opcodes(first), QVector<quint16>());
    const quint32 second = client.requestFeedback(window.surface);
    QCOMPARE(client.opcodes(first), QVector<quint16>());
    client.commit(window.surface);
    QCOMPARE(client.opcodes(first), QVector<quint16>({cDiscarded}));
    QCOMPARE(client.opcodes(second), QVector<quint16>());
    CompositorBus::set(CompositorBus::cTaskSwitcherPath, CompositorBus::cTaskSwitcher, QStringLiteral("currentView"),
                       CompositorBus::viewWithTitle(QStringLiteral("Player")).uuid);
    TRY_COMPARE(client.opcodes(second), QVector<quint16>({cPresented}));
}

void CompositorPresentationTest::aContentWhoseSurfaceGoesIsDiscarded()
{
    Client client(*mCompositor);
    const quint32 surface = client.wire.createSurface();
    const quint32 committed = client.requestFeedback(surface);
    client.commit(surface);
    const quint32 pending = client.requestFeedback(surface);
    client.wire.send(WireMessage(client.presentation, WP_PRESENTATION_DESTROY));
    client.wire.send(WireMessage(surface, WL_SURFACE_DESTROY));
    TRY_COMPARE(client.opcodes(committed), QVector<quint16>({cDiscarded}));
    TRY_COMPARE(client.opcodes(pending), QVector<quint16>({cDiscarded}));
}

void CompositorPresentationTest::feedbackWithoutEndHarmsNobody()
{
    expectComplaints(10);
    Client witness(*mCompositor);
    const WireClient::Window window = witness.wire.openWindow("Witness");
    TRY_COMPARE(CompositorBus::views().size(), 1);
    {
        // Objects that outlive everything, and then end with their client.
        Client client(*mCompositor);
        const quint32 shown = client.wire.openWindow("Many").surface;
        const quint32 hidden = client.wire.createSurface();
        for (int i = 0; i < 4000; ++i) {
            client.requestFeedback(hidden);
            client.requestFeedback(shown);
        }
        client.commit(hidden);
        QVERIFY2(client.wire.synchronise(), client.wire.errorText());
        screenShot();
    }
    {
        Client client(*mCompositor);
        const quint32 surface = client.wire.createSurface();
        for (int i = 0; i < 20000; ++i) {
            client.requestFeedback(surface);
        }
        QVERIFY(!client.wire.synchronise());
    }
    {
        Client client(*mCompositor);
        client.requestFeedback(client.presentation);
        QVERIFY(!client.wire.synchronise());
    }
    TRY_COMPARE(CompositorBus::views().size(), 1);
    const quint32 feedback = witness.requestFeedback(window.surface);
    witness.commit(window.surface);
    TRY_COMPARE(witness.opcodes(feedback), QVector<quint16>({cPresented}));
}

TELVARO_TEST_MAIN(CompositorPresentationTest)

#include "CompositorPresentationTest.moc"
