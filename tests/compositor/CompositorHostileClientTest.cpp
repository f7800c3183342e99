// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "CompositorBus.h"
#include "HostileClientFixture.h"
#include "TestMain.h"

#include <QLocalSocket>

#include <limits>
#include <text-input-unstable-v3-client-protocol.h>
#include <unistd.h>
#include <vector>
#include <viewporter-client-protocol.h>
#include <wayland-client-protocol.h>
#include <wlr-screencopy-unstable-v1-client-protocol.h>
#include <xdg-decoration-unstable-v1-client-protocol.h>
#include <xdg-shell-client-protocol.h>

namespace {

constexpr qint32 cHuge = std::numeric_limits<qint32>::max();
constexpr qint32 cLowest = std::numeric_limits<qint32>::min();

} // namespace

/// Clients that violate the protocol, beside a well-behaved witness.
class CompositorHostileClientTest : public HostileClientFixture
{
    Q_OBJECT

private Q_SLOTS:
    void aClientThatBreaksTheProtocolHarmsOnlyItself_data();
    void aClientThatBreaksTheProtocolHarmsOnlyItself();
    void whatAClientEndsLeavesNothingBehind();
    void aPopupIsEndedOnce();
    void moreConnectionsThanThereIsRoomForHarmNobody();
};

