// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "CompositorBus.h"
#include "CompositorFixture.h"
#include "TestMain.h"
#include "VirtualDesktop.h"
#include "WireClient.h"

#include <functional>
#include <unistd.h>
#include <wayland-client-protocol.h>

namespace {

constexpr quint16 cPointerMotion = 2;
constexpr quint16 cPointerButton = 3;
constexpr quint16 cDeviceOffer = 0;
constexpr quint16 cDeviceEnter = 1;
constexpr quint16 cDeviceLeave = 2;
constexpr quint16 cDeviceDrop = 4;
constexpr quint16 cDeviceSelection = 5;
constexpr quint16 cOfferType = 0;
constexpr quint16 cOfferSourceActions = 1;
constexpr quint16 cOfferAction = 2;
constexpr quint16 cSourceTarget = 0;
constexpr quint16 cSourceSend = 1;
constexpr quint16 cSourceCancelled = 2;
constexpr quint16 cSourceDropPerformed = 3;
constexpr quint16 cSourceFinished = 4;
constexpr quint16 cSourceAction = 5;

constexpr quint32 cCopy = WL_DATA_DEVICE_MANAGER_DND_ACTION_COPY;
constexpr quint32 cMove = WL_DATA_DEVICE_MANAGER_DND_ACTION_MOVE;
constexpr quint32 cAsk = WL_DATA_DEVICE_MANAGER_DND_ACTION_ASK;

constexpr int cNoError = -1;
constexpr int cAnyError = -3;

/// A client with a window, a pointer and a wl_data_device.
struct DataClient
{
    WireClient wire;
    quint32 pointer;
    quint32 manager;
    quint32 device;
    WireClient::Window window;

    DataClient(const QString& socket, quint32 version, const QByteArray& title)
        : wire(socket)
    {
        const quint32 seat = wire.bind("wl_seat");
        pointer = wire.newId();
        wire.send(WireMessage(seat, WL_SEAT_GET_POINTER).number(pointer));
        manager = wire.bind("wl_data_device_manager", version);
        device = wire.newId();
        wire.send(WireMessage(manager, WL_DATA_DEVICE_MANAGER_GET_DATA_DEVICE).number(device).number(seat));
        window = wire.openWindow(title);
        wire.synchronise();
    }

    quint32 createSource(const QByteArray& type = "text/plain")
    {
        const quint32 source = wire.newId();
        wire.send(WireMessage(manager, WL_DATA_DEVICE_MANAGER_CREATE_DATA_SOURCE).number(source));
        wire.send(WireMessage(source, WL_DATA_SOURCE_OFFER).text(type));
        return source;
    }
    void setActions(quint32 source, quint32 actions)
    {
        wire.send(WireMessage(source, WL_DATA_SOURCE_SET_ACTIONS).number(actions));
    }
    void select(quint32 source)
    {
        wire.send(WireMessage(device, WL_DATA_DEVICE_SET_SELECTION).number(source).number(0U));
    }
    void startDrag(quint32 source, quint32 icon = 0)
    {
        wire.send(WireMessage(device, WL_DATA_DEVICE_START_DRAG)
                      .number(source)
                      .number(window.surface)
                      .number(icon)
                      .number(0U));
    }
    void receive(quint32 offer)
    {
        int pipes[2];
        QCOMPARE(pipe(pipes), 0);
        wire.send(WireMessage(offer, WL_DATA_OFFER_RECEIVE).text("text/plain").descriptor(pipes[1]));
        close(pipes[0]);
        close(pipes[1]);
    }
    int count(quint32 object, quint16 opcode)
    {
        wire.synchronise();
        return wire.events(object, opcode).size();
    }
    /// The object of the offer that came last; 0 for none.
    quint32 offer()
    {
        wire.synchronise();
        const QVector<WireClient::Event> offers = wire.events(device, cDeviceOffer);
        return offers.isEmpty() ? 0 : offers.last().number(0);
    }
    quint32 lastNumber(quint32 object, quint16 opcode)
    {
        wire.synchronise();
        const QVector<WireClient::Event> events = wire.events(object, opcode);
        return events.isEmpty() ? 0 : events.last().number(0);
    }
};

using Attack = std::function<void(DataClient&)>;

} // namespace

