// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "OperationProcess.h"
#include "Operations.h"
#include "Scenario.h"
#include "TaskSwitcherFixture.h"
#include "TestMain.h"
#include "Warnings.h"

#include <QDir>
#include <QFile>
#include <QProcessEnvironment>
#include <QTemporaryDir>

#include <sys/inotify.h>
#include <unistd.h>

namespace {

/// An application with a device manifest of its own, in a process of its own, since the manifest is read once in each.
class Device : public OperationProcess
{
public:
    void start() override
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("LD_LIBRARY_PATH"), QStringLiteral(TELVARO_OTHER_DEVICE));
        mProcess.setProcessEnvironment(environment);
        mProcess.setWorkingDirectory(mDirectory.path());
        OperationProcess::start();
        turn();
    }

    QString manifestPath() const
    {
        return mDirectory.filePath(QStringLiteral("device-manifest.json"));
    }

    void writeManifest(const QByteArray& content)
    {
        QFile file(manifestPath());
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        QCOMPARE(file.write(content), qint64(content.size()));
    }

    bool isCompositorDevice()
    {
        return perform(QStringLiteral("isInterfaceValid")).result == QLatin1String("true");
    }

private:
    QTemporaryDir mDirectory;
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
    void theBaseIsSilentOnAnotherDevice();

private:
    Scenario mScenario;
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
    for (const QString& operation : Operations::names()) {
        device.perform(operation);
    }
    // An event of a watched file carries no name.
    alignas(inotify_event) char events[4 * sizeof(inotify_event)];
    QCOMPARE(read(watcher, events, sizeof(events)), ssize_t(sizeof(inotify_event)));
    close(watcher);
}

void OtherDeviceTest::theBaseIsSilentOnAnotherDevice()
{
    Scenario::set(mService);
    Device device;
    device.start();
    mService.takeCalls();
    QCOMPARE(device.prepare().log, QStringList{Warnings::unconverted(QStringLiteral("screenSaverActive"))});
    for (const QString& operation : Operations::names()) {
        // Reading the views does not depend on the device; everything else fails at the base's test.
        Outcome expected{Operations::result(operation), {}};
        for (const Message& message : Operations::messages(operation)) {
            if (message.member == QLatin1String("NameHasOwner")) {
                expected = {Operations::failure(operation), message.log};
                break;
            }
        }
        expected.log.removeAll(Warnings::cAbsent);
        expected.log.removeAll(Warnings::cUnsubscribedScreen);

        const Outcome outcome = device.perform(operation);
        QVERIFY2(outcome.result == expected.result, qPrintable(operation));
        QVERIFY2(outcome.log == expected.log, qPrintable(operation + outcome.log.join(QLatin1Char('\n'))));
    }
    for (const QString& call : mService.takeDescriptions()) {
        QVERIFY2(call == getViewsCall() || call.contains(QStringLiteral("Introspect")), qPrintable(call));
    }
}

TELVARO_TEST_MAIN(OtherDeviceTest)
#include "OtherDeviceTest.moc"