void CompositorHostileClientTest::aClientThatBreaksTheProtocolHarmsOnlyItself_data()
{
    QTest::addColumn<Attack>("attack");
    QTest::addColumn<int>("error");
    const auto row = [](const char* name, int error, const Attack& attack) {
        QTest::newRow(name) << attack << error;
    };

    row("an object that is not there", cAnyError, [](WireClient& client) {
        client.send(WireMessage(4711, 0));
    });
    row("an opcode that is not there", cAnyError, [](WireClient& client) {
        client.send(WireMessage(client.createSurface(), 100));
    });
    row("an object of another kind", cAnyError, [](WireClient& client) {
        const quint32 surface = client.createSurface();
        client.attach(surface, surface);
    });
    row("an id that is in use", cAnyError, [](WireClient& client) {
        const quint32 surface = client.createSurface();
        client.send(WireMessage(surface, WL_SURFACE_FRAME).number(surface));
    });
    row("an id far beyond the others", cAnyError, [](WireClient& client) {
        const quint32 surface = client.createSurface();
        client.send(WireMessage(surface, WL_SURFACE_FRAME).number(100000000U));
    });
    row("an id of the compositor's own", cAnyError, [](WireClient& client) {
        const quint32 surface = client.createSurface();
        client.send(WireMessage(surface, WL_SURFACE_FRAME).number(0xff000000U));
    });
    row("a message that is too short", cAnyError, [](WireClient& client) {
        client.send(WireMessage(client.createSurface(), WL_SURFACE_ATTACH));
    });
    row("a message without a size", cAnyError, [](WireClient& client) {
        client.sendBytes(QByteArray("\x01\0\0\0\0\0\0\0", 8));
    });
    row("half a message", cAnyEnd, [](WireClient& client) {
        client.sendBytes(WireMessage(1, WL_DISPLAY_SYNC).number(client.newId()).bytes().chopped(2));
        client.disconnect();
    });
    row("a text without an end", cAnyError, [](WireClient& client) {
        const quint32 toplevel = client.createWindow().toplevel;
        client.send(WireMessage(toplevel, XDG_TOPLEVEL_SET_TITLE).number(4U).number(0x41414141U));
    });
    row("a text that is longer than its message", cAnyError, [](WireClient& client) {
        const quint32 toplevel = client.createWindow().toplevel;
        client.send(WireMessage(toplevel, XDG_TOPLEVEL_SET_TITLE).number(0x7fffffffU));
    });
    row("a text that is no text", cAnyEnd, [](WireClient& client) {
        const quint32 toplevel = client.createWindow().toplevel;
        client.send(WireMessage(toplevel, XDG_TOPLEVEL_SET_TITLE).text(QByteArray("\xff\xfe\x80\xc3")));
    });
    row("no descriptor for a pool", cAnyEnd, [](WireClient& client) {
        client.send(WireMessage(client.bind("wl_shm"), WL_SHM_CREATE_POOL).number(client.newId()).number(4096U));
    });
    row("a descriptor that is no memory", 2, [](WireClient& client) {
        int pipes[2];
        QCOMPARE(pipe(pipes), 0);
        client.send(WireMessage(client.bind("wl_shm"), WL_SHM_CREATE_POOL)
                        .number(client.newId())
                        .descriptor(pipes[0])
                        .number(4096U));
        close(pipes[0]);
        close(pipes[1]);
    });
    row("descriptors that nobody asked for", cAnyError, [](WireClient& client) {
        for (int i = 0; i < 100; ++i) {
            client.sendBytes(WireMessage(1, WL_DISPLAY_SYNC).number(client.newId()).bytes(), QVector<int>(20, 0));
        }
    });
    row("a pool of a negative size", 1, [](WireClient& client) {
        client.createPool(4096, -1);
    });
    row("a pool that shrinks", 2, [](WireClient& client) {
        const quint32 pool = client.createPool(8192, 8192);
        client.send(WireMessage(pool, WL_SHM_POOL_RESIZE).number(4096U));
    });
    row("a buffer of a negative size", 1, [](WireClient& client) {
        client.createBuffer(client.createPool(4096, 4096), -1, -1, -4);
    });
    row("a buffer without a size", 1, [](WireClient& client) {
        client.createBuffer(client.createPool(4096, 4096), 0, 0, 0);
    });
    row("a buffer beyond its pool", 1, [](WireClient& client) {
        client.createBuffer(client.createPool(4096, 4096), 1000, 1000, 4000);
    });
    row("a buffer of a size that overflows", 1, [](WireClient& client) {
        client.createBuffer(client.createPool(4096, 4096), 65536, 65536, cHuge);
    });
    row("a buffer of an unknown format", 0, [](WireClient& client) {
        client.createBuffer(client.createPool(4096, 4096), 10, 10, 40, 0x12345678);
    });
    row("a buffer whose memory is taken away", 2, [](WireClient& client) {
        const WireClient::Window window = client.openWindow("Liar");
        client.attach(window.surface, client.createBuffer(QSize(300, 200)));
        client.commit(window.surface);
        QCOMPARE(ftruncate(client.memory(), 0), 0);
    });
    // RGB565, which has to be converted.
    row("a converted buffer whose memory is taken away", 2, [](WireClient& client) {
        const WireClient::Window window = client.openWindow("Liar");
        const quint32 pool = client.createPool(2000000, 2000000);
        client.attach(window.surface, client.createBuffer(pool, 1000, 1000, 2000, 0x36314752));
        client.commit(window.surface);
        QCOMPARE(ftruncate(client.memory(), 0), 0);
    });
    row("a cursor whose memory is taken away", cAnyEnd, [](WireClient& client) {
        const quint32 seat = client.bind("wl_seat");
        const quint32 pointer = client.newId();
        client.send(WireMessage(seat, WL_SEAT_GET_POINTER).number(pointer));
        const quint32 surface = client.createSurface();
        client.attach(surface, client.createBuffer(QSize(64, 64)));
        QCOMPARE(ftruncate(client.memory(), 0), 0);
        client.commit(surface);
        client.send(WireMessage(pointer, WL_POINTER_SET_CURSOR).number(0U).number(surface).number(0U).number(0U));
    });
    row("a buffer that is destroyed before it is shown", cNoError, [](WireClient& client) {
        const WireClient::Window window = client.openWindow("Hasty");
        const quint32 buffer = client.createBuffer(QSize(300, 200));
        client.attach(window.surface, buffer);
        client.send(WireMessage(buffer, WL_BUFFER_DESTROY));
        client.commit(window.surface);
    });
    row("a scale of zero", 0, [](WireClient& client) {
        const WireClient::Window window = client.openWindow("Scaled");
        client.send(WireMessage(window.surface, WL_SURFACE_SET_BUFFER_SCALE).number(0U));
        client.commit(window.surface);
    });
    row("a negative scale", 0, [](WireClient& client) {
        const WireClient::Window window = client.openWindow("Scaled");
        client.send(WireMessage(window.surface, WL_SURFACE_SET_BUFFER_SCALE).number(cLowest));
        client.commit(window.surface);
    });
    row("a huge scale", cAnyEnd, [](WireClient& client) {
        const WireClient::Window window = client.openWindow("Scaled");
        client.send(WireMessage(window.surface, WL_SURFACE_SET_BUFFER_SCALE).number(cHuge));
        client.commit(window.surface);
    });
    row("a transform that is none", 1, [](WireClient& client) {
        const WireClient::Window window = client.openWindow("Turned");
        client.send(WireMessage(window.surface, WL_SURFACE_SET_BUFFER_TRANSFORM).number(4711U));
        client.commit(window.surface);
    });
    row("damage outside", cNoError, [](WireClient& client) {
        const WireClient::Window window = client.openWindow("Damaged");
        for (const QRect& rect : {QRect(QPoint(cLowest, cLowest), QSize(cHuge, cHuge)),
                                  QRect(QPoint(0, 0), QSize(-100, -100)), QRect(QPoint(1000, 1000), QSize(10, 10))}) {
            client.attach(window.surface, client.createBuffer(QSize(300, 200)));
            client.damage(window.surface, rect);
            client.commit(window.surface);
        }
    });
    row("a window geometry as large as numbers go", cNoError, [](WireClient& client) {
        const WireClient::Window window = client.openWindow("Large");
        client.send(WireMessage(window.xdgSurface, XDG_SURFACE_SET_WINDOW_GEOMETRY)
                        .number(cLowest)
                        .number(cLowest)
                        .number(cHuge)
                        .number(cHuge));
        client.commit(window.surface);
    });
    row("a window geometry of a negative size", cAnyEnd, [](WireClient& client) {
        const WireClient::Window window = client.openWindow("Negative");
        client.send(WireMessage(window.xdgSurface, XDG_SURFACE_SET_WINDOW_GEOMETRY)
                        .number(0U)
                        .number(0U)
                        .number(-1)
                        .number(-1));
        client.commit(window.surface);
    });
    row("a viewport as large as numbers go", cNoError, [](WireClient& client) {
        const WireClient::Window window = client.openWindow("Large");
        const quint32 viewporter = client.bind("wp_viewporter");
        const quint32 id = client.newId();
        client.send(WireMessage(viewporter, WP_VIEWPORTER_GET_VIEWPORT).number(id).number(window.surface));
        client.send(WireMessage(id, WP_VIEWPORT_SET_DESTINATION).number(cHuge).number(cHuge));
        client.commit(window.surface);
    });

    for (const QByteArray& version : {QByteArray("2"), QByteArray("3")}) {
        // Those requests that are used by their names here have the same numbers in both versions.
        struct Input
        {
            quint32 manager;
            quint32 object;
        };
        const auto createInput = [version](WireClient& client) {
            const quint32 seat = client.bind("wl_seat");
            const quint32 manager = client.bind("zwp_text_input_manager_v" + version);
            const quint32 object = client.newId();
            client.send(WireMessage(manager, ZWP_TEXT_INPUT_MANAGER_V3_GET_TEXT_INPUT).number(object).number(seat));
            return Input{manager, object};
        };
        const auto enable = [version](quint32 input, quint32 surface) {
            WireMessage message(input, ZWP_TEXT_INPUT_V3_ENABLE);
            return version == "2" ? message.number(surface) : message;
        };
        const auto commit = [version](quint32 input) {
            constexpr quint16 cUpdateStateV2 = 9;
            return version == "2" ? WireMessage(input, cUpdateStateV2).number(1U).number(1U)
                                  : WireMessage(input, ZWP_TEXT_INPUT_V3_COMMIT);
        };
        const auto textRow = [&row, &version](const char* name, int error, const Attack& attack) {
            row(("text input " + version + ": " + name).constData(), error, attack);
        };
        textRow("for a seat that is none", cAnyError, [version](WireClient& client) {
            const quint32 surface = client.createSurface();
            const quint32 manager = client.bind("zwp_text_input_manager_v" + version);
            const quint32 object = client.newId();
            client.send(WireMessage(manager, ZWP_TEXT_INPUT_MANAGER_V3_GET_TEXT_INPUT).number(object).number(surface));
        });
        textRow("without a window", cNoError, [=](WireClient& client) {
            const quint32 input = createInput(client).object;
            client.send(enable(input, client.createSurface()));
            client.send(commit(input));
        });
        textRow("that outlives its manager and its surface", cNoError, [=](WireClient& client) {
            const auto [manager, input] = createInput(client);
            const WireClient::Window window = client.openWindow("Field");
            client.send(enable(input, window.surface));
            client.send(WireMessage(manager, ZWP_TEXT_INPUT_MANAGER_V3_DESTROY));
            client.send(WireMessage(window.toplevel, XDG_TOPLEVEL_DESTROY));
            client.send(WireMessage(window.xdgSurface, XDG_SURFACE_DESTROY));
            client.send(WireMessage(window.surface, WL_SURFACE_DESTROY));
            client.send(commit(input));
            client.openWindow("Next");
        });
        textRow("destroyed while it is enabled", cNoError, [=](WireClient& client) {
            const WireClient::Window window = client.openWindow("Field");
            const quint32 input = createInput(client).object;
            client.send(enable(input, window.surface));
            client.send(commit(input));
            client.send(WireMessage(input, ZWP_TEXT_INPUT_V3_DESTROY));
            client.openWindow("Next");
        });
        textRow("used after it is destroyed", cAnyError, [=](WireClient& client) {
            const quint32 input = createInput(client).object;
            client.send(WireMessage(input, ZWP_TEXT_INPUT_V3_DESTROY));
            client.send(commit(input));
        });
        textRow("a thousand of them, all enabled", cNoError, [=](WireClient& client) {
            const WireClient::Window window = client.openWindow("Field");
            for (int i = 0; i < 1000; ++i) {
                const quint32 input = createInput(client).object;
                client.send(enable(input, window.surface));
                client.send(commit(input));
                client.synchronise();
            }
            client.openWindow("Next");
        });
        textRow("with text that is none and places outside of it", cAnyEnd, [=](WireClient& client) {
            const WireClient::Window window = client.openWindow("Field");
            const quint32 input = createInput(client).object;
            client.send(enable(input, window.surface));
            const quint16 setText = version == "2" ? 5 : ZWP_TEXT_INPUT_V3_SET_SURROUNDING_TEXT;
            const quint16 setType = version == "2" ? 6 : ZWP_TEXT_INPUT_V3_SET_CONTENT_TYPE;
            client.send(WireMessage(input, setText).text(QByteArray("\xff\xc3")).number(cHuge).number(cLowest));
            client.send(WireMessage(input, setType).number(0xffffffffU).number(0xffffffffU));
            client.send(commit(input));
        });
    }

    {
        struct Capture
        {
            quint32 manager;
            quint32 output;
            quint32 frame;
        };
        const auto capture = [](WireClient& client) {
            const quint32 manager = client.bind("zwlr_screencopy_manager_v1", 3);
            const quint32 output = client.bind("wl_output");
            const quint32 frame = client.newId();
            client.send(WireMessage(manager, ZWLR_SCREENCOPY_MANAGER_V1_CAPTURE_OUTPUT)
                            .number(frame)
                            .number(0U)
                            .number(output));
            return Capture{manager, output, frame};
        };
        const auto copy = [](quint32 frame, quint32 buffer) {
            return WireMessage(frame, ZWLR_SCREENCOPY_FRAME_V1_COPY).number(buffer);
        };
        const auto copyWithDamage = [](quint32 frame, quint32 buffer) {
            return WireMessage(frame, ZWLR_SCREENCOPY_FRAME_V1_COPY_WITH_DAMAGE).number(buffer);
        };
        constexpr quint32 format = 1;
        constexpr qint32 bytes = 1024 * 600 * 4;
        const auto createBuffer = [=](WireClient& client) {
            return client.createBuffer(client.createPool(bytes, bytes), 1024, 600, 4096, format);
        };
        const auto captureRow = [&row](const char* name, int error, const Attack& attack) {
            row((QByteArray("capture: ") + name).constData(), error, attack);
        };
        captureRow("of an output that is none", cAnyError, [](WireClient& client) {
            const quint32 manager = client.bind("zwlr_screencopy_manager_v1", 3);
            client.send(WireMessage(manager, ZWLR_SCREENCOPY_MANAGER_V1_CAPTURE_OUTPUT)
                            .number(client.newId())
                            .number(0U)
                            .number(client.createSurface()));
        });
        captureRow("into a buffer that is none", cAnyError, [=](WireClient& client) {
            const auto [manager, output, frame] = capture(client);
            client.send(copy(frame, output));
        });
        captureRow("into no buffer", cAnyError, [=](WireClient& client) {
            client.send(copy(capture(client).frame, 0));
        });
        captureRow("into a buffer of another size", 1, [=](WireClient& client) {
            client.send(copy(capture(client).frame,
                             client.createBuffer(client.createPool(bytes, bytes), 1024, 599, 4096, format)));
        });
        captureRow("into a buffer of another shape", 1, [=](WireClient& client) {
            client.send(copy(capture(client).frame,
                             client.createBuffer(client.createPool(bytes, bytes), 600, 1024, 2400, format)));
        });
        captureRow("into a buffer of another stride", 1, [=](WireClient& client) {
            constexpr qint32 twice = 2 * bytes;
            client.send(copy(capture(client).frame,
                             client.createBuffer(client.createPool(twice, twice), 1024, 600, 8192, format)));
        });
        captureRow("into a buffer of another format", 1, [=](WireClient& client) {
            client.send(
                copy(capture(client).frame, client.createBuffer(client.createPool(bytes, bytes), 1024, 600, 4096)));
        });
        captureRow("twice", 0, [=](WireClient& client) {
            const quint32 frame = capture(client).frame;
            const quint32 buffer = createBuffer(client);
            client.send(copy(frame, buffer));
            client.send(copy(frame, buffer));
        });
        captureRow("again after it was ready", 0, [=](WireClient& client) {
            const quint32 frame = capture(client).frame;
            const quint32 buffer = createBuffer(client);
            client.send(copy(frame, buffer));
            constexpr quint16 ready = 2;
            while (client.synchronise() && client.events(frame, ready).isEmpty()) { }
            client.send(copyWithDamage(frame, buffer));
        });
        captureRow("into memory that is taken away", 2, [=](WireClient& client) {
            const quint32 frame = capture(client).frame;
            const quint32 buffer = createBuffer(client);
            QCOMPARE(ftruncate(client.memory(), 0), 0);
            client.send(copy(frame, buffer));
        });
        captureRow("into memory of which half is taken away and the pool is gone", 2, [=](WireClient& client) {
            const quint32 frame = capture(client).frame;
            const quint32 pool = client.createPool(bytes, bytes);
            const quint32 buffer = client.createBuffer(pool, 1024, 600, 4096, format);
            QCOMPARE(ftruncate(client.memory(), bytes / 2), 0);
            client.send(copy(frame, buffer));
            client.send(WireMessage(pool, WL_SHM_POOL_DESTROY));
        });
        captureRow("into a buffer that is destroyed at once", cNoError, [=](WireClient& client) {
            const quint32 frame = capture(client).frame;
            const quint32 buffer = createBuffer(client);
            client.send(copy(frame, buffer));
            client.send(WireMessage(buffer, WL_BUFFER_DESTROY));
            client.send(WireMessage(frame, ZWLR_SCREENCOPY_FRAME_V1_DESTROY));
        });
        captureRow("whose objects go in the wrong order", cNoError, [=](WireClient& client) {
            const auto [manager, output, frame] = capture(client);
            const quint32 buffer = createBuffer(client);
            client.send(WireMessage(manager, ZWLR_SCREENCOPY_MANAGER_V1_DESTROY));
            client.send(copyWithDamage(frame, buffer));
            client.send(WireMessage(frame, ZWLR_SCREENCOPY_FRAME_V1_DESTROY));
            client.send(WireMessage(buffer, WL_BUFFER_DESTROY));
        });
        captureRow("used after it is destroyed", cAnyError, [=](WireClient& client) {
            const quint32 frame = capture(client).frame;
            const quint32 buffer = createBuffer(client);
            client.send(WireMessage(frame, ZWLR_SCREENCOPY_FRAME_V1_DESTROY));
            client.send(copy(frame, buffer));
        });
        captureRow("by a client that leaves", cAnyEnd, [=](WireClient& client) {
            const quint32 buffer = createBuffer(client);
            for (int i = 0; i < 100; ++i) {
                client.send(copy(capture(client).frame, buffer));
                client.send(copyWithDamage(capture(client).frame, buffer));
            }
            client.disconnect();
        });
        captureRow("thousands of them at once", cNoError, [=](WireClient& client) {
            const quint32 buffer = createBuffer(client);
            const auto [manager, output, frame] = capture(client);
            client.send(copy(frame, buffer));
            for (int i = 0; i < 4000; ++i) {
                const quint32 next = client.newId();
                client.send(WireMessage(manager, ZWLR_SCREENCOPY_MANAGER_V1_CAPTURE_OUTPUT)
                                .number(next)
                                .number(0U)
                                .number(output));
                client.send(i % 2 == 0 ? copy(next, buffer) : copyWithDamage(next, buffer));
                if (i % 100 == 0) {
                    client.synchronise();
                }
            }
        });
        captureRow("with thousands of managers", cNoError, [](WireClient& client) {
            for (int i = 0; i < 4000; ++i) {
                client.bind("zwlr_screencopy_manager_v1", 3);
            }
        });
        captureRow("of a version that is not there", cAnyError, [](WireClient& client) {
            client.bind("zwlr_screencopy_manager_v1", 4);
        });
        captureRow("with a request of a later version", cAnyError, [=](WireClient& client) {
            const quint32 manager = client.bind("zwlr_screencopy_manager_v1", 1);
            const quint32 output = client.bind("wl_output");
            const quint32 frame = client.newId();
            client.send(WireMessage(manager, ZWLR_SCREENCOPY_MANAGER_V1_CAPTURE_OUTPUT)
                            .number(frame)
                            .number(0U)
                            .number(output));
            client.send(copyWithDamage(frame, createBuffer(client)));
        });
    }

    row("a surface that goes before its window", cAnyEnd, [](WireClient& client) {
        const WireClient::Window window = client.openWindow("Headless");
        client.send(WireMessage(window.surface, WL_SURFACE_DESTROY));
        client.send(WireMessage(window.xdgSurface, XDG_SURFACE_SET_WINDOW_GEOMETRY)
                        .number(0U)
                        .number(0U)
                        .number(10U)
                        .number(10U));
        client.send(WireMessage(window.toplevel, XDG_TOPLEVEL_SET_MAXIMIZED));
        client.send(WireMessage(window.toplevel, XDG_TOPLEVEL_SET_TITLE).text("Still here"));
    });
    row("a surface that goes before it gets a role", cAnyEnd, [](WireClient& client) {
        const quint32 surface = client.createSurface();
        const quint32 xdgSurface = client.createXdgSurface(surface);
        client.send(WireMessage(surface, WL_SURFACE_DESTROY));
        client.createToplevel(xdgSurface);
    });
    row("an xdg surface that goes before its window", cAnyEnd, [](WireClient& client) {
        const WireClient::Window other = client.openWindow("Other");
        const WireClient::Window window = client.openWindow("Headless");
        client.send(WireMessage(window.xdgSurface, XDG_SURFACE_DESTROY));
        client.send(WireMessage(window.toplevel, XDG_TOPLEVEL_SET_PARENT).number(other.toplevel));
        client.send(WireMessage(window.toplevel, XDG_TOPLEVEL_SET_MAXIMIZED));
        client.commit(window.surface);
    });
    row("a window that goes before its xdg surface", cAnyEnd, [](WireClient& client) {
        const WireClient::Window window = client.openWindow("Gone");
        client.send(WireMessage(window.toplevel, XDG_TOPLEVEL_DESTROY));
        client.createWindow();
        client.send(WireMessage(window.xdgSurface, XDG_SURFACE_ACK_CONFIGURE).number(1U));
        client.commit(window.surface);
    });
    row("a shell that goes before its windows", cAnyEnd, [](WireClient& client) {
        client.openWindow("Orphan");
        client.send(WireMessage(client.bind("xdg_wm_base"), XDG_WM_BASE_DESTROY));
    });
    row("two xdg surfaces of one surface", cAnyEnd, [](WireClient& client) {
        const quint32 surface = client.createSurface();
        const quint32 one = client.createXdgSurface(surface);
        const quint32 other = client.createXdgSurface(surface);
        client.createToplevel(one);
        client.createToplevel(other);
        client.show(surface, client.createBuffer(QSize(10, 10)));
    });
    row("two windows of one xdg surface", 2, [](WireClient& client) {
        client.createToplevel(client.createWindow().xdgSurface);
    });
    row("an answer to a configuration that was none", cAnyEnd, [](WireClient& client) {
        client.send(WireMessage(client.openWindow("Wrong").xdgSurface, XDG_SURFACE_ACK_CONFIGURE).number(4711U));
    });
    row("an answer from a surface without a role", 1, [](WireClient& client) {
        client.send(WireMessage(client.createXdgSurface(client.createSurface()), XDG_SURFACE_ACK_CONFIGURE).number(1U));
    });
    row("a cursor without the pointer", cNoError, [](WireClient& client) {
        const WireClient::Window window = client.openWindow("Cursor");
        const quint32 seat = client.bind("wl_seat");
        const quint32 pointer = client.newId();
        client.send(WireMessage(seat, WL_SEAT_GET_POINTER).number(pointer));
        client.send(
            WireMessage(pointer, WL_POINTER_SET_CURSOR).number(0U).number(window.surface).number(0U).number(0U));
    });
    row("answers to pings that were none", cNoError, [](WireClient& client) {
        const quint32 shell = client.bind("xdg_wm_base");
        for (int i = 0; i < 10000; ++i) {
            client.send(WireMessage(shell, XDG_WM_BASE_PONG).number(i));
        }
    });
    row("a buffer larger than any output", 1, [](WireClient& client) {
        const WireClient::Window window = client.openWindow("Huge");
        const quint32 pool = client.createPool(cHuge, cHuge);
        client.attach(window.surface, client.createBuffer(pool, 23000, 23000, 92000));
        client.commit(window.surface);
    });
    row("more objects than there is room for", 2, [](WireClient& client) {
        for (int i = 0; i < 20000; ++i) {
            client.createSurface();
        }
    });
    row("more frames than there is room for", 2, [](WireClient& client) {
        const WireClient::Window window = client.openWindow("Frames");
        for (int i = 0; i < 20000; ++i) {
            client.send(WireMessage(window.surface, WL_SURFACE_FRAME).number(client.newId()));
        }
    });
    row("commits without a buffer", cNoError, [](WireClient& client) {
        const quint32 surface = client.createWindow().surface;
        for (int i = 0; i < 5000; ++i) {
            client.commit(surface);
            if (i % 50 == 0) {
                client.synchronise();
            }
        }
    });
    row("damage in ten thousand places", cNoError, [](WireClient& client) {
        const quint32 surface = client.openWindow("Damaged").surface;
        for (int i = 0; i < 10000; ++i) {
            client.damage(surface, QRect(i % 100 * 3, i / 100 * 2, 1, 1));
        }
        client.commit(surface);
    });
    row("a region in ten thousand pieces", cNoError, [](WireClient& client) {
        const quint32 surface = client.openWindow("Region").surface;
        const quint32 compositor = client.bind("wl_compositor");
        const quint32 region = client.newId();
        client.send(WireMessage(compositor, WL_COMPOSITOR_CREATE_REGION).number(region));
        for (int i = 0; i < 10000; ++i) {
            client.send(
                WireMessage(region, WL_REGION_ADD).number(i % 100 * 3).number(i / 100 * 2).number(1U).number(1U));
        }
        client.send(WireMessage(surface, WL_SURFACE_SET_INPUT_REGION).number(region));
        client.commit(surface);
    });
    row("one picture on a thousand surfaces", cAnyEnd, [](WireClient& client) {
        const WireClient::Window window = client.openWindow("Many");
        const quint32 buffer = client.createBuffer(QSize(1000, 1000));
        for (int i = 0; i < 1000; ++i) {
            const quint32 surface = client.createSurface();
            client.createSubsurface(surface, window.surface);
            client.attach(surface, buffer);
            client.damage(surface, QRect(0, 0, 1000, 1000));
            client.commit(surface);
        }
    });

    row("a subsurface of itself", WL_SUBCOMPOSITOR_ERROR_BAD_SURFACE, [](WireClient& client) {
        const quint32 surface = client.createSurface();
        client.createSubsurface(surface, surface);
        client.commit(surface);
    });
    row("a subsurface twice", WL_SUBCOMPOSITOR_ERROR_BAD_SURFACE, [](WireClient& client) {
        const WireClient::Window window = client.openWindow("Parent");
        const quint32 surface = client.createSurface();
        const quint32 one = client.createSubsurface(surface, window.surface);
        const quint32 other = client.createSubsurface(surface, window.surface);
        client.send(WireMessage(one, WL_SUBSURFACE_SET_POSITION).number(1U).number(1U));
        client.send(WireMessage(other, WL_SUBSURFACE_SET_POSITION).number(1U).number(1U));
        client.send(WireMessage(surface, WL_SURFACE_DESTROY));
        client.send(WireMessage(other, WL_SUBSURFACE_SET_POSITION).number(1U).number(1U));
    });
    row("a subsurface that is a window", cAnyEnd, [](WireClient& client) {
        const WireClient::Window one = client.openWindow("One");
        const WireClient::Window other = client.openWindow("Other");
        client.createSubsurface(one.surface, other.surface);
        client.commit(one.surface);
        client.commit(other.surface);
    });
    row("a subsurface whose surface is gone", cAnyEnd, [](WireClient& client) {
        const WireClient::Window window = client.openWindow("Parent");
        const quint32 surface = client.createSurface();
        const quint32 subsurface = client.createSubsurface(surface, window.surface);
        client.send(WireMessage(surface, WL_SURFACE_DESTROY));
        for (int i = 0; i < 20; ++i) {
            client.createSurface();
        }
        client.send(WireMessage(subsurface, WL_SUBSURFACE_SET_POSITION).number(5U).number(5U));
        client.send(WireMessage(subsurface, WL_SUBSURFACE_PLACE_ABOVE).number(window.surface));
        client.send(WireMessage(subsurface, WL_SUBSURFACE_SET_DESYNC));
        client.send(WireMessage(subsurface, WL_SUBSURFACE_DESTROY));
        client.commit(window.surface);
    });
    row("a subsurface whose parent is gone", cAnyEnd, [](WireClient& client) {
        const quint32 parent = client.createSurface();
        const quint32 surface = client.createSurface();
        const quint32 subsurface = client.createSubsurface(surface, parent);
        client.send(WireMessage(parent, WL_SURFACE_DESTROY));
        client.send(WireMessage(subsurface, WL_SUBSURFACE_SET_POSITION).number(cLowest).number(cHuge));
        client.attach(surface, client.createBuffer(QSize(10, 10)));
        client.commit(surface);
        client.send(WireMessage(subsurface, WL_SUBSURFACE_DESTROY));
        client.commit(surface);
    });
    row("a subsurface far away", cNoError, [](WireClient& client) {
        const WireClient::Window window = client.openWindow("Parent");
        quint32 parent = window.surface;
        for (int i = 0; i < 10; ++i) {
            const quint32 surface = client.createSurface();
            const quint32 subsurface = client.createSubsurface(surface, parent);
            client.send(WireMessage(subsurface, WL_SUBSURFACE_SET_POSITION).number(cHuge).number(cLowest));
            client.attach(surface, client.createBuffer(QSize(10, 10)));
            client.damage(surface, QRect(0, 0, 10, 10));
            client.commit(surface);
            parent = surface;
        }
        client.commit(window.surface);
    });
    row("a subsurface above a stranger", WL_SUBSURFACE_ERROR_BAD_SURFACE, [](WireClient& client) {
        const WireClient::Window window = client.openWindow("Parent");
        const quint32 subsurface = client.createSubsurface(client.createSurface(), window.surface);
        client.send(WireMessage(subsurface, WL_SUBSURFACE_PLACE_ABOVE).number(client.createSurface()));
    });
    row("a subsurface below itself", WL_SUBSURFACE_ERROR_BAD_SURFACE, [](WireClient& client) {
        const WireClient::Window window = client.openWindow("Parent");
        const quint32 surface = client.createSurface();
        const quint32 subsurface = client.createSubsurface(surface, window.surface);
        client.send(WireMessage(subsurface, WL_SUBSURFACE_PLACE_BELOW).number(surface));
    });
    row("a subsurface of its own subsurface", WL_SUBCOMPOSITOR_ERROR_BAD_SURFACE, [](WireClient& client) {
        const quint32 parent = client.createSurface();
        const quint32 surface = client.createSurface();
        client.createSubsurface(surface, parent);
        client.createSubsurface(parent, surface);
    });
    row("a viewport whose surface is gone", 3, [](WireClient& client) {
        const quint32 surface = client.createSurface();
        const quint32 viewporter = client.bind("wp_viewporter");
        const quint32 viewport = client.newId();
        client.send(WireMessage(viewporter, WP_VIEWPORTER_GET_VIEWPORT).number(viewport).number(surface));
        client.send(WireMessage(surface, WL_SURFACE_DESTROY));
        client.synchronise();
        client.send(WireMessage(viewport, WP_VIEWPORT_SET_DESTINATION).number(10U).number(10U));
    });
    row("a decoration whose window is gone", cAnyEnd, [](WireClient& client) {
        const WireClient::Window window = client.openWindow("Decorated");
        const quint32 manager = client.bind("zxdg_decoration_manager_v1");
        const quint32 decoration = client.newId();
        client.send(WireMessage(manager, ZXDG_DECORATION_MANAGER_V1_GET_TOPLEVEL_DECORATION)
                        .number(decoration)
                        .number(window.toplevel));
        client.send(WireMessage(window.toplevel, XDG_TOPLEVEL_DESTROY));
        client.send(WireMessage(decoration, ZXDG_TOPLEVEL_DECORATION_V1_SET_MODE).number(4711U));
        client.send(WireMessage(decoration, ZXDG_TOPLEVEL_DECORATION_V1_DESTROY));
    });

    row("a popup without a parent", 3, [](WireClient& client) {
        client.createPopup(client.createXdgSurface(client.createSurface()), 0, client.createPositioner(QSize(20, 20)));
    });
    row("a popup without a positioner", cAnyError, [](WireClient& client) {
        const WireClient::Window window = client.openWindow("Parent");
        client.createPopup(client.createXdgSurface(client.createSurface()), window.xdgSurface, 0);
    });
    row("a popup of an incomplete positioner", 5, [](WireClient& client) {
        const WireClient::Window window = client.openWindow("Parent");
        const quint32 shell = client.bind("xdg_wm_base");
        const quint32 positioner = client.newId();
        client.send(WireMessage(shell, XDG_WM_BASE_CREATE_POSITIONER).number(positioner));
        client.createPopup(client.createXdgSurface(client.createSurface()), window.xdgSurface, positioner);
    });
    row("a popup of itself", cAnyEnd, [](WireClient& client) {
        const quint32 surface = client.createSurface();
        const quint32 xdgSurface = client.createXdgSurface(surface);
        client.createPopup(xdgSurface, xdgSurface, client.createPositioner(QSize(20, 20)));
        client.show(surface, client.createBuffer(QSize(20, 20)));
    });
    row("a popup of a window that is not mapped", cAnyEnd, [](WireClient& client) {
        const WireClient::Window window = client.createWindow();
        const quint32 surface = client.createSurface();
        client.createPopup(client.createXdgSurface(surface), window.xdgSurface, client.createPositioner(QSize(20, 20)));
        client.show(surface, client.createBuffer(QSize(20, 20)));
    });
    row("a popup of a surface without a role", cAnyEnd, [](WireClient& client) {
        const quint32 parent = client.createXdgSurface(client.createSurface());
        const quint32 surface = client.createSurface();
        client.createPopup(client.createXdgSurface(surface), parent, client.createPositioner(QSize(20, 20)));
        client.show(surface, client.createBuffer(QSize(20, 20)));
    });
    row("a popup whose surface is gone", cAnyEnd, [](WireClient& client) {
        const WireClient::Window window = client.openWindow("Parent");
        const quint32 surface = client.createSurface();
        const quint32 xdgSurface = client.createXdgSurface(surface);
        const quint32 positioner = client.createPositioner(QSize(20, 20));
        client.send(WireMessage(surface, WL_SURFACE_DESTROY));
        client.createPopup(xdgSurface, window.xdgSurface, positioner);
    });
    row("a popup that outlives its surface", cAnyEnd, [](WireClient& client) {
        const WireClient::Window window = client.openWindow("Parent");
        const quint32 surface = client.createSurface();
        const quint32 xdgSurface = client.createXdgSurface(surface);
        const quint32 popup = client.createPopup(xdgSurface, window.xdgSurface, client.createPositioner(QSize(20, 20)));
        client.send(WireMessage(surface, WL_SURFACE_DESTROY));
        client.send(WireMessage(xdgSurface, XDG_SURFACE_DESTROY));
        client.send(WireMessage(popup, XDG_POPUP_GRAB).number(0U).number(0U));
        client.send(WireMessage(popup, XDG_POPUP_DESTROY));
    });
    row("a popup that goes and is answered for", cAnyEnd, [](WireClient& client) {
        const WireClient::Window window = client.openWindow("Parent");
        const quint32 surface = client.createSurface();
        const quint32 xdgSurface = client.createXdgSurface(surface);
        const quint32 popup = client.createPopup(xdgSurface, window.xdgSurface, client.createPositioner(QSize(20, 20)));
        client.show(surface, client.createBuffer(QSize(20, 20)));
        client.send(WireMessage(popup, XDG_POPUP_DESTROY));
        client.send(WireMessage(xdgSurface, XDG_SURFACE_ACK_CONFIGURE).number(1U));
        client.commit(surface);
        client.createToplevel(xdgSurface);
    });
    row("a popup whose parent goes first", cAnyEnd, [](WireClient& client) {
        const WireClient::Window window = client.openWindow("Parent");
        quint32 parent = window.xdgSurface;
        QVector<quint32> surfaces;
        for (int i = 0; i < 5; ++i) {
            const quint32 surface = client.createSurface();
            surfaces.append(surface);
            const quint32 xdgSurface = client.createXdgSurface(surface);
            client.createPopup(xdgSurface, parent, client.createPositioner(QSize(20, 20)));
            client.show(surface, client.createBuffer(QSize(20, 20)));
            parent = xdgSurface;
        }
        client.send(WireMessage(window.toplevel, XDG_TOPLEVEL_DESTROY));
        client.send(WireMessage(window.xdgSurface, XDG_SURFACE_DESTROY));
        client.send(WireMessage(window.surface, WL_SURFACE_DESTROY));
        for (const quint32 surface : surfaces) {
            client.commit(surface);
        }
    });
    row("a popup at the end of the world", cNoError, [](WireClient& client) {
        const WireClient::Window window = client.openWindow("Parent");
        for (const quint32 adjustment : {0U, 63U}) {
            for (const qint32 edge : {cLowest, cHuge}) {
                const quint32 surface = client.createSurface();
                const quint32 positioner = client.createPositioner(QSize(cHuge, cHuge));
                client.send(WireMessage(positioner, XDG_POSITIONER_SET_ANCHOR_RECT)
                                .number(edge)
                                .number(edge)
                                .number(cHuge)
                                .number(cHuge));
                client.send(WireMessage(positioner, XDG_POSITIONER_SET_CONSTRAINT_ADJUSTMENT).number(adjustment));
                client.send(WireMessage(positioner, XDG_POSITIONER_SET_OFFSET).number(edge).number(edge));
                client.createPopup(client.createXdgSurface(surface), window.xdgSurface, positioner);
                client.show(surface, client.createBuffer(QSize(20, 20)));
            }
        }
    });
    row("a thousand popups on each other", cNoError, [](WireClient& client) {
        quint32 parent = client.openWindow("Parent").xdgSurface;
        const quint32 buffer = client.createBuffer(QSize(20, 20));
        for (int i = 0; i < 1000; ++i) {
            const quint32 surface = client.createSurface();
            const quint32 xdgSurface = client.createXdgSurface(surface);
            client.createPopup(xdgSurface, parent, client.createPositioner(QSize(20, 20)));
            client.show(surface, buffer);
            parent = xdgSurface;
            client.synchronise();
        }
    });
    row("a popup that grabs with nothing pressed", cAnyEnd, [](WireClient& client) {
        const WireClient::Window window = client.openWindow("Parent");
        const quint32 surface = client.createSurface();
        const quint32 xdgSurface = client.createXdgSurface(surface);
        const quint32 popup = client.createPopup(xdgSurface, window.xdgSurface, client.createPositioner(QSize(20, 20)));
        const quint32 seat = client.bind("wl_seat");
        for (int i = 0; i < 100; ++i) {
            client.send(WireMessage(popup, XDG_POPUP_GRAB).number(seat).number(i));
        }
        client.commit(surface);
    });

    row("a clipboard whose source is gone", cAnyEnd, [](WireClient& client) {
        client.openWindow("Copier");
        const quint32 seat = client.bind("wl_seat");
        const quint32 manager = client.bind("wl_data_device_manager");
        const quint32 device = client.newId();
        client.send(WireMessage(manager, WL_DATA_DEVICE_MANAGER_GET_DATA_DEVICE).number(device).number(seat));
        for (int i = 0; i < 10; ++i) {
            const quint32 source = client.newId();
            client.send(WireMessage(manager, WL_DATA_DEVICE_MANAGER_CREATE_DATA_SOURCE).number(source));
            client.send(WireMessage(source, WL_DATA_SOURCE_OFFER).text("text/plain"));
            client.send(WireMessage(device, WL_DATA_DEVICE_SET_SELECTION).number(source).number(0U));
            client.send(WireMessage(source, WL_DATA_SOURCE_DESTROY));
        }
        client.send(WireMessage(device, WL_DATA_DEVICE_SET_SELECTION).number(0U).number(0U));
    });
    row("a drag with nothing pressed", cAnyEnd, [](WireClient& client) {
        const WireClient::Window window = client.openWindow("Dragger");
        const quint32 seat = client.bind("wl_seat");
        const quint32 manager = client.bind("wl_data_device_manager");
        const quint32 device = client.newId();
        client.send(WireMessage(manager, WL_DATA_DEVICE_MANAGER_GET_DATA_DEVICE).number(device).number(seat));
        const quint32 source = client.newId();
        client.send(WireMessage(manager, WL_DATA_DEVICE_MANAGER_CREATE_DATA_SOURCE).number(source));
        const quint32 icon = client.createSurface();
        client.send(WireMessage(device, WL_DATA_DEVICE_START_DRAG)
                        .number(source)
                        .number(window.surface)
                        .number(icon)
                        .number(0U));
        client.send(WireMessage(source, WL_DATA_SOURCE_DESTROY));
        client.send(WireMessage(icon, WL_SURFACE_DESTROY));
    });
}

