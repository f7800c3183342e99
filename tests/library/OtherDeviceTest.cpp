// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ChildProcess.h"
#include "EveryOperation.h"
#include "TaskSwitcherFixture.h"
#include "TestMain.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <sys/inotify.h>
#include <unistd.h>

namespace {

const QString cManifestName = QStringLiteral("device-manifest.json");

/// An application on a device of its own, in a process of its own, since the manifest is read once in each.
class Device
{
public:
    void start()
    {
        mApplication.setWorkingDirectory(mDirectory.path());
        mApplication.run(QStringLiteral(TELVARO_OTHER_DEVICE));
    }

    QString manifestPath() const
    {
        return mDirectory.filePath(cManifestName);
    }

    void writeManifest(const QByteArray& content)
    {
        QFile file(manifestPath());
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        QCOMPARE(file.write(content), qint64(content.size()));
    }

    bool isCompositorDevice()
    {
        return ask("device").value(QStringLiteral("compositorDevice")).toBool();
    }

    QJsonObject callEveryOperation()
    {
        return ask("operations");
    }

private:
    QJsonObject ask(const QByteArray& command)
    {
        mApplication.write(command + '\n');
        return QJsonDocument::fromJson(mApplication.readOutputLine()).object();
    }

    QTemporaryDir mDirectory;
    ChildProcess mApplication;
};

} // namespace

class OtherDeviceTest : public TaskSwitcherFixture
{
    Q_OBJECT

private Q_SLOTS:
    void theProductCodeTellsTheDevice_data();
    void theProductCodeTellsTheDevice();
    void noManifestIsAnotherDevice();
    void aFolderIsNoManifest();
    void theManifestIsReadOnce();
    void aChangeOfTheManifestIsNotSeen();
    void theBaseIsSilentOnAnotherDevice();
};

void OtherDeviceTest::theProductCodeTellsTheDevice_data()
{
    QTest::addColumn<QByteArray>("manifest");
    QTest::addColumn<bool>("expected");
    const auto addRow = [](const char* name, const char* manifest, bool expected) {
        QTest::newRow(name) << QByteArray(manifest) << expected;
    };
    addRow("compositor device", R"({"productCode": "481936"})", true);
    addRow("compact", R"({"productCode":"481936"})", true);
    addRow("among others", R"({ "name": "x",
        "productCode" : "481936", "list": [1, {"productCode": "1"}] }
        )",
           true);
    addRow("escaped", R"({"productCode": "\u0034\u00381936"})", true);
    addRow("other code", R"({"productCode": "481937"})", false);
    addRow("leading zero", R"({"productCode": "0481936"})", false);
    addRow("trailing blank", R"({"productCode": "481936 "})", false);
    addRow("leading blank", R"({"productCode": " 481936"})", false);
    addRow("line break", R"({"productCode": "481936\n"})", false);
    addRow("shorter", R"({"productCode": "48193"})", false);
    addRow("longer", R"({"productCode": "4819360"})", false);
    addRow("empty", R"({"productCode": ""})", false);
    addRow("number", R"({"productCode": 481936})", false);
    addRow("bool", R"({"productCode": true})", false);
    addRow("null", R"({"productCode": null})", false);
    addRow("array", R"({"productCode": ["481936"]})", false);
    addRow("object", R"({"productCode": {"productCode": "481936"}})", false);
    addRow("no such member", R"({"product": "481936"})", false);
    addRow("member of another case", R"({"ProductCode": "481936"})", false);
    addRow("member further down", R"({"device": {"productCode": "481936"}})", false);
    addRow("object in an array", R"([{"productCode": "481936"}])", false);
    addRow("string", R"("481936")", false);
    addRow("plain text", "481936", false);
    addRow("no JSON", "productCode=481936", false);
    addRow("cut off", R"({"productCode": "481936")", false);
    addRow("more behind it", R"({"productCode": "481936"} x)", false);
    addRow("nothing", "", false);
}

