// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "CompositorBus.h"
#include "CompositorProcess.h"
#include "TestMain.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QObject>
#include <QRegularExpression>

#include <csignal>
#include <sys/socket.h>
#include <sys/un.h>

namespace {

const QString cServiceName = QStringLiteral(TELVARO_SERVICE_NAME);

bool isNameOwned(const QString& name)
{
    const QDBusMessage query =
        QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
                                       QStringLiteral("org.freedesktop.DBus"), QStringLiteral("NameHasOwner"));
    QDBusMessage message = query;
    message << name;
    return PrivateBus::connection().call(message).arguments().value(0).toBool();
}

} // namespace

class CompositorStartTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void printsItsVersion();
    void printsHelpThatNamesEveryOption();
    void printsHelpWithoutADisplayOrABus();
    void refusesUnknownArguments_data();
    void refusesUnknownArguments();
    void isThereForItsClientsOnceItHasPrintedItsDisplay();
    void printsNothingElse();
    void takesTheFirstFreeSocketName();
    void takesTheSocketNameThatIsWanted();
    void takesAStaleSocketNameOver();
    void refusesASocketNameThatIsInUse();
    void failsWithoutAPlaceForTheSocket_data();
    void failsWithoutAPlaceForTheSocket();
    void failsWithoutABus();
    void failsWithoutADisplay();
    void onlyOneCompositorRunsOnABus();
    void isAloneAgainAfterTheFirstHasEnded();
    void endsOnASignal_data();
    void endsOnASignal();
    void endsWhenTheBusGoesAway();
    void takesTheNotificationNameToo();
    void leavesTheNotificationNameToWhoeverHasIt();
    void hasTheSizeThatIsWanted();
    void isNoClientOfItself();
};

void CompositorStartTest::printsItsVersion()
{
    for (const QString& option : {QStringLiteral("--version"), QStringLiteral("-v")}) {
        CompositorProcess compositor;
        QCOMPARE(compositor.runToEnd({option}), 0);
        QCOMPARE(compositor.output(), QByteArray("telvaro-compositor " TELVARO_VERSION "\n"));
        QCOMPARE(compositor.errors(), QByteArray());
    }
}

void CompositorStartTest::printsHelpThatNamesEveryOption()
{
    CompositorProcess compositor;
    QCOMPARE(compositor.runToEnd({QStringLiteral("--help")}), 0);
    const QByteArray help = compositor.output();
    for (const char* const option :
         {"--help", "--version", "--socket NAME", "--size WIDTHxHEIGHT", "--screensaver-timeout SECONDS",
          "--fullscreen-window", "--turn-window", "--touch", "--keyboard-layout LAYOUT", "--panel APPID[:EDGE[:SIZE]]",
          "--script FILE", "WAYLAND_DISPLAY"}) {
        QVERIFY2(help.contains(option), option);
    }
    QVERIFY(!QString::fromUtf8(help).contains(QRegularExpression(QStringLiteral("[^\n]{81}"))));
    QCOMPARE(compositor.errors(), QByteArray());
}

void CompositorStartTest::printsHelpWithoutADisplayOrABus()
{
    CompositorProcess compositor;
    for (const char* const name : {"QT_QPA_PLATFORM", "DISPLAY", "XDG_RUNTIME_DIR", "DBUS_SESSION_BUS_ADDRESS"}) {
        compositor.environment().remove(QLatin1String(name));
    }
    QCOMPARE(compositor.runToEnd({QStringLiteral("--help")}), 0);
    QCOMPARE(compositor.errors(), QByteArray());
}

