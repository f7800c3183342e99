// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "LiveFixture.h"
#include "LiveRequests.h"
#include "LiveValues.h"
#include "PrivateBus.h"
#include "TestMain.h"
#include "ValueText.h"

#include <TelvaroScreenDBusConnector.h>

#include <QAbstractItemModelTester>
#include <QSignalSpy>

#include <memory>
#include <random>
#include <vector>

namespace {

const int cRestartEvery = 10;

int setting(const char* variable, int otherwise)
{
    bool isNumber = false;
    const int value = qEnvironmentVariableIntValue(variable, &isNumber);
    return isNumber ? value : otherwise;
}

} // namespace

/// Whatever the service does and whatever else happens on the bus: as soon as nothing is under way any more, the live
/// objects hold what the blocking connectors read.
///
/// TELVARO_LIVE_ROUNDS, TELVARO_LIVE_SEED: how many rounds, in each tenth of which the service restarts; and which
/// ones.
class ConvergenceTest : public LiveFixture
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void theLiveObjectsComeToHoldWhatTheConnectorsRead();
    void cleanupTestCase();

private:
    using Step = void (ConvergenceTest::*)();

    int below(int bound);
    bool isTrue();
    QString makeUuid();
    void changeViews();
    void changeCurrentView();
    QString currentViewValue() const;
    void storeAll();
    void notify(const QString& changed, const QStringList& invalidated = {});

    void notifyViews();
    void notifyCurrentView();
    void notifyBoth();
    void invalidate();
    void sendPlaceHolders();
    void notifyScreen();
    void makeRequests();
    void forge();
    void restart();

    void rest();
    QString difference();
    QString lostIndex();

    ScriptedServiceProcess mReplacement;
    ScriptedServiceProcess mForger;
    ScriptedServiceProcess* mActive = &mService;
    std::unique_ptr<LiveObjects> mObjects;
    std::mt19937 mRandom;

    QList<TaskSwitcherEntry> mViews;
    QString mCurrentView;
    QString mOrientation = QStringLiteral("0");
    bool mIsFullScreen = false;
    /// The rows as they were, and which of them have not been gone since.
    QList<QPair<QString, QPersistentModelIndex>> mIndexes;
    QStringList mContinuousViews;
    int mUuidCount = 0;
    int mRestartCount = 0;
    int mRequestCount = 0;
};

void ConvergenceTest::initTestCase()
{
    LiveFixture::initTestCase();
    mReplacement.start();
    mForger.start();
}

