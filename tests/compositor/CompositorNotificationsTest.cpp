// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "BusClients.h"
#include "CompositorBus.h"
#include "CompositorFixture.h"
#include "ImageHint.h"
#include "NotificationClient.h"
#include "TestMain.h"

#include "TelvaroNotificationDBusConnector.h"

#include <QDBusMetaType>
#include <QElapsedTimer>

namespace {

const QRect cCardArea(600, 36, 424, 564);

bool hasColour(const QImage& image, const QColor& color)
{
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y) == color) {
                return true;
            }
        }
    }
    return false;
}

} // namespace

class CompositorNotificationsTest : public CompositorFixture
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void saysWhoItIs();
    void claimsOnlyWhatItDoes();
    void idsCountFromOne();
    void aReplacedNotificationKeepsItsId();
    void anUnknownReplacesIdGetsANewId();
    void isSeenUntilItIsClosed();
    void closingAnUnknownNotificationIsAnErrorWithoutText();
    void expiresAfterItsTimeout();
    void expiresAfterTheServersOwnTimeout();
    void neverExpiresWithATimeoutOfZero();
    void aCriticalOneNeverExpires();
    void replacingBeginsTheTimeoutAnew();
    void iconsAreShown_data();
    void iconsAreShown();
    void brokenPicturesAreLeftOut_data();
    void brokenPicturesAreLeftOut();
    void anyTextIsShown_data();
    void anyTextIsShown();
    void theirNumberIsBounded();
    void aFloodLeavesTheMemoryAlone();
    void tenThousandOfAllKindsFromTwentyClients();
    void theLibraryNotifies();
    void notifySendNotifies();
    void notifySendWaitsForTheEnd();
};

void CompositorNotificationsTest::initTestCase()
{
    qDBusRegisterMetaType<ImageHint>();
}

void CompositorNotificationsTest::saysWhoItIs()
{
    const QVariantList answer = CompositorBus::callChecked(
        CompositorBus::cNotificationsPath, CompositorBus::cNotifications, QStringLiteral("GetServerInformation"));
    QCOMPARE(answer,
             QVariantList({QStringLiteral("telvaro-compositor"), QStringLiteral("The Telvaro authors"),
                           QStringLiteral(TELVARO_VERSION), QStringLiteral("1.2")}));
}

void CompositorNotificationsTest::claimsOnlyWhatItDoes()
{
    const QStringList capabilities =
        CompositorBus::callChecked(CompositorBus::cNotificationsPath, CompositorBus::cNotifications,
                                   QStringLiteral("GetCapabilities"))
            .value(0)
            .toStringList();
    QCOMPARE(capabilities,
             QStringList({QStringLiteral("action-icons"), QStringLiteral("actions"), QStringLiteral("body"),
                          QStringLiteral("icon-static"), QStringLiteral("persistence")}));
}

void CompositorNotificationsTest::idsCountFromOne()
{
    QCOMPARE(NotificationClient::notify({}), 1U);
    QCOMPARE(NotificationClient::notify({}), 2U);
    QCOMPARE(NotificationClient::close(1), QString());
    QCOMPARE(NotificationClient::notify({}), 3U);
}

void CompositorNotificationsTest::aReplacedNotificationKeepsItsId()
{
    NotificationClient client;
    NotificationClient::Content content;
    content.replacesId = NotificationClient::notify(content);
    const QImage before = screenShot();
    content.summary = QStringLiteral("Another summary");
    QCOMPARE(NotificationClient::notify(content), content.replacesId);
    QVERIFY(screenShot().copy(cCardArea) != before.copy(cCardArea));
    QCOMPARE(client.takeEvents(), QStringList());
    QCOMPARE(NotificationClient::notify({}), content.replacesId + 1);
}

void CompositorNotificationsTest::anUnknownReplacesIdGetsANewId()
{
    NotificationClient::Content content;
    content.replacesId = 4000000000U;
    QCOMPARE(NotificationClient::notify(content), 1U);
    content.replacesId = 1;
    QCOMPARE(NotificationClient::notify(content), 1U);
    QCOMPARE(NotificationClient::close(1), QString());
    QCOMPARE(NotificationClient::notify(content), 2U);
}