void CompositorStartTest::refusesUnknownArguments_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("message");
    const auto row = [](const QStringList& arguments, const char* message) {
        QTest::newRow(message) << arguments << QByteArray(message);
    };
    const QString size = QStringLiteral("--size");
    const QString socket = QStringLiteral("--socket");
    const QString timeout = QStringLiteral("--screensaver-timeout");
    row({QStringLiteral("--wrong")}, "Unknown option 'wrong'.");
    row({QStringLiteral("word")}, "unexpected argument 'word'");
    row({QString()}, "unexpected argument ''");
    row({QStringLiteral("--wrong=1")}, "Unknown option 'wrong'.\n");
    row({size}, "Missing value after '--size'.");
    row({size, QStringLiteral("big")}, "\"big\" is not a size: WIDTHxHEIGHT is expected, each from 64 to 8192");
    row({size, QStringLiteral("0x600")}, "\"0x600\" is not a size");
    row({size, QStringLiteral("1024x99999")}, "\"1024x99999\" is not a size");
    row({size, QStringLiteral("800x600\n")}, "\"800x600\xef\xbf\xbd\" is not a size");
    row({QStringLiteral("--size=-5x-5")}, "\"-5x-5\" is not a size");
    row({socket}, "Missing value after '--socket'.");
    row({socket, QStringLiteral("../outside")}, "\"../outside\" is not a socket name: a plain file name is expected");
    row({socket, QStringLiteral("way\nland")}, "\"way\xef\xbf\xbdland\" is not a socket name");
    row({socket, QString()}, "\"\" is not a socket name");
    row({timeout, QStringLiteral("-1")}, "\"-1\" is not a number of seconds from 0");
    row({QStringLiteral("--turn-window"), QStringLiteral("--fullscreen-window")},
        "--fullscreen-window and --turn-window exclude each other");
    row({timeout, QStringLiteral("soon")}, "\"soon\" is not a number of seconds from 0");
}

void CompositorStartTest::refusesUnknownArguments()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, message);
    CompositorProcess compositor;
    QCOMPARE(compositor.runToEnd(arguments), 2);
    QVERIFY2(compositor.errors().startsWith("telvaro-compositor: " + message), compositor.errors().constData());
    QVERIFY2(compositor.errors().endsWith("\ntelvaro-compositor: see 'telvaro-compositor --help'\n"),
             compositor.errors().constData());
    QCOMPARE(compositor.output(), QByteArray());
    QCOMPARE(compositor.sockets(), QStringList());
}

void CompositorStartTest::isThereForItsClientsOnceItHasPrintedItsDisplay()
{
    CompositorProcess compositor;
    compositor.start();
    QVERIFY(isNameOwned(cServiceName));
    QVERIFY(compositor.sockets().contains(compositor.display()));
    QCOMPARE(CompositorBus::views().size(), 0);
    QCOMPARE(CompositorBus::currentView(), QString());
    QCOMPARE(compositor.end(), 0);
}

void CompositorStartTest::printsNothingElse()
{
    CompositorProcess compositor;
    compositor.start();
    CompositorBus::views();
    QCOMPARE(compositor.end(), 0);
    QCOMPARE(compositor.output(), QByteArray());
    QCOMPARE(compositor.errors(), QByteArray());
}

void CompositorStartTest::takesTheFirstFreeSocketName()
{
    CompositorProcess compositor;
    compositor.start();
    QCOMPARE(compositor.display(), QStringLiteral("wayland-1"));
    QCOMPARE(compositor.end(), 0);
    QCOMPARE(compositor.sockets(), QStringList());
}

void CompositorStartTest::takesTheSocketNameThatIsWanted()
{
    CompositorProcess compositor;
    compositor.start({QStringLiteral("--socket"), QStringLiteral("device")});
    QCOMPARE(compositor.display(), QStringLiteral("device"));
    QCOMPARE(compositor.end(), 0);
    QCOMPARE(compositor.sockets(), QStringList());
}

void CompositorStartTest::takesAStaleSocketNameOver()
{
    CompositorProcess compositor;
    compositor.start();
    compositor.signal(SIGKILL);
    QCOMPARE(compositor.waitForEnd(), -SIGKILL);
    QVERIFY(compositor.sockets().contains(QStringLiteral("wayland-1")));

    compositor.start();
    QCOMPARE(compositor.display(), QStringLiteral("wayland-1"));
    QCOMPARE(compositor.end(), 0);
    QCOMPARE(compositor.sockets(), QStringList());
}

