// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "CompositorBus.h"
#include "CompositorFixture.h"
#include "ScreencopyClient.h"
#include "TestMain.h"

#include <ctime>
#include <limits>
#include <unistd.h>
#include <wayland-client-protocol.h>
#include <wlr-screencopy-unstable-v1-client-protocol.h>

namespace {

constexpr qint32 cHuge = std::numeric_limits<qint32>::max();
constexpr qint32 cLowest = std::numeric_limits<qint32>::min();
constexpr qint64 cNanoseconds = 1000000000;
/// Odd, so that no half of it is a whole number.
constexpr QSize cSize(801, 481);

qint64 now()
{
    timespec time = {};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return time.tv_sec * cNanoseconds + time.tv_nsec;
}

bool isSideways(const QString& orientation)
{
    return orientation.toInt() % 180 != 0;
}

/// The screen as a person sees it, out of a picture of the display.
QImage upright(const QImage& picture, const QString& orientation)
{
    return picture.transformed(QTransform().rotate(-orientation.toInt()));
}

} // namespace

/// zwlr_screencopy_manager_v1: clients get what the service's screenshot shows.
class CompositorScreencopyTest : public CompositorFixture
{
    Q_OBJECT

private Q_SLOTS:
    void aFrameDescribesItsBuffer_data();
    void aFrameDescribesItsBuffer();
    void aCopyIsTheScreenshot_data();
    void aCopyIsTheScreenshot();
    void aRegionIsPartOfTheScreenshot_data();
    void aRegionIsPartOfTheScreenshot();
    void aRegionWithoutPixelsFails_data();
    void aRegionWithoutPixelsFails();
    void theScreenSaverIsCaptured();
    void aCopyWithDamageWaitsForAChange_data();
    void aCopyWithDamageWaitsForAChange();
    void aCopyWithDamageWaitsForAChangeOfItsRegion();
    void damageIsCountedPerManager();
    void aFrameOfAnotherGeometryFails_data();
    void aFrameOfAnotherGeometryFails();
    void aFrameWhoseBufferIsDestroyedFails();
    void aFrameOutlivesItsManager();
    void framesThatEndLeaveNothingBehind();
    void grimTakesTheScreenshot_data();
    void grimTakesTheScreenshot();

protected:
    void startCompositor() override;

private:
    static void addOrientations();
    static void turn(const QString& orientation);
    QString socketPath() const;
    /// Opens a window of 300x200 in the middle, white with a blue square, and hides the clock.
    std::unique_ptr<LineClient> openWindow();
};

void CompositorScreencopyTest::startCompositor()
{
    mCompositor->start({QStringLiteral("--size=%1x%2").arg(cSize.width()).arg(cSize.height())});
}

void CompositorScreencopyTest::addOrientations()
{
    QTest::addColumn<QString>("orientation");
    for (const char* const orientation : {"0", "90", "180", "270"}) {
        QTest::newRow(orientation) << QString::fromLatin1(orientation);
    }
}

void CompositorScreencopyTest::turn(const QString& orientation)
{
    CompositorBus::set(CompositorBus::cScreenPath, CompositorBus::cScreen, QStringLiteral("orientation"), orientation);
}

QString CompositorScreencopyTest::socketPath() const
{
    return mCompositor->runtimeDirectory() + QLatin1Char('/') + mCompositor->display();
}

std::unique_ptr<LineClient> CompositorScreencopyTest::openWindow()
{
    CompositorBus::set(CompositorBus::cScreenPath, CompositorBus::cScreen, QStringLiteral("fullScreen"), true);
    auto client = protocolClient();
    client->send("open a Window");
    client->send("subsurface 1");
    client->send("sync");
    client->waitFor("synced");
    return client;
}

void CompositorScreencopyTest::aFrameDescribesItsBuffer_data()
{
    QTest::addColumn<quint32>("version");
    QTest::addColumn<QVector<quint16>>("events");
    QTest::newRow("1") << 1U << QVector<quint16>({ScreencopyClient::Buffer});
    QTest::newRow("2") << 2U << QVector<quint16>({ScreencopyClient::Buffer});
    QTest::newRow("3") << 3U << QVector<quint16>({ScreencopyClient::Buffer, ScreencopyClient::BufferDone});
}

