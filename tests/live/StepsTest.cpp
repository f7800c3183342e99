// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "LiveFixture.h"
#include "TestMain.h"

#include <TelvaroTaskSwitcher.h>

#include <QCoreApplication>
#include <QSignalSpy>

#include <algorithm>
#include <random>
#include <vector>

namespace {

const int cRounds = 30;

const Behaviour cRefusal = Behaviour::error(QStringLiteral("org.example.Error.Refused"), QStringLiteral("not now"));

} // namespace

/// Steps from view to view, quick and slow.
class StepsTest : public LiveFixture
{
    Q_OBJECT

private Q_SLOTS:
    void quickStepsEndWhereSlowOnesDo();
    void stepsEndWhereTheConnectorsStepsDo();
    void aRefusedStepIsTakenBack();
    void aStepBeginsAtTheLastRequestThatMaySucceed();
    void aRequestThatIsAcceptedAndIgnoredEndsWithTheNextCurrentView();
    void withoutACurrentViewThereIsNoStepFromAViewWithoutUuid();

private:
    /// The view that is current in the end. Quick steps are all sent before any answer can be handled.
    QString step(TelvaroTaskSwitcher& switcher, const std::vector<bool>& directions, bool isQuick);
    void begin(TelvaroTaskSwitcher& switcher, const QString& uuid);
};

QString StepsTest::step(TelvaroTaskSwitcher& switcher, const std::vector<bool>& directions, bool isQuick)
{
    std::vector<QDBusPendingReply<>> replies;
    for (const bool isBackward : directions) {
        replies.push_back(isBackward ? switcher.previous() : switcher.next());
        if (!isQuick && !waitFor(replies.back())) {
            return {};
        }
    }
    for (const QDBusPendingReply<>& reply : replies) {
        if (!waitFor(reply)) {
            return {};
        }
    }
    return switcher.getCurrentView();
}

void StepsTest::begin(TelvaroTaskSwitcher& switcher, const QString& uuid)
{
    mService.setCurrentView(uuid);
    emitPropertiesChanged(QStringLiteral("{'currentView': <'%1'>}").arg(uuid));
    QCOMPARE(switcher.getCurrentView(), uuid);
}

void StepsTest::quickStepsEndWhereSlowOnesDo()
{
    std::mt19937 random(5);
    const auto below = [&random](int bound) {
        return std::uniform_int_distribution<int>(0, bound - 1)(random);
    };
    mService.setStateful(true);
    TelvaroTaskSwitcher switcher;
    for (int round = 0; round < cRounds; ++round) {
        QList<TaskSwitcherEntry> views;
        QList<quint32> order{0, 1, 2, 3, 4, 5};
        std::shuffle(order.begin(), order.end(), random);
        for (const quint32 sortIndex : order) {
            views.append(makeView(QStringLiteral("u%1").arg(sortIndex),
                                  below(4) == 0 ? QStringLiteral("y") : QStringLiteral("x"), sortIndex));
        }
        setViews(views);
        emitPropertiesChanged(QStringLiteral("@a{sv} {}"), {QStringLiteral("views")});
        TRY_COMPARE(switcher.getStatus(), Status::Ready);
        std::vector<bool> directions;
        for (int count = 1 + below(8); count > 0; --count) {
            directions.push_back(below(3) == 0);
        }
        const QString start = views.at(below(views.size())).uuid;
        mService.setLate(below(2) == 0 ? QList<int>{below(10), below(10), 0} : QList<int>());
        begin(switcher, start);
        const QString quick = step(switcher, directions, true);
        begin(switcher, start);
        const QString slow = step(switcher, directions, false);
        QCOMPARE(quick, slow);

        // By counting.
        QStringList cycle;
        const QString appId = switcher.getViews()->getView(start).appId;
        for (quint32 sortIndex = 0; sortIndex < 6; ++sortIndex) {
            const QString uuid = QStringLiteral("u%1").arg(sortIndex);
            if (switcher.getViews()->getView(uuid).appId == appId) {
                cycle.append(uuid);
            }
        }
        auto position = cycle.indexOf(start);
        for (const bool isBackward : directions) {
            position = (position + (isBackward ? cycle.size() - 1 : 1)) % cycle.size();
        }
        QCOMPARE(quick, cycle.at(position));
    }
}