void CompositorStartTest::refusesASocketNameThatIsInUse()
{
    CompositorProcess first;
    first.start({QStringLiteral("--socket"), QStringLiteral("device")});
    CompositorProcess second;
    second.environment().insert(QStringLiteral("XDG_RUNTIME_DIR"), first.runtimeDirectory());
    QCOMPARE(second.runToEnd({QStringLiteral("--socket"), QStringLiteral("device")}), 1);
    QCOMPARE(second.errors(),
             QByteArray("telvaro-compositor: the Wayland socket \"device\" is in use by another compositor\n"));
    QVERIFY(first.sockets().contains(QStringLiteral("device")));
    QCOMPARE(first.end(), 0);
}

void CompositorStartTest::failsWithoutAPlaceForTheSocket_data()
{
    QTest::addColumn<QString>("directory");
    QTest::addColumn<QByteArray>("message");
    QTest::newRow("not set") << QString() << QByteArray("XDG_RUNTIME_DIR is not set");
    QTest::newRow("relative") << QStringLiteral("run")
                              << QByteArray("XDG_RUNTIME_DIR (\"run\") is not an absolute path");
    QTest::newRow("missing") << QStringLiteral("/nowhere/at/all")
                             << QByteArray("XDG_RUNTIME_DIR (\"/nowhere/at/all\") is not a directory");
    QTest::newRow("a file") << QStringLiteral("/etc/passwd")
                            << QByteArray("XDG_RUNTIME_DIR (\"/etc/passwd\") is not a directory");
    // Not writable, even for root.
    QTest::newRow("not writable") << QStringLiteral("/proc")
                                  << QByteArray("cannot open the Wayland socket \"wayland-1\" in XDG_RUNTIME_DIR "
                                                "(\"/proc\"): ");
}

void CompositorStartTest::failsWithoutAPlaceForTheSocket()
{
    QFETCH(QString, directory);
    QFETCH(QByteArray, message);
    CompositorProcess compositor;
    compositor.environment().remove(QStringLiteral("XDG_RUNTIME_DIR"));
    if (!directory.isEmpty()) {
        compositor.environment().insert(QStringLiteral("XDG_RUNTIME_DIR"), directory);
    }
    QCOMPARE(compositor.runToEnd(), 1);
    QVERIFY2(compositor.errors().contains("telvaro-compositor: " + message), compositor.errors().constData());
    QVERIFY(!isNameOwned(cServiceName));
}

void CompositorStartTest::failsWithoutABus()
{
    CompositorProcess compositor;
    for (const char* const name : {"DBUS_SESSION_BUS_ADDRESS", "DBUS_SYSTEM_BUS_ADDRESS"}) {
        compositor.environment().insert(QLatin1String(name), QStringLiteral("unix:path=/nowhere/at/all"));
    }
    QCOMPARE(compositor.runToEnd(), 1);
    QVERIFY2(compositor.errors().startsWith("telvaro-compositor: cannot connect to the "),
             compositor.errors().constData());
    QCOMPARE(compositor.errors().count('\n'), 1);
    QCOMPARE(compositor.output(), QByteArray());
    QVERIFY(!compositor.sockets().contains(QStringLiteral("wayland-1")));
}

void CompositorStartTest::failsWithoutADisplay()
{
    CompositorProcess compositor;
    compositor.environment().insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    compositor.environment().remove(QStringLiteral("DISPLAY"));
    QCOMPARE(compositor.runToEnd(), 1);
    QVERIFY2(compositor.errors().startsWith("telvaro-compositor: "), compositor.errors().constData());
    QCOMPARE(compositor.sockets(), QStringList());
}

void CompositorStartTest::onlyOneCompositorRunsOnABus()
{
    CompositorProcess first;
    first.start();
    CompositorProcess second;
    QCOMPARE(second.runToEnd(), 1);
    QCOMPARE(second.output(), QByteArray());
    QVERIFY2(second.errors().endsWith(" bus is taken: another compositor is running\n"), second.errors().constData());
    QVERIFY(second.errors().startsWith("telvaro-compositor: the name " TELVARO_SERVICE_NAME " on the "));
    QCOMPARE(second.errors().count('\n'), 1);
    QVERIFY(!second.sockets().contains(QStringLiteral("wayland-1")));

    QCOMPARE(CompositorBus::views().size(), 0);
    QCOMPARE(first.end(), 0);
}

