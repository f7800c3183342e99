// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "BusClients.h"
#include "CompositorBus.h"
#include "CompositorFixture.h"
#include "TestMain.h"

#include "TelvaroScreenShotDBusConnector.h"

#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <atomic>
#include <cstdio>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace {

QDBusMessage takeScreenShot(const QString& directory)
{
    return CompositorBus::call(CompositorBus::cScreenShotPath, CompositorBus::cScreenShot, QStringLiteral("ScreenShot"),
                               {directory});
}

} // namespace

class CompositorScreenShotTest : public CompositorFixture
{
    Q_OBJECT

private Q_SLOTS:
    void isAPngOfTheOutputInTheDirectory();
    void showsWhatTheClientShows();
    void answersAPathWithoutDoubledSlashes();
    void followsALinkToTheDirectory();
    void neverOverwrites();
    void manyAtOnceGetAFileEach();
    void isNeverLedAwayByWhatHasItsName_data();
    void isNeverLedAwayByWhatHasItsName();
    void staysInTheDirectoryThatItHasOpened();
    void aRoundaboutWayLeadsToTheSameDirectory();
    void refusesADirectoryThatIsNone_data();
    void refusesADirectoryThatIsNone();
    void leavesNothingBehindWhereItCannotWrite();
    void theLibraryTakesOne();

private:
    QTemporaryDir mDirectory;
};

void CompositorScreenShotTest::isAPngOfTheOutputInTheDirectory()
{
    const QDBusMessage reply = takeScreenShot(mDirectory.path());
    QCOMPARE(reply.signature(), QStringLiteral("s"));
    const QFileInfo file(reply.arguments().value(0).toString());
    QCOMPARE(file.absolutePath(), mDirectory.path());
    QVERIFY(QRegularExpression(QStringLiteral("^screenshot-\\d{8}-\\d{6}-\\d{3}\\.png$"))
                .match(file.fileName())
                .hasMatch());
    QVERIFY(file.isFile());
    QCOMPARE(file.permissions() & (QFile::WriteGroup | QFile::WriteOther | QFile::ExeOwner), QFile::Permissions());
    QImage image;
    QVERIFY(image.load(file.filePath(), "PNG"));
    QCOMPARE(image.size(), QSize(1024, 600));
    QVERIFY(QFile::remove(file.filePath()));
}

void CompositorScreenShotTest::showsWhatTheClientShows()
{
    const auto client = protocolClient();
    client->send("open a Window");
    client->send("sync");
    client->waitFor("synced");
    TRY_COMPARE(screenShot().pixelColor(512, 317), QColor(Qt::white));
    client->send("commit 1 1");
    client->send("sync");
    client->waitFor("synced");
    QCOMPARE(screenShot().pixelColor(512, 317), QColor(Qt::black));
}

void CompositorScreenShotTest::answersAPathWithoutDoubledSlashes()
{
    const QString path = takeScreenShot(mDirectory.path() + QStringLiteral("///")).arguments().value(0).toString();
    QVERIFY(path.startsWith(mDirectory.path() + QStringLiteral("/screenshot-")));
    QVERIFY(QFile::remove(path));
}

void CompositorScreenShotTest::followsALinkToTheDirectory()
{
    const QString target = mDirectory.filePath(QStringLiteral("target"));
    const QString link = mDirectory.filePath(QStringLiteral("link"));
    QVERIFY(QDir().mkdir(target));
    QVERIFY(QFile::link(target, link));
    const QString path = takeScreenShot(link).arguments().value(0).toString();
    QVERIFY(path.startsWith(link + QLatin1Char('/')));
    QCOMPARE(QDir(target).entryList(QDir::Files), QStringList(QFileInfo(path).fileName()));
    QVERIFY(QDir(target).removeRecursively());
    QVERIFY(QFile::remove(link));
}

void CompositorScreenShotTest::neverOverwrites()
{
    // Many of the calls fall into the same millisecond.
    constexpr int count = 60;
    QSet<QString> paths;
    for (int i = 0; i < count; ++i) {
        paths.insert(takeScreenShot(mDirectory.path()).arguments().value(0).toString());
    }
    QCOMPARE(paths.size(), count);
    QCOMPARE(QDir(mDirectory.path()).entryList(QDir::Files).size(), count);
    for (const QString& path : paths) {
        QVERIFY(QFile::remove(path));
    }
}

