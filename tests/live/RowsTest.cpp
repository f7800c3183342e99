// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "LiveFixture.h"
#include "TestMain.h"
#include "ValueText.h"

#include <TelvaroTaskSwitcher.h>

#include <QAbstractItemModelTester>
#include <QSignalSpy>

#include <memory>

/// The rows of the views, and the signals about them.
class RowsTest : public LiveFixture
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void aSwitchIsTwoRowsWithTheCurrentRole();
    void aChangeNamesTheRolesThatChange_data();
    void aChangeNamesTheRolesThatChange();
    void whatDoesNotChangeIsNotSignalled();
    void indexesFollowTheirViews();
    void aListMayNameAViewTwice();
    void attributesArePlainValues();
    void aSlotMayShowANewerList();

private:
    void show(const QList<TaskSwitcherEntry>& views);
    /// The signals about the rows since the last time.
    QStringList takeSignals();

    std::unique_ptr<TelvaroTaskSwitcher> mSwitcher;
    std::unique_ptr<QAbstractItemModelTester> mTester;
    TelvaroViewModel* mModel = nullptr;
    QStringList mSignals;
};

void RowsTest::init()
{
    LiveFixture::init();
    setViews(makeViews(5), QStringLiteral("b"));
    mService.setStateful(true);
    mSwitcher = std::make_unique<TelvaroTaskSwitcher>();
    mModel = mSwitcher->getViews();
    mTester = std::make_unique<QAbstractItemModelTester>(mModel, QAbstractItemModelTester::FailureReportingMode::Fatal);
    TRY_COMPARE(mSwitcher->getStatus(), Status::Ready);
    connect(mModel, &QAbstractItemModel::dataChanged, this,
            [this](const QModelIndex& first, const QModelIndex& last, const QVector<int>& roles) {
                QStringList names;
                for (const int role : roles) {
                    names.append(role == Qt::DisplayRole ? QStringLiteral("display")
                                                         : QString::fromLatin1(mModel->roleNames().value(role)));
                }
                mSignals.append(
                    QStringLiteral("%1-%2 %3").arg(first.row()).arg(last.row()).arg(names.join(QLatin1Char(' '))));
            });
    connect(mModel, &QAbstractItemModel::rowsInserted, this, [this](const QModelIndex&, int first, int last) {
        mSignals.append(QStringLiteral("%1-%2 inserted").arg(first).arg(last));
    });
    connect(mModel, &QAbstractItemModel::rowsRemoved, this, [this](const QModelIndex&, int first, int last) {
        mSignals.append(QStringLiteral("%1-%2 removed").arg(first).arg(last));
    });
    connect(mModel, &QAbstractItemModel::rowsMoved, this,
            [this](const QModelIndex&, int first, int last, const QModelIndex&, int to) {
                mSignals.append(QStringLiteral("%1-%2 moved to %3").arg(first).arg(last).arg(to));
            });
    connect(mModel, &QAbstractItemModel::modelReset, this, [this] {
        mSignals.append(QStringLiteral("reset"));
    });
    connect(mModel, &TelvaroViewModel::countChanged, this, [this] {
        mSignals.append(QStringLiteral("count"));
    });
    connect(mModel, &TelvaroViewModel::currentRowChanged, this, [this] {
        mSignals.append(QStringLiteral("current row"));
    });
    mSignals.clear();
}

void RowsTest::cleanup()
{
    mTester.reset();
    mSwitcher.reset();
    LiveFixture::cleanup();
}

void RowsTest::show(const QList<TaskSwitcherEntry>& views)
{
    emitPropertiesChanged(QStringLiteral("{'views': %1}").arg(ValueText::variant(ValueText::views(views))));
}

QStringList RowsTest::takeSignals()
{
    QStringList taken;
    taken.swap(mSignals);
    return taken;
}

