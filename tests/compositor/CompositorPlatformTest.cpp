// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "CompositorBus.h"
#include "CompositorFixture.h"
#include "ListeningPort.h"
#include "PrivateBus.h"
#include "RemoteDesktop.h"
#include "TestMain.h"
#include "VirtualDesktop.h"

/// The platforms of Qt on which the compositor may run. All other tests run on offscreen or xcb.
class CompositorPlatformTest : public CompositorFixture
{
    Q_OBJECT

private Q_SLOTS:
    void runsWithoutAnyScreen();
    void isAScreenForAColleagueOverVnc();
    void isAWindowOfAnotherWaylandCompositor();

protected:
    void startCompositor() override
    {
    }

private:
    void startOn(const QString& platform)
    {
        mCompositor->environment().insert(QStringLiteral("QT_QPA_PLATFORM"), platform);
        mCompositor->start();
    }
};

void CompositorPlatformTest::runsWithoutAnyScreen()
{
    startOn(QStringLiteral("minimal"));
    const auto client = testClient();
    client->send("open a Window");
    client->waitFor("activated 1");
    QCOMPARE(screenShot().size(), QSize(1024, 600));
}

void CompositorPlatformTest::isAScreenForAColleagueOverVnc()
{
    startOn(QStringLiteral("vnc:size=1024x600,port=0"));
    const auto client = testClient();
    client->send("open a Window");
    client->waitFor("activated 1");
    RemoteDesktop desktop(listeningPort(mCompositor->processId(), QStringLiteral("tcp")));
    const QRect work(0, 34, 1024, 566);
    const auto isSame = [&] {
        return desktop.picture().copy(work) == screenShot().copy(work);
    };
    TRY_VERIFY(isSame());
    desktop.click(600, 300);
    QCOMPARE(client->waitFor("press 1"), QByteArray("600,266"));
    desktop.type('x');
    client->waitFor("keypress 1 x");
    expectComplaints(5);
}

void CompositorPlatformTest::isAWindowOfAnotherWaylandCompositor()
{
    VirtualDesktop desktop;
    CompositorProcess host;
    const QByteArray ownBus = PrivateBus::address().toLatin1();
    const PrivateBus hostBus;
    host.environment().insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), PrivateBus::address());
    host.environment().insert(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"), PrivateBus::address());
    PrivateBus::setAddress(ownBus);
    host.environment().insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    host.environment().insert(QStringLiteral("DISPLAY"), desktop.display());
    host.start({QStringLiteral("--keyboard-layout"), QStringLiteral("de(nodeadkeys)")});

    // Qt unloads plugins of its Wayland platform before the leak check, which then takes what they hold for lost.
    mCompositor->environment().insert(QStringLiteral("LSAN_OPTIONS"), QStringLiteral("detect_leaks=0"));
    mCompositor->environment().insert(QStringLiteral("WAYLAND_DISPLAY"),
                                      host.runtimeDirectory() + QLatin1Char('/') + host.display());
    startOn(QStringLiteral("wayland"));
    const auto client = testClient();
    client->send("open a Window");
    client->waitFor("activated 1");
    // The host's status bar takes the same from the output as this one's from the view.
    TRY_COMPARE(screenShot().size(), QSize(1024, 566));
    desktop.movePointer(600, 300);
    desktop.click();
    QCOMPARE(client->waitFor("press 1"), QByteArray("600,232"));
    // The layout is the host's, whose own desktop is American.
    desktop.key(QStringLiteral("y"));
    client->waitFor("keypress 1 z");
    desktop.key(QStringLiteral("bracketleft"));
    client->waitFor(QByteArray("keypress 1 \xc3\xbc"));
    QCOMPARE(mCompositor->end(), 0);
    QCOMPARE(host.end(), 0);
    QCOMPARE(host.errors(), QByteArray());
    mCompositor = std::make_unique<CompositorProcess>();
    mCompositor->start();
}

TELVARO_TEST_MAIN(CompositorPlatformTest)

#include "CompositorPlatformTest.moc"