void CompositorScreenShotTest::manyAtOnceGetAFileEach()
{
    constexpr int count = 20;
    const QTemporaryDir directory;
    const BusClients clients(count);
    QList<QDBusPendingCall> calls;
    for (const QDBusConnection& connection : clients.connections()) {
        calls.append(BusClients::send(connection, CompositorBus::cScreenShotPath, CompositorBus::cScreenShot,
                                      QStringLiteral("ScreenShot"), {directory.path()}));
    }
    QSet<QString> paths;
    for (QDBusPendingCall& call : calls) {
        call.waitForFinished();
        const QString path = call.reply().arguments().value(0).toString();
        QVERIFY2(QImage(path).size() == QSize(1024, 600), qPrintable(CompositorBus::errorOf(call.reply())));
        paths.insert(path);
    }
    QCOMPARE(paths.size(), count);
    QCOMPARE(QDir(directory.path()).entryList(QDir::NoDotAndDotDot | QDir::AllEntries).size(), count);
}

void CompositorScreenShotTest::staysInTheDirectoryThatItHasOpened()
{
    // While screenshots are taken, the directory is replaced by a symbolic link and back, over and over.
    const QTemporaryDir place;
    const QString named = place.filePath(QStringLiteral("named"));
    const QString aside = place.filePath(QStringLiteral("aside"));
    const QString elsewhere = place.filePath(QStringLiteral("elsewhere"));
    QVERIFY(QDir().mkdir(named) && QDir().mkdir(elsewhere));
    std::atomic<bool> isOver(false);
    std::atomic<int> turns(0);
    std::thread swapper([&] {
        const QByteArray names[] = {QFile::encodeName(named), QFile::encodeName(aside), QFile::encodeName(elsewhere)};
        while (!isOver) {
            rename(names[0].constData(), names[1].constData());
            if (symlink(names[2].constData(), names[0].constData()) == 0) {
                unlink(names[0].constData());
            }
            rename(names[1].constData(), names[0].constData());
            ++turns;
        }
    });
    int count = 0;
    for (int i = 0; i < 100; ++i) {
        const QDBusMessage reply = takeScreenShot(named);
        if (reply.type() == QDBusMessage::ReplyMessage) {
            ++count;
        } else {
            // The directory was missing for a moment.
            QCOMPARE(reply.errorName(), QStringLiteral("org.freedesktop.DBus.Error.FileNotFound"));
        }
    }
    isOver = true;
    swapper.join();
    QVERIFY(turns > 100);
    QVERIFY(count > 0);
    int found = 0;
    for (const QString& directory : {named, elsewhere}) {
        for (const QFileInfo& file : QDir(directory).entryInfoList(QDir::NoDotAndDotDot | QDir::AllEntries)) {
            QVERIFY(!file.isSymLink());
            QCOMPARE(QImage(file.filePath()).size(), QSize(1024, 600));
            ++found;
        }
    }
    QCOMPARE(found, count);
    QCOMPARE(QDir(place.path()).entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System, QDir::Name),
             QStringList({QStringLiteral("elsewhere"), QStringLiteral("named")}));
}

void CompositorScreenShotTest::aRoundaboutWayLeadsToTheSameDirectory()
{
    const QTemporaryDir place;
    QVERIFY(QDir(place.path()).mkdir(QStringLiteral("a")) && QDir(place.path()).mkdir(QStringLiteral("b \n\u00e4")));
    const QString named = place.path() + QStringLiteral("/a/.././/b \n\u00e4");
    const QString path = takeScreenShot(named).arguments().value(0).toString();
    QVERIFY2(path.startsWith(named + QLatin1Char('/')), qPrintable(path));
    QCOMPARE(QDir(place.filePath(QStringLiteral("b \n\u00e4"))).entryList(QDir::Files),
             QStringList(QFileInfo(path).fileName()));
    QCOMPARE(QDir(place.filePath(QStringLiteral("a"))).entryList(QDir::Files), QStringList());
}

void CompositorScreenShotTest::isNeverLedAwayByWhatHasItsName_data()
{
    QTest::addColumn<QString>("kind");
    for (const char* const kind : {"file", "nothing", "directory", "pipe"}) {
        QTest::newRow(kind) << QString::fromLatin1(kind);
    }
}

