// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "LiveFixture.h"
#include "TestMain.h"

#include <QElapsedTimer>

namespace {

const int cLimit = 200;

class ImpatientConnector : public TelvaroTaskSwitcherDBusConnector
{
public:
    ImpatientConnector()
    {
        mInterface.setTimeout(cLimit);
    }
};

} // namespace

/// A subclass of a blocking connector may wait less long than Qt's 25 seconds.
class ShortenedTimeLimitTest : public LiveFixture
{
    Q_OBJECT

private Q_SLOTS:
    void aSubclassOfAConnectorShortensTheWaitForAHungService();
};

void ShortenedTimeLimitTest::aSubclassOfAConnectorShortensTheWaitForAHungService()
{
    const int farBelowQtsLimit = 10000;
    setViews(makeViews(1), QStringLiteral("a"));
    ImpatientConnector connector;
    QCOMPARE(connector.getViews().size(), 1);
    mService.freeze();
    QElapsedTimer timer;
    timer.start();
    QVERIFY(connector.getViews().isEmpty());
    QVERIFY(connector.setCurrentView(makeViews(1).first()).isValid());
    QVERIFY2(timer.elapsed() >= cLimit && timer.elapsed() < farBelowQtsLimit,
             qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(mLog->takeTexts(), QStringList{QStringLiteral("Unable to read views!")});
    mService.thaw();
    QCOMPARE(connector.getViews().size(), 1);
}

TELVARO_TEST_MAIN(ShortenedTimeLimitTest)
#include "ShortenedTimeLimitTest.moc"
