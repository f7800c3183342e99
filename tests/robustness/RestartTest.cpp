// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "LogCapture.h"
#include "Operations.h"
#include "PrivateBus.h"
#include "Scenario.h"
#include "ScriptedServiceProcess.h"
#include "SignalRecorder.h"
#include "TestMain.h"

#include <QObject>
#include <QTest>

#include <condition_variable>
#include <exception>
#include <functional>
#include <mutex>
#include <random>
#include <thread>

namespace {

const int cRestarts = 200;
const int cViewSignals = 3;

// Differs between consecutive services.
QString orientation(int start)
{
    return start % 2 != 0 ? QStringLiteral("270") : QStringLiteral("90");
}

/// Kills the service and starts it again, over and over, in a thread of its own. The service is killed during a random
/// operation of its client, once every operation has succeeded on it.
class ServiceRestarter
{
public:
    ServiceRestarter();
    ~ServiceRestarter();

    /// The number of services that have acquired the name so far.
    int startCount();
    bool isDone();
    QString problem();

    void countOperation();
    void acknowledge(int start);

private:
    void run();
    void restart(ScriptedServiceProcess& service, int start);
    void waitUntil(const std::function<bool()>& condition);

    std::mutex mMutex;
    std::condition_variable mProgress;
    int mStartCount = 0;
    int mAcknowledged = 0;
    int mOperationCount = 0;
    bool mIsDone = false;
    QString mProblem;
    std::thread mThread;
};

ServiceRestarter::ServiceRestarter()
    : mThread([this] {
        run();
    })
{
}

ServiceRestarter::~ServiceRestarter()
{
    mThread.join();
}

int ServiceRestarter::startCount()
{
    const std::lock_guard<std::mutex> lock(mMutex);
    return mStartCount;
}

bool ServiceRestarter::isDone()
{
    const std::lock_guard<std::mutex> lock(mMutex);
    return mIsDone;
}

QString ServiceRestarter::problem()
{
    const std::lock_guard<std::mutex> lock(mMutex);
    return mProblem;
}

void ServiceRestarter::countOperation()
{
    const std::lock_guard<std::mutex> lock(mMutex);
    ++mOperationCount;
    mProgress.notify_all();
}

void ServiceRestarter::acknowledge(int start)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    mAcknowledged = start;
    mProgress.notify_all();
}

void ServiceRestarter::run()
{
    try {
        ScriptedServiceProcess service;
        for (int start = 1; start <= cRestarts; ++start) {
            restart(service, start);
        }
    } catch (const std::exception& error) {
        const std::lock_guard<std::mutex> lock(mMutex);
        mProblem = QString::fromUtf8(error.what());
    }
    const std::lock_guard<std::mutex> lock(mMutex);
    mIsDone = true;
}

void ServiceRestarter::restart(ScriptedServiceProcess& service, int start)
{
    service.start();
    Scenario::set(service);
    const QString screen = QStringLiteral("/screen");
    const QString screenInterface = QStringLiteral("de.Telvaro.screen");
    service.setProperty(screen, screenInterface, QStringLiteral("orientation"),
                        QLatin1Char('\'') + orientation(start) + QLatin1Char('\''));
    service.own();
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        mStartCount = start;
    }
    waitUntil([this, start] {
        return mAcknowledged == start;
    });
    service.emitSignal(ServiceSignal::propertiesChanged(QStringLiteral("/taskswitcher"),
                                                        QStringLiteral("de.Telvaro.taskswitcher"),
                                                        QStringLiteral("{'views': <1>}")),
                       cViewSignals);
    service.emitSignal(
        ServiceSignal::propertiesChanged(screen, screenInterface, QStringLiteral("{'orientation': <1>}")));
    // The signal's slot calls back into this service.
    waitUntil([this, start] {
        return mAcknowledged == -start;
    });
    static std::mt19937 random(4);
    const int operations = std::uniform_int_distribution<int>(0, Operations::names().size())(random);
    int target = 0;
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        target = mOperationCount + operations;
    }
    waitUntil([this, target] {
        return mOperationCount >= target;
    });
    service.kill();
}

