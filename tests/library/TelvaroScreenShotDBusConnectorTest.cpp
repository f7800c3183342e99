// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "TelvaroScreenShotDBusConnector.h"

#include "ConnectorFixture.h"
#include "PrivateBus.h"
#include "TestMain.h"
#include "ValueText.h"
#include "WithProxy.h"

#include <QDBusInterface>
#include <QDBusReply>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace {

const QString cPath = QStringLiteral("/screenshot");
const QString cInterface = QStringLiteral("de.Telvaro.screenshot");
const QString cMethod = QStringLiteral("ScreenShot");

QString warning(const QString& text)
{
    return QStringLiteral("warning default TelvaroScreenShotDBusConnector.cpp "
                          "TelvaroScreenShotDBusConnector::captureScreenShot(constQString&) ")
        + text;
}

QString missingDirectory(const QString& directory)
{
    return warning(QStringLiteral("Unable to capture screenshot, store directory does not exists ")
                   + LogCapture::quoted(directory));
}

QString invalidReply(const QString& message)
{
    return warning(QStringLiteral("Reply of  \"ScreenShot\" is invalid! ") + LogCapture::quoted(message));
}

QString screenShotCall(const QString& directory)
{
    return QStringLiteral("/screenshot de.Telvaro.screenshot.ScreenShot s(%1)").arg(ValueText::string(directory));
}

} // namespace

class TelvaroScreenShotDBusConnectorTest : public ConnectorFixture
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void theProxyIsThatOfTheScreenShots();
    void theParentIsTaken();
    void theServicesStringIsReturned_data();
    void theServicesStringIsReturned();
    void theDirectoryIsSentUnchanged_data();
    void theDirectoryIsSentUnchanged();
    void aDirectoryThatDoesNotExistIsRefused_data();
    void aDirectoryThatDoesNotExistIsRefused();
    void aRelativeDirectoryIsThatOfTheCaller();
    void aReplyWithoutUsableStringIsLogged_data();
    void aReplyWithoutUsableStringIsLogged();
    void noReplyInTimeIsLogged();
    void anAbsentServiceIsTestedBeforeTheDirectory();

private:
    void scriptReply(const Behaviour& behaviour);

    std::unique_ptr<QTemporaryDir> mDirectory;
    QString mWorkingDirectory;
};

void TelvaroScreenShotDBusConnectorTest::init()
{
    ConnectorFixture::init();
    mDirectory = std::make_unique<QTemporaryDir>();
    mWorkingDirectory = QDir::currentPath();
}

void TelvaroScreenShotDBusConnectorTest::cleanup()
{
    QDir::setCurrent(mWorkingDirectory);
    ConnectorFixture::cleanup();
}

void TelvaroScreenShotDBusConnectorTest::scriptReply(const Behaviour& behaviour)
{
    mService.script(cPath, cInterface, cMethod, {behaviour});
}

void TelvaroScreenShotDBusConnectorTest::theProxyIsThatOfTheScreenShots()
{
    const WithProxy<TelvaroScreenShotDBusConnector> connector;
    QCOMPARE(connector.mInterface.service(), QStringLiteral(TELVARO_SERVICE_NAME));
    QCOMPARE(connector.mInterface.path(), cPath);
    QCOMPARE(connector.mInterface.interface(), cInterface);
}

void TelvaroScreenShotDBusConnectorTest::theParentIsTaken()
{
    QObject parent;
    const auto* const connector = new TelvaroScreenShotDBusConnector(&parent);
    QCOMPARE(connector->parent(), &parent);
}

void TelvaroScreenShotDBusConnectorTest::theServicesStringIsReturned_data()
{
    QTest::addColumn<QStringList>("reply");
    QTest::addColumn<QString>("expected");
    QTest::newRow("path") << QStringList{QStringLiteral("'/shots/1.png'")} << "/shots/1.png";
    QTest::newRow("anything") << QStringList{QStringLiteral("' one\\ntwo '")} << " one\ntwo ";
    QTest::newRow("empty") << QStringList{QStringLiteral("''")} << "";
    QTest::newRow("with more behind it") << QStringList{QStringLiteral("'a'"), QStringLiteral("1")} << "a";
}

void TelvaroScreenShotDBusConnectorTest::theServicesStringIsReturned()
{
    QFETCH(const QStringList, reply);
    QFETCH(const QString, expected);
    scriptReply(Behaviour::reply(reply));
    TelvaroScreenShotDBusConnector connector;
    const std::optional<QString> result = connector.captureScreenShot(mDirectory->path());
    QVERIFY(result.has_value());
    QCOMPARE(*result, expected);
}

void TelvaroScreenShotDBusConnectorTest::theDirectoryIsSentUnchanged_data()
{
    QTest::addColumn<QString>("directory");
    QTest::newRow("empty") << "";
    QTest::newRow("here") << ".";
    QTest::newRow("relative") << "sub folder";
    QTest::newRow("relative, not clean") << "./sub folder/../sub folder//";
    QTest::newRow("absolute") << "%1";
    QTest::newRow("absolute, not clean") << "%1//sub folder/..///.";
    QTest::newRow("link") << "%1/link";
}

