// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "TelvaroctlFixture.h"
#include "TestMain.h"

#include <QJsonDocument>
#include <QJsonObject>

class TelvaroctlScreenTest : public TelvaroctlFixture
{
    Q_OBJECT

private Q_SLOTS:
    void screenSaverIsShown();
    void screenSettingsAreWrittenAndReadBack_data();
    void screenSettingsAreWrittenAndReadBack();
    void aScreenSettingThatIsRefusedIsAFailure();
    void aScreenSettingThatIsNotTakenIsAFailure();
    void severalSettingsAreChangedByOneCommand();
    void allSettingsAreShownAtOnce();
    void orientationAndFullScreenAreShown();

private:
    static QString screenSet(const char* property, const char* value);
};

QString TelvaroctlScreenTest::screenSet(const char* property, const char* value)
{
    return QStringLiteral("/screen org.freedesktop.DBus.Properties.Set ssv('de.Telvaro.screen', '%1', <%2>)")
        .arg(QString::fromUtf8(property), QString::fromUtf8(value));
}

void TelvaroctlScreenTest::screenSaverIsShown()
{
    const Result result = telvaroctl("screensaver");
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, QStringLiteral("screen saver on, not active, timeout 300 s\n"));
    const Result json = telvaroctl("screensaver status --json");
    QCOMPARE(QJsonDocument::fromJson(json.output.toUtf8()).object(),
             QJsonObject({{QStringLiteral("active"), false},
                          {QStringLiteral("enabled"), true},
                          {QStringLiteral("timeoutSeconds"), 300}}));
}

void TelvaroctlScreenTest::screenSettingsAreWrittenAndReadBack_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("write");
    QTest::newRow("screensaver on") << words("screensaver on") << screenSet("screenSaverEnabled", "true");
    QTest::newRow("screensaver off") << words("screensaver off") << screenSet("screenSaverEnabled", "false");
    QTest::newRow("timeout") << words("screensaver timeout 7") << screenSet("screenSaverTimeoutSeconds", "7");
    QTest::newRow("landscape") << words("orientation landscape") << screenSet("orientation", "'0'");
    QTest::newRow("portrait") << words("orientation portrait") << screenSet("orientation", "'90'");
    QTest::newRow("inverse portrait") << words("orientation inverse-portrait") << screenSet("orientation", "'270'");
    QTest::newRow("inverse landscape") << words("orientation inverse-landscape") << screenSet("orientation", "'180'");
    QTest::newRow("toggled screen saver") << words("screensaver toggle") << screenSet("screenSaverEnabled", "false");
    QTest::newRow("toggled full screen") << words("fullscreen toggle") << screenSet("fullScreen", "true");
    QTest::newRow("degrees with a sign") << words("orientation +90") << screenSet("orientation", "'90'");
    QTest::newRow("degrees") << words("orientation 180") << screenSet("orientation", "'180'");
    QTest::newRow("full screen") << words("fullscreen on") << screenSet("fullScreen", "true");
    QTest::newRow("status bar") << words("fullscreen off") << screenSet("fullScreen", "false");
}

void TelvaroctlScreenTest::screenSettingsAreWrittenAndReadBack()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, write);
    mService.setStateful(true);
    const Result result = telvaroctl(arguments);
    QCOMPARE(result.errors, QString());
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, QString());
    QCOMPARE(takeWrites(), QStringList(write));
}

void TelvaroctlScreenTest::aScreenSettingThatIsRefusedIsAFailure()
{
    mService.setStateful(true);
    mService.scriptProperty(
        QStringLiteral("Set"), QStringLiteral("/screen"), QStringLiteral("orientation"),
        {Behaviour::error(QStringLiteral("org.freedesktop.DBus.Error.InvalidArgs"), QStringLiteral("no"))});
    const Result result = telvaroctl("screen --orientation 45 --fullscreen on");
    QCOMPARE(result.status, 1);
    QCOMPARE(result.errors, message("the orientation: org.freedesktop.DBus.Error.InvalidArgs: no"));
    QCOMPARE(telvaroctl("fullscreen").output, QStringLiteral("on\n"));
}

void TelvaroctlScreenTest::aScreenSettingThatIsNotTakenIsAFailure()
{
    const Result result = telvaroctl("screen --orientation 45 --screensaver-timeout 300 --fullscreen toggle");
    QCOMPARE(result.status, 1);
    QCOMPARE(result.errors,
             message("the service did not take '45': the orientation is '0'")
                 + message("the service did not take 'on': full screen is 'off'"));
}

void TelvaroctlScreenTest::severalSettingsAreChangedByOneCommand()
{
    mService.setStateful(true);
    const Result result =
        telvaroctl("screen --orientation portrait --fullscreen toggle --screensaver off --screensaver-timeout 7");
    QCOMPARE(result.errors, QString());
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, QString());
    QCOMPARE(takeWrites(),
             QStringList({screenSet("orientation", "'90'"), screenSet("fullScreen", "true"),
                          screenSet("screenSaverEnabled", "false"), screenSet("screenSaverTimeoutSeconds", "7")}));
}

void TelvaroctlScreenTest::allSettingsAreShownAtOnce()
{
    mService.setProperty(QStringLiteral("/screen"), QStringLiteral("de.Telvaro.screen"), QStringLiteral("orientation"),
                         QStringLiteral("'180'"));
    const Result result = telvaroctl("screen");
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output,
             QStringLiteral("SETTING       VALUE\n"
                            "orientation   180 (inverse-landscape)\n"
                            "full screen   off\n"
                            "screen saver  on, not active, timeout 300 s\n"));
    QCOMPARE(QJsonDocument::fromJson(telvaroctl("screen --json").output.toUtf8()),
             QJsonDocument::fromJson("{\"orientation\": \"180\", \"orientationName\": \"inverse-landscape\", "
                                     "\"fullScreen\": false, \"screenSaver\": {\"active\": false, \"enabled\": true, "
                                     "\"timeoutSeconds\": 300}}"));
}

void TelvaroctlScreenTest::orientationAndFullScreenAreShown()
{
    QCOMPARE(telvaroctl("orientation").output, QStringLiteral("0\n"));
    QCOMPARE(telvaroctl("fullscreen").output, QStringLiteral("off\n"));
    QCOMPARE(QJsonDocument::fromJson(telvaroctl("orientation --json").output.toUtf8()).object(),
             QJsonObject({{QStringLiteral("orientation"), QStringLiteral("0")}}));
    QCOMPARE(QJsonDocument::fromJson(telvaroctl("fullscreen --json").output.toUtf8()).object(),
             QJsonObject({{QStringLiteral("fullScreen"), false}}));
}

TELVARO_TEST_MAIN(TelvaroctlScreenTest)

#include "TelvaroctlScreenTest.moc"
