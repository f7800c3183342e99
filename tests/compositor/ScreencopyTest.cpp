// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/Screencopy.h"
#include "ScreencopyClient.h"
#include "ServerDesk.h"
#include "shell/SceneLayer.h"
#include "state/FrameTimer.h"
#include "state/Limits.h"

#include <QElapsedTimer>
#include <QPainter>

#include <array>
#include <memory>

namespace {

/// Fills the output, and counts how often.
class Sheet : public SceneLayer
{
public:
    QRegion update() override
    {
        return std::exchange(mDamage, QRegion());
    }
    void paint(QPainter* painter) const override
    {
        ++mCount;
        painter->fillRect(painter->window(), Qt::blue);
    }
    void setDamage(const QRegion& damage)
    {
        mDamage = damage;
    }
    int takeCount() const
    {
        return std::exchange(mCount, 0);
    }

private:
    QRegion mDamage;
    mutable int mCount = 0;
};

} // namespace

/// When the scene is painted for clients that capture it.
class ScreencopyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void onePictureIsForAllClients();
    void framesOfOneClientAreCapturedOneByOne();
    void everythingIsDamagedBeforeTheFirstCopy();
    void nothingIsPaintedWithoutDamage();
    void scatteredDamageGrowsToTheRectangleAroundIt();
    void aFrameOutsideOfTheNewSizeFails();

private:
    struct Client
    {
        void capture()
        {
            frame = wire->capture();
            buffer = wire->createFrameBuffer(frame);
        }

        std::unique_ptr<ScreencopyClient> wire;
        quint32 frame = 0;
        quint32 buffer = 0;
    };

    static bool hasEnded(const Client& client, quint32 frame);
    /// Waits until the latest frames of all clients have ended.
    void waitForEnd();

    std::unique_ptr<ServerDesk> mDesk;
    Sheet mSheet;
    std::array<Client, 3> mClients;
};

void ScreencopyTest::init()
{
    mDesk = std::make_unique<ServerDesk>();
    mDesk->scene.addLayer(&mSheet);
    mDesk->scene.feed(mDesk->server.screencopy());
    ServerDesk::serve([this] {
        for (Client& client : mClients) {
            client.wire = std::make_unique<ScreencopyClient>(mDesk->socketPath());
            client.capture();
        }
    });
    mSheet.takeCount();
}

void ScreencopyTest::cleanup()
{
    for (Client& client : mClients) {
        client.wire.reset();
    }
    mDesk.reset();
}

bool ScreencopyTest::hasEnded(const Client& client, quint32 frame)
{
    bool result = false;
    ServerDesk::serve([&] {
        result = client.wire->hasEnded(frame);
    });
    return result;
}

void ScreencopyTest::waitForEnd()
{
    for (const Client& client : mClients) {
        QTRY_VERIFY_WITH_TIMEOUT(hasEnded(client, client.frame), ChildProcess::cDeadline);
    }
}

void ScreencopyTest::onePictureIsForAllClients()
{
    // The server does not run before all have sent their request.
    for (Client& client : mClients) {
        client.wire->copy(client.frame, client.buffer);
    }
    waitForEnd();
    QCOMPARE(mSheet.takeCount(), 1);
    for (Client& client : mClients) {
        QCOMPARE(client.wire->picture(client.frame), mDesk->scene.toImage());
    }
}

void ScreencopyTest::framesOfOneClientAreCapturedOneByOne()
{
    constexpr int count = 5;
    Client& client = mClients.front();
    QVector<quint32> frames{client.frame};
    ServerDesk::serve([&] {
        while (frames.size() < count) {
            frames.append(client.wire->capture());
        }
        client.wire->synchronise();
    });
    for (const quint32 frame : qAsConst(frames)) {
        client.wire->copy(frame, client.buffer);
    }
    QElapsedTimer timer;
    timer.start();
    for (const quint32 frame : qAsConst(frames)) {
        QTRY_VERIFY_WITH_TIMEOUT(hasEnded(client, frame), ChildProcess::cDeadline);
    }
    QVERIFY(timer.elapsed() >= qint64(count - 1) * Limits::cFrameMilliseconds);
    QCOMPARE(mSheet.takeCount(), count);
}