void CompositorHostileClientTest::aClientThatBreaksTheProtocolHarmsOnlyItself()
{
    attackFrom(*wireClient());
}

void CompositorHostileClientTest::whatAClientEndsLeavesNothingBehind()
{
    const auto client = wireClient();
    const WireClient::Window window = client->openWindow("Busy");
    const quint32 buffer = client->createBuffer(QSize(20, 20));
    const auto openAndClose = [&](int count) {
        for (int i = 0; i < count; ++i) {
            const quint32 surface = client->createSurface();
            const quint32 xdgSurface = client->createXdgSurface(surface);
            const quint32 positioner = client->createPositioner(QSize(20, 20));
            const quint32 popup = client->createPopup(xdgSurface, window.xdgSurface, positioner);
            client->send(WireMessage(positioner, XDG_POSITIONER_DESTROY));
            client->show(surface, buffer);
            const quint32 part = client->createSurface();
            const quint32 subsurface = client->createSubsurface(part, window.surface);
            client->attach(part, buffer);
            client->commit(part);
            client->send(WireMessage(subsurface, WL_SUBSURFACE_DESTROY));
            client->send(WireMessage(part, WL_SURFACE_DESTROY));
            client->send(WireMessage(popup, XDG_POPUP_DESTROY));
            client->send(WireMessage(xdgSurface, XDG_SURFACE_DESTROY));
            client->send(WireMessage(surface, WL_SURFACE_DESTROY));
            QVERIFY2(client->synchronise(), client->errorText());
        }
    };
    openAndClose(300);
    for (int i = 0; i < 5; ++i) {
        screenShot();
    }
    const qint64 before = mCompositor->residentMemory();
    const int descriptors = mCompositor->descriptorCount();
    openAndClose(3000);
    screenShot();
    QCOMPARE(mCompositor->descriptorCount(), descriptors);
    const qint64 growth = mCompositor->residentMemory() - before;
    QVERIFY2(growth < 1024 * 1024, qPrintable(QString::number(growth)));
}