void ConvergenceTest::theLiveObjectsComeToHoldWhatTheConnectorsRead()
{
    static const std::vector<Step> cSteps = {
        &ConvergenceTest::notifyViews,  &ConvergenceTest::notifyViews,  &ConvergenceTest::notifyCurrentView,
        &ConvergenceTest::notifyBoth,   &ConvergenceTest::invalidate,   &ConvergenceTest::sendPlaceHolders,
        &ConvergenceTest::notifyScreen, &ConvergenceTest::makeRequests, &ConvergenceTest::forge,
    };
    mRandom.seed(static_cast<unsigned>(setting("TELVARO_LIVE_SEED", 1)));
    mService.release();
    storeAll();
    mService.takeOver();
    mObjects = std::make_unique<LiveObjects>();
    TelvaroViewModel* const model = mObjects->taskSwitcher.getViews();
    const QAbstractItemModelTester tester(model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    const QSignalSpy resets(model, &QAbstractItemModel::modelAboutToBeReset);
    const QSignalSpy layoutChanges(model, &QAbstractItemModel::layoutAboutToBeChanged);

    const int rounds = setting("TELVARO_LIVE_ROUNDS", 200);
    for (int round = 1; round <= rounds; ++round) {
        mActive->setLate(isTrue() ? QList<int>{below(20), 0, below(20)} : QList<int>());
        for (int count = 1 + below(5); count > 0; --count) {
            (this->*cSteps.at(static_cast<std::size_t>(below(static_cast<int>(cSteps.size())))))();
            if (isTrue()) {
                PrivateBus::deliver();
            }
        }
        if (round % cRestartEvery == 0) {
            restart();
        }
        rest();
        const QString problem = difference() + lostIndex();
        QVERIFY2(problem.isEmpty(), qPrintable(QStringLiteral("round %1: %2").arg(round).arg(problem)));
    }
    QCOMPARE(resets.size() + layoutChanges.size(), 0);
    mObjects.reset();
    // The connectors may find the service just gone.
    mLog->take();
}

void ConvergenceTest::cleanupTestCase()
{
    qInfo("%d restarts, %d requests, %d views", mRestartCount, mRequestCount, mUuidCount);
}

int ConvergenceTest::below(int bound)
{
    return std::uniform_int_distribution<int>(0, bound - 1)(mRandom);
}

bool ConvergenceTest::isTrue()
{
    return below(2) == 0;
}

QString ConvergenceTest::makeUuid()
{
    return QStringLiteral("u%1").arg(++mUuidCount);
}

void ConvergenceTest::changeViews()
{
    for (int count = 1 + below(4); count > 0; --count) {
        const int at = below(mViews.size() + 1);
        const int kind = below(6);
        if (kind < 2 || at == mViews.size()) {
            TaskSwitcherEntry view = makeView(makeUuid(), QStringLiteral("x%1").arg(below(3)), below(5), below(1000));
            view.attributes.insert(QStringLiteral("title"), view.uuid);
            mViews.insert(at, view);
        } else if (kind == 2) {
            mContinuousViews.removeAll(mViews.takeAt(at).uuid);
        } else if (kind == 3) {
            mViews.move(at, below(mViews.size()));
        } else if (kind == 4) {
            mViews[at].attributes.insert(QStringLiteral("title"), QString::number(below(100)));
        } else {
            mViews[at].info1 = QString::number(below(100));
            mViews[at].sortIndex = static_cast<quint32>(below(5));
        }
    }
    while (mViews.size() > 12) {
        mContinuousViews.removeAll(mViews.takeLast().uuid);
    }
}

void ConvergenceTest::changeCurrentView()
{
    const int at = below(mViews.size() + 2);
    mCurrentView = at < mViews.size() ? mViews.at(at).uuid
        : at == mViews.size()         ? QString()
                                      : QStringLiteral("unknown");
}

QString ConvergenceTest::currentViewValue() const
{
    return ValueText::variant(ValueText::string(mCurrentView));
}

void ConvergenceTest::storeAll()
{
    const QString screen = QStringLiteral("/screen");
    const QString interface = QStringLiteral("de.Telvaro.screen");
    mActive->setViews(ValueText::views(mViews));
    mActive->setCurrentView(mCurrentView);
    mActive->setProperty(screen, interface, QStringLiteral("orientation"), ValueText::string(mOrientation));
    mActive->setProperty(screen, interface, QStringLiteral("fullScreen"),
                         mIsFullScreen ? QStringLiteral("true") : QStringLiteral("false"));
    mActive->setStateful(true);
}

void ConvergenceTest::notify(const QString& changed, const QStringList& invalidated)
{
    mActive->emitSignal(ServiceSignal::propertiesChanged(
        QStringLiteral("/taskswitcher"), QStringLiteral("de.Telvaro.taskswitcher"), changed, invalidated));
}

void ConvergenceTest::notifyViews()
{
    changeViews();
    storeAll();
    notify(QStringLiteral("{'views': %1}").arg(ValueText::variant(ValueText::views(mViews))));
}

void ConvergenceTest::notifyCurrentView()
{
    changeCurrentView();
    storeAll();
    notify(QStringLiteral("{'currentView': %1}").arg(currentViewValue()));
}

void ConvergenceTest::notifyBoth()
{
    changeViews();
    changeCurrentView();
    storeAll();
    const QString views = QStringLiteral("'views': ") + ValueText::variant(ValueText::views(mViews));
    const QString currentView = QStringLiteral("'currentView': ") + currentViewValue();
    const bool isViewsFirst = isTrue();
    notify(QStringLiteral("{%1, %2}").arg(isViewsFirst ? views : currentView, isViewsFirst ? currentView : views));
}

void ConvergenceTest::invalidate()
{
    QStringList invalidated;
    if (isTrue()) {
        changeViews();
        invalidated.append(QStringLiteral("views"));
    }
    if (isTrue()) {
        changeCurrentView();
        invalidated.append(QStringLiteral("currentView"));
    }
    storeAll();
    notify(QStringLiteral("@a{sv} {}"), invalidated);
}

void ConvergenceTest::sendPlaceHolders()
{
    changeViews();
    changeCurrentView();
    storeAll();
    static const char* const cPlaceHolders[] = {"<1>", "<@a(ssssssuua{sv}) []>", "<['a']>", "<''>", "<(1, 'a')>"};
    notify(QStringLiteral("{'views': %1, 'currentView': <''>}").arg(QLatin1String(cPlaceHolders[below(5)])));
}

void ConvergenceTest::notifyScreen()
{
    mOrientation = QString::number(90 * below(4));
    mIsFullScreen = isTrue();
    storeAll();
    mActive->emitSignal(ServiceSignal::propertiesChanged(
        QStringLiteral("/screen"), QStringLiteral("de.Telvaro.screen"),
        QStringLiteral("{'orientation': %1}").arg(ValueText::variant(ValueText::string(mOrientation))),
        {QStringLiteral("fullScreen")}));
}

void ConvergenceTest::makeRequests()
{
    // What the service refuses it does not do.
    QList<Behaviour> behaviours;
    for (int count = below(4); count > 0; --count) {
        behaviours.append(
            isTrue() ? Behaviour::plain()
                     : Behaviour::error(QStringLiteral("org.example.Error.Refused"), QStringLiteral("not now")));
    }
    behaviours.append(Behaviour::plain());
    mActive->scriptProperty(QStringLiteral("Set"), QStringLiteral("/taskswitcher"), QStringLiteral("currentView"),
                            behaviours);
    TelvaroTaskSwitcher& switcher = mObjects->taskSwitcher;
    std::vector<QDBusPendingReply<>> replies;
    for (int count = 1 + below(6); count > 0; --count) {
        const int kind = below(3);
        replies.push_back(kind == 0       ? switcher.next()
                              : kind == 1 ? switcher.previous()
                                          : switcher.switchTo(mViews.value(below(mViews.size() + 1)).uuid));
        ++mRequestCount;
    }
    for (const QDBusPendingReply<>& reply : replies) {
        QVERIFY(waitFor(reply));
    }
    mCurrentView = LiveValues::readCurrentView().toString();
}

void ConvergenceTest::forge()
{
    mForger.emitSignal(ServiceSignal::propertiesChanged(
        QStringLiteral("/taskswitcher"), QStringLiteral("de.Telvaro.taskswitcher"),
        QStringLiteral("{'views': <[('forged', '', '', '', '', '', uint32 1, uint32 1, @a{sv} {})]>, "
                       "'currentView': <'forged'>}")));
    mForger.emitSignal(ServiceSignal::propertiesChanged(QStringLiteral("/screen"), QStringLiteral("de.Telvaro.screen"),
                                                        QStringLiteral("{'orientation': <'forged'>}")));
    mForger.emitSignal({QStringLiteral("/org/freedesktop/DBus"),
                        QStringLiteral("org.freedesktop.DBus"),
                        QStringLiteral("NameOwnerChanged"),
                        {ValueText::string(QStringLiteral(TELVARO_SERVICE_NAME)), QStringLiteral("''"),
                         ValueText::string(mForger.uniqueName())}});
}

void ConvergenceTest::restart()
{
    changeViews();
    changeCurrentView();
    mContinuousViews.clear();
    ++mRestartCount;
    // One answer or another is still under way.
    notify(QStringLiteral("@a{sv} {}"), {QStringLiteral("views")});
    PrivateBus::deliver();
    const QDBusPendingReply<> reply = mObjects->taskSwitcher.next();
    const int kind = below(4);
    // The other service, with an older state, gets the name in between where it has had it before.
    if (kind == 0) {
        mActive->kill();
        mActive->start();
    } else if (kind == 1) {
        mActive->release();
    } else {
        mActive = mActive == &mService ? &mReplacement : &mService;
        mActive->reset();
    }
    if (isTrue()) {
        PrivateBus::deliver();
    }
    storeAll();
    mActive->takeOver();
    // Whichever of the services it has reached.
    QVERIFY(waitFor(reply));
    mCurrentView = LiveValues::readCurrentView().toString();
}

void ConvergenceTest::rest()
{
    PrivateBus::deliver();
    const bool isReady = QTest::qWaitFor(
        [this] {
            return mObjects->areAll(TelvaroLiveObject::Ready);
        },
        ChildProcess::cDeadline);
    QVERIFY(isReady);
}

QString ConvergenceTest::difference()
{
    TelvaroTaskSwitcherDBusConnector switcher;
    TelvaroScreenDBusConnector screen;
    const auto compare = [](const char* name, const QVariant& live, const QVariant& read) {
        return live == read ? QString()
                            : QStringLiteral("%1: %2, not %3\n")
                                  .arg(QLatin1String(name), LiveValues::text(live), LiveValues::text(read));
    };
    const TelvaroTaskSwitcher& live = mObjects->taskSwitcher;
    const QList<TaskSwitcherEntry> views = switcher.getViews();
    QString differences =
        compare("views", LiveValues::fromViews(live.getViews()->getViews()), LiveValues::fromViews(views));
    differences += compare("currentView", live.getCurrentView(), LiveValues::readCurrentView());
    // The connector has the view itself, and none where it is not listed.
    const QString currentView = switcher.getCurrentView().uuid;
    differences += compare("current rows", currentRows(*live.getViews()),
                           currentView.isEmpty() ? QStringList() : QStringList(currentView));
    differences +=
        compare("current row", live.getViews()->getCurrentRow(), uuids(views).indexOf(live.getCurrentView()));
    differences += compare("orientation", mObjects->screen.getOrientation(), screen.getOrientation());
    differences += compare("fullScreen", mObjects->screen.isFullScreen(), screen.getFullScreen());
    return differences;
}

QString ConvergenceTest::lostIndex()
{
    QString lost;
    const TelvaroViewModel& model = *mObjects->taskSwitcher.getViews();
    for (const auto& [uuid, index] : mIndexes) {
        const bool isRight = index.isValid() ? index.data(TelvaroViewModel::UuidRole).toString() == uuid
                                             : !mContinuousViews.contains(uuid);
        if (!isRight) {
            lost += QStringLiteral("the index of %1 is lost\n").arg(uuid);
        }
    }
    mIndexes.clear();
    mContinuousViews.clear();
    for (int row = 0; row < model.rowCount(); ++row) {
        mContinuousViews.append(model.getViews().at(row).uuid);
        mIndexes.append({mContinuousViews.last(), model.index(row)});
    }
    return lost;
}

TELVARO_TEST_MAIN(ConvergenceTest)
#include "ConvergenceTest.moc"