Q_DECLARE_METATYPE(Attack)

/// The clipboard, and the negotiation of a drag and drop.
class CompositorDataDeviceTest : public CompositorFixture
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void theFocusedClientIsOfferedTheClipboard();
    void aDeviceThatComesLaterIsOfferedTheClipboard();
    void theClipboardIsEmptyWithoutItsSource();
    void aReplacedSourceIsCancelled();
    void onlyTheClientWithTheFocusTakesTheClipboard();
    void aSourceIsUsedOnce();
    void aDropIsNegotiatedAndFinished();
    void theActionFollowsBothSides_data();
    void theActionFollowsBothSides();
    void aDropThatIsNotAcceptedIsCancelled();
    void aDropThatIsNotFinishedIsCancelled();
    void anOldTargetTakesEveryDrop();
    void anOfferThatTheDragHasLeftIsInert();
    void descriptorsAreNotKept();
    void aClientThatBreaksTheProtocolHarmsOnlyItself_data();
    void aClientThatBreaksTheProtocolHarmsOnlyItself();

protected:
    void startCompositor() override;

private:
    std::unique_ptr<DataClient> openClient(const QByteArray& title, quint32 version = 3);
    /// Starts a drag of a new source over its own window; returns the source.
    quint32 drag(DataClient& client, quint32 actions);
    void press(DataClient& client);

    std::unique_ptr<VirtualDesktop> mDesktop;
};

void CompositorDataDeviceTest::initTestCase()
{
    mDesktop = std::make_unique<VirtualDesktop>();
}

void CompositorDataDeviceTest::startCompositor()
{
    mCompositor->environment().insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    mCompositor->environment().insert(QStringLiteral("DISPLAY"), mDesktop->display());
    mCompositor->start();
    mDesktop->movePointer(5, 595);
}

std::unique_ptr<DataClient> CompositorDataDeviceTest::openClient(const QByteArray& title, quint32 version)
{
    const int before = CompositorBus::views().size();
    auto client = std::make_unique<DataClient>(
        mCompositor->runtimeDirectory() + QLatin1Char('/') + mCompositor->display(), version, title);
    [before] {
        TRY_COMPARE(CompositorBus::views().size(), before + 1);
    }();
    return client;
}

void CompositorDataDeviceTest::press(DataClient& client)
{
    int step = 0;
    const auto hasEntered = [&] {
        mDesktop->movePointer(500 + ++step % 2, 300);
        return client.count(client.pointer, cPointerMotion) > 0;
    };
    TRY_VERIFY(hasEntered());
    mDesktop->press();
    TRY_VERIFY(client.count(client.pointer, cPointerButton) > 0);
}

quint32 CompositorDataDeviceTest::drag(DataClient& client, quint32 actions)
{
    press(client);
    const quint32 source = client.createSource();
    if (actions != 0) {
        client.setActions(source, actions);
    }
    client.startDrag(source);
    client.wire.synchronise();
    int step = 0;
    const auto hasEntered = [&] {
        mDesktop->movePointer(510 + ++step % 2, 300);
        return client.count(client.device, cDeviceEnter) > 0;
    };
    [&] {
        TRY_VERIFY(hasEntered());
    }();
    return source;
}

void CompositorDataDeviceTest::theFocusedClientIsOfferedTheClipboard()
{
    const auto owner = openClient("Owner");
    const quint32 source = owner->createSource();
    owner->select(source);
    QVERIFY2(owner->wire.synchronise(), owner->wire.errorText());
    const auto other = openClient("Other");
    TRY_VERIFY(other->offer() != 0);
    const quint32 offer = other->offer();
    TRY_COMPARE(other->lastNumber(other->device, cDeviceSelection), offer);
    QCOMPARE(other->wire.events(offer, cOfferType).size(), 1);
    QVERIFY(other->wire.events(offer, cOfferType).first().arguments.contains("text/plain"));
    QCOMPARE(other->wire.events(offer, cOfferSourceActions).size(), 0);
    other->receive(offer);
    QVERIFY2(other->wire.synchronise(), other->wire.errorText());
    TRY_COMPARE(owner->count(source, cSourceSend), 1);
}