void CompositorScreenShotTest::isNeverLedAwayByWhatHasItsName()
{
    QFETCH(QString, kind);
    const QTemporaryDir safe;
    QFile target(safe.filePath(QStringLiteral("target")));
    if (kind == QLatin1String("file")) {
        QVERIFY(target.open(QIODevice::WriteOnly) && target.write("precious") == 8);
        target.close();
    } else if (kind == QLatin1String("directory")) {
        QVERIFY(QDir().mkdir(target.fileName()));
    } else if (kind == QLatin1String("pipe")) {
        QCOMPARE(mkfifo(QFile::encodeName(target.fileName()).constData(), 0600), 0);
    }

    // Links under every name that a screenshot may get within a second. On a slow machine it comes later than that;
    // then the links are made again, for a second that begins later by half the time that they took.
    QElapsedTimer timer;
    timer.start();
    qint64 milliseconds = 0;
    bool wasTrapped = false;
    while (!wasTrapped && timer.elapsed() < ChildProcess::cDeadline) {
        const QTemporaryDir trap;
        const QDateTime now = QDateTime::currentDateTime();
        for (int i = 0; i < 1000; ++i) {
            const QString time = now.addMSecs(milliseconds + i).toString(QStringLiteral("yyyyMMdd-HHmmss-zzz"));
            QVERIFY(QFile::link(target.fileName(), trap.filePath(QStringLiteral("screenshot-%1.png").arg(time))));
        }
        milliseconds = now.msecsTo(QDateTime::currentDateTime()) / 2;
        const QFileInfo created(takeScreenShot(trap.path()).arguments().value(0).toString());
        QVERIFY(created.isFile());
        QVERIFY(!created.isSymLink());
        wasTrapped = created.fileName().endsWith(QLatin1String("-2.png"));
    }
    QVERIFY(wasTrapped);
    if (kind == QLatin1String("file")) {
        QVERIFY(target.open(QIODevice::ReadOnly));
        QCOMPARE(target.readAll(), QByteArray("precious"));
    } else if (kind == QLatin1String("directory")) {
        QVERIFY(QDir(target.fileName()).isEmpty());
    } else {
        QCOMPARE(target.exists(), kind == QLatin1String("pipe"));
    }
}

void CompositorScreenShotTest::refusesADirectoryThatIsNone_data()
{
    QTest::addColumn<QString>("directory");
    QTest::addColumn<QString>("error");
    const auto row = [](const char* name, const QString& directory, const char* error) {
        QTest::newRow(name) << directory << QStringLiteral("org.freedesktop.DBus.Error.") + QLatin1String(error);
    };
    row("empty", QString(), "InvalidArgs: no directory is named");
    row("relative", QStringLiteral("tmp"), "InvalidArgs: the directory \"tmp\" is not an absolute path");
    row("dot", QStringLiteral("."), "InvalidArgs: the directory \".\" is not an absolute path");
    row("home", QStringLiteral("~"), "InvalidArgs: the directory \"~\" is not an absolute path");
    row("missing", QStringLiteral("/nowhere/at/all"), "FileNotFound: the directory \"/nowhere/at/all\" does not exist");
    row("a file", QStringLiteral("/etc/passwd"), "InvalidArgs: \"/etc/passwd\" is not a directory");
    row("below a file", QStringLiteral("/etc/passwd/x"), "InvalidArgs: \"/etc/passwd/x\" is not a directory");
    row("a device", QStringLiteral("/dev/null"), "InvalidArgs: \"/dev/null\" is not a directory");
    row("an endless name", QStringLiteral("/") + QString(300, QLatin1Char('x')), "Failed: cannot open the directory ");
    row("an endless path", QStringLiteral("/x").repeated(5000), "Failed: cannot open the directory ");
    row("a link to itself", QStringLiteral("/proc/self/fd/999999"), "FileNotFound: the directory ");
    // Nobody creates files there, not even root.
    row("no place for files", QStringLiteral("/proc"),
        "Failed: cannot create a file in the directory \"/proc\": No such file or directory");
    row("not writable", QStringLiteral("/dev/pts"),
        "AccessDenied: cannot create a file in the directory \"/dev/pts\": ");
}

void CompositorScreenShotTest::refusesADirectoryThatIsNone()
{
    QFETCH(QString, directory);
    QFETCH(QString, error);
    const QDBusMessage reply = takeScreenShot(directory);
    QVERIFY2(CompositorBus::errorOf(reply).startsWith(error), qPrintable(CompositorBus::errorOf(reply).left(300)));
}

void CompositorScreenShotTest::leavesNothingBehindWhereItCannotWrite()
{
    // The file size limit makes every write fail half way.
    QCOMPARE(mCompositor->end(), 0);
    CompositorProcess limited;
    limited.startWithLimit(QStringLiteral("ulimit -f 1; trap '' XFSZ"));

    const QTemporaryDir directory;
    const QDBusMessage reply = takeScreenShot(directory.path());
    QCOMPARE(CompositorBus::errorOf(reply),
             QStringLiteral("org.freedesktop.DBus.Error.Failed: cannot write to the directory \"%1\": File too large")
                 .arg(directory.path()));
    QCOMPARE(QDir(directory.path()).entryList(QDir::Files), QStringList());
    QCOMPARE(limited.end(), 0);
    mCompositor->start();
}

void CompositorScreenShotTest::theLibraryTakesOne()
{
    TelvaroScreenShotDBusConnector connector;
    const std::optional<QString> path = connector.captureScreenShot(mDirectory.path());
    QVERIFY(path.has_value());
    QVERIFY(QFileInfo(*path).isFile());
    QVERIFY(QFile::remove(*path));
}

TELVARO_TEST_MAIN(CompositorScreenShotTest)

#include "CompositorScreenShotTest.moc"
