// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "CompositorBus.h"
#include "CompositorFixture.h"
#include "TestMain.h"

#include "TelvaroGlobalOverlayDBusConnector.h"

namespace {

void show(const QString& message)
{
    CompositorBus::callChecked(CompositorBus::cOverlayPath, CompositorBus::cOverlay, QStringLiteral("Show"), {message});
}

void hide()
{
    CompositorBus::callChecked(CompositorBus::cOverlayPath, CompositorBus::cOverlay, QStringLiteral("Hide"));
}

/// The bounding rectangle of the overlay's bright text.
QRect textArea(const QImage& image, const QRect& area)
{
    QRect rect;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            if (qGray(image.pixel(x, y)) > 200) {
                rect |= QRect(x, y, 1, 1);
            }
        }
    }
    return rect;
}

} // namespace

class CompositorOverlayTest : public CompositorFixture
{
    Q_OBJECT

private Q_SLOTS:
    void isSeenUntilItIsHidden();
    void hidingNothingIsNoError();
    void anotherMessageReplacesTheFirst();
    void anEmptyMessageIsAPanelWithoutText();
    void liesOverEverything();
    void aShortMessageIsLarge();
    void anyMessageFits_data();
    void anyMessageFits();
    void isTurnedWithTheOutput();
    void theLibraryShowsIt();

private:
    QRect outputWithoutStatusBar() const
    {
        return {0, 40, 1024, 560};
    }
};

void CompositorOverlayTest::isSeenUntilItIsHidden()
{
    const QImage before = screenShot();
    show(QStringLiteral("Hello"));
    const QImage shown = screenShot();
    QVERIFY(!difference(before, shown).isEmpty());
    hide();
    const QRect area = outputWithoutStatusBar();
    QCOMPARE(screenShot().copy(area), before.copy(area));
}

void CompositorOverlayTest::hidingNothingIsNoError()
{
    hide();
    hide();
}

void CompositorOverlayTest::anotherMessageReplacesTheFirst()
{
    show(QStringLiteral("First"));
    const QImage first = screenShot();
    show(QStringLiteral("Second"));
    QVERIFY(!difference(first, screenShot()).isEmpty());
    show(QStringLiteral("First"));
    const QRect area = outputWithoutStatusBar();
    QCOMPARE(screenShot().copy(area), first.copy(area));
    hide();
    QVERIFY(!difference(first, screenShot()).isEmpty());
}

void CompositorOverlayTest::anEmptyMessageIsAPanelWithoutText()
{
    const QImage before = screenShot();
    show(QString());
    const QImage shown = screenShot();
    QVERIFY(!difference(before, shown).isEmpty());
    QVERIFY(textArea(shown, outputWithoutStatusBar()).isEmpty());
}

void CompositorOverlayTest::liesOverEverything()
{
    const auto client = protocolClient();
    client->send("open a Window");
    TRY_COMPARE(CompositorBus::views().size(), 1);
    CompositorBus::callChecked(
        CompositorBus::cNotificationsPath, CompositorBus::cNotifications, QStringLiteral("Notify"),
        {QString(), 0U, QString(), QStringLiteral("Summary"), QString(), QStringList(), QVariantMap(), 0});
    const QImage before = screenShot();
    show(QStringLiteral("Over everything"));
    const QImage shown = screenShot();
    QCOMPARE(difference(before, shown), before.rect());
    // The window, the status bar and the card are all dimmed.
    for (const QPoint& place : {QPoint(370, 220), QPoint(3, 3), QPoint(700, 60)}) {
        QVERIFY(qGray(shown.pixel(place)) < qGray(before.pixel(place)));
    }
}

void CompositorOverlayTest::aShortMessageIsLarge()
{
    show(QStringLiteral("Hello"));
    const QRect text = textArea(screenShot(), outputWithoutStatusBar());
    QVERIFY(text.height() >= 24);
    QVERIFY(qAbs(text.center().x() - 512) < 20);
    QVERIFY(qAbs(text.center().y() - 300) < 30);
}

void CompositorOverlayTest::anyMessageFits_data()
{
    QTest::addColumn<QString>("size");
    QTest::addColumn<QString>("message");
    const QString sentence = QStringLiteral("The device is being updated; please do not switch it off. ");
    const QStringList sizes{QStringLiteral("1024x600"), QStringLiteral("600x1024"), QStringLiteral("320x240"),
                            QStringLiteral("64x64"), QStringLiteral("1920x1080")};
    for (const QString& size : sizes) {
        const auto row = [&size](const char* name, const QString& message) {
            QTest::newRow(qPrintable(size + QLatin1Char(' ') + QLatin1String(name))) << size << message;
        };
        row("word", QStringLiteral("Hello"));
        row("sentence", sentence);
        row("page", sentence.repeated(40));
        row("one long word", QString(5000, QLatin1Char('m')));
        row("a megabyte", sentence.repeated(20000));
        row("many lines", QStringLiteral("line\n").repeated(500));
        row("control characters", QStringLiteral("a\tb\x01\x7f\r\nc"));
        row("half a surrogate pair", QString(QChar(0xd83d)));
    }
}

void CompositorOverlayTest::anyMessageFits()
{
    QFETCH(QString, size);
    QFETCH(QString, message);
    QCOMPARE(mCompositor->end(), 0);
    mCompositor->start({QStringLiteral("--size"), size});
    CompositorBus::callChecked(
        CompositorBus::cScreenPath, CompositorBus::cProperties, QStringLiteral("Set"),
        {CompositorBus::cScreen, QStringLiteral("fullScreen"), QVariant::fromValue(QDBusVariant(true))});
    const QImage before = screenShot();
    show(message);
    const QImage shown = screenShot();
    const QRect text = textArea(shown, shown.rect());
    QVERIFY(!text.isEmpty());
    // The text is not clipped at the output's edges.
    QVERIFY2(
        shown.rect().adjusted(1, 1, -1, -1).contains(text),
        qPrintable(QStringLiteral("%1,%2 %3x%4").arg(text.x()).arg(text.y()).arg(text.width()).arg(text.height())));
}

void CompositorOverlayTest::isTurnedWithTheOutput()
{
    show(QStringLiteral("One short line of text"));
    const QRect upright = textArea(screenShot(), outputWithoutStatusBar());
    QVERIFY(upright.width() > upright.height());
    CompositorBus::set(CompositorBus::cScreenPath, CompositorBus::cScreen, QStringLiteral("orientation"),
                       QStringLiteral("90"));
    const QRect turned = textArea(screenShot(), QRect(0, 0, 980, 600));
    QVERIFY(turned.height() > turned.width());
}

void CompositorOverlayTest::theLibraryShowsIt()
{
    const QImage before = screenShot();
    TelvaroGlobalOverlayDBusConnector overlay;
    overlay.showGlobalOverlay(QStringLiteral("Hello"));
    QVERIFY(!difference(before, screenShot()).isEmpty());
    overlay.hideGlobalOverlay();
    const QRect area = outputWithoutStatusBar();
    QCOMPARE(screenShot().copy(area), before.copy(area));
}

TELVARO_TEST_MAIN(CompositorOverlayTest)

#include "CompositorOverlayTest.moc"
