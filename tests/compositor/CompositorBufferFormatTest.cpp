// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "CompositorBus.h"
#include "CompositorFixture.h"
#include "TestMain.h"
#include "WireClient.h"

#include <QSet>

#include <functional>
#include <stdexcept>
#include <unistd.h>
#include <wayland-client-protocol.h>

namespace {

constexpr quint16 cShmFormat = 0;
/// The place of a picture of 64 x 32 on the output of 1024 x 600 below the status bar.
constexpr QSize cSize(64, 32);
constexpr QPoint cOrigin((1024 - 64) / 2, 34 + (566 - 32) / 2);

/// The bits of one component within a pixel; none for a component that the format does not have.
struct Component
{
    int bits;
    int shift;
};

struct Format
{
    int bytes;
    Component red;
    Component green;
    Component blue;
    Component alpha;
    /// The value of the bits that belong to no component.
    quint32 unused;
};

quint32 quantized(int value, const Component& component)
{
    const int bits = component.bits;
    return bits == 0 ? 0
        : bits > 8   ? static_cast<quint32>(value) << (bits - 8) | static_cast<quint32>(value) >> (16 - bits)
                     : static_cast<quint32>(value) >> (8 - bits);
}

/// Returns the component as a client expects to see it: of ten bits the upper eight, of fewer than eight the bits
/// repeated, so that the brightest ones are white.
int shown(int value, const Component& component)
{
    const auto number = static_cast<int>(quantized(value, component));
    const int bits = component.bits;
    return bits >= 8 ? value : number << (8 - bits) | number >> (2 * bits - 8);
}

QColor colourAt(int x, int y)
{
    return {x * 4 + 3, y * 8 + 7, (x * 37 + y * 91) % 256};
}

QByteArray pictureIn(const Format& format)
{
    QByteArray bytes;
    for (int y = 0; y < cSize.height(); ++y) {
        for (int x = 0; x < cSize.width(); ++x) {
            const QColor colour = colourAt(x, y);
            quint32 pixel = format.unused;
            pixel |= quantized(colour.red(), format.red) << format.red.shift;
            pixel |= quantized(colour.green(), format.green) << format.green.shift;
            pixel |= quantized(colour.blue(), format.blue) << format.blue.shift;
            pixel |= quantized(255, format.alpha) << format.alpha.shift;
            for (int byte = 0; byte < format.bytes; ++byte) {
                bytes.append(static_cast<char>(pixel >> (8 * byte)));
            }
        }
    }
    return bytes;
}

} // namespace

Q_DECLARE_METATYPE(Format)

/// The formats of wl_shm, pixel by pixel.
class CompositorBufferFormatTest : public CompositorFixture
{
    Q_OBJECT

private Q_SLOTS:
    void aPictureIsShownInItsColours_data();
    void aPictureIsShownInItsColours();
    void everyAnnouncedFormatIsTested();
    void aTransparentPictureShowsWhatIsBelow_data();
    void aTransparentPictureShowsWhatIsBelow();
    void linesThatAreTooShortHarmNobody();
    void aPictureOutlivesItsBuffer();
    void aPictureWhoseMemoryIsTakenAwayHarmsOnlyItsClient_data();
    void aPictureWhoseMemoryIsTakenAwayHarmsOnlyItsClient();

private:
    /// Shows a picture of cSize as a window. Returns its wl_buffer.
    static quint32 show(WireClient& client, const QByteArray& picture, int bytesPerPixel, quint32 format,
                        int offset = 0);
};

quint32 CompositorBufferFormatTest::show(WireClient& client, const QByteArray& picture, int bytesPerPixel,
                                         quint32 format, int offset)
{
    const WireClient::Window window = client.createWindow();
    const quint32 pool = client.createPool(picture.size() + offset, picture.size() + offset);
    if (pwrite(client.memory(), picture.constData(), static_cast<std::size_t>(picture.size()), offset)
        != picture.size()) {
        throw std::runtime_error("the picture cannot be written");
    }
    const quint32 buffer = client.newId();
    client.send(WireMessage(pool, WL_SHM_POOL_CREATE_BUFFER)
                    .number(buffer)
                    .number(static_cast<quint32>(offset))
                    .number(cSize.width())
                    .number(cSize.height())
                    .number(cSize.width() * bytesPerPixel)
                    .number(format));
    client.show(window.surface, buffer);
    if (!client.synchronise()) {
        throw std::runtime_error(client.errorText().toStdString());
    }
    return buffer;
}