void CompositorHostileClientTest::aPopupIsEndedOnce()
{
    constexpr quint16 popupDone = 1;
    const auto witness = protocolClient();
    witness->send("open a Witness");
    TRY_COMPARE(CompositorBus::views().size(), 1);
    const auto client = wireClient();
    const WireClient::Window window = client->openWindow("Parent");
    const quint32 surface = client->createSurface();
    const quint32 xdgSurface = client->createXdgSurface(surface);
    const quint32 popup = client->createPopup(xdgSurface, window.xdgSurface, client->createPositioner(QSize(40, 40)));
    client->show(surface, client->createBuffer(QSize(40, 40)));
    QVERIFY(client->synchronise());
    TRY_COMPARE(CompositorBus::views().size(), 2);
    QCOMPARE(client->events(popup, popupDone).size(), 0);
    const QString uuid = CompositorBus::viewWithTitle(QStringLiteral("Parent")).uuid;
    const QString other = CompositorBus::viewWithTitle(QStringLiteral("Witness")).uuid;
    const QImage withPopup = screenShot();
    for (int i = 0; i < 20; ++i) {
        CompositorBus::set(CompositorBus::cTaskSwitcherPath, CompositorBus::cTaskSwitcher,
                           QStringLiteral("currentView"), i % 2 == 0 ? other : uuid);
    }
    QVERIFY(client->synchronise());
    QCOMPARE(client->events(popup, popupDone).size(), 1);
    // A dismissed popup is not shown again before the client destroys it.
    QVERIFY(screenShot().copy(0, 40, 1024, 560) != withPopup.copy(0, 40, 1024, 560));
    client->send(WireMessage(popup, XDG_POPUP_DESTROY));
    client->send(WireMessage(xdgSurface, XDG_SURFACE_DESTROY));
    client->send(WireMessage(surface, WL_SURFACE_DESTROY));
    QVERIFY2(client->synchronise(), client->errorText());
}