void ServiceRestarter::waitUntil(const std::function<bool()>& condition)
{
    std::unique_lock<std::mutex> lock(mMutex);
    if (!mProgress.wait_for(lock, std::chrono::milliseconds(ChildProcess::cDeadline), condition)) {
        throw std::runtime_error("the client makes no progress");
    }
}

} // namespace

/// Every operation in a running loop, while the service dies and comes back.
class RestartTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyResultIsRightOrTheFailureAndNoSignalIsLostOrDoubled();

private:
    bool performAll(ServiceRestarter& restarter, int start);

    Scenario mScenario;
    Operations mOperations;
    int mRightCount = 0;
    int mFailureCount = 0;
    QString mProblem;
};

bool RestartTest::performAll(ServiceRestarter& restarter, int start)
{
    LogCapture log;
    bool allRight = true;
    for (const QString& operation : Operations::names()) {
        const QString result = mOperations.perform(operation);
        const QStringList texts = log.takeTexts();
        const bool isOrientation = operation == QLatin1String("getOrientation");
        const QString right = isOrientation ? orientation(start) : Operations::result(operation);
        const bool isRight = result == right && texts.isEmpty();
        // During a restart either service may have replied.
        const bool isOfOtherService = isOrientation && result == orientation(start + 1) && texts.isEmpty();
        const bool isFailure = Operations::isFailure(operation, result) && Operations::isFailureLog(texts);
        if (!isRight && !isOfOtherService && !isFailure) {
            mProblem = QStringLiteral("%1 answered \"%2\": %3").arg(operation, result, texts.join(QLatin1Char('\n')));
        }
        allRight = allRight && isRight;
        ++(isRight ? mRightCount : mFailureCount);
        restarter.countOperation();
    }
    return allRight;
}

void RestartTest::everyResultIsRightOrTheFailureAndNoSignalIsLostOrDoubled()
{
    PrivateBus::deliver();
    {
        // Without a service there is nothing to read.
        const LogCapture log;
        mOperations.prepare();
    }
    SignalRecorder recorder(mOperations.taskSwitcher(), mOperations.screen());
    QStringList received;
    QStringList expected;

    ServiceRestarter restarter;
    int acknowledged = 0;
    int turns = 0;
    int signalledStart = 0;
    while (!restarter.isDone() && mProblem.isEmpty()) {
        const int start = restarter.startCount();
        const bool isNew = start > acknowledged;
        QCoreApplication::processEvents();
        const bool allRight = performAll(restarter, start);
        received += recorder.take();
        if (isNew) {
            ++turns;
            if (allRight) {
                acknowledged = start;
                turns = 0;
                restarter.acknowledge(start);
                for (int count = 0; count < cViewSignals; ++count) {
                    expected.append(QStringLiteral("viewsChanged"));
                }
                expected.append(QStringLiteral("screenOrientationChanged:") + orientation(start));
            } else if (turns > 1) {
                mProblem = QStringLiteral("an operation still failed a turn after start %1").arg(start);
            }
        } else if (start > signalledStart && received.size() >= expected.size()) {
            signalledStart = start;
            restarter.acknowledge(-start);
        }
    }
    QCOMPARE(mProblem, QString());
    QCOMPARE(restarter.problem(), QString());
    PrivateBus::deliver();
    received += recorder.take();
    QCOMPARE(received, expected);
    QCOMPARE(acknowledged, cRestarts);
    QVERIFY(mFailureCount > 0);
    qInfo("%d restarts, %d right results, %d failures, %d signals", acknowledged, mRightCount, mFailureCount,
          received.size());
}

TELVARO_TEST_MAIN(RestartTest)

#include "RestartTest.moc"