void CompositorDataDeviceTest::aDeviceThatComesLaterIsOfferedTheClipboard()
{
    const auto owner = openClient("Owner");
    owner->select(owner->createSource());
    owner->wire.synchronise();
    const quint32 seat = owner->wire.bind("wl_seat");
    const quint32 late = owner->wire.newId();
    owner->wire.send(WireMessage(owner->manager, WL_DATA_DEVICE_MANAGER_GET_DATA_DEVICE).number(late).number(seat));
    TRY_VERIFY(owner->lastNumber(late, cDeviceSelection) != 0);
}

void CompositorDataDeviceTest::theClipboardIsEmptyWithoutItsSource()
{
    const auto owner = openClient("Owner");
    const quint32 source = owner->createSource();
    owner->select(source);
    TRY_VERIFY(owner->lastNumber(owner->device, cDeviceSelection) != 0);
    owner->wire.send(WireMessage(source, WL_DATA_SOURCE_DESTROY));
    TRY_COMPARE(owner->lastNumber(owner->device, cDeviceSelection), 0U);
    owner->receive(owner->offer());
    QVERIFY2(owner->wire.synchronise(), owner->wire.errorText());
}

void CompositorDataDeviceTest::aReplacedSourceIsCancelled()
{
    const auto owner = openClient("Owner");
    const quint32 first = owner->createSource();
    owner->select(first);
    const quint32 offer = owner->offer();
    const quint32 second = owner->createSource();
    owner->select(second);
    TRY_COMPARE(owner->count(first, cSourceCancelled), 1);
    owner->receive(offer);
    owner->wire.synchronise();
    QCOMPARE(owner->count(first, cSourceSend), 0);
    owner->select(0);
    TRY_COMPARE(owner->count(second, cSourceCancelled), 1);
    QCOMPARE(owner->lastNumber(owner->device, cDeviceSelection), 0U);
}

void CompositorDataDeviceTest::onlyTheClientWithTheFocusTakesTheClipboard()
{
    const auto background = openClient("Background");
    const auto left = openClient("Left");
    const auto focused = openClient("Focused");
    const quint32 source = focused->createSource();
    focused->select(source);
    TRY_VERIFY(focused->offer() != 0);
    const quint32 stolen = background->createSource();
    background->select(stolen);
    TRY_COMPARE(background->count(stolen, cSourceCancelled), 1);
    background->select(0);
    QVERIFY2(background->wire.synchronise(), background->wire.errorText());
    QCOMPARE(focused->count(source, cSourceCancelled), 0);
    // What was copied before the focus moved may come late.
    left->select(left->createSource());
    TRY_COMPARE(focused->count(source, cSourceCancelled), 1);
}

void CompositorDataDeviceTest::aSourceIsUsedOnce()
{
    const auto owner = openClient("Owner");
    const quint32 source = owner->createSource();
    owner->select(source);
    press(*owner);
    owner->startDrag(source);
    TRY_COMPARE(owner->count(source, cSourceCancelled), 1);
    QCOMPARE(owner->count(owner->device, cDeviceEnter), 0);
    mDesktop->release();
}