void CompositorScreencopyTest::aFrameDescribesItsBuffer()
{
    QFETCH(quint32, version);
    QFETCH(QVector<quint16>, events);
    ScreencopyClient client(socketPath(), version);
    const quint32 frame = client.capture();
    QCOMPARE(client.opcodes(frame), events);
    const WireClient::Event buffer = client.events(frame).first();
    QCOMPARE(buffer.number(0), quint32(WL_SHM_FORMAT_XRGB8888));
    QCOMPARE(buffer.number(1), 801U);
    QCOMPARE(buffer.number(2), 481U);
    QCOMPARE(buffer.number(3), 801U * 4);

    client.copy(frame, client.createFrameBuffer(frame));
    TRY_VERIFY(client.hasEnded(frame));
    events.append(QVector<quint16>({ScreencopyClient::Flags, ScreencopyClient::Ready}));
    QCOMPARE(client.opcodes(frame), events);
}

void CompositorScreencopyTest::aCopyIsTheScreenshot_data()
{
    addOrientations();
}

void CompositorScreencopyTest::aCopyIsTheScreenshot()
{
    QFETCH(QString, orientation);
    const auto window = openWindow();
    turn(orientation);
    ScreencopyClient client(socketPath());
    const quint32 frame = client.capture();
    const quint32 buffer = client.createFrameBuffer(frame);
    const qint64 before = now();
    client.copy(frame, buffer);
    TRY_VERIFY(client.hasEnded(frame));
    QCOMPARE(client.picture(frame), screenShot());
    QCOMPARE(client.events(frame, ScreencopyClient::Flags).first().number(0), 0U);

    const WireClient::Event ready = client.events(frame, ScreencopyClient::Ready).first();
    QVERIFY(ready.number(2) < cNanoseconds);
    const qint64 time = ((qint64(ready.number(0)) << 32) + ready.number(1)) * cNanoseconds + ready.number(2);
    QVERIFY(time > before);
    QVERIFY(time < now());
}

void CompositorScreencopyTest::aRegionIsPartOfTheScreenshot_data()
{
    QTest::addColumn<QString>("orientation");
    QTest::addColumn<QVector<qint32>>("region");
    QTest::addColumn<QRect>("clipped");
    const auto row = [](const char* orientation, const QVector<qint32>& region, const QRect& clipped) {
        QTest::addRow("%s: %d,%d %dx%d", orientation, region.at(0), region.at(1), region.at(2), region.at(3))
            << QString::fromLatin1(orientation) << region << clipped;
    };
    for (const char* const orientation : {"0", "90", "180", "270"}) {
        const QSize size = isSideways(QString::fromLatin1(orientation)) ? cSize.transposed() : cSize;
        const QRect all(QPoint(), size);
        row(orientation, {150, 130, 300, 211}, QRect(150, 130, 300, 211));
        row(orientation, {0, 0, 1, 1}, QRect(0, 0, 1, 1));
        row(orientation, {size.width() - 1, size.height() - 1, 1, 1}, QRect(size.width() - 1, size.height() - 1, 1, 1));
        row(orientation, {-20, -30, 320, 330}, QRect(0, 0, 300, 300));
        row(orientation, {200, 100, cHuge, cHuge}, all.adjusted(200, 100, 0, 0));
        row(orientation, {-1000000, -1000000, cHuge, cHuge}, all);
    }
}

void CompositorScreencopyTest::aRegionIsPartOfTheScreenshot()
{
    QFETCH(QString, orientation);
    QFETCH(QVector<qint32>, region);
    QFETCH(QRect, clipped);
    const auto window = openWindow();
    turn(orientation);
    ScreencopyClient client(socketPath());
    const quint32 frame = client.capture(region.at(0), region.at(1), region.at(2), region.at(3));
    client.copy(frame, client.createFrameBuffer(frame));
    TRY_VERIFY(client.hasEnded(frame));
    QCOMPARE(upright(client.picture(frame), orientation), upright(screenShot(), orientation).copy(clipped));
}

