// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "CompositorBus.h"
#include "CompositorFixture.h"
#include "NotificationClient.h"
#include "TestMain.h"

#include "TelvaroScreenDBusConnector.h"

#include <QSignalSpy>

namespace {

const QString cActive = QStringLiteral("screenSaverActive");
const QString cEnabled = QStringLiteral("screenSaverEnabled");
const QString cTimeout = QStringLiteral("screenSaverTimeoutSeconds");
const QString cOrientation = QStringLiteral("orientation");
const QString cFullScreen = QStringLiteral("fullScreen");

QVariant get(const QString& property)
{
    return CompositorBus::get(CompositorBus::cScreenPath, CompositorBus::cScreen, property);
}

QString set(const QString& property, const QVariant& value)
{
    return CompositorBus::errorOf(
        CompositorBus::set(CompositorBus::cScreenPath, CompositorBus::cScreen, property, value));
}

bool isOneColour(const QImage& image, const QRect& rect)
{
    const QRgb first = image.pixel(rect.topLeft());
    for (int y = rect.top(); y <= rect.bottom(); ++y) {
        for (int x = rect.left(); x <= rect.right(); ++x) {
            if (image.pixel(x, y) != first) {
                return false;
            }
        }
    }
    return true;
}

} // namespace

class CompositorScreenTest : public CompositorFixture
{
    Q_OBJECT

private Q_SLOTS:
    void beginsWithItsDefaults();
    void takesTheTimeoutFromTheCommandLine();
    void everyWriteIsStoredAndSignalledOnce_data();
    void everyWriteIsStoredAndSignalledOnce();
    void writingTheSameValueSignalsNothing_data();
    void writingTheSameValueSignalsNothing();
    void wrongValuesAreRefused_data();
    void wrongValuesAreRefused();
    void theScreenSaverStartsAfterTheTimeout();
    void theScreenSaverBlanksTheOutput();
    void disablingEndsTheScreenSaver();
    void aTimeoutOfZeroIsNever();
    void theScreenSaverDoesNotStartWhileItIsDisabled();
    void orientationTurnsThePicture_data();
    void orientationTurnsThePicture();
    void clientsAreConfiguredToTheTurnedSize_data();
    void clientsAreConfiguredToTheTurnedSize();
    void clientsAreToldOfTheTurnedOutput_data();
    void clientsAreToldOfTheTurnedOutput();
    void fullScreenHidesTheStatusBarAndTellsClients();
    void theLibraryChangesTheScreen();
};

void CompositorScreenTest::beginsWithItsDefaults()
{
    QCOMPARE(get(cActive), QVariant(false));
    QCOMPARE(get(cEnabled), QVariant(true));
    QCOMPARE(get(cTimeout), QVariant(300));
    QCOMPARE(get(cOrientation), QVariant(QStringLiteral("0")));
    QCOMPARE(get(cFullScreen), QVariant(false));
}

void CompositorScreenTest::takesTheTimeoutFromTheCommandLine()
{
    QCOMPARE(mCompositor->end(), 0);
    mCompositor->start({QStringLiteral("--screensaver-timeout=77")});
    QCOMPARE(get(cTimeout), QVariant(77));
}

void CompositorScreenTest::everyWriteIsStoredAndSignalledOnce_data()
{
    QTest::addColumn<QString>("property");
    QTest::addColumn<QVariant>("value");
    QTest::newRow("screen saver disabled") << cEnabled << QVariant(false);
    QTest::newRow("timeout") << cTimeout << QVariant(12);
    QTest::newRow("timeout never") << cTimeout << QVariant(0);
    QTest::newRow("largest timeout") << cTimeout << QVariant(2147483647);
    QTest::newRow("portrait") << cOrientation << QVariant(QStringLiteral("90"));
    QTest::newRow("upside down") << cOrientation << QVariant(QStringLiteral("180"));
    QTest::newRow("inverse portrait") << cOrientation << QVariant(QStringLiteral("270"));
    QTest::newRow("full screen") << cFullScreen << QVariant(true);
}

