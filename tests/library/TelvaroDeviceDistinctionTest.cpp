// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "TelvaroDeviceDistinction.h"
#include "DeviceManifestManager.h"

#include <QObject>
#include <QString>
#include <QTest>

#include <atomic>
#include <stdexcept>
#include <thread>
#include <vector>

namespace {

std::atomic<int> lookups = 0;
std::atomic<bool> isManifestReadable = false;

} // namespace

// Replaces the function that reads the device's manifest.
QString DeviceManifestManager::getProductCode()
{
    ++lookups;
    if (!isManifestReadable) {
        throw std::runtime_error("unreadable");
    }
    return QStringLiteral("481936");
}

class TelvaroDeviceDistinctionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aLookupThatThrowsIsTriedAgain();
    void theFirstLookupIsTheOnlyOneAlsoForManyThreads();
    void aLaterChangeIsNotSeen();
};

void TelvaroDeviceDistinctionTest::aLookupThatThrowsIsTriedAgain()
{
    QVERIFY_EXCEPTION_THROWN(TelvaroDeviceDistinction::isCompositorDevice(), std::runtime_error);
    QVERIFY_EXCEPTION_THROWN(TelvaroDeviceDistinction::isCompositorDevice(), std::runtime_error);
    QCOMPARE(lookups.load(), 2);
}

void TelvaroDeviceDistinctionTest::theFirstLookupIsTheOnlyOneAlsoForManyThreads()
{
    isManifestReadable = true;
    lookups = 0;
    std::atomic<int> successes = 0;
    std::vector<std::thread> threads;
    for (int count = 0; count < 8; ++count) {
        threads.emplace_back([&successes] {
            successes += TelvaroDeviceDistinction::isCompositorDevice() ? 1 : 0;
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    QCOMPARE(successes.load(), 8);
    QCOMPARE(lookups.load(), 1);
}

void TelvaroDeviceDistinctionTest::aLaterChangeIsNotSeen()
{
    lookups = 0;
    isManifestReadable = false;
    QVERIFY(TelvaroDeviceDistinction::isCompositorDevice());
    QCOMPARE(lookups.load(), 0);
}

QTEST_GUILESS_MAIN(TelvaroDeviceDistinctionTest)
#include "TelvaroDeviceDistinctionTest.moc"