void CompositorScreencopyTest::aRegionWithoutPixelsFails_data()
{
    QTest::addColumn<QVector<qint32>>("region");
    const auto row = [](const char* name, const QVector<qint32>& region) {
        QTest::newRow(name) << region;
    };
    row("empty", {10, 10, 0, 0});
    row("a line", {10, 10, 100, 0});
    row("negative", {100, 100, -50, -50});
    row("right of the output", {801, 0, 10, 10});
    row("below the output", {0, 481, 10, 10});
    row("left of the output", {-10, 0, 10, 10});
    row("above the output", {0, -10, 10, 10});
    row("as far as numbers go", {cHuge, cHuge, cHuge, cHuge});
    row("as far as negative numbers go", {cLowest, cLowest, cHuge, cHuge});
    row("as negative as numbers go", {cLowest, cLowest, cLowest, cLowest});
}

void CompositorScreencopyTest::aRegionWithoutPixelsFails()
{
    QFETCH(QVector<qint32>, region);
    ScreencopyClient client(socketPath());
    const quint32 frame = client.capture(region.at(0), region.at(1), region.at(2), region.at(3));
    const QVector<quint16> failed{ScreencopyClient::Failed};
    QCOMPARE(client.opcodes(frame), failed);
    // A request that the client has sent before it received the event.
    const quint32 buffer = client.createBuffer(QSize(10, 10));
    client.copy(frame, buffer);
    client.copyWithDamage(frame, buffer);
    QVERIFY2(client.synchronise(), client.errorText());
    QCOMPARE(client.opcodes(frame), failed);
}

void CompositorScreencopyTest::theScreenSaverIsCaptured()
{
    const auto window = openWindow();
    CompositorBus::set(CompositorBus::cScreenPath, CompositorBus::cScreen, QStringLiteral("screenSaverTimeoutSeconds"),
                       1);
    mMonitor->waitFor(QStringLiteral("screenSaverActive"));
    ScreencopyClient client(socketPath());
    const quint32 frame = client.capture();
    client.copy(frame, client.createFrameBuffer(frame));
    TRY_VERIFY(client.hasEnded(frame));
    QImage black(cSize, QImage::Format_RGB32);
    black.fill(Qt::black);
    QCOMPARE(client.picture(frame), black);
}

void CompositorScreencopyTest::aCopyWithDamageWaitsForAChange_data()
{
    addOrientations();
}

void CompositorScreencopyTest::aCopyWithDamageWaitsForAChange()
{
    QFETCH(QString, orientation);
    const auto other = openWindow();
    turn(orientation);
    const auto window = wireClient();
    const quint32 surface = window->openWindow("Window").surface;
    window->synchronise();
    TRY_COMPARE(CompositorBus::views().size(), 2);

    ScreencopyClient client(socketPath());
    const quint32 first = client.capture();
    client.copyWithDamage(first, client.createFrameBuffer(first));
    TRY_VERIFY(client.hasEnded(first));
    QCOMPARE(client.opcodes(first),
             QVector<quint16>({ScreencopyClient::Buffer, ScreencopyClient::BufferDone, ScreencopyClient::Flags,
                               ScreencopyClient::Damage, ScreencopyClient::Ready}));
    QCOMPARE(client.damageOf(first), QRect(QPoint(), cSize));

    const quint32 second = client.capture();
    client.copyWithDamage(second, client.createFrameBuffer(second));
    const QImage before = screenShot();
    // A copy of another client that is requested later and comes first.
    ScreencopyClient impatient(socketPath());
    const quint32 copied = impatient.capture();
    impatient.copy(copied, impatient.createFrameBuffer(copied));
    TRY_VERIFY(impatient.hasEnded(copied));
    QVERIFY(!client.hasEnded(second));

    constexpr QRect changed(40, 50, 60, 20);
    window->attach(surface, window->createBuffer(QSize(300, 200)));
    const QByteArray transparent(changed.width() * 4, '\0');
    for (int y = changed.top(); y <= changed.bottom(); ++y) {
        QCOMPARE(pwrite(window->memory(), transparent.constData(), static_cast<std::size_t>(transparent.size()),
                        (qint64(y) * 300 + changed.left()) * 4),
                 ssize_t(transparent.size()));
    }
    window->damage(surface, changed);
    window->commit(surface);
    window->synchronise();
    TRY_VERIFY(client.hasEnded(second));
    const QImage after = client.picture(second);
    QCOMPARE(after, screenShot());
    const QRect damage = client.damageOf(second);
    QCOMPARE(damage, difference(before, after));
    QCOMPARE(damage.size(), isSideways(orientation) ? changed.size().transposed() : changed.size());
}