void CompositorNotificationsTest::isSeenUntilItIsClosed()
{
    NotificationClient client;
    const QImage before = screenShot();
    const uint id = NotificationClient::notify({});
    QVERIFY(screenShot().copy(cCardArea) != before.copy(cCardArea));
    QCOMPARE(NotificationClient::close(id), QString());
    QCOMPARE(client.takeEvents(), QStringList(QStringLiteral("closed %1 3").arg(id)));
    QCOMPARE(screenShot().copy(cCardArea), before.copy(cCardArea));
}

void CompositorNotificationsTest::closingAnUnknownNotificationIsAnErrorWithoutText()
{
    NotificationClient client;
    for (const uint id : {0U, 1U, 4294967295U}) {
        QCOMPARE(NotificationClient::close(id), QStringLiteral("org.freedesktop.DBus.Error.InvalidArgs: "));
    }
    const uint id = NotificationClient::notify({});
    QCOMPARE(NotificationClient::close(id), QString());
    QCOMPARE(NotificationClient::close(id), QStringLiteral("org.freedesktop.DBus.Error.InvalidArgs: "));
    QCOMPARE(client.takeEvents().size(), 1);
}

void CompositorNotificationsTest::expiresAfterItsTimeout()
{
    NotificationClient client;
    const QImage before = screenShot();
    NotificationClient::Content content;
    content.expireTimeout = 200;
    QElapsedTimer timer;
    timer.start();
    const uint id = NotificationClient::notify(content);
    QCOMPARE(client.waitForEvent(), QStringLiteral("closed %1 1").arg(id));
    QVERIFY(timer.elapsed() >= 200);
    QCOMPARE(screenShot().copy(cCardArea), before.copy(cCardArea));
    QCOMPARE(client.takeEvents(), QStringList());
}

void CompositorNotificationsTest::expiresAfterTheServersOwnTimeout()
{
    NotificationClient client;
    NotificationClient::Content content;
    content.expireTimeout = -1;
    QElapsedTimer timer;
    timer.start();
    const uint id = NotificationClient::notify(content);
    QCOMPARE(client.waitForEvent(), QStringLiteral("closed %1 1").arg(id));
    QVERIFY(timer.elapsed() >= 5000);
}

void CompositorNotificationsTest::neverExpiresWithATimeoutOfZero()
{
    NotificationClient client;
    NotificationClient::notify({});
    NotificationClient::Content marker;
    marker.expireTimeout = 500;
    const uint id = NotificationClient::notify(marker);
    QCOMPARE(client.waitForEvent(), QStringLiteral("closed %1 1").arg(id));
    QCOMPARE(client.takeEvents(), QStringList());
}

void CompositorNotificationsTest::aCriticalOneNeverExpires()
{
    NotificationClient client;
    NotificationClient::Content critical;
    critical.expireTimeout = 1;
    critical.hints.insert(QStringLiteral("urgency"), QVariant::fromValue(uchar(2)));
    const uint id = NotificationClient::notify(critical);
    NotificationClient::Content marker;
    marker.expireTimeout = 500;
    marker.hints.insert(QStringLiteral("urgency"), QVariant::fromValue(uchar(1)));
    const uint markerId = NotificationClient::notify(marker);
    QCOMPARE(client.waitForEvent(), QStringLiteral("closed %1 1").arg(markerId));
    QCOMPARE(client.takeEvents(), QStringList());
    QCOMPARE(NotificationClient::close(id), QString());
}

void CompositorNotificationsTest::replacingBeginsTheTimeoutAnew()
{
    NotificationClient client;
    NotificationClient::Content content;
    content.expireTimeout = 100;
    content.replacesId = NotificationClient::notify(content);
    content.expireTimeout = 0;
    NotificationClient::notify(content);
    NotificationClient::Content marker;
    marker.expireTimeout = 500;
    const uint markerId = NotificationClient::notify(marker);
    QCOMPARE(client.waitForEvent(), QStringLiteral("closed %1 1").arg(markerId));
    QCOMPARE(client.takeEvents(), QStringList());
}