void CompositorHostileClientTest::moreConnectionsThanThereIsRoomForHarmNobody()
{
    // The sanitizer's vptr check aborts without free descriptors; the presets turn it off.
    QCOMPARE(mCompositor->end(), 0);
    CompositorProcess limited;
    constexpr int limit = 60;
    limited.startWithLimit(QStringLiteral("ulimit -n %1").arg(limit));
    const QString socket = limited.runtimeDirectory() + QLatin1Char('/') + limited.display();
    WireClient witness(socket);
    witness.openWindow("Witness");
    QVERIFY(witness.synchronise());
    {
        std::vector<std::unique_ptr<QLocalSocket>> sockets;
        for (int i = 0; i < 100; ++i) {
            sockets.push_back(std::make_unique<QLocalSocket>());
            sockets.back()->connectToServer(socket);
            QVERIFY(sockets.back()->waitForConnected(ChildProcess::cDeadline));
        }
        // A connection takes two descriptors, so one may stay free. More are open if the process has inherited some.
        TRY_VERIFY(limited.descriptorCount() >= limit - 1);
        for (int i = 0; i < 50; ++i) {
            QVERIFY(witness.synchronise());
        }
        QCOMPARE(CompositorBus::views().size(), 1);
    }
    WireClient late(socket);
    late.openWindow("Late");
    QVERIFY(late.synchronise());
    TRY_COMPARE(CompositorBus::views().size(), 2);
    QCOMPARE(limited.end(), 0);
    mCompositor->start();
}

TELVARO_TEST_MAIN(CompositorHostileClientTest)

#include "CompositorHostileClientTest.moc"