void CompositorBufferFormatTest::aPictureIsShownInItsColours_data()
{
    QTest::addColumn<quint32>("code");
    QTest::addColumn<Format>("format");
    QTest::addColumn<int>("offset");
    const auto row = [](const char* name, quint32 code, const Format& format, int offset = 0) {
        QTest::newRow(name) << code << format << offset;
    };
    const Format argb{4, {8, 16}, {8, 8}, {8, 0}, {8, 24}, 0};
    const Format xrgb{4, {8, 16}, {8, 8}, {8, 0}, {0, 0}, 0x12000000};
    row("ARGB8888", WL_SHM_FORMAT_ARGB8888, argb);
    row("ARGB8888, unaligned", WL_SHM_FORMAT_ARGB8888, argb, 1);
    row("XRGB8888", WL_SHM_FORMAT_XRGB8888, xrgb);
    row("XRGB8888, unaligned", WL_SHM_FORMAT_XRGB8888, xrgb, 1);
    row("ABGR8888", WL_SHM_FORMAT_ABGR8888, {4, {8, 0}, {8, 8}, {8, 16}, {8, 24}, 0});
    row("XBGR8888", WL_SHM_FORMAT_XBGR8888, {4, {8, 0}, {8, 8}, {8, 16}, {0, 0}, 0x12000000});
    row("RGB888", WL_SHM_FORMAT_RGB888, {3, {8, 16}, {8, 8}, {8, 0}, {0, 0}, 0});
    row("BGR888", WL_SHM_FORMAT_BGR888, {3, {8, 0}, {8, 8}, {8, 16}, {0, 0}, 0});
    row("RGB565", WL_SHM_FORMAT_RGB565, {2, {5, 11}, {6, 5}, {5, 0}, {0, 0}, 0});
    row("RGB565, unaligned", WL_SHM_FORMAT_RGB565, {2, {5, 11}, {6, 5}, {5, 0}, {0, 0}, 0}, 1);
    row("XRGB1555", WL_SHM_FORMAT_XRGB1555, {2, {5, 10}, {5, 5}, {5, 0}, {0, 0}, 0});
    row("XRGB1555, filled", WL_SHM_FORMAT_XRGB1555, {2, {5, 10}, {5, 5}, {5, 0}, {0, 0}, 0x8000});
    row("ARGB4444", WL_SHM_FORMAT_ARGB4444, {2, {4, 8}, {4, 4}, {4, 0}, {4, 12}, 0});
    row("XRGB4444", WL_SHM_FORMAT_XRGB4444, {2, {4, 8}, {4, 4}, {4, 0}, {0, 0}, 0x5000});
    row("ARGB2101010", WL_SHM_FORMAT_ARGB2101010, {4, {10, 20}, {10, 10}, {10, 0}, {2, 30}, 0});
    row("XRGB2101010", WL_SHM_FORMAT_XRGB2101010, {4, {10, 20}, {10, 10}, {10, 0}, {0, 0}, 0});
    row("XRGB2101010, filled", WL_SHM_FORMAT_XRGB2101010, {4, {10, 20}, {10, 10}, {10, 0}, {0, 0}, 0x40000000});
    row("ABGR2101010", WL_SHM_FORMAT_ABGR2101010, {4, {10, 0}, {10, 10}, {10, 20}, {2, 30}, 0});
    row("XBGR2101010", WL_SHM_FORMAT_XBGR2101010, {4, {10, 0}, {10, 10}, {10, 20}, {0, 0}, 0x40000000});
}

void CompositorBufferFormatTest::aPictureIsShownInItsColours()
{
    QFETCH(quint32, code);
    QFETCH(Format, format);
    QFETCH(int, offset);
    const auto client = wireClient();
    show(*client, pictureIn(format), format.bytes, code, offset);
    const QImage picture = screenShot();
    for (int y = 0; y < cSize.height(); ++y) {
        for (int x = 0; x < cSize.width(); ++x) {
            const QColor colour = colourAt(x, y);
            const QColor expected(shown(colour.red(), format.red), shown(colour.green(), format.green),
                                  shown(colour.blue(), format.blue));
            const QColor actual = picture.pixelColor(cOrigin + QPoint(x, y));
            QVERIFY2(actual == expected,
                     qPrintable(
                         QStringLiteral("%1, %2: %3 instead of %4").arg(x).arg(y).arg(actual.name(), expected.name())));
        }
    }
}