void CompositorStartTest::isAloneAgainAfterTheFirstHasEnded()
{
    for (int i = 0; i < 3; ++i) {
        CompositorProcess compositor;
        compositor.start();
        QCOMPARE(CompositorBus::currentView(), QString());
        QCOMPARE(compositor.end(), 0);
        QVERIFY(!isNameOwned(cServiceName));
    }
}

void CompositorStartTest::endsOnASignal_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGHUP") << SIGHUP;
}

void CompositorStartTest::endsOnASignal()
{
    QFETCH(int, number);
    CompositorProcess compositor;
    compositor.start();
    compositor.signal(number);
    QCOMPARE(compositor.waitForEnd(), 0);
    QCOMPARE(compositor.errors(), QByteArray());
    QCOMPARE(compositor.sockets(), QStringList());
    QVERIFY(!isNameOwned(cServiceName));
}

void CompositorStartTest::endsWhenTheBusGoesAway()
{
    // A second bus, since this process's own must stay.
    const QByteArray address = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    PrivateBus bus;
    CompositorProcess compositor;
    PrivateBus::setAddress(address);

    compositor.start();
    QVERIFY(!isNameOwned(cServiceName));
    bus.kill();
    QCOMPARE(compositor.waitForEnd(), 1);
    QCOMPARE(compositor.errors(), QByteArray("telvaro-compositor: the connection to the bus is lost\n"));
    QCOMPARE(compositor.sockets(), QStringList());
}

void CompositorStartTest::takesTheNotificationNameToo()
{
    CompositorProcess compositor;
    compositor.start();
    QVERIFY(isNameOwned(QStringLiteral("org.freedesktop.Notifications")));
    QCOMPARE(compositor.end(), 0);
    QVERIFY(!isNameOwned(QStringLiteral("org.freedesktop.Notifications")));
}

void CompositorStartTest::leavesTheNotificationNameToWhoeverHasIt()
{
    QVERIFY(PrivateBus::connection().registerService(QStringLiteral("org.freedesktop.Notifications")));
    CompositorProcess compositor;
    compositor.start();
    QCOMPARE(compositor.errors(),
             QByteArray("telvaro-compositor: the name org.freedesktop.Notifications is taken by another notification "
                        "server; notifications arrive under the name " TELVARO_SERVICE_NAME " only\n"));
    QCOMPARE(CompositorBus::callChecked(CompositorBus::cNotificationsPath, CompositorBus::cNotifications,
                                        QStringLiteral("GetServerInformation"))
                 .value(0)
                 .toString(),
             QStringLiteral("telvaro-compositor"));
    QCOMPARE(compositor.end(), 0);
    QVERIFY(PrivateBus::connection().unregisterService(QStringLiteral("org.freedesktop.Notifications")));
}

void CompositorStartTest::hasTheSizeThatIsWanted()
{
    CompositorProcess compositor;
    compositor.start({QStringLiteral("--size=640x360")});
    const QString path = CompositorBus::callChecked(CompositorBus::cScreenShotPath, CompositorBus::cScreenShot,
                                                    QStringLiteral("ScreenShot"), {compositor.runtimeDirectory()})
                             .value(0)
                             .toString();
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    // Width and height follow the first chunk's header in big-endian order.
    QCOMPARE(file.read(24).mid(16).toHex(), QByteArray("0000028000000168"));
    QVERIFY(file.remove());
    QCOMPARE(compositor.end(), 0);
}

void CompositorStartTest::isNoClientOfItself()
{
    CompositorProcess compositor;
    compositor.environment().insert(QStringLiteral("WAYLAND_DISPLAY"), QStringLiteral("wayland-1"));
    compositor.environment().insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("wayland"));
    QCOMPARE(compositor.runToEnd(), 1);
    QCOMPARE(compositor.sockets(), QStringList());

    compositor.environment().insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    compositor.start();
    QCOMPARE(compositor.display(), QStringLiteral("wayland-1"));
    QCOMPARE(CompositorBus::views().size(), 0);
    QCOMPARE(compositor.end(), 0);
}

TELVARO_TEST_MAIN(CompositorStartTest)

#include "CompositorStartTest.moc"
