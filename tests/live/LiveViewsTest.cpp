// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "LiveViews.h"

#include <QAbstractItemModelTester>
#include <QPersistentModelIndex>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTest>

#include <algorithm>
#include <memory>

/// The rows of the model, whatever lists follow each other. The model tester checks every signal on the way.
class LiveViewsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void anUnchangedListSignalsNothing();
    void aChangedViewSignalsItsChangedRolesOnly();
    void viewsThatStayKeepTheirIndex();
    void aUuidThatIsThereTwiceHasTwoRows();
    void theCurrentViewIsARoleOfItsRow();
    void anEmptyCurrentViewIsNoView();
    void aSlotMayDeleteTheModel_data();
    void aSlotMayDeleteTheModel();
    void aSlotMayShowANewerList_data();
    void aSlotMayShowANewerList();
    void thereIsNothingOutsideTheRows();
    void everyListIsReachedFromEveryOther_data();
    void everyListIsReachedFromEveryOther();

public Q_SLOTS:
    void deleteModel()
    {
        mViews.reset();
    }

    void showNewerList()
    {
        disconnect(mModel, nullptr, this, nullptr);
        show(viewsOf("fcg"), QStringLiteral("g"));
    }

private:
    using Views = QList<TelvaroViewModel::View>;

    static TelvaroViewModel::View view(const QString& uuid, quint32 sortIndex = 0);
    static Views viewsOf(const char* uuids);
    QString uuids() const;

    /// Shows the list, with that current view.
    void show(const Views& views, const QString& currentView = {});

    std::unique_ptr<LiveViews> mViews;
    TelvaroViewModel* mModel = nullptr;
    std::unique_ptr<QAbstractItemModelTester> mTester;
};

TelvaroViewModel::View LiveViewsTest::view(const QString& uuid, quint32 sortIndex)
{
    TelvaroViewModel::View view;
    view.uuid = uuid;
    view.sortIndex = sortIndex;
    return view;
}

// One view for each letter.
LiveViewsTest::Views LiveViewsTest::viewsOf(const char* uuids)
{
    Views views;
    for (const QChar uuid : QString::fromLatin1(uuids)) {
        views.append(view(QString(uuid)));
    }
    return views;
}

QString LiveViewsTest::uuids() const
{
    QString uuids;
    for (int row = 0; row < mModel->rowCount(); ++row) {
        uuids += mModel->index(row).data(TelvaroViewModel::UuidRole).toString();
    }
    return uuids;
}

void LiveViewsTest::show(const Views& views, const QString& currentView)
{
    mViews->show(views, currentView);
}

void LiveViewsTest::init()
{
    mTester.reset();
    mViews = std::make_unique<LiveViews>();
    mModel = mViews->getModel();
    mTester = std::make_unique<QAbstractItemModelTester>(mModel);
}

void LiveViewsTest::anUnchangedListSignalsNothing()
{
    show(viewsOf("abc"));
    const QSignalSpy inserted(mModel, &QAbstractItemModel::rowsInserted);
    const QSignalSpy removed(mModel, &QAbstractItemModel::rowsRemoved);
    const QSignalSpy moved(mModel, &QAbstractItemModel::rowsMoved);
    const QSignalSpy changed(mModel, &QAbstractItemModel::dataChanged);
    const QSignalSpy count(mModel, &TelvaroViewModel::countChanged);
    show(viewsOf("abc"));
    QCOMPARE(inserted.count() + removed.count() + moved.count() + changed.count() + count.count(), 0);
}

void LiveViewsTest::aChangedViewSignalsItsChangedRolesOnly()
{
    show({view(QStringLiteral("a"), 1), view(QStringLiteral("b"), 2)});
    QSignalSpy changed(mModel, &QAbstractItemModel::dataChanged);
    TelvaroViewModel::View renamed = view(QStringLiteral("b"), 3);
    renamed.attributes.insert(QStringLiteral("title"), QStringLiteral("Maps"));
    show({view(QStringLiteral("a"), 1), renamed});
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.first().at(0).toModelIndex().row(), 1);
    QCOMPARE(changed.first().at(1).toModelIndex().row(), 1);
    QVector<int> roles = changed.first().at(2).value<QVector<int>>();
    std::sort(roles.begin(), roles.end());
    QCOMPARE(roles,
             QVector<int>({Qt::DisplayRole, TelvaroViewModel::TitleRole, TelvaroViewModel::SortIndexRole,
                           TelvaroViewModel::AttributesRole}));
    QCOMPARE(mModel->index(1).data().toString(), QStringLiteral("Maps"));
}

void LiveViewsTest::viewsThatStayKeepTheirIndex()
{
    show(viewsOf("abcd"));
    const QPersistentModelIndex c = mModel->index(2);
    const QPersistentModelIndex b = mModel->index(1);
    show(viewsOf("xdca"));
    QCOMPARE(uuids(), QStringLiteral("xdca"));
    QVERIFY(!b.isValid());
    QCOMPARE(c.row(), 2);
    QCOMPARE(c.data(TelvaroViewModel::UuidRole).toString(), QStringLiteral("c"));
}

void LiveViewsTest::aUuidThatIsThereTwiceHasTwoRows()
{
    show(viewsOf("aba"));
    QCOMPARE(uuids(), QStringLiteral("aba"));
    show(viewsOf("ba"));
    QCOMPARE(uuids(), QStringLiteral("ba"));
    show(viewsOf("abab"));
    QCOMPARE(uuids(), QStringLiteral("abab"));
}