void CompositorDataDeviceTest::aDropIsNegotiatedAndFinished()
{
    const auto client = openClient("Dragger");
    const quint32 source = drag(*client, cCopy | cMove);
    const quint32 offer = client->offer();
    QCOMPARE(client->lastNumber(offer, cOfferSourceActions), cCopy | cMove);
    client->wire.send(WireMessage(offer, WL_DATA_OFFER_ACCEPT).number(0U).text("text/plain"));
    client->wire.send(WireMessage(offer, WL_DATA_OFFER_SET_ACTIONS).number(cCopy | cMove).number(cMove));
    TRY_COMPARE(client->lastNumber(source, cSourceAction), cMove);
    QCOMPARE(client->lastNumber(offer, cOfferAction), cMove);
    QCOMPARE(client->count(source, cSourceTarget), 1);

    mDesktop->release();
    TRY_COMPARE(client->count(client->device, cDeviceDrop), 1);
    QCOMPARE(client->count(source, cSourceDropPerformed), 1);
    client->receive(offer);
    TRY_COMPARE(client->count(source, cSourceSend), 1);
    QCOMPARE(client->count(source, cSourceFinished), 0);
    client->wire.send(WireMessage(offer, WL_DATA_OFFER_FINISH));
    client->wire.send(WireMessage(offer, WL_DATA_OFFER_DESTROY));
    TRY_COMPARE(client->count(source, cSourceFinished), 1);
    QCOMPARE(client->count(source, cSourceCancelled), 0);
}

void CompositorDataDeviceTest::theActionFollowsBothSides_data()
{
    QTest::addColumn<quint32>("ofSource");
    QTest::addColumn<quint32>("ofTarget");
    QTest::addColumn<quint32>("preferred");
    QTest::addColumn<quint32>("chosen");
    QTest::newRow("preferred") << (cCopy | cAsk) << (cCopy | cAsk) << cAsk << cAsk;
    QTest::newRow("preferred by the target only") << (cCopy | cMove) << (cMove | cAsk) << cAsk << cMove;
    QTest::newRow("nothing preferred") << (cCopy | cMove) << (cCopy | cMove) << 0U << cCopy;
    QTest::newRow("nothing in common") << cCopy << cMove << cMove << 0U;
    QTest::newRow("a source that says nothing") << 0U << (cCopy | cMove) << cMove << cCopy;
}

void CompositorDataDeviceTest::theActionFollowsBothSides()
{
    QFETCH(quint32, ofSource);
    QFETCH(quint32, ofTarget);
    QFETCH(quint32, preferred);
    QFETCH(quint32, chosen);
    const auto client = openClient("Dragger");
    const quint32 source = drag(*client, ofSource);
    const quint32 offer = client->offer();
    client->wire.send(WireMessage(offer, WL_DATA_OFFER_ACCEPT).number(0U).text("text/plain"));
    client->wire.send(WireMessage(offer, WL_DATA_OFFER_SET_ACTIONS).number(ofTarget).number(preferred));
    QVERIFY2(client->wire.synchronise(), client->wire.errorText());
    QCOMPARE(client->lastNumber(offer, cOfferAction), chosen);
    mDesktop->release();
    TRY_COMPARE(client->count(source, chosen == 0 ? cSourceCancelled : cSourceDropPerformed), 1);
    QCOMPARE(client->count(client->device, cDeviceDrop), chosen == 0 ? 0 : 1);
}

void CompositorDataDeviceTest::aDropThatIsNotAcceptedIsCancelled()
{
    const auto client = openClient("Dragger");
    const quint32 source = drag(*client, cCopy);
    const quint32 offer = client->offer();
    client->wire.send(WireMessage(offer, WL_DATA_OFFER_SET_ACTIONS).number(cCopy).number(cCopy));
    client->wire.synchronise();
    mDesktop->release();
    TRY_COMPARE(client->count(source, cSourceCancelled), 1);
    QCOMPARE(client->count(client->device, cDeviceDrop), 0);
    QCOMPARE(client->count(client->device, cDeviceLeave), 1);
}

void CompositorDataDeviceTest::aDropThatIsNotFinishedIsCancelled()
{
    const auto client = openClient("Dragger");
    const quint32 source = drag(*client, cCopy);
    const quint32 offer = client->offer();
    client->wire.send(WireMessage(offer, WL_DATA_OFFER_ACCEPT).number(0U).text("text/plain"));
    client->wire.send(WireMessage(offer, WL_DATA_OFFER_SET_ACTIONS).number(cCopy).number(cCopy));
    client->wire.synchronise();
    mDesktop->release();
    TRY_COMPARE(client->count(client->device, cDeviceDrop), 1);
    QCOMPARE(client->count(source, cSourceCancelled), 0);
    client->wire.send(WireMessage(offer, WL_DATA_OFFER_DESTROY));
    TRY_COMPARE(client->count(source, cSourceCancelled), 1);
}