void CompositorScreenTest::everyWriteIsStoredAndSignalledOnce()
{
    QFETCH(QString, property);
    QFETCH(QVariant, value);
    QCOMPARE(set(property, value), QString());
    QCOMPARE(get(property), value);
    const QList<PropertyMonitor::Change> changes = mMonitor->take();
    QCOMPARE(changes.size(), 1);
    QCOMPARE(changes.first().path, CompositorBus::cScreenPath);
    QCOMPARE(changes.first().interface, CompositorBus::cScreen);
    QCOMPARE(changes.first().values, QVariantMap({{property, value}}));
    QCOMPARE(changes.first().invalidated, QStringList());
}

void CompositorScreenTest::writingTheSameValueSignalsNothing_data()
{
    QTest::addColumn<QString>("property");
    for (const QString& property : {cEnabled, cTimeout, cOrientation, cFullScreen}) {
        QTest::newRow(qPrintable(property)) << property;
    }
}

void CompositorScreenTest::writingTheSameValueSignalsNothing()
{
    QFETCH(QString, property);
    QCOMPARE(set(property, get(property)), QString());
    QCOMPARE(mMonitor->takeNames(), QStringList());
}

void CompositorScreenTest::wrongValuesAreRefused_data()
{
    QTest::addColumn<QString>("property");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("error");
    const QString invalid = QStringLiteral("org.freedesktop.DBus.Error.InvalidArgs: ");
    const auto orientation = [&invalid](const char* name, const QString& value) {
        QTest::newRow(name) << cOrientation << QVariant(value)
                            << invalid
                + QStringLiteral("\"%1\" is not an orientation; one of \"0\", \"90\", \"180\", \"270\" is expected")
                      .arg(value);
    };
    orientation("orientation 45", QStringLiteral("45"));
    orientation("orientation empty", QString());
    orientation("orientation with a blank", QStringLiteral("90 "));
    orientation("orientation 360", QStringLiteral("360"));
    orientation("orientation 090", QStringLiteral("090"));
    const QString timeoutError = QStringLiteral("%1 is not a timeout; seconds from 0 are expected, 0 for never");
    QTest::newRow("timeout -1") << cTimeout << QVariant(-1) << invalid + timeoutError.arg(-1);
    QTest::newRow("smallest timeout") << cTimeout << QVariant(-2147483647 - 1)
                                      << invalid + timeoutError.arg(-2147483647 - 1);
    QTest::newRow("read-only") << cActive << QVariant(true)
                               << QStringLiteral("org.freedesktop.DBus.Error.PropertyReadOnly: the property "
                                                 "\"screenSaverActive\" can only be read");
}

void CompositorScreenTest::wrongValuesAreRefused()
{
    QFETCH(QString, property);
    QFETCH(QVariant, value);
    QFETCH(QString, error);
    const QVariant before = get(property);
    QCOMPARE(set(property, value), error);
    QCOMPARE(get(property), before);
    QCOMPARE(mMonitor->takeNames(), QStringList());
}

void CompositorScreenTest::theScreenSaverStartsAfterTheTimeout()
{
    QCOMPARE(set(cTimeout, 1), QString());
    const PropertyMonitor::Change change = mMonitor->waitFor(cActive);
    QCOMPARE(change.values, QVariantMap({{cActive, true}}));
    QCOMPARE(get(cActive), QVariant(true));
    QCOMPARE(mMonitor->takeNames(), QStringList());
}

void CompositorScreenTest::theScreenSaverBlanksTheOutput()
{
    CompositorBus::callChecked(CompositorBus::cOverlayPath, CompositorBus::cOverlay, QStringLiteral("Show"),
                               {QStringLiteral("Over everything")});
    const QImage awake = screenShot();
    QVERIFY(!isOneColour(awake, awake.rect()));
    set(cTimeout, 1);
    mMonitor->waitFor(cActive);
    const QImage asleep = screenShot();
    QCOMPARE(asleep.size(), awake.size());
    QVERIFY(isOneColour(asleep, asleep.rect()));
    QCOMPARE(asleep.pixelColor(0, 0), QColor(Qt::black));
}