void LiveViewsTest::theCurrentViewIsARoleOfItsRow()
{
    show(viewsOf("abc"), QStringLiteral("a"));
    QCOMPARE(mModel->getCurrentRow(), 0);
    QSignalSpy changed(mModel, &QAbstractItemModel::dataChanged);
    const QSignalSpy currentRow(mModel, &TelvaroViewModel::currentRowChanged);
    show(viewsOf("abc"), QStringLiteral("c"));
    QCOMPARE(mModel->getCurrentRow(), 2);
    QCOMPARE(currentRow.count(), 1);
    QCOMPARE(changed.count(), 2);
    QCOMPARE(changed.at(0).at(0).toModelIndex().row(), 0);
    QCOMPARE(changed.at(1).at(0).toModelIndex().row(), 2);
    for (const QList<QVariant>& change : changed) {
        QCOMPARE(change.at(2).value<QVector<int>>(), QVector<int>({TelvaroViewModel::CurrentRole}));
    }
    QVERIFY(!mModel->index(0).data(TelvaroViewModel::CurrentRole).toBool());
    QVERIFY(mModel->index(2).data(TelvaroViewModel::CurrentRole).toBool());
    show(viewsOf("cab"), QStringLiteral("c"));
    QCOMPARE(mModel->getCurrentRow(), 0);
    QCOMPARE(currentRow.count(), 2);
}

void LiveViewsTest::anEmptyCurrentViewIsNoView()
{
    show({view(QString())}, QString());
    QCOMPARE(mModel->getCurrentRow(), -1);
    QVERIFY(!mModel->index(0).data(TelvaroViewModel::CurrentRole).toBool());
}

void LiveViewsTest::aSlotMayDeleteTheModel_data()
{
    QTest::addColumn<QByteArray>("signal");
    for (const char* signal :
         {SIGNAL(rowsRemoved(QModelIndex, int, int)), SIGNAL(rowsMoved(QModelIndex, int, int, QModelIndex, int)),
          SIGNAL(rowsInserted(QModelIndex, int, int)), SIGNAL(dataChanged(QModelIndex, QModelIndex, QVector<int>)),
          SIGNAL(countChanged()), SIGNAL(currentRowChanged())}) {
        QTest::addRow("%s", signal + 1) << QByteArray(signal);
    }
}

void LiveViewsTest::aSlotMayDeleteTheModel()
{
    QFETCH(QByteArray, signal);
    show(viewsOf("abcd"), QStringLiteral("a"));
    // Of the tester, which would look at the model afterwards.
    mTester.reset();
    connect(mModel, signal.constData(), this, SLOT(deleteModel()));
    show({view(QStringLiteral("c"), 1), view(QStringLiteral("b")), view(QStringLiteral("e"))}, QStringLiteral("e"));
    QVERIFY(!mViews);
}

void LiveViewsTest::aSlotMayShowANewerList_data()
{
    aSlotMayDeleteTheModel_data();
}

void LiveViewsTest::aSlotMayShowANewerList()
{
    QFETCH(QByteArray, signal);
    show(viewsOf("abcd"), QStringLiteral("a"));
    connect(mModel, signal.constData(), this, SLOT(showNewerList()));
    show({view(QStringLiteral("c"), 1), view(QStringLiteral("b")), view(QStringLiteral("e"))}, QStringLiteral("e"));
    QCOMPARE(uuids(), QStringLiteral("fcg"));
    QCOMPARE(mModel->getCurrentRow(), 2);
    for (int row = 0; row < 3; ++row) {
        QCOMPARE(mModel->index(row).data(TelvaroViewModel::CurrentRole).toBool(), row == 2);
    }
}

void LiveViewsTest::thereIsNothingOutsideTheRows()
{
    show(viewsOf("ab"));
    QVERIFY(mModel->get(-1).isEmpty());
    QVERIFY(mModel->get(2).isEmpty());
    QCOMPARE(mModel->get(1).value(QStringLiteral("uuid")).toString(), QStringLiteral("b"));
    QCOMPARE(mModel->indexOf(QStringLiteral("b")), 1);
    QCOMPARE(mModel->indexOf(QStringLiteral("c")), -1);
    QVERIFY(!mModel->data(QModelIndex(), TelvaroViewModel::UuidRole).isValid());
}

void LiveViewsTest::everyListIsReachedFromEveryOther_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 0; seed < 20; ++seed) {
        QTest::addRow("seed %u", seed) << seed;
    }
}

void LiveViewsTest::everyListIsReachedFromEveryOther()
{
    QFETCH(quint32, seed);
    QRandomGenerator random(seed);
    for (int step = 0; step < 50; ++step) {
        Views views;
        const int size = random.bounded(12);
        for (int row = 0; row < size; ++row) {
            views.append(view(QString(QLatin1Char(static_cast<char>('a' + random.bounded(10)))),
                              static_cast<quint32>(random.bounded(3))));
        }
        const int countBefore = mModel->getCount();
        const QSignalSpy count(mModel, &TelvaroViewModel::countChanged);
        show(views);
        QCOMPARE(mModel->getCount(), views.size());
        QCOMPARE(count.count(), countBefore == views.size() ? 0 : 1);
        for (int row = 0; row < views.size(); ++row) {
            QCOMPARE(mModel->index(row).data(TelvaroViewModel::UuidRole).toString(), views.at(row).uuid);
            QCOMPARE(mModel->index(row).data(TelvaroViewModel::SortIndexRole).toUInt(), views.at(row).sortIndex);
        }
    }
}

QTEST_GUILESS_MAIN(LiveViewsTest)

#include "LiveViewsTest.moc"
