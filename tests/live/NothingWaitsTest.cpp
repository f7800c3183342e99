// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "EventLoopProbe.h"
#include "LiveFixture.h"
#include "LiveRequests.h"
#include "PrivateBus.h"
#include "TestMain.h"

#include <QElapsedTimer>

#include <algorithm>
#include <memory>
#include <vector>

namespace {

/// Milliseconds that the loop may be held where an idle one is held less: half of the shortest wait of all.
const int cLongestHold = 100;
const int cShortLateness = 200;
const int cLongLateness = 5000;
/// How long the loop is watched where nobody answers.
const int cSilence = 300;
/// What else runs on the machine may hold the loop as well, but not each time.
const int cAttempts = 3;

enum class Trouble
{
    ShortLateness,
    LongLateness,
    StoppedService,
    AbsentService,
    StoppedBus
};

int latenessOf(Trouble trouble)
{
    return trouble == Trouble::ShortLateness ? cShortLateness : trouble == Trouble::LongLateness ? cLongLateness : 0;
}

qint64 holdOfAnIdleLoop()
{
    EventLoopProbe probe;
    QTest::qWait(cSilence);
    return probe.finish();
}

} // namespace

Q_DECLARE_METATYPE(Trouble)

/// No operation, construction and destruction included, holds the event loop, whatever the service and the bus do.
class NothingWaitsTest : public LiveFixture
{
    Q_OBJECT

public:
    explicit NothingWaitsTest(PrivateBus& bus)
        : mBus(bus)
    {
    }

private Q_SLOTS:
    void theProbeSeesABlockingOperation();
    void noOperationHoldsTheLoop_data();
    void noOperationHoldsTheLoop();
    void cleanupTestCase();

private:
    struct Figures
    {
        qint64 idle = 0;
        qint64 hold = 0;
        qint64 slowest = 0;
        QString slowestOperation;
    };

    void begin(Trouble trouble);
    void end(Trouble trouble);
    Figures measure(Trouble trouble);

    PrivateBus& mBus;
    QStringList mFigures;
};

void NothingWaitsTest::theProbeSeesABlockingOperation()
{
    TelvaroTaskSwitcherDBusConnector connector;
    mService.setLate({cShortLateness});
    EventLoopProbe probe;
    connector.getViews();
    QVERIFY(probe.finish() > cLongestHold);
}

void NothingWaitsTest::noOperationHoldsTheLoop_data()
{
    QTest::addColumn<Trouble>("trouble");
    QTest::newRow("with a service that answers after 200 ms") << Trouble::ShortLateness;
    QTest::newRow("with a service that answers after 5 s") << Trouble::LongLateness;
    QTest::newRow("with a service that has stopped") << Trouble::StoppedService;
    QTest::newRow("without a service") << Trouble::AbsentService;
    QTest::newRow("with a bus that has stopped") << Trouble::StoppedBus;
}

void NothingWaitsTest::noOperationHoldsTheLoop()
{
    QFETCH(const Trouble, trouble);
    Figures figures;
    for (int attempt = 0; attempt < cAttempts; ++attempt) {
        figures = measure(trouble);
        if (QTest::currentTestFailed()) {
            return;
        }
        mFigures.append(QStringLiteral("%1: %2 ms where an idle loop was held %3 ms; %4: %5 us")
                            .arg(QLatin1String(QTest::currentDataTag()), QString::number(figures.hold),
                                 QString::number(figures.idle), figures.slowestOperation,
                                 QString::number(figures.slowest)));
        if (figures.hold <= std::max<qint64>(figures.idle, cLongestHold)) {
            return;
        }
    }
    QFAIL("the event loop has been held each time");
}

void NothingWaitsTest::cleanupTestCase()
{
    qInfo("%s", qPrintable(mFigures.join(QLatin1Char('\n'))));
}