void RowsTest::aSwitchIsTwoRowsWithTheCurrentRole()
{
    mSwitcher->switchTo(QStringLiteral("d"));
    TRY_COMPARE(mSwitcher->getCurrentView(), QStringLiteral("d"));
    QCOMPARE(
        takeSignals(),
        QStringList({QStringLiteral("1-1 current"), QStringLiteral("3-3 current"), QStringLiteral("current row")}));
    // As a service tells both, where the list has not changed.
    emitPropertiesChanged(
        QStringLiteral("{'views': %1, 'currentView': <'e'>}").arg(ValueText::variant(ValueText::views(makeViews(5)))));
    QCOMPARE(
        takeSignals(),
        QStringList({QStringLiteral("3-3 current"), QStringLiteral("4-4 current"), QStringLiteral("current row")}));
    QCOMPARE(currentRows(*mModel), QStringList{QStringLiteral("e")});
}

void RowsTest::aChangeNamesTheRolesThatChange_data()
{
    QTest::addColumn<QString>("view");
    QTest::addColumn<QString>("roles");
    const auto addRow = [](const char* view, const char* roles) {
        QTest::newRow(roles) << QStringLiteral("('c', %1)").arg(QLatin1String(view)) << roles;
    };
    addRow("'y', '', '', '', '', uint32 0, uint32 2, @a{sv} {}", "appId title display");
    addRow("'x', '1', '', '', '', uint32 0, uint32 2, @a{sv} {}", "info1");
    addRow("'x', '', '2', '', '', uint32 0, uint32 2, @a{sv} {}", "info2");
    addRow("'x', '', '', '3', '', uint32 0, uint32 2, @a{sv} {}", "info3");
    addRow("'x', '', '', '', '4', uint32 0, uint32 2, @a{sv} {}", "info4");
    addRow("'x', '', '', '', '', uint32 7, uint32 2, @a{sv} {}", "pid");
    addRow("'x', '', '', '', '', uint32 0, uint32 7, @a{sv} {}", "sortIndex");
    addRow("'x', '', '', '', '', uint32 0, uint32 2, {'k': <'v'>}", "attributes");
    addRow("'x', '', '', '', '', uint32 0, uint32 2, {'title': <'t'>}", "attributes title display");
    addRow("'x', '1', '', '', '4', uint32 0, uint32 2, @a{sv} {}", "info1 info4");
}

void RowsTest::aChangeNamesTheRolesThatChange()
{
    QFETCH(const QString, view);
    QFETCH(const QString, roles);
    QString views = ValueText::views(makeViews(5));
    const QString former = ValueText::view(makeViews(5).at(2));
    QVERIFY(views.contains(former));
    views.replace(former, view);
    for (const QString& list : {views, ValueText::views(makeViews(5))}) {
        emitPropertiesChanged(QStringLiteral("{'views': <%1>}").arg(list));
        QCOMPARE(takeSignals(), QStringList(QStringLiteral("2-2 ") + roles));
    }
}

void RowsTest::whatDoesNotChangeIsNotSignalled()
{
    const QSignalSpy changes(mSwitcher.get(), &TelvaroTaskSwitcher::currentViewChanged);
    const StatusRecorder recorder(*mSwitcher);
    show(makeViews(5));
    emitPropertiesChanged(QStringLiteral("{'currentView': <'b'>}"));
    QCOMPARE(takeSignals(), QStringList());
    QCOMPARE(changes.size(), 0);
    QVERIFY(recorder.getStatuses().isEmpty());
}

void RowsTest::indexesFollowTheirViews()
{
    QList<QPersistentModelIndex> indexes;
    for (int row = 0; row < 5; ++row) {
        indexes.append(mModel->index(row));
    }
    QList<TaskSwitcherEntry> views = makeViews(5);
    views.move(4, 0);
    views.removeAt(2);
    views.append(makeView(QStringLiteral("n"), QStringLiteral("x")));
    show(views);
    QCOMPARE(uuids(mModel->getViews()),
             QStringList({QStringLiteral("e"), QStringLiteral("a"), QStringLiteral("c"), QStringLiteral("d"),
                          QStringLiteral("n")}));
    QCOMPARE(takeSignals(),
             QStringList({QStringLiteral("1-1 removed"), QStringLiteral("3-3 moved to 0"),
                          QStringLiteral("4-4 inserted"), QStringLiteral("current row")}));
    QList<int> rows;
    for (const QPersistentModelIndex& index : indexes) {
        rows.append(index.row());
    }
    QCOMPARE(rows, QList<int>({1, -1, 2, 3, 0}));
}