void CompositorNotificationsTest::iconsAreShown_data()
{
    QTest::addColumn<QString>("kind");
    for (const char* const kind : {"path", "address", "image-path", "image-data", "icon_data"}) {
        QTest::newRow(kind) << QString::fromLatin1(kind);
    }
}

void CompositorNotificationsTest::iconsAreShown()
{
    QFETCH(QString, kind);
    QTemporaryDir directory;
    const QString path = directory.filePath(QStringLiteral("picture.png"));
    const QColor color(250, 10, 200);
    QImage picture(64, 64, QImage::Format_RGB32);
    picture.fill(color);
    QVERIFY(picture.save(path));

    NotificationClient::Content content;
    if (kind == QLatin1String("path")) {
        content.appIcon = path;
    } else if (kind == QLatin1String("address")) {
        content.appIcon = QStringLiteral("file://") + path;
    } else if (kind == QLatin1String("image-path")) {
        content.hints.insert(kind, path);
    } else {
        content.hints.insert(kind, QVariant::fromValue(ImageHint::filled(50, 30, color)));
    }
    QVERIFY(!hasColour(screenShot(), color));
    const uint id = NotificationClient::notify(content);
    QVERIFY(hasColour(screenShot().copy(cCardArea), color));
    NotificationClient::close(id);
    QVERIFY(!hasColour(screenShot(), color));
}

void CompositorNotificationsTest::brokenPicturesAreLeftOut_data()
{
    QTest::addColumn<QString>("appIcon");
    QTest::addColumn<QVariant>("data");
    const auto hint = [](const char* name, auto change) {
        ImageHint image = ImageHint::filled(50, 30, Qt::red);
        change(image);
        QTest::newRow(name) << QString() << QVariant::fromValue(image);
    };
    QTest::newRow("no such name") << QStringLiteral("no-such-icon") << QVariant();
    QTest::newRow("no such file") << QStringLiteral("/nowhere/picture.png") << QVariant();
    QTest::newRow("no picture") << QStringLiteral("/etc/passwd") << QVariant();
    QTest::newRow("an endless file") << QStringLiteral("/dev/zero") << QVariant();
    QTest::newRow("a directory") << QStringLiteral("/etc") << QVariant();
    QTest::newRow("a path that is no path") << QStringLiteral("../../etc/passwd") << QVariant();
    QTest::newRow("data of another type") << QString() << QVariant(QStringLiteral("text"));
    hint("too little data", [](ImageHint& image) {
        image.data.truncate(100);
    });
    hint("no data", [](ImageHint& image) {
        image.data.clear();
    });
    hint("negative size", [](ImageHint& image) {
        image.width = -50;
    });
    hint("huge size", [](ImageHint& image) {
        image.width = image.height = 2147483647;
    });
    hint("rows that overlap", [](ImageHint& image) {
        image.rowStride = 1;
    });
    hint("negative rows", [](ImageHint& image) {
        image.rowStride = -150;
    });
    hint("wrong depth", [](ImageHint& image) {
        image.bitsPerSample = 16;
    });
    hint("wrong channels", [](ImageHint& image) {
        image.channels = 4;
    });
    hint("alpha without channel", [](ImageHint& image) {
        image.hasAlpha = true;
    });
}

void CompositorNotificationsTest::brokenPicturesAreLeftOut()
{
    QFETCH(QString, appIcon);
    QFETCH(QVariant, data);
    const uint plain = NotificationClient::notify({});
    const QImage expected = screenShot();
    NotificationClient::close(plain);

    NotificationClient::Content content;
    content.appIcon = appIcon;
    if (data.isValid()) {
        content.hints.insert(QStringLiteral("image-data"), data);
    }
    NotificationClient::notify(content);
    QCOMPARE(screenShot().copy(cCardArea), expected.copy(cCardArea));
}

