// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ConnectorFixture.h"
#include "Operations.h"
#include "PrivateBus.h"
#include "Scenario.h"
#include "TelvaroDBusDefinitions.h"
#include "TelvaroDeviceDistinction.h"
#include "TestMain.h"

#include <atomic>
#include <condition_variable>
#include <cstring>
#include <iostream>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

namespace {

const char cFirstUse[] = "--first-use";

/// The results of a thread's first use of all lazily initialised objects.
struct FirstUse
{
    static FirstUse make();

    bool operator==(const FirstUse& other) const
    {
        return names == other.names && orientations == other.orientations
            && isCompositorDevice == other.isCompositorDevice;
    }

    std::vector<const QString*> names;
    QStringList orientations;
    bool isCompositorDevice = false;
};

FirstUse FirstUse::make()
{
    using Names = TelvaroDBusDefinitions;
    using Screen = TelvaroScreenDBusConnector;
    return {
        {&Names::getServiceName(), &Names::getTaskSwitcherPath(), &Names::getTaskSwitcherInterface(),
         &Names::getPropertyInterface(), &Names::getPropertyMehodGet(), &Names::getPropertyMehodSet(),
         &Names::getGlobalOverlayPath(), &Names::getGlobalOverlayInterface(), &Names::getGlobalOverlayMethodHide(),
         &Names::getGlobalOverlayMethodShow(), &Names::getScreenPath(), &Names::getScreenInterface(),
         &Names::getNotificationsPath(), &Names::getNotificationsInterface(), &Names::getNotificationsMethodNotify(),
         &Names::getScreenShotPath(), &Names::getScreenShotInterface(), &Names::getScreenShotMethod()},
        {Screen::getOrientationLandscape(), Screen::getOrientationPortrait(), Screen::getOrientationInversePortrait()},
        TelvaroDeviceDistinction::isCompositorDevice()};
}

/// Prints the number of threads with identical results.
int useFirst()
{
    const std::size_t threadCount = 200;
    std::mutex mutex;
    std::condition_variable started;
    std::size_t waiting = 0;
    std::vector<FirstUse> uses(threadCount);
    std::vector<std::thread> threads;
    for (std::size_t index = 0; index < threadCount; ++index) {
        threads.emplace_back([&, index] {
            {
                std::unique_lock<std::mutex> lock(mutex);
                ++waiting;
                started.notify_all();
                started.wait(lock, [&] {
                    return waiting == threadCount;
                });
            }
            uses[index] = FirstUse::make();
        });
    }
    std::size_t same = 0;
    for (std::size_t index = 0; index < threadCount; ++index) {
        threads[index].join();
        same += uses[index] == uses.front() ? 1 : 0;
    }
    const FirstUse& use = uses.front();
    const std::set<const QString*> distinct(use.names.begin(), use.names.end());
    if (!use.isCompositorDevice || distinct.size() != use.names.size()
        || use.orientations != QStringList{QStringLiteral("0"), QStringLiteral("90"), QStringLiteral("270")}) {
        same = 0;
    }
    std::cout << same << std::endl;
    return 0;
}

} // namespace

/// Connectors in many threads at once, each in the thread that owns it.
class ThreadTest : public ConnectorFixture
{
    Q_OBJECT

private Q_SLOTS:
    void firstUseOfEveryNameMayBeInManyThreads();
    void connectorsMayBeUsedInManyThreads();

private:
    Scenario mScenario;
};

void ThreadTest::firstUseOfEveryNameMayBeInManyThreads()
{
    ChildProcess process;
    process.run(QStringLiteral(TELVARO_OWN_PATH), {QString::fromLatin1(cFirstUse)});
    QCOMPARE(process.readOutputLine(), QByteArray("200"));
    QVERIFY(process.waitForFinished(ChildProcess::cDeadline));
    QCOMPARE(process.exitCode(), 0);
}

void ThreadTest::connectorsMayBeUsedInManyThreads()
{
    const int threadCount = 8;
    const int roundCount = 500;
    Scenario::set(mService);
    // A thread takes a connector of another kind in every round. Process lookups are left out, since they only cost
    // time.
    const QList<QStringList> rounds{
        {QStringLiteral("getViews"), QStringLiteral("getCurrentView"), QStringLiteral("setCurrentView"),
         QStringLiteral("iterateViews forward")},
        {QStringLiteral("isScreenSaverActive"), QStringLiteral("setOrientation"), QStringLiteral("getOrientation")},
        {QStringLiteral("showGlobalOverlay"), QStringLiteral("hideGlobalOverlay"), QStringLiteral("isInterfaceValid")},
        {QStringLiteral("notify")},
        {QStringLiteral("captureScreenShot")},
    };
    std::atomic<int> rightCount{0};
    std::atomic<int> wrongCount{0};
    std::atomic<int> running{threadCount};
    std::vector<std::thread> threads;
    for (int index = 0; index < threadCount; ++index) {
        threads.emplace_back([&, index] {
            for (int round = 0; round < roundCount; ++round) {
                Operations operations;
                for (const QString& operation : rounds.at((index + round) % rounds.size())) {
                    const bool isRight = operations.perform(operation) == Operations::result(operation);
                    ++(isRight ? rightCount : wrongCount);
                }
            }
            --running;
        });
    }
    while (running > 0) {
        QCoreApplication::processEvents();
        // Keeps the service's record of calls small.
        mService.takeCalls();
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    QCOMPARE(wrongCount.load(), 0);
    QCOMPARE(rightCount.load(), threadCount * roundCount / rounds.size() * 12);
}

int main(int argc, char** argv)
{
    if (argc == 2 && std::strcmp(argv[1], cFirstUse) == 0) {
        return useFirst();
    }
    return runOnPrivateBus<ThreadTest>(argc, argv);
}

#include "ThreadTest.moc"