void CompositorScreencopyTest::aCopyWithDamageWaitsForAChangeOfItsRegion()
{
    CompositorBus::set(CompositorBus::cScreenPath, CompositorBus::cScreen, QStringLiteral("fullScreen"), true);
    const auto window = wireClient();
    const quint32 surface = window->openWindow("Window").surface;
    window->synchronise();
    TRY_COMPARE(CompositorBus::views().size(), 1);
    // The window's corner is at 250,140.
    const auto change = [&](const QRect& rect) {
        window->damage(surface, rect);
        window->commit(surface);
        window->synchronise();
        // Takes in the commit.
        screenShot();
    };

    ScreencopyClient client(socketPath());
    const auto capture = [&client] {
        const quint32 frame = client.capture(300, 200, 100, 50);
        client.copyWithDamage(frame, client.createFrameBuffer(frame));
        return frame;
    };
    const quint32 first = capture();
    TRY_VERIFY(client.hasEnded(first));
    QCOMPARE(client.damageOf(first), QRect(0, 0, 100, 50));
    change(QRect(0, 0, 50, 60));
    const quint32 second = capture();
    change(QRect(150, 110, 50, 50));
    ScreencopyClient impatient(socketPath());
    const quint32 copied = impatient.capture();
    impatient.copy(copied, impatient.createFrameBuffer(copied));
    TRY_VERIFY(impatient.hasEnded(copied));
    QVERIFY(!client.hasEnded(second));
    change(QRect(40, 50, 30, 20));
    TRY_VERIFY(client.hasEnded(second));
    QCOMPARE(client.damageOf(second), QRect(0, 0, 20, 10));
    // What the frames did not capture is still damaged.
    const quint32 whole = client.capture();
    client.copyWithDamage(whole, client.createFrameBuffer(whole));
    TRY_VERIFY(client.hasEnded(whole));
    QCOMPARE(client.damageOf(whole), QRect(QPoint(), cSize));
}

void CompositorScreencopyTest::damageIsCountedPerManager()
{
    const auto window = openWindow();
    ScreencopyClient one(socketPath());
    ScreencopyClient other(socketPath());
    for (ScreencopyClient* const client : {&one, &other}) {
        const quint32 frame = client->capture();
        client->copy(frame, client->createFrameBuffer(frame));
        TRY_VERIFY(client->hasEnded(frame));
    }
    window->send("commit 1 1");
    window->send("sync");
    window->waitFor("synced");
    for (ScreencopyClient* const client : {&one, &other}) {
        const quint32 frame = client->capture();
        client->copyWithDamage(frame, client->createFrameBuffer(frame));
        TRY_VERIFY(client->hasEnded(frame));
        QCOMPARE(client->damageOf(frame), QRect(250, 140, 300, 200));
    }
}

void CompositorScreencopyTest::aFrameOfAnotherGeometryFails_data()
{
    QTest::addColumn<bool>("isWaiting");
    QTest::newRow("before the copy") << false;
    QTest::newRow("waiting for damage") << true;
}

void CompositorScreencopyTest::aFrameOfAnotherGeometryFails()
{
    QFETCH(bool, isWaiting);
    ScreencopyClient client(socketPath());
    const quint32 first = client.capture();
    client.copy(first, client.createFrameBuffer(first));
    TRY_VERIFY(client.hasEnded(first));
    const quint32 frame = client.capture();
    const quint32 buffer = client.createFrameBuffer(frame);
    if (isWaiting) {
        client.copyWithDamage(frame, buffer);
        client.synchronise();
    }
    turn(QStringLiteral("90"));
    if (!isWaiting) {
        client.copy(frame, buffer);
    }
    TRY_VERIFY(client.hasEnded(frame));
    QCOMPARE(client.opcodes(frame),
             QVector<quint16>({ScreencopyClient::Buffer, ScreencopyClient::BufferDone, ScreencopyClient::Failed}));
}

void CompositorScreencopyTest::aFrameWhoseBufferIsDestroyedFails()
{
    ScreencopyClient client(socketPath());
    const quint32 first = client.capture();
    client.copy(first, client.createFrameBuffer(first));
    TRY_VERIFY(client.hasEnded(first));
    const quint32 frame = client.capture();
    const quint32 buffer = client.createFrameBuffer(frame);
    client.copyWithDamage(frame, buffer);
    client.send(WireMessage(buffer, WL_BUFFER_DESTROY));
    QCOMPARE(client.opcodes(frame),
             QVector<quint16>({ScreencopyClient::Buffer, ScreencopyClient::BufferDone, ScreencopyClient::Failed}));
}