void NothingWaitsTest::begin(Trouble trouble)
{
    // Notified while nobody listens, so that the reads which follow are part of the measurement.
    for (const char* const object : {"taskswitcher", "screen"}) {
        mService.emitSignal(ServiceSignal::propertiesChanged(QStringLiteral("/%1").arg(QLatin1String(object)),
                                                             QStringLiteral("de.Telvaro.%1").arg(QLatin1String(object)),
                                                             QStringLiteral("@a{sv} {}"),
                                                             {QStringLiteral("views"), QStringLiteral("orientation")}));
    }
    if (const int lateness = latenessOf(trouble); lateness > 0) {
        mService.setLate({lateness});
        for (const LiveRequest& request : LiveRequest::all()) {
            if (request.property.isEmpty()) {
                request.script(mService, {Behaviour::reply(request.reply).after(lateness)});
            }
        }
    } else if (trouble == Trouble::StoppedService) {
        mService.freeze();
    } else if (trouble == Trouble::AbsentService) {
        mService.kill();
    } else {
        mBus.freeze();
    }
}

void NothingWaitsTest::end(Trouble trouble)
{
    if (trouble == Trouble::StoppedService) {
        mService.thaw();
    } else if (trouble == Trouble::StoppedBus) {
        mBus.thaw();
    }
}

NothingWaitsTest::Figures NothingWaitsTest::measure(Trouble trouble)
{
    if (!mService.isRunning()) {
        startService();
    }
    mService.reset();
    setViews(makeViews(3), QStringLiteral("a"));
    mService.setStateful(true);
    LiveObjects objects;
    const auto areReady = [&objects] {
        return objects.areAll(TelvaroLiveObject::Ready);
    };
    std::vector<QDBusPendingCall> calls;
    Figures figures;
    if (!QTest::qWaitFor(areReady, ChildProcess::cDeadline)) {
        QTest::qFail("the objects are not ready", __FILE__, __LINE__);
        return figures;
    }
    figures.idle = holdOfAnIdleLoop();
    begin(trouble);

    EventLoopProbe probe;
    QElapsedTimer whole;
    whole.start();
    const auto perform = [&figures](const QString& name, const auto& operation) {
        QElapsedTimer timer;
        timer.start();
        operation();
        if (timer.nsecsElapsed() / 1000 > figures.slowest) {
            figures.slowest = timer.nsecsElapsed() / 1000;
            figures.slowestOperation = name;
        }
        QCoreApplication::processEvents();
    };
    std::unique_ptr<LiveObjects> later;
    perform(QStringLiteral("construction"), [&later] {
        later = std::make_unique<LiveObjects>();
    });
    for (const LiveRequest& request : LiveRequest::all()) {
        perform(request.name, [&] {
            calls.push_back(request.send(objects));
        });
    }
    const auto areAnswered = [&calls] {
        return std::all_of(calls.begin(), calls.end(), [](const QDBusPendingCall& call) {
            return call.isFinished();
        });
    };
    if (latenessOf(trouble) > 0) {
        const bool hasSettled = QTest::qWaitFor(
            [&] {
                return areAnswered() && areReady() && later->areAll(TelvaroLiveObject::Ready);
            },
            ChildProcess::cDeadline);
        if (!hasSettled || whole.elapsed() < latenessOf(trouble)) {
            QTest::qFail("the service is not late, or has not been heard", __FILE__, __LINE__);
        }
    } else {
        QTest::qWait(cSilence);
    }
    perform(QStringLiteral("destruction"), [&later] {
        later.reset();
    });
    figures.hold = probe.finish();

    end(trouble);
    if (!QTest::qWaitFor(areAnswered, ChildProcess::cDeadline)) {
        QTest::qFail("a request has got no answer", __FILE__, __LINE__);
    }
    return figures;
}

int main(int argc, char** argv)
{
    prepareTestEnvironment();
    QCoreApplication application(argc, argv);
    PrivateBus bus;
    NothingWaitsTest test(bus);
    return QTest::qExec(&test, argc, argv);
}
#include "NothingWaitsTest.moc"
