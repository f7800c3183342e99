// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "PrivateBus.h"
#include "TelvaroctlFixture.h"
#include "TestMain.h"

#include <QElapsedTimer>

class TelvaroctlTimeLimitTest : public TelvaroctlFixture
{
    Q_OBJECT

private Q_SLOTS:
    void aServiceThatHangsEndsEveryCommandAtTheLimit_data();
    void aServiceThatHangsEndsEveryCommandAtTheLimit();
    void aBusThatHangsEndsACommandAtTheLimit();
    void theLimitIsTwoSecondsByDefault();
    void theMessageOfTheLimitEndsWithAWholeCharacterAndALine();
    void theEnvironmentSetsTheLimit();
    void theReaderOfAPipeMayTakeItsTime();
};

void TelvaroctlTimeLimitTest::aServiceThatHangsEndsEveryCommandAtTheLimit_data()
{
    QTest::addColumn<QStringList>("arguments");
    for (const char* command : {"views", "current", "switch u-1", "switch --app notes", "next", "previous", "screen",
                                "screen --orientation 90 --fullscreen on", "screensaver", "screensaver timeout 5",
                                "orientation portrait", "fullscreen toggle", "overlay show text", "overlay hide",
                                "notify summary", "notify --close 1", "screenshot /", "watch"}) {
        QTest::newRow(command) << words(command);
    }
}

void TelvaroctlTimeLimitTest::aServiceThatHangsEndsEveryCommandAtTheLimit()
{
    QFETCH(QStringList, arguments);
    mService.freeze();
    const Result result = telvaroctl(QStringList({QStringLiteral("--timeout"), QStringLiteral("1")}) + arguments);
    mService.thaw();
    QCOMPARE(result.errors, message("the service " TELVARO_SERVICE_NAME " does not answer"));
    QCOMPARE(result.output, QString());
    QCOMPARE(result.status, 1);
}

void TelvaroctlTimeLimitTest::aBusThatHangsEndsACommandAtTheLimit()
{
    const QByteArray ownBus = PrivateBus::address().toUtf8();
    PrivateBus bus;
    const QString address = PrivateBus::address();
    bus.freeze();
    const Result result = telvaroctl("views --timeout 0.2");
    bus.thaw();
    PrivateBus::setAddress(ownBus);
    QCOMPARE(result.errors, message(QStringLiteral("the bus %1 does not answer").arg(address)));
    QCOMPARE(result.status, 1);
}

void TelvaroctlTimeLimitTest::theLimitIsTwoSecondsByDefault()
{
    const QByteArray generous = qgetenv("TELVAROCTL_TIMEOUT");
    qunsetenv("TELVAROCTL_TIMEOUT");
    mService.freeze();
    QElapsedTimer time;
    time.start();
    const Result result = telvaroctl("views");
    const qint64 elapsed = time.elapsed();
    mService.thaw();
    qputenv("TELVAROCTL_TIMEOUT", generous);
    QCOMPARE(result.status, 1);
    QVERIFY2(elapsed >= 2000, qPrintable(QString::number(elapsed)));
    QVERIFY2(elapsed < 10000, qPrintable(QString::number(elapsed)));
}

void TelvaroctlTimeLimitTest::theMessageOfTheLimitEndsWithAWholeCharacterAndALine()
{
    // Each of the two lengths has the limit of the message within another byte.
    for (const int padding : {0, 1}) {
        const Result result =
            telvaroctl({QStringLiteral("wait"), QStringLiteral("--timeout"), QStringLiteral("0.5"),
                        QStringLiteral("--app"), QString(padding, QLatin1Char('a')) + QString(400, QChar(0xe4))});
        QVERIFY2(result.errors.endsWith(QString::fromUtf8("ä\n")), qPrintable(result.errors));
        QVERIFY(!result.errors.contains(QChar(QChar::ReplacementCharacter)));
        QCOMPARE(result.status, 1);
    }
}

void TelvaroctlTimeLimitTest::theEnvironmentSetsTheLimit()
{
    const QByteArray generous = qgetenv("TELVAROCTL_TIMEOUT");
    qputenv("TELVAROCTL_TIMEOUT", "1");
    mService.freeze();
    const Result result = telvaroctl("views");
    mService.thaw();
    qputenv("TELVAROCTL_TIMEOUT", "soon");
    const Result wrong = telvaroctl("views");
    const Result help = telvaroctl("help views");
    const Result completion = telvaroctl("complete -- sw");
    qputenv("TELVAROCTL_TIMEOUT", "");
    const Result empty = telvaroctl("views");
    qputenv("TELVAROCTL_TIMEOUT", generous);
    QCOMPARE(result.errors, message("the service " TELVARO_SERVICE_NAME " does not answer"));
    QCOMPARE(wrong.status, 2);
    QVERIFY2(wrong.errors.startsWith(
                 message("TELVAROCTL_TIMEOUT: 'soon' is not a number of seconds above 0 and up to 1000000")),
             qPrintable(wrong.errors));
    QCOMPARE(help.status, 0);
    QCOMPARE(completion.output.section(QLatin1Char('\t'), 0, 0), QStringLiteral("switch"));
    QCOMPARE(empty.errors, QString());
    QCOMPARE(empty.status, 0);
}

void TelvaroctlTimeLimitTest::theReaderOfAPipeMayTakeItsTime()
{
    // More than a pipe holds, and a reader that begins after the limit.
    mService.setViews(QStringLiteral("[('u-1', 'notes', 'x' * 300000, '', '', '', uint32 1, uint32 0, @a{sv} {})]"));
    ChildProcess process;
    process.setProcessChannelMode(QProcess::SeparateChannels);
    process.run(QStringLiteral("sh"),
                {QStringLiteral("-c"),
                 QStringLiteral("{ \"$0\" --timeout 5 views --json; echo \"status $?\" >&2; } | { sleep 6; wc -c; }"),
                 program()});
    const Result result = finish(process);
    QCOMPARE(result.errors, QStringLiteral("status 0\n"));
    QVERIFY2(result.output.trimmed().toInt() > 300000, qPrintable(result.output));
}

TELVARO_TEST_MAIN(TelvaroctlTimeLimitTest)

#include "TelvaroctlTimeLimitTest.moc"
