// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ServerDesk.h"
#include "WireClient.h"

#include <idle-inhibit-unstable-v1-client-protocol.h>
#include <wayland-client-protocol.h>

/// What keeps the screen saver away: inhibitors of visible surfaces.
class IdleInhibitTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();

    void theScreenSaverWaitsForTheInhibitor();
    void aVisibleSurfaceInhibits();
    void aSubsurfaceInhibits();
    void hostileInhibitorsAreHarmless();

private:
    struct Client
    {
        explicit Client(ServerDesk& desk)
        {
            ServerDesk::serve([&] {
                wire = std::make_unique<WireClient>(desk.socketPath());
                window = wire->openWindow("Player");
                manager = wire->bind("zwp_idle_inhibit_manager_v1");
                wire->synchronise();
            });
        }
        /// Sends what `work` does, and waits until the server has handled it. Returns whether the client is connected.
        bool run(const std::function<void()>& work)
        {
            bool isConnected = false;
            ServerDesk::serve([&] {
                work();
                isConnected = wire->synchronise();
            });
            return isConnected;
        }
        quint32 inhibit(quint32 surface)
        {
            const quint32 inhibitor = wire->newId();
            wire->send(
                WireMessage(manager, ZWP_IDLE_INHIBIT_MANAGER_V1_CREATE_INHIBITOR).number(inhibitor).number(surface));
            return inhibitor;
        }

        std::unique_ptr<WireClient> wire;
        WireClient::Window window = {};
        quint32 manager = 0;
    };

    std::unique_ptr<ServerDesk> mDesk;
};

void IdleInhibitTest::initTestCase()
{
    mDesk = std::make_unique<ServerDesk>();
}

void IdleInhibitTest::cleanupTestCase()
{
    mDesk.reset();
}

void IdleInhibitTest::theScreenSaverWaitsForTheInhibitor()
{
    ScreenSaver screenSaver(1);
    int asked = 0;
    bool isInhibited = true;
    screenSaver.setInhibitor([&] {
        ++asked;
        return isInhibited;
    });
    QTRY_COMPARE_WITH_TIMEOUT(asked, 2, ChildProcess::cDeadline);
    QVERIFY(!screenSaver.isActive());
    isInhibited = false;
    QTRY_VERIFY_WITH_TIMEOUT(screenSaver.isActive(), ChildProcess::cDeadline);
    QCOMPARE(asked, 3);
    // A person may still start it at once.
    isInhibited = true;
    screenSaver.noteInput();
    QVERIFY(!screenSaver.isActive());
    QVERIFY(screenSaver.activate());
    QVERIFY(screenSaver.isActive());
}

void IdleInhibitTest::aVisibleSurfaceInhibits()
{
    Client player(*mDesk);
    QVERIFY(!mDesk->stack.inhibitsIdle());
    quint32 inhibitor = 0;
    QVERIFY(player.run([&] {
        inhibitor = player.inhibit(player.window.surface);
    }));
    QVERIFY(mDesk->stack.inhibitsIdle());
    const QString playing = mDesk->views.current();
    {
        const Client other(*mDesk);
        QVERIFY(mDesk->views.current() != playing);
        QVERIFY(!mDesk->stack.inhibitsIdle());
        QVERIFY(mDesk->views.setCurrent(playing));
        QVERIFY(mDesk->stack.inhibitsIdle());
    }
    QVERIFY(player.run([&] {
        player.wire->send(WireMessage(inhibitor, ZWP_IDLE_INHIBITOR_V1_DESTROY));
    }));
    QVERIFY(!mDesk->stack.inhibitsIdle());
}

void IdleInhibitTest::aSubsurfaceInhibits()
{
    Client player(*mDesk);
    quint32 video = 0;
    QVERIFY(player.run([&] {
        const quint32 subcompositor = player.wire->bind("wl_subcompositor");
        video = player.wire->createSurface();
        player.wire->send(WireMessage(subcompositor, WL_SUBCOMPOSITOR_GET_SUBSURFACE)
                              .number(player.wire->newId())
                              .number(video)
                              .number(player.window.surface));
        player.wire->commit(player.window.surface);
        player.inhibit(video);
    }));
    QVERIFY(mDesk->stack.inhibitsIdle());
    QVERIFY(player.run([&] {
        player.wire->send(WireMessage(video, WL_SURFACE_DESTROY));
    }));
    QVERIFY(!mDesk->stack.inhibitsIdle());
}

void IdleInhibitTest::hostileInhibitorsAreHarmless()
{
    {
        Client player(*mDesk);
        // Inhibitors that outlive their surface and their manager, and as many as there may be.
        QVERIFY(player.run([&] {
            const quint32 surface = player.wire->createSurface();
            const quint32 inhibitor = player.inhibit(surface);
            player.wire->send(WireMessage(surface, WL_SURFACE_DESTROY));
            player.wire->send(WireMessage(inhibitor, ZWP_IDLE_INHIBITOR_V1_DESTROY));
            for (int i = 0; i < 500; ++i) {
                player.inhibit(player.window.surface);
            }
            player.wire->send(WireMessage(player.manager, ZWP_IDLE_INHIBIT_MANAGER_V1_DESTROY));
        }));
        QVERIFY(mDesk->stack.inhibitsIdle());
        QVERIFY(!player.run([&] {
            player.inhibit(player.window.surface);
        }));
    }
    QTRY_VERIFY_WITH_TIMEOUT(!mDesk->stack.inhibitsIdle(), ChildProcess::cDeadline);
    Client player(*mDesk);
    QVERIFY(!player.run([&] {
        player.inhibit(player.manager);
    }));
}

SERVER_TEST_MAIN(IdleInhibitTest)

#include "IdleInhibitTest.moc"