void CompositorDataDeviceTest::anOldTargetTakesEveryDrop()
{
    const auto client = openClient("Dragger", 1);
    const quint32 source = drag(*client, 0);
    mDesktop->release();
    TRY_COMPARE(client->count(client->device, cDeviceDrop), 1);
    QCOMPARE(client->count(source, cSourceCancelled), 0);
    QCOMPARE(client->count(source, cSourceDropPerformed), 0);
}

void CompositorDataDeviceTest::anOfferThatTheDragHasLeftIsInert()
{
    const auto client = openClient("Dragger");
    const quint32 source = drag(*client, cCopy);
    const quint32 offer = client->offer();
    mDesktop->movePointer(5, 595);
    TRY_COMPARE(client->count(client->device, cDeviceLeave), 1);
    client->wire.send(WireMessage(offer, WL_DATA_OFFER_ACCEPT).number(0U).text("text/plain"));
    client->wire.send(WireMessage(offer, WL_DATA_OFFER_SET_ACTIONS).number(cCopy).number(cCopy));
    client->receive(offer);
    QVERIFY2(client->wire.synchronise(), client->wire.errorText());
    QCOMPARE(client->count(source, cSourceTarget), 0);
    QCOMPARE(client->count(source, cSourceSend), 0);
    mDesktop->release();
    TRY_COMPARE(client->count(source, cSourceCancelled), 1);
}

void CompositorDataDeviceTest::descriptorsAreNotKept()
{
    const auto client = openClient("Owner");
    const quint32 source = client->createSource();
    client->select(source);
    const quint32 offer = client->offer();
    client->receive(offer);
    client->wire.synchronise();
    const int descriptors = mCompositor->descriptorCount();
    for (int i = 0; i < 100; ++i) {
        client->receive(offer);
    }
    QVERIFY2(client->wire.synchronise(), client->wire.errorText());
    client->wire.send(WireMessage(source, WL_DATA_SOURCE_DESTROY));
    for (int i = 0; i < 100; ++i) {
        client->receive(offer);
    }
    QVERIFY2(client->wire.synchronise(), client->wire.errorText());
    QCOMPARE(mCompositor->descriptorCount(), descriptors);
}

