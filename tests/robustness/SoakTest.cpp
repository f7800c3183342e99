// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "LiveFixture.h"
#include "LiveRequests.h"
#include "Operations.h"
#include "PrivateBus.h"
#include "ProcessMemory.h"
#include "Scenario.h"
#include "TelvaroTaskSwitcherDBusConnector.h"
#include "TestMain.h"
#include "ValueText.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDir>
#include <QElapsedTimer>

#include <functional>

namespace {

const qint64 cAllowedKibibytes = 512;

int setting(const char* variable, int otherwise)
{
    bool isNumber = false;
    const int value = qEnvironmentVariableIntValue(variable, &isNumber);
    return isNumber ? value : otherwise;
}

/// Resources that must not grow in a long-running application.
struct Holdings
{
    static Holdings now();

    qint64 kibibytes = 0;
    uint descriptors = 0;
    uint matchRules = 0;
};

Holdings Holdings::now()
{
    PrivateBus::deliver();
    QDBusMessage query = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus.Debug.Stats"), QStringLiteral("GetConnectionStats"));
    query << PrivateBus::connection().baseService();
    const auto statistics = qdbus_cast<QVariantMap>(PrivateBus::connection().call(query).arguments().value(0));
    Holdings holdings;
    holdings.kibibytes = ProcessMemory::resident();
    holdings.descriptors = QDir(QStringLiteral("/proc/self/fd")).count();
    holdings.matchRules = statistics.value(QStringLiteral("MatchRules")).toUInt();
    return holdings;
}

} // namespace

/// Repeats all operations of the connectors and the live objects. TELVARO_SOAK_OPERATIONS and
/// TELVARO_SOAK_CONSTRUCTIONS set the counts.
class SoakTest : public LiveFixture
{
    Q_OBJECT

private Q_SLOTS:
    void nothingGrows();
    void nothingGrowsWithTheLiveObjects();
    void noMessageWithAnEmptyArrayForViewsIsKept();
    void cleanupTestCase();

private:
    static int operationCount();
    static int constructionCount();
    void perform(int operationCount, int constructionCount);
    void live(int lifeCount);
    /// Fails the test if the work holds more after it than before. What it needs once has been made before.
    void expectNoGrowth(const QString& name, const std::function<void()>& work);

    Scenario mScenario;
    QStringList mFigures;
};

void SoakTest::perform(int operationCount, int constructionCount)
{
    const int batch = 500;
    QStringList constructions;
    QStringList others;
    for (const QString& name : Operations::names()) {
        (Operations::isConstruction(name) ? constructions : others).append(name);
    }
    const auto repeat = [this](Operations& operations, const QStringList& names, int count) {
        for (int done = 0; done < count; ++done) {
            const QString& name = names.at(done % names.size());
            QCOMPARE(operations.perform(name), Operations::result(name));
            if (done % batch == 0) {
                for (const char* const path : {"/taskswitcher", "/screen"}) {
                    mService.emitSignal(ServiceSignal::propertiesChanged(
                        QLatin1String(path), QStringLiteral("de.Telvaro.any"),
                        QStringLiteral("{'currentView': <1>, 'orientation': <1>, 'fullScreen': <1>}")));
                }
                PrivateBus::deliver();
                mService.takeCalls();
            }
        }
    };
    Operations operations;
    operations.prepare();
    repeat(operations, others, operationCount);
    repeat(operations, constructions, constructionCount);
}