void CompositorScreenTest::disablingEndsTheScreenSaver()
{
    set(cTimeout, 1);
    mMonitor->waitFor(cActive);
    QCOMPARE(set(cEnabled, false), QString());
    QCOMPARE(mMonitor->takeNames(), QStringList({cEnabled, cActive}));
    QCOMPARE(get(cActive), QVariant(false));
}

void CompositorScreenTest::aTimeoutOfZeroIsNever()
{
    set(cTimeout, 1);
    mMonitor->waitFor(cActive);
    QCOMPARE(set(cTimeout, 0), QString());
    QCOMPARE(mMonitor->takeNames(), QStringList({cTimeout, cActive}));
    QCOMPARE(get(cActive), QVariant(false));
}

void CompositorScreenTest::theScreenSaverDoesNotStartWhileItIsDisabled()
{
    set(cEnabled, false);
    set(cTimeout, 1);
    mMonitor->take();
    // The expiry of a longer notification marks the end of the time.
    NotificationClient notifications;
    NotificationClient::Content content;
    content.expireTimeout = 1500;
    NotificationClient::notify(content);
    notifications.waitForEvent();
    QCOMPARE(get(cActive), QVariant(false));
    QCOMPARE(mMonitor->takeNames(), QStringList());
    set(cEnabled, true);
    QCOMPARE(mMonitor->waitFor(cActive).values, QVariantMap({{cActive, true}}));
}

void CompositorScreenTest::orientationTurnsThePicture_data()
{
    QTest::addColumn<QString>("orientation");
    QTest::addColumn<int>("angle");
    QTest::newRow("90") << QStringLiteral("90") << 90;
    QTest::newRow("180") << QStringLiteral("180") << 180;
    QTest::newRow("270") << QStringLiteral("270") << 270;
}

void CompositorScreenTest::orientationTurnsThePicture()
{
    QFETCH(QString, orientation);
    QFETCH(int, angle);
    const auto client = protocolClient();
    client->send("open a Window");
    client->send("subsurface 1");
    client->send("sync");
    client->waitFor("synced");
    set(cFullScreen, true);
    set(cOrientation, orientation);

    // A window of 300x200 in the middle of the output, a blue square of 40x50 at 20,30 in it.
    const QImage picture = screenShot();
    QCOMPARE(picture.size(), QSize(1024, 600));
    const QSize size = angle == 180 ? QSize(1024, 600) : QSize(600, 1024);
    const QImage upright = picture.transformed(QTransform().rotate(-angle));
    QCOMPARE(upright.size(), size);
    const QPoint window((size.width() - 300) / 2, (size.height() - 200) / 2);
    QCOMPARE(upright.pixelColor(window), QColor(Qt::white));
    QVERIFY(upright.pixelColor(window - QPoint(1, 1)) != QColor(Qt::white));
    QCOMPARE(upright.pixelColor(window + QPoint(299, 199)), QColor(Qt::white));
    QVERIFY(upright.pixelColor(window + QPoint(300, 200)) != QColor(Qt::white));
    QVERIFY(isOneColour(upright, QRect(window + QPoint(20, 30), QSize(40, 50))));
    QCOMPARE(upright.pixelColor(window + QPoint(20, 30)), QColor(Qt::blue));
    QCOMPARE(upright.pixelColor(window + QPoint(19, 29)), QColor(Qt::white));
    QCOMPARE(upright.pixelColor(window + QPoint(60, 80)), QColor(Qt::white));
}

