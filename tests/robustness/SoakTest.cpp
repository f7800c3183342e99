// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ConnectorFixture.h"
#include "Operations.h"
#include "PrivateBus.h"
#include "ProcessMemory.h"
#include "Scenario.h"
#include "TelvaroTaskSwitcherDBusConnector.h"
#include "TestMain.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDir>
#include <QElapsedTimer>

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

/// Repeats all operations. TELVARO_SOAK_OPERATIONS and TELVARO_SOAK_CONSTRUCTIONS set the counts.
class SoakTest : public ConnectorFixture
{
    Q_OBJECT

private Q_SLOTS:
    void nothingGrows();
    void noMessageWithAnEmptyArrayForViewsIsKept();
    void cleanupTestCase();

private:
    void perform(int operationCount, int constructionCount);

    Scenario mScenario;
    QString mFigures;
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

void SoakTest::nothingGrows()
{
    const int operationCount = setting("TELVARO_SOAK_OPERATIONS", 4000);
    const int constructionCount = setting("TELVARO_SOAK_CONSTRUCTIONS", 1000);
    Scenario::set(mService);
    Operations standing;
    standing.prepare();
    perform(operationCount / 4, constructionCount / 4);

    QElapsedTimer timer;
    timer.start();
    const Holdings before = Holdings::now();
    perform(operationCount, constructionCount);
    const Holdings after = Holdings::now();
    mFigures = QStringLiteral("%1 operations and %2 constructions in %3 s: memory %4 KiB, then %5 KiB; %6 descriptors, "
                              "then %7; %8 match rules, then %9")
                   .arg(operationCount)
                   .arg(constructionCount)
                   .arg(timer.elapsed() / 1000)
                   .arg(before.kibibytes)
                   .arg(after.kibibytes)
                   .arg(before.descriptors)
                   .arg(after.descriptors)
                   .arg(before.matchRules)
                   .arg(after.matchRules);
    QVERIFY(before.matchRules > 0);
    QCOMPARE(after.matchRules, before.matchRules);
    QCOMPARE(after.descriptors, before.descriptors);
    if (ProcessMemory::isMeaningful()) {
        QVERIFY2(after.kibibytes - before.kibibytes < cAllowedKibibytes, qPrintable(mFigures));
    }
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
    qInfo("%s", qPrintable(mFigures));
}

TELVARO_TEST_MAIN(SoakTest)

#include "SoakTest.moc"
