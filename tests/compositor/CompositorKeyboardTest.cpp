// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "CompositorBus.h"
#include "CompositorFixture.h"
#include "ListeningPort.h"
#include "RemoteDesktop.h"
#include "TestMain.h"
#include "VirtualDesktop.h"

/// The layouts that clients get, and keys that come without a scan code.
class CompositorKeyboardTest : public CompositorFixture
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void theLayoutIsTheClients_data();
    void theLayoutIsTheClients();
    void aLayoutThatDoesNotExistIsRefused();
    void withoutTheOptionTheLayoutIsTheDesktops_data();
    void withoutTheOptionTheLayoutIsTheDesktops();
    void keysArriveOverVnc();
    void aHeldShiftIsReleasedOverVnc();

private:
    std::unique_ptr<LineClient> startWithWindow(const QString& platform, const QString& display,
                                                const QStringList& options);

    std::unique_ptr<VirtualDesktop> mDesktop;
    /// With a keyboard layout of its own.
    std::unique_ptr<VirtualDesktop> mOtherDesktop;
};

void CompositorKeyboardTest::initTestCase()
{
    mDesktop = std::make_unique<VirtualDesktop>();
}

std::unique_ptr<LineClient> CompositorKeyboardTest::startWithWindow(const QString& platform, const QString& display,
                                                                    const QStringList& options)
{
    mCompositor->end();
    mCompositor = std::make_unique<CompositorProcess>();
    mCompositor->environment().insert(QStringLiteral("QT_QPA_PLATFORM"), platform);
    mCompositor->environment().insert(QStringLiteral("DISPLAY"), display);
    mCompositor->start(options);
    auto client = testClient();
    client->send("open a Window");
    client->waitFor("activated 1");
    return client;
}

void CompositorKeyboardTest::theLayoutIsTheClients_data()
{
    QTest::addColumn<QString>("layout");
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("us") << QStringLiteral("us") << QByteArray("y");
    QTest::newRow("de") << QStringLiteral("de") << QByteArray("z");
    QTest::newRow("us(dvorak)") << QStringLiteral("us(dvorak)") << QByteArray("f");
}

void CompositorKeyboardTest::theLayoutIsTheClients()
{
    QFETCH(QString, layout);
    QFETCH(QByteArray, text);
    const auto client =
        startWithWindow(QStringLiteral("xcb"), mDesktop->display(), {QStringLiteral("--keyboard-layout"), layout});
    // The desktop's own layout is American: the key to the right of T.
    mDesktop->key(QStringLiteral("y"));
    client->waitFor("keypress 1 " + text);
}

void CompositorKeyboardTest::aLayoutThatDoesNotExistIsRefused()
{
    for (const QString& layout : {QStringLiteral("nowhere"), QStringLiteral("de(nothing)"), QStringLiteral("d e")}) {
        CompositorProcess compositor;
        QCOMPARE(compositor.runToEnd({QStringLiteral("--keyboard-layout"), layout}), 2);
        QCOMPARE(compositor.errors(),
                 "telvaro-compositor: \"" + layout.toUtf8()
                     + "\" is not a keyboard layout: LAYOUT or LAYOUT(VARIANT) of XKB is expected\n"
                       "telvaro-compositor: see 'telvaro-compositor --help'\n");
    }
}

void CompositorKeyboardTest::withoutTheOptionTheLayoutIsTheDesktops_data()
{
    QTest::addColumn<QStringList>("layout");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("de") << QStringList{QStringLiteral("de")} << QStringLiteral("udiaeresis") << QByteArray("ü");
    QTest::newRow("the first of several")
        << QStringList{QStringLiteral("us,de"), QStringLiteral("dvorak,")} << QStringLiteral("y") << QByteArray("y");
    QTest::newRow("us") << QStringList{QStringLiteral("us")} << QStringLiteral("y") << QByteArray("y");
}

void CompositorKeyboardTest::withoutTheOptionTheLayoutIsTheDesktops()
{
    QFETCH(const QStringList, layout);
    QFETCH(const QString, key);
    QFETCH(const QByteArray, text);
    mOtherDesktop = std::make_unique<VirtualDesktop>();
    mOtherDesktop->setKeyboardLayout(layout);
    const auto client = startWithWindow(QStringLiteral("xcb"), mOtherDesktop->display(), {});
    mOtherDesktop->key(key);
    client->waitFor("keypress 1 " + text);
}

void CompositorKeyboardTest::keysArriveOverVnc()
{
    const auto client = startWithWindow(QStringLiteral("vnc:size=1024x600,port=0"), QString(), {});
    RemoteDesktop keyboard(listeningPort(mCompositor->processId(), QStringLiteral("tcp")));
    keyboard.type('a');
    client->waitFor("keypress 1 a");
    client->waitFor("keyrelease 1 a");
    keyboard.type('7');
    client->waitFor("keypress 1 7");
    // A key of the compositor's own.
    keyboard.type(0xffbe);
    keyboard.type(0xff1b);
    keyboard.type('b');
    client->waitFor("keypress 1 b");
    expectComplaints(5);
}

void CompositorKeyboardTest::aHeldShiftIsReleasedOverVnc()
{
    constexpr quint32 cShift = 0xffe1;
    const auto client = startWithWindow(QStringLiteral("vnc:size=1024x600,port=0"), QString(), {});
    RemoteDesktop keyboard(listeningPort(mCompositor->processId(), QStringLiteral("tcp")));
    keyboard.key(cShift, true);
    keyboard.key('A', true);
    keyboard.key(cShift, false);
    keyboard.key('a', false);
    client->waitFor("keypress 1 A");
    client->waitFor("keyrelease 1");
    keyboard.type('a');
    client->waitFor("keypress 1 a");
    expectComplaints(5);
}

TELVARO_TEST_MAIN(CompositorKeyboardTest)

#include "CompositorKeyboardTest.moc"