void SoakTest::live(int lifeCount)
{
    const int restartEvery = 10;
    // Gone as well before the match rules are counted: objects share theirs.
    LiveObjects standing;
    for (int done = 0; done < lifeCount; ++done) {
        LiveObjects objects;
        const auto areAll = [&objects](Status status) {
            return QTest::qWaitFor(
                [&objects, status] {
                    return objects.areAll(status);
                },
                ChildProcess::cDeadline);
        };
        QVERIFY(areAll(Status::Ready));
        QDBusPendingReply<> last;
        for (const LiveRequest& request : LiveRequest::all()) {
            last = request.send(objects);
        }
        // Rows come and go, and reads are under way as well.
        emitPropertiesChanged(
            QStringLiteral("{'views': %1}").arg(ValueText::variant(ValueText::views(makeViews(1 + done % 5)))),
            {QStringLiteral("currentView")});
        emitScreenChanged(QStringLiteral("{'orientation': <1>}"), {QStringLiteral("fullScreen")});
        if (done % restartEvery == 0) {
            mService.release();
            QVERIFY(areAll(Status::Absent));
            mService.own();
            QVERIFY(areAll(Status::Ready));
            mService.takeCalls();
        }
        // Every other life ends before the replies come.
        QVERIFY(done % 2 == 0 || waitFor(last));
    }
    TRY_VERIFY(standing.areAll(Status::Ready));
    QVERIFY(Holdings::now().matchRules > 0);
}

void SoakTest::expectNoGrowth(const QString& name, const std::function<void()>& work)
{
    QElapsedTimer timer;
    timer.start();
    const Holdings before = Holdings::now();
    work();
    const Holdings after = Holdings::now();
    mFigures.append(QStringLiteral("%1 in %2 s: memory %3 KiB, then %4 KiB; %5 descriptors, then %6; %7 match rules, "
                                   "then %8")
                        .arg(name)
                        .arg(timer.elapsed() / 1000)
                        .arg(before.kibibytes)
                        .arg(after.kibibytes)
                        .arg(before.descriptors)
                        .arg(after.descriptors)
                        .arg(before.matchRules)
                        .arg(after.matchRules));
    QCOMPARE(after.matchRules, before.matchRules);
    QCOMPARE(after.descriptors, before.descriptors);
    if (ProcessMemory::isMeaningful()) {
        QVERIFY2(after.kibibytes - before.kibibytes < cAllowedKibibytes, qPrintable(mFigures.last()));
    }
}

int SoakTest::operationCount()
{
    return setting("TELVARO_SOAK_OPERATIONS", 4000);
}

int SoakTest::constructionCount()
{
    return setting("TELVARO_SOAK_CONSTRUCTIONS", 1000);
}

void SoakTest::nothingGrows()
{
    Scenario::set(mService);
    Operations standing;
    standing.prepare();
    perform(operationCount() / 4, constructionCount() / 4);
    expectNoGrowth(QStringLiteral("%1 operations and %2 constructions").arg(operationCount()).arg(constructionCount()),
                   [this] {
                       perform(operationCount(), constructionCount());
                   });
}

void SoakTest::nothingGrowsWithTheLiveObjects()
{
    const int lives = constructionCount() / 4;
    setViews(makeViews(3), QStringLiteral("a"));
    live(lives / 5);
    expectNoGrowth(QStringLiteral("%1 lives of the live objects").arg(lives), [this, lives] {
        live(lives);
    });
}

void SoakTest::noMessageWithAnEmptyArrayForViewsIsKept()
{
    if (!ProcessMemory::isMeaningful()) {
        return;
    }
    const int reads = 50;
    const int mebibyte = 1024 * 1024;
    mService.scriptProperty(QStringLiteral("Get"), QStringLiteral("/taskswitcher"), QStringLiteral("views"),
                            {Behaviour::reply({QStringLiteral("<@ai []>"), QStringLiteral("'x' * %1").arg(mebibyte)})});
    TelvaroTaskSwitcherDBusConnector connector;
    const auto readViews = [&connector] {
        for (int read = 0; read < reads; ++read) {
            QVERIFY(connector.getViews().isEmpty());
        }
    };
    readViews();
    const qint64 before = ProcessMemory::resident();
    readViews();
    const qint64 growth = ProcessMemory::resident() - before;
    QVERIFY2(growth < reads * mebibyte / 1024 / 2, qPrintable(QString::number(growth)));
}

void SoakTest::cleanupTestCase()
{
    for (const QString& figures : mFigures) {
        qInfo("%s", qPrintable(figures));
    }
}

TELVARO_TEST_MAIN(SoakTest)

#include "SoakTest.moc"