void CompositorBufferFormatTest::everyAnnouncedFormatIsTested()
{
    const auto client = wireClient();
    const quint32 memory = client->bind("wl_shm");
    QVERIFY(client->synchronise());
    QSet<quint32> announced;
    for (const WireClient::Event& event : client->events(memory, cShmFormat)) {
        announced.insert(event.number(0));
    }
    // Qt announces it, but a client cannot say what its colours are.
    announced.remove(WL_SHM_FORMAT_C8);
    QCOMPARE(
        announced,
        QSet<quint32>({WL_SHM_FORMAT_ARGB8888, WL_SHM_FORMAT_XRGB8888, WL_SHM_FORMAT_ABGR8888, WL_SHM_FORMAT_XBGR8888,
                       WL_SHM_FORMAT_RGB888, WL_SHM_FORMAT_BGR888, WL_SHM_FORMAT_RGB565, WL_SHM_FORMAT_XRGB1555,
                       WL_SHM_FORMAT_ARGB4444, WL_SHM_FORMAT_XRGB4444, WL_SHM_FORMAT_ARGB2101010,
                       WL_SHM_FORMAT_XRGB2101010, WL_SHM_FORMAT_ABGR2101010, WL_SHM_FORMAT_XBGR2101010}));
}

void CompositorBufferFormatTest::aTransparentPictureShowsWhatIsBelow_data()
{
    QTest::addColumn<quint32>("code");
    QTest::addColumn<int>("bytes");
    QTest::newRow("ARGB8888") << quint32(WL_SHM_FORMAT_ARGB8888) << 4;
    QTest::newRow("ABGR8888") << quint32(WL_SHM_FORMAT_ABGR8888) << 4;
    QTest::newRow("ARGB4444") << quint32(WL_SHM_FORMAT_ARGB4444) << 2;
    QTest::newRow("ARGB2101010") << quint32(WL_SHM_FORMAT_ARGB2101010) << 4;
    QTest::newRow("ABGR2101010") << quint32(WL_SHM_FORMAT_ABGR2101010) << 4;
}

void CompositorBufferFormatTest::aTransparentPictureShowsWhatIsBelow()
{
    QFETCH(quint32, code);
    QFETCH(int, bytes);
    const auto client = wireClient();
    show(*client, QByteArray(cSize.width() * cSize.height() * bytes, '\0'), bytes, code);
    const QImage picture = screenShot();
    // What is below is a gradient from the top to the bottom.
    for (int y = 0; y < cSize.height(); ++y) {
        const QPoint position = cOrigin + QPoint(cSize.width() / 2, y);
        QCOMPARE(picture.pixelColor(position), picture.pixelColor(10, position.y()));
    }
}

void CompositorBufferFormatTest::linesThatAreTooShortHarmNobody()
{
    // libwayland admits any stride that is not smaller than the width.
    for (const quint32 format : {quint32(WL_SHM_FORMAT_XRGB8888), quint32(WL_SHM_FORMAT_RGB888),
                                 quint32(WL_SHM_FORMAT_ABGR2101010), quint32(WL_SHM_FORMAT_C8)}) {
        const auto client = wireClient();
        const WireClient::Window window = client->createWindow();
        const quint32 pool = client->createPool(4096, 4096);
        client->show(window.surface, client->createBuffer(pool, 64, 64, 64, format));
        QVERIFY2(client->synchronise(), client->errorText());
        screenShot();
        QVERIFY2(client->synchronise(), client->errorText());
    }
}

void CompositorBufferFormatTest::aPictureOutlivesItsBuffer()
{
    const auto client = wireClient();
    const quint32 buffer =
        show(*client, QByteArray(cSize.width() * cSize.height() * 4, '\xff'), 4, WL_SHM_FORMAT_XRGB8888);
    QCOMPARE(screenShot().pixelColor(cOrigin), QColor(Qt::white));
    client->send(WireMessage(buffer, WL_BUFFER_DESTROY));
    QVERIFY2(client->synchronise(), client->errorText());
    QCOMPARE(screenShot().pixelColor(cOrigin), QColor(Qt::white));
}

void CompositorBufferFormatTest::aPictureWhoseMemoryIsTakenAwayHarmsOnlyItsClient_data()
{
    QTest::addColumn<QString>("orientation");
    for (const char* orientation : {"0", "90", "180", "270"}) {
        QTest::newRow(orientation) << QString::fromLatin1(orientation);
    }
}

void CompositorBufferFormatTest::aPictureWhoseMemoryIsTakenAwayHarmsOnlyItsClient()
{
    QFETCH(QString, orientation);
    expectComplaints(1);
    CompositorBus::set(CompositorBus::cScreenPath, CompositorBus::cScreen, QStringLiteral("orientation"), orientation);
    const auto client = wireClient();
    show(*client, QByteArray(cSize.width() * cSize.height() * 4, '\xff'), 4, WL_SHM_FORMAT_XRGB8888);
    screenShot();
    QCOMPARE(ftruncate(client->memory(), 0), 0);
    screenShot();
    QVERIFY(!client->synchronise());
    TRY_COMPARE(CompositorBus::views().size(), 0);
}

TELVARO_TEST_MAIN(CompositorBufferFormatTest)

#include "CompositorBufferFormatTest.moc"