void CompositorScreenTest::clientsAreConfiguredToTheTurnedSize_data()
{
    QTest::addColumn<QString>("orientation");
    QTest::addColumn<QByteArray>("size");
    QTest::newRow("90") << QStringLiteral("90") << QByteArray("600x990");
    QTest::newRow("270") << QStringLiteral("270") << QByteArray("600x990");
}

void CompositorScreenTest::clientsAreConfiguredToTheTurnedSize()
{
    QFETCH(QString, orientation);
    QFETCH(QByteArray, size);
    const auto client = testClient();
    client->send("open a Window");
    client->waitFor("size 1 1024x566");
    set(cOrientation, orientation);
    client->waitFor("size 1 " + size);
    set(cOrientation, QStringLiteral("0"));
    client->waitFor("size 1 1024x566");
}

void CompositorScreenTest::clientsAreToldOfTheTurnedOutput_data()
{
    QTest::addColumn<QString>("orientation");
    QTest::addColumn<QByteArray>("description");
    // Wayland rotates counter-clockwise; the mode has the output's unrotated size.
    QTest::newRow("0") << QStringLiteral("0") << QByteArray("transform 0 mode 1024x600");
    QTest::newRow("90") << QStringLiteral("90") << QByteArray("transform 3 mode 1024x600");
    QTest::newRow("180") << QStringLiteral("180") << QByteArray("transform 2 mode 1024x600");
    QTest::newRow("270") << QStringLiteral("270") << QByteArray("transform 1 mode 1024x600");
}

void CompositorScreenTest::clientsAreToldOfTheTurnedOutput()
{
    QFETCH(QString, orientation);
    QFETCH(QByteArray, description);
    set(cOrientation, orientation);
    const auto client = protocolClient();
    client->send("output");
    QCOMPARE(client->waitFor("output"), description);
}

void CompositorScreenTest::fullScreenHidesTheStatusBarAndTellsClients()
{
    const auto client = protocolClient();
    client->send("open a Window");
    client->waitFor("configure 1 1024x566 maximized activated");
    const QImage withBar = screenShot();
    QVERIFY(!isOneColour(withBar, QRect(0, 0, 200, 34)));

    set(cFullScreen, true);
    client->waitFor("configure 1 1024x600 fullscreen activated");
    const QImage withoutBar = screenShot();
    QVERIFY(isOneColour(withoutBar, QRect(0, 4, 1024, 1)));

    set(cFullScreen, false);
    client->waitFor("configure 1 1024x566 maximized activated");
}

void CompositorScreenTest::theLibraryChangesTheScreen()
{
    TelvaroScreenDBusConnector screen;
    QSignalSpy saver(&screen, &TelvaroScreenDBusConnector::screenSaverActiveChanged);
    QSignalSpy orientation(&screen, &TelvaroScreenDBusConnector::screenOrientationChanged);
    QSignalSpy fullScreen(&screen, &TelvaroScreenDBusConnector::fullScreenChanged);

    screen.setOrientation(TelvaroScreenDBusConnector::getOrientationPortrait());
    TRY_COMPARE(orientation.size(), 1);
    QCOMPARE(orientation.first().first().toString(), QStringLiteral("90"));
    QCOMPARE(screen.getOrientation(), QStringLiteral("90"));
    screen.setOrientation(QStringLiteral("diagonal"));
    QCOMPARE(screen.getOrientation(), QStringLiteral("90"));

    screen.setFullScreen(true);
    TRY_COMPARE(fullScreen.size(), 1);
    QCOMPARE(screen.getFullScreen(), true);

    screen.setScreenSaverTimeout(1);
    TRY_COMPARE(saver.size(), 1);
    QCOMPARE(screen.isScreenSaverActive(), true);
    screen.disableScreenSaver();
    TRY_COMPARE(saver.size(), 2);
    QCOMPARE(screen.isScreenSaverActive(), false);
    QCOMPARE(orientation.size(), 1);
    QCOMPARE(fullScreen.size(), 1);
}

TELVARO_TEST_MAIN(CompositorScreenTest)

#include "CompositorScreenTest.moc"
