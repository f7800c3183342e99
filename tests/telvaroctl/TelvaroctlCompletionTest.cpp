// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "PrivateBus.h"
#include "TelvaroctlFixture.h"
#include "TestMain.h"
#include "ValueText.h"

class TelvaroctlCompletionTest : public TelvaroctlFixture
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void wordsAreCompleted_data();
    void wordsAreCompleted();
    void candidatesAreDescribed();
    void processesThatHaveViewsAreOffered();
    void whatWouldHaveToBeQuotedIsNotOffered();
    void theViewsAreThoseOfTheBusOfTheLine();
    void aServiceThatHangsOffersNothing();

private:
    static Result complete(const QStringList& line);
    static QStringList candidates(const Result& result);
};

void TelvaroctlCompletionTest::init()
{
    TelvaroctlFixture::init();
    mService.setViews(ValueText::views({view("n-1", "notes", 1, 0, "Shopping"), view("n-2", "notes", 1, 4, "Recipes"),
                                        view("m-1", "maps", 2, 7, "Map")}));
}

// A generous limit, except where it is tested.
TelvaroctlFixture::Result TelvaroctlCompletionTest::complete(const QStringList& line)
{
    return telvaroctl(words("--timeout 15 complete --") + line);
}

QStringList TelvaroctlCompletionTest::candidates(const Result& result)
{
    QStringList found;
    const QStringList lines = result.output.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString& line : lines) {
        found.append(line.section(QLatin1Char('\t'), 0, 0));
    }
    return found;
}

void TelvaroctlCompletionTest::wordsAreCompleted_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QStringList>("expected");
    const auto row = [](const char* line, const char* expected) {
        QTest::newRow(line) << QString::fromUtf8(line) << words(expected);
    };
    row("sw", "switch");
    row("screen", "screen screensaver screenshot");
    row("switch ", "n-1 n-2 m-1");
    row("switch n", "n-1 n-2");
    row("switch --app ", "notes maps");
    row("switch --app notes --index ", "0 4");
    row("switch --index ", "0 4 7");
    row("switch --app notes --i", "--index");
    row("wait --app m", "maps");
    row("wait --view ", "n-1 n-2 m-1");
    row("--j", "--json");
    row("--json vi", "views");
    row("--timeout 3 vi", "views");
    row("views --for", "--format");
    row("next --j", "");
    row("next ", "");
    row("xyzzy ", "");
    row("help sw", "switch");
    row("--bus ", "session system");
    row("fullscreen ", "on off toggle");
    row("screen --fullscreen o", "on off");
    row("screensaver ", "on off toggle status timeout");
    row("orientation ", "landscape portrait inverse-landscape inverse-portrait");
    row("orientation portrait ", "");
    row("notify --urgency ", "low normal critical");
    row("notify --icon ", ":files");
    row("overlay ", "show hide");
    row("screenshot ", ":directories");
}

void TelvaroctlCompletionTest::wordsAreCompleted()
{
    QFETCH(QString, line);
    QFETCH(QStringList, expected);
    const Result result = complete(line.split(QLatin1Char(' ')));
    QCOMPARE(result.status, 0);
    QCOMPARE(candidates(result), expected);
}

void TelvaroctlCompletionTest::candidatesAreDescribed()
{
    QCOMPARE(complete(words("sw")).output, QStringLiteral("switch\tMakes a view the current one.\n"));
    QCOMPARE(complete(words("views --j")).output, QStringLiteral("--json\tPrints JSON.\n"));
    QCOMPARE(complete(words("switch n-2")).output, QStringLiteral("n-2\tnotes: Recipes\n"));
}

void TelvaroctlCompletionTest::processesThatHaveViewsAreOffered()
{
    ChildProcess process;
    process.run(ChildProcess::serviceProgram(QStringLiteral("idle-process")));
    mService.setViews(
        ValueText::views({view("n-1", "notes", static_cast<uint32_t>(process.processId()), 0, "Shopping")}));
    QCOMPARE(candidates(complete({QStringLiteral("top"), QString()})), QStringList(QStringLiteral("idle-process")));
}

void TelvaroctlCompletionTest::whatWouldHaveToBeQuotedIsNotOffered()
{
    mService.setViews(
        ValueText::views({view("$(reboot)", "two words", 1, 0, "a"), view("u-1", "notes", 1, 0, "b\tc")}));
    QCOMPARE(complete({QStringLiteral("switch"), QString()}).output,
             QString::fromUtf8("u-1\tnotes: b\xef\xbf\xbd"
                               "c\n"));
}

void TelvaroctlCompletionTest::theViewsAreThoseOfTheBusOfTheLine()
{
    const QString address = PrivateBus::address();
    PrivateBus::setAddress("unix:path=/nonexistent");
    const Result words = complete({QStringLiteral("--bus"), address, QStringLiteral("switch"), QStringLiteral("m")});
    const Result word = complete({QStringLiteral("--bus=") + address, QStringLiteral("switch"), QStringLiteral("m")});
    PrivateBus::setAddress(address.toUtf8());
    QCOMPARE(candidates(words), QStringList(QStringLiteral("m-1")));
    QCOMPARE(candidates(word), QStringList(QStringLiteral("m-1")));
}

void TelvaroctlCompletionTest::aServiceThatHangsOffersNothing()
{
    mService.freeze();
    const Result result =
        telvaroctl({QStringLiteral("complete"), QStringLiteral("--"), QStringLiteral("switch"), QString()});
    mService.thaw();
    QCOMPARE(result.output, QString());
    QCOMPARE(result.status, 1);
}

TELVARO_TEST_MAIN(TelvaroctlCompletionTest)

#include "TelvaroctlCompletionTest.moc"