void RowsTest::aListMayNameAViewTwice()
{
    const TaskSwitcherEntry a = makeViews(2).at(0);
    const TaskSwitcherEntry b = makeViews(2).at(1);
    const QList<QList<TaskSwitcherEntry>> lists = {{a, a}, {b, a, b, a}, {a}, {b, b, b}, {a, b, a}, {b}, {a, b}};
    for (const QList<TaskSwitcherEntry>& list : lists) {
        show(list);
        QCOMPARE(uuids(mModel->getViews()), uuids(list));
        QCOMPARE(mModel->getCurrentRow(), uuids(list).indexOf(QStringLiteral("b")));
    }
    QVERIFY(!takeSignals().contains(QStringLiteral("reset")));
}

void RowsTest::attributesArePlainValues()
{
    const QString view =
        QStringLiteral("('a', 'x', '', '', '', '', uint32 1, uint32 1, {'list': <[1, 2]>, 'structure': "
                       "<(1, 'a', [objectpath '/p'])>, 'map': <{uint32 1: <true>}>, 'variant': "
                       "<<<'v'>>>, 'bytes': <[byte 0x41]>, 'signature': <signature 'as'>, 'twice': "
                       "<1>, 'twice': <2>, 'descriptor': <handle 0>, 'descriptors': <[handle 0]>})");
    emitPropertiesChanged(QStringLiteral("{'views': <[%1]>}").arg(view));
    const QVariantMap expected = {
        {QStringLiteral("list"), QVariantList{1, 2}},
        {QStringLiteral("structure"), QVariantList{1, QStringLiteral("a"), QVariantList{QStringLiteral("/p")}}},
        {QStringLiteral("map"), QVariantMap{{QStringLiteral("1"), true}}},
        {QStringLiteral("variant"), QStringLiteral("v")},
        {QStringLiteral("bytes"), QByteArray("A")},
        {QStringLiteral("signature"), QStringLiteral("as")},
        {QStringLiteral("twice"), 2},
        {QStringLiteral("descriptor"), QVariant()},
        {QStringLiteral("descriptors"), QVariantList{QVariant()}}};
    QCOMPARE(mModel->getViews().value(0).attributes, expected);
    takeSignals();
    // They are equal to themselves, so that the same list is no change.
    emitPropertiesChanged(QStringLiteral("{'views': <[%1]>}").arg(view));
    QCOMPARE(takeSignals(), QStringList());
}

void RowsTest::aSlotMayShowANewerList()
{
    QList<TaskSwitcherEntry> newer = makeViews(3);
    newer.prepend(makeView(QStringLiteral("n"), QStringLiteral("x")));
    bool isFirst = true;
    const auto connection = connect(mModel, &QAbstractItemModel::rowsRemoved, this, [&] {
        if (isFirst) {
            isFirst = false;
            show(newer);
            QCOMPARE(uuids(mModel->getViews()), uuids(newer));
        }
    });
    QList<TaskSwitcherEntry> older = makeViews(5);
    older.removeAt(4);
    older.removeAt(1);
    older.append(makeView(QStringLiteral("o"), QStringLiteral("x")));
    show(older);
    disconnect(connection);
    QCOMPARE(uuids(mModel->getViews()), uuids(newer));
    QCOMPARE(currentRows(*mModel), QStringList{QStringLiteral("b")});
    QCOMPARE(mModel->getCurrentRow(), 2);
}

TELVARO_TEST_MAIN(RowsTest)
#include "RowsTest.moc"