void CompositorNotificationsTest::anyTextIsShown_data()
{
    QTest::addColumn<QString>("summary");
    QTest::addColumn<QString>("body");
    QTest::addColumn<QStringList>("actions");
    const QString text = QStringLiteral("Many words that go on and on. ");
    const auto row = [](const char* name, const QString& summary, const QString& body,
                        const QStringList& actions = {}) {
        QTest::newRow(name) << summary << body << actions;
    };
    row("nothing", QString(), QString());
    row("markup", QStringLiteral("S"),
        QStringLiteral("<b>bold</b> <a href=\"x\">link</a> &lt;tag&gt; <img src=\"/x\"/>"));
    row("no markup", QStringLiteral("S"), QStringLiteral("1 < 2 && 3 > 2 <<<>>> </ <b"));
    row("a megabyte", text.repeated(30000), text.repeated(30000));
    row("many lines", QStringLiteral("S"), QStringLiteral("\n").repeated(10000));
    row("control characters", QStringLiteral("a\x01\x02"), QStringLiteral("\t\r\n\x7f"));
    row("odd list of actions", QStringLiteral("S"), QString(),
        {QStringLiteral("one"), QStringLiteral("One"), QStringLiteral("two")});
    row("empty actions", QStringLiteral("S"), QString(), {QString(), QString(), QString()});
    QStringList many;
    for (int i = 0; i < 2000; ++i) {
        many.append({QString::number(i), text.repeated(10)});
    }
    row("a thousand actions", QStringLiteral("S"), QString(), many);
}

void CompositorNotificationsTest::anyTextIsShown()
{
    QFETCH(QString, summary);
    QFETCH(QString, body);
    QFETCH(QStringList, actions);
    const QImage before = screenShot();
    NotificationClient::Content content;
    content.summary = summary;
    content.body = body;
    content.actions = actions;
    content.hints.insert(QStringLiteral("action-icons"), true);
    const uint id = NotificationClient::notify(content);
    QVERIFY(screenShot().copy(cCardArea) != before.copy(cCardArea));
    QCOMPARE(NotificationClient::close(id), QString());
    QCOMPARE(screenShot().copy(cCardArea), before.copy(cCardArea));
}

void CompositorNotificationsTest::theirNumberIsBounded()
{
    NotificationClient client;
    for (uint id = 1; id <= 100; ++id) {
        QCOMPARE(NotificationClient::notify({}), id);
    }
    QCOMPARE(client.takeEvents(), QStringList());
    QCOMPARE(NotificationClient::notify({}), 101U);
    QCOMPARE(client.takeEvents(), QStringList(QStringLiteral("closed 1 4")));
    QCOMPARE(NotificationClient::close(1), QStringLiteral("org.freedesktop.DBus.Error.InvalidArgs: "));
    QCOMPARE(NotificationClient::close(2), QString());
}

void CompositorNotificationsTest::aFloodLeavesTheMemoryAlone()
{
    const QVariantList arguments{
        QString(),     0U, QString(), QString(1000, QLatin1Char('x')), QString(1000, QLatin1Char('y')), QStringList(),
        QVariantMap(), 0};
    QDBusMessage message =
        QDBusMessage::createMethodCall(QStringLiteral(TELVARO_SERVICE_NAME), CompositorBus::cNotificationsPath,
                                       CompositorBus::cNotifications, QStringLiteral("Notify"));
    message.setArguments(arguments);
    const auto flood = [&message](int count) {
        for (int i = 0; i < count; ++i) {
            PrivateBus::connection().send(message);
            // Synchronises every now and then.
            if (i % 1000 == 999) {
                CompositorBus::currentView();
            }
        }
    };
    flood(2000);
    const qint64 before = mCompositor->residentMemory();
    flood(20000);
    const qint64 growth = mCompositor->residentMemory() - before;
    QVERIFY2(growth < 8 * 1024 * 1024, qPrintable(QString::number(growth)));
    QCOMPARE(NotificationClient::notify({}), 22001U);
}