void ScreencopyTest::everythingIsDamagedBeforeTheFirstCopy()
{
    for (Client& client : mClients) {
        client.wire->copyWithDamage(client.frame, client.buffer);
    }
    waitForEnd();
    for (Client& client : mClients) {
        QCOMPARE(client.wire->damageOf(client.frame), mDesk->output.rect());
    }
}

void ScreencopyTest::nothingIsPaintedWithoutDamage()
{
    for (Client& client : mClients) {
        client.wire->copy(client.frame, client.buffer);
    }
    waitForEnd();
    mSheet.takeCount();

    ServerDesk::serve([this] {
        for (Client& client : mClients) {
            client.capture();
            client.wire->copyWithDamage(client.frame, client.buffer);
            client.wire->synchronise();
        }
    });
    int changes = 0;
    const auto context = std::make_unique<QObject>();
    QObject::connect(&mDesk->scene, &Scene::frameRequested, context.get(), [&changes] {
        ++changes;
    });
    FrameTimer timer;
    QObject::connect(&timer, &FrameTimer::due, &mDesk->scene, &Scene::requestFrame);
    while (changes < 5) {
        timer.request();
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    QCOMPARE(mSheet.takeCount(), 0);
    mSheet.setDamage(QRect(10, 20, 30, 40));
    mDesk->scene.requestFrame();
    waitForEnd();
    QCOMPARE(mSheet.takeCount(), 1);
    for (Client& client : mClients) {
        QCOMPARE(client.wire->damageOf(client.frame), QRect(10, 20, 30, 40));
    }
}

void ScreencopyTest::scatteredDamageGrowsToTheRectangleAroundIt()
{
    Client& patient = mClients.front();
    Client& other = mClients.back();
    const auto copyAll = [&](Client& client) {
        ServerDesk::serve([&client] {
            client.capture();
        });
        client.wire->copy(client.frame, client.buffer);
        QTRY_VERIFY_WITH_TIMEOUT(hasEnded(client, client.frame), ChildProcess::cDeadline);
    };
    copyAll(patient);
    ServerDesk::serve([&patient] {
        patient.frame = patient.wire->capture(20, 0, 10, 10);
        patient.buffer = patient.wire->createFrameBuffer(patient.frame);
        patient.wire->copyWithDamage(patient.frame, patient.buffer);
        patient.wire->synchronise();
    });
    QRegion damage;
    for (int i = 0; i < 16; ++i) {
        damage |= QRect(10 * i, 10 * i, 5, 5);
    }
    mSheet.setDamage(damage);
    copyAll(other);
    QVERIFY(!hasEnded(patient, patient.frame));
    mSheet.setDamage(QRect(200, 200, 5, 5));
    copyAll(other);
    QTRY_VERIFY_WITH_TIMEOUT(hasEnded(patient, patient.frame), ChildProcess::cDeadline);
    QCOMPARE(patient.wire->damageOf(patient.frame), QRect(0, 0, 10, 10));
}

void ScreencopyTest::aFrameOutsideOfTheNewSizeFails()
{
    ScreencopyClient& wire = *mClients.front().wire;
    quint32 first = 0;
    quint32 waiting = 0;
    ServerDesk::serve([&] {
        first = wire.capture(300, 0, 100, 300);
        wire.copy(first, wire.createFrameBuffer(first));
        waiting = wire.capture(300, 0, 100, 300);
        wire.copyWithDamage(waiting, wire.createFrameBuffer(waiting));
    });
    QTRY_VERIFY_WITH_TIMEOUT(hasEnded(mClients.front(), first), ChildProcess::cDeadline);
    QVERIFY(!hasEnded(mClients.front(), waiting));
    mDesk->output.setPhysicalSize(QSize(200, 300));
    QTRY_VERIFY_WITH_TIMEOUT(hasEnded(mClients.front(), waiting), ChildProcess::cDeadline);
    QCOMPARE(wire.events(waiting).last().opcode, quint16(ScreencopyClient::Failed));
}

SERVER_TEST_MAIN(ScreencopyTest)

#include "ScreencopyTest.moc"