void TelvaroScreenShotDBusConnectorTest::theDirectoryIsSentUnchanged()
{
    QFETCH(QString, directory);
    directory.replace(QStringLiteral("%1"), mDirectory->path());
    QVERIFY(QDir(mDirectory->path()).mkdir(QStringLiteral("sub folder")));
    QVERIFY(QFile::link(mDirectory->path(), mDirectory->filePath(QStringLiteral("link"))));
    QVERIFY(QDir::setCurrent(mDirectory->path()));
    TelvaroScreenShotDBusConnector connector;
    mService.takeCalls();
    QVERIFY(connector.captureScreenShot(directory).has_value());
    QCOMPARE(mService.takeDescriptions(), QStringList{screenShotCall(directory)});
}

void TelvaroScreenShotDBusConnectorTest::aDirectoryThatDoesNotExistIsRefused_data()
{
    QTest::addColumn<QString>("directory");
    QTest::newRow("missing") << "/no/such/folder";
    QTest::newRow("missing, relative") << "no such folder";
    QTest::newRow("quotes") << "no \"such\"\nfolder";
    QTest::newRow("regular file") << "%1/file";
    QTest::newRow("below a regular file") << "%1/file/folder";
    QTest::newRow("broken link") << "%1/broken";
    QTest::newRow("blank") << " ";
}

void TelvaroScreenShotDBusConnectorTest::aDirectoryThatDoesNotExistIsRefused()
{
    QFETCH(QString, directory);
    directory.replace(QStringLiteral("%1"), mDirectory->path());
    QFile file(mDirectory->filePath(QStringLiteral("file")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(QFile::link(QStringLiteral("/no/such/folder"), mDirectory->filePath(QStringLiteral("broken"))));
    TelvaroScreenShotDBusConnector connector;
    mService.takeCalls();
    QVERIFY(!connector.captureScreenShot(directory).has_value());
    QCOMPARE(mLog->takeDescriptions(), QStringList{missingDirectory(directory)});
    QVERIFY(mService.takeCalls().isEmpty());
}

void TelvaroScreenShotDBusConnectorTest::aRelativeDirectoryIsThatOfTheCaller()
{
    const QString name = QStringLiteral("only here");
    QVERIFY(QDir(mDirectory->path()).mkdir(name));
    TelvaroScreenShotDBusConnector connector;
    QVERIFY(!connector.captureScreenShot(name).has_value());
    QCOMPARE(mLog->takeDescriptions(), QStringList{missingDirectory(name)});
    QVERIFY(QDir::setCurrent(mDirectory->path()));
    QVERIFY(connector.captureScreenShot(name).has_value());
}

void TelvaroScreenShotDBusConnectorTest::aReplyWithoutUsableStringIsLogged_data()
{
    QTest::addColumn<QStringList>("reply");
    QTest::newRow("no argument") << QStringList();
    for (const char* const argument :
         {"1", "uint32 1", "true", "0.5", "['a']", "@as []", "[1]", "[byte 0x61]", "('a',)", "{'a': 'b'}", "<'a'>",
          "objectpath '/a'", "signature 's'", "handle 0"}) {
        QTest::newRow(argument) << QStringList{QLatin1String(argument)};
    }
    QTest::newRow("the string second") << QStringList{QStringLiteral("1"), QStringLiteral("'a'")};
}

void TelvaroScreenShotDBusConnectorTest::aReplyWithoutUsableStringIsLogged()
{
    QFETCH(const QStringList, reply);
    scriptReply(Behaviour::reply(reply));
    QDBusInterface bare(QStringLiteral(TELVARO_SERVICE_NAME), cPath, cInterface, PrivateBus::connection());
    const QDBusReply<QString> expected = bare.call(cMethod, mDirectory->path());
    QVERIFY(!expected.error().message().isEmpty());

    TelvaroScreenShotDBusConnector connector;
    QVERIFY(!connector.captureScreenShot(mDirectory->path()).has_value());
    QCOMPARE(mLog->takeDescriptions(), QStringList{invalidReply(expected.error().message())});
}

void TelvaroScreenShotDBusConnectorTest::noReplyInTimeIsLogged()
{
    scriptReply(Behaviour::silence());
    WithProxy<TelvaroScreenShotDBusConnector> connector;
    connector.mInterface.setTimeout(50);
    QVERIFY(!connector.captureScreenShot(mDirectory->path()).has_value());
    QCOMPARE(mLog->takeDescriptions(), QStringList{invalidReply(connector.mInterface.lastError().message())});
}

void TelvaroScreenShotDBusConnectorTest::anAbsentServiceIsTestedBeforeTheDirectory()
{
    TelvaroScreenShotDBusConnector connector;
    mService.takeCalls();
    mService.release();
    QVERIFY(!connector.captureScreenShot(mDirectory->path()).has_value());
    QVERIFY(!connector.captureScreenShot(QStringLiteral("/no/such/folder")).has_value());
    QCOMPARE(mLog->takeDescriptions(), (QStringList{notRegistered(), notRegistered()}));
    QVERIFY(mService.takeCalls().isEmpty());
}

TELVARO_TEST_MAIN(TelvaroScreenShotDBusConnectorTest)
#include "TelvaroScreenShotDBusConnectorTest.moc"