void CompositorNotificationsTest::tenThousandOfAllKindsFromTwentyClients()
{
    constexpr int count = 10000;
    const QString text = QStringLiteral("Many words that go on and on. ");
    QVector<QVariantMap> hints(6);
    hints[1].insert(QStringLiteral("image-data"), QVariant::fromValue(ImageHint::filled(300, 300, Qt::red)));
    ImageHint wrong = ImageHint::filled(10, 10, Qt::red);
    wrong.width = wrong.height = 2147483647;
    hints[2].insert(QStringLiteral("image-data"), QVariant::fromValue(wrong));
    hints[3].insert(QStringLiteral("image-path"), QStringLiteral("/proc/kmsg"));
    hints[4].insert(QStringLiteral("urgency"), QVariantMap({{QStringLiteral("not"), QStringLiteral("a byte")}}));
    hints[5].insert(QStringLiteral("action-icons"), QStringLiteral("not a bool"));
    const QVector<QStringList> actions = {
        {}, {QStringLiteral("odd")}, {QString(), QString(), QString()}, QStringList(text.split(QLatin1Char(' ')))};
    const QVector<QString> bodies = {QString(), text, text.repeated(1000)};
    const BusClients clients(20);
    const auto flood = [&](int notifications) {
        QList<QDBusPendingCall> calls;
        for (int i = 0; i < notifications; ++i) {
            // Every third notification replaces a foreign one.
            const uint replacesId = i % 3 == 0 ? static_cast<uint>(i + 1) : 0U;
            calls.append(BusClients::send(
                clients.connections().at(i % clients.connections().size()), CompositorBus::cNotificationsPath,
                CompositorBus::cNotifications, QStringLiteral("Notify"),
                {QStringLiteral("test"), replacesId, QString(), text, bodies.at(i % bodies.size()),
                 actions.at(i % actions.size()), hints.at(i % hints.size()), i % 2 == 0 ? 0 : 2147483647}));
            if (calls.size() == 40 || i == notifications - 1) {
                for (QDBusPendingCall& call : calls) {
                    call.waitForFinished();
                    QVERIFY2(!call.isError(), qPrintable(call.error().message()));
                    QVERIFY(call.reply().arguments().value(0).toUInt() > 0);
                }
                calls.clear();
            }
        }
    };
    flood(count / 2);
    screenShot();
    const int descriptors = mCompositor->descriptorCount();
    const qint64 before = mCompositor->residentMemory();
    flood(count);
    screenShot();
    QCOMPARE(mCompositor->descriptorCount(), descriptors);
    const qint64 growth = mCompositor->residentMemory() - before;
    QVERIFY2(growth < 16 * 1024 * 1024, qPrintable(QString::number(growth)));
}

void CompositorNotificationsTest::theLibraryNotifies()
{
    NotificationClient client;
    const QImage before = screenShot();
    TelvaroNotificationDBusConnector connector;
    connector.notify(QStringLiteral("dialog-information"), QStringLiteral("Summary"), QStringLiteral("Body"),
                     {QStringLiteral("document-save"), QStringLiteral("Save")});
    QVERIFY(screenShot().copy(cCardArea) != before.copy(cCardArea));
    QCOMPARE(NotificationClient::close(1), QString());
    QCOMPARE(client.takeEvents(), QStringList(QStringLiteral("closed 1 3")));
}

void CompositorNotificationsTest::notifySendNotifies()
{
    NotificationClient client;
    const QImage before = screenShot();
    ChildProcess program;
    program.run(QStringLiteral("notify-send"),
                {QStringLiteral("--print-id"), QStringLiteral("--urgency=critical"), QStringLiteral("Summary"),
                 QStringLiteral("Body")});
    QVERIFY(program.waitForFinished(ChildProcess::cDeadline));
    QCOMPARE(program.exitCode(), 0);
    QCOMPARE(program.readAllStandardOutput().trimmed(), QByteArray("1"));
    QVERIFY(screenShot().copy(cCardArea) != before.copy(cCardArea));
    QCOMPARE(NotificationClient::close(1), QString());
}

void CompositorNotificationsTest::notifySendWaitsForTheEnd()
{
    const QImage before = screenShot();
    ChildProcess program;
    program.run(QStringLiteral("notify-send"),
                {QStringLiteral("--wait"), QStringLiteral("--expire-time=0"), QStringLiteral("Summary")});
    TRY_VERIFY(screenShot().copy(cCardArea) != before.copy(cCardArea));
    QCOMPARE(program.state(), QProcess::Running);
    QCOMPARE(NotificationClient::close(1), QString());
    QVERIFY(program.waitForFinished(ChildProcess::cDeadline));
    QCOMPARE(program.exitCode(), 0);
}

TELVARO_TEST_MAIN(CompositorNotificationsTest)

#include "CompositorNotificationsTest.moc"