void StepsTest::stepsEndWhereTheConnectorsStepsDo()
{
    // Two views with the same sortIndex among them, whose order only the sorting gives.
    setViews(
        {makeView(QStringLiteral("d"), QStringLiteral("x"), 3), makeView(QStringLiteral("a"), QStringLiteral("x"), 0),
         makeView(QStringLiteral("z"), QStringLiteral("y"), 0), makeView(QStringLiteral("b"), QStringLiteral("x"), 2),
         makeView(QStringLiteral("c"), QStringLiteral("x"), 2)},
        QStringLiteral("a"));
    mService.setStateful(true);
    TelvaroTaskSwitcher switcher;
    TRY_COMPARE(switcher.getStatus(), Status::Ready);
    TelvaroTaskSwitcherDBusConnector connector;
    for (const char* const start : {"a", "b", "c", "d", "z"}) {
        for (const bool isBackward : {false, true}) {
            begin(switcher, QLatin1String(start));
            QVERIFY(connector.iterateViews(isBackward));
            const QString expected = connector.getCurrentView().uuid;
            begin(switcher, QLatin1String(start));
            QCOMPARE(step(switcher, {isBackward}, true), expected);
        }
    }
}

void StepsTest::aRefusedStepIsTakenBack()
{
    setViews(makeViews(5), QStringLiteral("a"));
    mService.setStateful(true);
    TelvaroTaskSwitcher switcher;
    TRY_COMPARE(switcher.getStatus(), Status::Ready);
    const QSignalSpy failures(&switcher, &TelvaroLiveObject::requestFailed);
    // Two steps, the second of which is refused, and two more: quick within each two, and slow.
    for (const bool isQuick : {true, false}) {
        begin(switcher, QStringLiteral("a"));
        scriptSetCurrentView({Behaviour::plain(), cRefusal, Behaviour::plain()});
        QCOMPARE(step(switcher, {false, false}, isQuick), QStringLiteral("b"));
        QCOMPARE(step(switcher, {false, false}, isQuick), QStringLiteral("d"));
    }
    QCOMPARE(failures.size(), 2);
}

// What has been sent cannot be called back: where a step is refused that others already build on, they are not.
void StepsTest::aStepBeginsAtTheLastRequestThatMaySucceed()
{
    setViews(makeViews(6), QStringLiteral("a"));
    mService.setStateful(true);
    TelvaroTaskSwitcher switcher;
    TRY_COMPARE(switcher.getStatus(), Status::Ready);
    const QSignalSpy failures(&switcher, &TelvaroLiveObject::requestFailed);
    scriptSetCurrentView({Behaviour::plain(), cRefusal, Behaviour::plain()});
    QCOMPARE(step(switcher, {false, false, false}, true), QStringLiteral("d"));
    QCOMPARE(failures.size(), 1);
    QCOMPARE(step(switcher, {false, false}, true), QStringLiteral("f"));
    // A service that executes them in another order, here the first one last on any machine, leaves another view, from
    // which the next step begins.
    begin(switcher, QStringLiteral("a"));
    scriptSetCurrentView({Behaviour::plain().after(1000), cRefusal, Behaviour::plain().after(30), Behaviour::plain()});
    QCOMPARE(step(switcher, {false, false, false}, true), QStringLiteral("b"));
    QCOMPARE(step(switcher, {false}, true), QStringLiteral("c"));
}

void StepsTest::aRequestThatIsAcceptedAndIgnoredEndsWithTheNextCurrentView()
{
    setViews(makeViews(4), QStringLiteral("a"));
    TelvaroTaskSwitcher switcher;
    TRY_COMPARE(switcher.getStatus(), Status::Ready);
    QCOMPARE(step(switcher, {false}, true), QStringLiteral("a"));
    mService.setStateful(true);
    QCOMPARE(step(switcher, {false}, true), QStringLiteral("c"));
    mService.setStateful(false);
    step(switcher, {false}, true);
    emitPropertiesChanged(QStringLiteral("{'currentView': <'b'>}"));
    mService.setStateful(true);
    QCOMPARE(step(switcher, {false}, true), QStringLiteral("c"));
}

void StepsTest::withoutACurrentViewThereIsNoStepFromAViewWithoutUuid()
{
    setViews({makeView(QString(), QStringLiteral("x")), makeView(QStringLiteral("b"), QStringLiteral("x"), 1)});
    TelvaroTaskSwitcher switcher;
    TRY_COMPARE(switcher.getStatus(), Status::Ready);
    mService.takeCalls();
    for (const QDBusPendingReply<>& reply : {switcher.next(), switcher.previous()}) {
        QVERIFY(waitFor(reply));
        QCOMPARE(reply.error().type(), QDBusError::InvalidArgs);
    }
    QCOMPARE(mService.takeDescriptions(), QStringList());
}

TELVARO_TEST_MAIN(StepsTest)
#include "StepsTest.moc"