void CompositorDataDeviceTest::aClientThatBreaksTheProtocolHarmsOnlyItself_data()
{
    QTest::addColumn<Attack>("attack");
    QTest::addColumn<int>("error");
    const auto row = [](const char* name, int error, const Attack& attack) {
        QTest::newRow(name) << attack << error;
    };

    row("actions that are none", WL_DATA_SOURCE_ERROR_INVALID_ACTION_MASK, [](DataClient& client) {
        client.setActions(client.createSource(), 0x80000001U);
    });
    row("actions set twice", WL_DATA_SOURCE_ERROR_INVALID_SOURCE, [](DataClient& client) {
        const quint32 source = client.createSource();
        client.setActions(source, cCopy);
        client.setActions(source, cCopy);
    });
    row("actions of the clipboard", WL_DATA_SOURCE_ERROR_INVALID_SOURCE, [](DataClient& client) {
        const quint32 source = client.createSource();
        client.select(source);
        client.setActions(source, cCopy);
    });
    row("types without an end", cNoError, [](DataClient& client) {
        const quint32 source = client.createSource();
        for (int i = 0; i < 5000; ++i) {
            client.wire.send(WireMessage(source, WL_DATA_SOURCE_OFFER).text(QByteArray(3000, 'x')));
        }
        client.select(source);
    });
    row("types after the offer", cNoError, [](DataClient& client) {
        const quint32 source = client.createSource();
        client.select(source);
        client.wire.send(WireMessage(source, WL_DATA_SOURCE_OFFER).text("late"));
    });
    row("a clipboard that changes without an end", cNoError, [](DataClient& client) {
        for (int i = 0; i < 500; ++i) {
            const quint32 source = client.createSource();
            client.select(source);
            client.wire.send(WireMessage(source, WL_DATA_SOURCE_DESTROY));
            client.wire.synchronise();
        }
    });
    row("a clipboard of a source that is gone", cAnyError, [](DataClient& client) {
        const quint32 source = client.createSource();
        client.wire.send(WireMessage(source, WL_DATA_SOURCE_DESTROY));
        client.select(source);
    });
    row("a clipboard that is no source", cAnyError, [](DataClient& client) {
        client.select(client.window.surface);
    });
    row("the same clipboard again", cNoError, [](DataClient& client) {
        const quint32 source = client.createSource();
        client.select(source);
        client.select(source);
    });
    row("a used source as the clipboard", cNoError, [](DataClient& client) {
        const quint32 source = client.createSource();
        client.select(source);
        client.select(client.createSource());
        client.select(source);
    });
    row("a clipboard offer that is finished", WL_DATA_OFFER_ERROR_INVALID_FINISH, [](DataClient& client) {
        client.select(client.createSource());
        client.wire.send(WireMessage(client.offer(), WL_DATA_OFFER_FINISH));
    });
    row("actions for a clipboard offer", WL_DATA_OFFER_ERROR_INVALID_OFFER, [](DataClient& client) {
        client.select(client.createSource());
        client.wire.send(WireMessage(client.offer(), WL_DATA_OFFER_SET_ACTIONS).number(cCopy).number(cCopy));
    });
    row("a clipboard offer that is accepted", cNoError, [](DataClient& client) {
        client.select(client.createSource());
        client.wire.send(WireMessage(client.offer(), WL_DATA_OFFER_ACCEPT).number(0U).text("nonsense"));
    });
    row("an offer after its end", cAnyError, [](DataClient& client) {
        client.select(client.createSource());
        const quint32 offer = client.offer();
        client.wire.send(WireMessage(offer, WL_DATA_OFFER_DESTROY));
        client.wire.send(WireMessage(offer, WL_DATA_OFFER_FINISH));
    });
    row("a device after its release", cAnyError, [](DataClient& client) {
        client.select(client.createSource());
        client.wire.send(WireMessage(client.device, WL_DATA_DEVICE_RELEASE));
        client.select(client.createSource());
    });
    row("a manager of an old version that is asked for actions", cAnyError, [](DataClient& client) {
        client.manager = client.wire.bind("wl_data_device_manager", 1);
        client.setActions(client.createSource(), cCopy);
    });
    row("a window as the icon of a drag", WL_DATA_DEVICE_ERROR_ROLE, [](DataClient& client) {
        const quint32 source = client.createSource();
        client.startDrag(source, client.window.surface);
    });
    row("a drag without a button", cNoError, [](DataClient& client) {
        client.startDrag(client.createSource());
        client.startDrag(0);
    });
}

void CompositorDataDeviceTest::aClientThatBreaksTheProtocolHarmsOnlyItself()
{
    QFETCH(Attack, attack);
    QFETCH(int, error);
    expectComplaints(200);
    const auto witness = openClient("Witness");
    const auto client = openClient("Attacker");
    attack(*client);
    client->wire.synchronise();
    const bool isConnected = client->wire.synchronise();
    if (error == cNoError) {
        QVERIFY2(isConnected, client->wire.errorText());
    } else {
        QVERIFY(!isConnected);
        QVERIFY2(error == cAnyError || client->wire.errorCode() == error,
                 QByteArray::number(client->wire.errorCode()) + ": " + client->wire.errorText());
    }
    client->wire.disconnect();
    TRY_COMPARE(CompositorBus::views().size(), 1);
    // The witness has got the focus, and the clipboard still works.
    const quint32 source = witness->createSource("text/after");
    witness->select(source);
    TRY_VERIFY(witness->offer() != 0);
    witness->receive(witness->offer());
    TRY_COMPARE(witness->count(source, cSourceSend), 1);
}

TELVARO_TEST_MAIN(CompositorDataDeviceTest)

#include "CompositorDataDeviceTest.moc"