void OtherDeviceTest::theProductCodeTellsTheDevice()
{
    QFETCH(const QByteArray, manifest);
    QFETCH(const bool, expected);
    Device device;
    device.writeManifest(manifest);
    device.start();
    QCOMPARE(device.isCompositorDevice(), expected);
}

void OtherDeviceTest::noManifestIsAnotherDevice()
{
    Device device;
    device.start();
    QVERIFY(!device.isCompositorDevice());
    device.writeManifest(R"({"productCode": "481936"})");
    QVERIFY(!device.isCompositorDevice());
}

void OtherDeviceTest::aFolderIsNoManifest()
{
    Device device;
    QVERIFY(QDir().mkdir(device.manifestPath()));
    device.start();
    QVERIFY(!device.isCompositorDevice());
}

void OtherDeviceTest::theManifestIsReadOnce()
{
    Device device;
    device.writeManifest(R"({"productCode": "481936"})");
    device.start();
    const int watcher = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    QVERIFY(inotify_add_watch(watcher, QFile::encodeName(device.manifestPath()).constData(), IN_OPEN) >= 0);
    for (int asking = 0; asking < 3; ++asking) {
        QVERIFY(device.isCompositorDevice());
    }
    device.callEveryOperation();
    // One event of a watched file has no name behind it.
    alignas(inotify_event) char events[4 * sizeof(inotify_event)];
    QCOMPARE(read(watcher, events, sizeof(events)), ssize_t(sizeof(inotify_event)));
    close(watcher);
}

void OtherDeviceTest::aChangeOfTheManifestIsNotSeen()
{
    Device device;
    device.writeManifest(R"({"productCode": "481936"})");
    device.start();
    QVERIFY(device.isCompositorDevice());
    device.writeManifest(R"({"productCode": "481937"})");
    QVERIFY(device.isCompositorDevice());
    QVERIFY(QFile::remove(device.manifestPath()));
    QVERIFY(device.isCompositorDevice());
}

void OtherDeviceTest::theBaseIsSilentOnAnotherDevice()
{
    setViews({makeView(QStringLiteral("a"), QStringLiteral("app"), 0, 1)}, QStringLiteral("a"));
    Device device;
    device.start();
    mService.takeCalls();
    const QJsonObject outcomes = device.callEveryOperation();

    // Reading the views does not ask for the device.
    QMap<QString, Outcome> expected = outcomesWithoutService({}, {});
    expected[QStringLiteral("getViews")].result = QStringLiteral("1");
    expected[QStringLiteral("pidToTaskSwitcherEntry")] = {QStringLiteral("view \"a\""), {}};
    expected[QStringLiteral("idsToTaskSwitcherEntry")] = {QStringLiteral("view \"a\""), {}};
    expected[QStringLiteral("switchToView")].messages.removeFirst();
    expected.insert(QStringLiteral("construction"),
                    {QString(), {QStringLiteral("Unable to convert property  \"screenSaverActive\" to bool!")}});

    for (auto outcome = expected.cbegin(); outcome != expected.cend(); ++outcome) {
        const QJsonArray actual = outcomes.value(outcome.key()).toArray();
        QStringList messages;
        for (const QJsonValue& message : actual.at(1).toArray()) {
            messages.append(message.toString());
        }
        QVERIFY2(actual.at(0).toString() == outcome->result, qPrintable(outcome.key()));
        QVERIFY2(messages == outcome->messages, qPrintable(outcome.key() + messages.join(QLatin1Char('\n'))));
    }
    QCOMPARE(outcomes.size(), expected.size());
    for (const QString& call : mService.takeDescriptions()) {
        QVERIFY2(call == getViewsCall() || call.contains(QStringLiteral("Introspect")), qPrintable(call));
    }
}

TELVARO_TEST_MAIN(OtherDeviceTest)
#include "OtherDeviceTest.moc"