void CompositorScreencopyTest::aFrameOutlivesItsManager()
{
    const auto window = openWindow();
    ScreencopyClient client(socketPath());
    const quint32 frame = client.capture();
    client.send(WireMessage(client.manager(), ZWLR_SCREENCOPY_MANAGER_V1_DESTROY));
    client.copyWithDamage(frame, client.createFrameBuffer(frame));
    TRY_VERIFY(client.hasEnded(frame));
    QCOMPARE(client.picture(frame), screenShot());
}

void CompositorScreencopyTest::framesThatEndLeaveNothingBehind()
{
    ScreencopyClient client(socketPath());
    const quint32 frame = client.capture();
    const quint32 buffer = client.createFrameBuffer(frame);
    client.copy(frame, buffer);
    TRY_VERIFY(client.hasEnded(frame));
    const auto captureAndEnd = [&](int count) {
        for (int i = 0; i < count; ++i) {
            const quint32 manager = client.bind("zwlr_screencopy_manager_v1", 3);
            const quint32 unused = client.capture();
            const quint32 waiting = client.capture();
            client.copyWithDamage(waiting, buffer);
            client.send(WireMessage(manager, ZWLR_SCREENCOPY_MANAGER_V1_DESTROY));
            client.send(WireMessage(unused, ZWLR_SCREENCOPY_FRAME_V1_DESTROY));
            client.send(WireMessage(waiting, ZWLR_SCREENCOPY_FRAME_V1_DESTROY));
            QVERIFY2(client.synchronise(), client.errorText());
        }
    };
    captureAndEnd(6000);
    for (int i = 0; i < 5; ++i) {
        screenShot();
    }
    const qint64 before = mCompositor->residentMemory();
    const int descriptors = mCompositor->descriptorCount();
    captureAndEnd(3000);
    screenShot();
    QCOMPARE(mCompositor->descriptorCount(), descriptors);
    const qint64 growth = mCompositor->residentMemory() - before;
    QVERIFY2(growth < 1024 * 1024, qPrintable(QString::number(growth)));
}

void CompositorScreencopyTest::grimTakesTheScreenshot_data()
{
    QTest::addColumn<QString>("orientation");
    QTest::addColumn<QRect>("region");
    const auto row = [](const char* orientation, const QRect& region) {
        QTest::addRow("%s: %d,%d %dx%d", orientation, region.x(), region.y(), region.width(), region.height())
            << QString::fromLatin1(orientation) << region;
    };
    for (const char* const orientation : {"0", "90", "180", "270"}) {
        row(orientation, QRect());
        row(orientation, QRect(150, 130, 301, 210));
        row(orientation, QRect(400, 400, 1000, 1000));
        row(orientation, QRect(-100, -50, 500, 300));
    }
}

void CompositorScreencopyTest::grimTakesTheScreenshot()
{
    QFETCH(QString, orientation);
    QFETCH(QRect, region);
    const auto window = openWindow();
    turn(orientation);
    const QTemporaryDir directory;
    const QString file = directory.filePath(QStringLiteral("picture.png"));
    QStringList arguments{file};
    QImage expected = upright(screenShot(), orientation).convertToFormat(QImage::Format_ARGB32);
    if (!region.isNull()) {
        arguments = QStringList({QStringLiteral("-g"),
                                 QStringLiteral("%1,%2 %3x%4")
                                     .arg(region.x())
                                     .arg(region.y())
                                     .arg(region.width())
                                     .arg(region.height())})
            + arguments;
        // Transparent outside of the output.
        expected = expected.copy(region);
    }
    ChildProcess grim;
    grim.setProcessEnvironment(mCompositor->clientEnvironment());
    grim.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    grim.run(QStringLiteral("grim"), arguments);
    QVERIFY(grim.waitForFinished(ChildProcess::cDeadline));
    QCOMPARE(grim.exitCode(), 0);
    QImage picture;
    QVERIFY(picture.load(file, "PNG"));
    QCOMPARE(picture.convertToFormat(QImage::Format_ARGB32), expected);
}

TELVARO_TEST_MAIN(CompositorScreencopyTest)

#include "CompositorScreencopyTest.moc"
