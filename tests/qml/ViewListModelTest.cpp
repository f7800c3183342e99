// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ViewListModel.h"

#include <QAbstractItemModelTester>
#include <QPersistentModelIndex>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTest>

#include <algorithm>
#include <memory>

class ViewListModelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void anUnchangedListTellsNothing();
    void aChangedViewTellsItsChangedRolesOnly();
    void viewsThatStayKeepTheirIndex();
    void aUuidThatIsThereTwiceHasTwoRows();
    void valuesOfDBusTypesCompareEqual();
    void thereIsNothingOutsideTheRows();
    void everyListIsReachedFromEveryOther_data();
    void everyListIsReachedFromEveryOther();

private:
    using Views = QList<ViewListModel::View>;

    static ViewListModel::View view(const QString& uuid, quint32 sortIndex = 0);
    static Views viewsOf(const char* uuids);
    QString uuids() const;

    std::unique_ptr<ViewListModel> mModel;
    std::unique_ptr<QAbstractItemModelTester> mTester;
};

ViewListModel::View ViewListModelTest::view(const QString& uuid, quint32 sortIndex)
{
    ViewListModel::View view;
    view.uuid = uuid;
    view.sortIndex = sortIndex;
    return view;
}

// One view for each letter.
ViewListModelTest::Views ViewListModelTest::viewsOf(const char* uuids)
{
    Views views;
    for (const QChar uuid : QString::fromLatin1(uuids)) {
        views.append(view(QString(uuid)));
    }
    return views;
}

QString ViewListModelTest::uuids() const
{
    QString uuids;
    for (int row = 0; row < mModel->rowCount(); ++row) {
        uuids += mModel->index(row).data(ViewListModel::UuidRole).toString();
    }
    return uuids;
}

void ViewListModelTest::init()
{
    mTester.reset();
    mModel = std::make_unique<ViewListModel>();
    mTester = std::make_unique<QAbstractItemModelTester>(mModel.get());
}

void ViewListModelTest::anUnchangedListTellsNothing()
{
    mModel->setViews(viewsOf("abc"));
    const QSignalSpy inserted(mModel.get(), &QAbstractItemModel::rowsInserted);
    const QSignalSpy removed(mModel.get(), &QAbstractItemModel::rowsRemoved);
    const QSignalSpy moved(mModel.get(), &QAbstractItemModel::rowsMoved);
    const QSignalSpy changed(mModel.get(), &QAbstractItemModel::dataChanged);
    const QSignalSpy count(mModel.get(), &ViewListModel::countChanged);
    mModel->setViews(viewsOf("abc"));
    QCOMPARE(inserted.count() + removed.count() + moved.count() + changed.count() + count.count(), 0);
}

void ViewListModelTest::aChangedViewTellsItsChangedRolesOnly()
{
    mModel->setViews({view(QStringLiteral("a"), 1), view(QStringLiteral("b"), 2)});
    QSignalSpy changed(mModel.get(), &QAbstractItemModel::dataChanged);
    ViewListModel::View renamed = view(QStringLiteral("b"), 3);
    renamed.attributes.insert(QStringLiteral("title"), QStringLiteral("Maps"));
    mModel->setViews({view(QStringLiteral("a"), 1), renamed});
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.first().at(0).toModelIndex().row(), 1);
    QCOMPARE(changed.first().at(1).toModelIndex().row(), 1);
    QVector<int> roles = changed.first().at(2).value<QVector<int>>();
    std::sort(roles.begin(), roles.end());
    QCOMPARE(roles,
             QVector<int>({Qt::DisplayRole, ViewListModel::TitleRole, ViewListModel::SortIndexRole,
                           ViewListModel::AttributesRole}));
    QCOMPARE(mModel->index(1).data().toString(), QStringLiteral("Maps"));
}

void ViewListModelTest::viewsThatStayKeepTheirIndex()
{
    mModel->setViews(viewsOf("abcd"));
    const QPersistentModelIndex c = mModel->index(2);
    const QPersistentModelIndex b = mModel->index(1);
    mModel->setViews(viewsOf("xdca"));
    QCOMPARE(uuids(), QStringLiteral("xdca"));
    QVERIFY(!b.isValid());
    QCOMPARE(c.row(), 2);
    QCOMPARE(c.data(ViewListModel::UuidRole).toString(), QStringLiteral("c"));
}

void ViewListModelTest::aUuidThatIsThereTwiceHasTwoRows()
{
    mModel->setViews(viewsOf("aba"));
    QCOMPARE(uuids(), QStringLiteral("aba"));
    mModel->setViews(viewsOf("ba"));
    QCOMPARE(uuids(), QStringLiteral("ba"));
    mModel->setViews(viewsOf("abab"));
    QCOMPARE(uuids(), QStringLiteral("abab"));
}

void ViewListModelTest::valuesOfDBusTypesCompareEqual()
{
    ViewListModel::View withPath = view(QStringLiteral("a"));
    withPath.attributes.insert(QStringLiteral("path"), QVariant::fromValue(QDBusObjectPath(QStringLiteral("/p"))));
    mModel->setViews({withPath});
    QCOMPARE(mModel->index(0).data(ViewListModel::AttributesRole).toMap(),
             QVariantMap({{QStringLiteral("path"), QStringLiteral("/p")}}));
    const QSignalSpy changed(mModel.get(), &QAbstractItemModel::dataChanged);
    mModel->setViews({withPath});
    QCOMPARE(changed.count(), 0);
}

void ViewListModelTest::thereIsNothingOutsideTheRows()
{
    mModel->setViews(viewsOf("ab"));
    QVERIFY(mModel->get(-1).isEmpty());
    QVERIFY(mModel->get(2).isEmpty());
    QCOMPARE(mModel->get(1).value(QStringLiteral("uuid")).toString(), QStringLiteral("b"));
    QCOMPARE(mModel->indexOf(QStringLiteral("b")), 1);
    QCOMPARE(mModel->indexOf(QStringLiteral("c")), -1);
    QVERIFY(!mModel->data(QModelIndex(), ViewListModel::UuidRole).isValid());
}

void ViewListModelTest::everyListIsReachedFromEveryOther_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 0; seed < 20; ++seed) {
        QTest::addRow("seed %u", seed) << seed;
    }
}

// The model tester checks every signal on the way.
void ViewListModelTest::everyListIsReachedFromEveryOther()
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
        const QSignalSpy count(mModel.get(), &ViewListModel::countChanged);
        mModel->setViews(views);
        QCOMPARE(mModel->getCount(), views.size());
        QCOMPARE(count.count(), countBefore == views.size() ? 0 : 1);
        for (int row = 0; row < views.size(); ++row) {
            QCOMPARE(mModel->index(row).data(ViewListModel::UuidRole).toString(), views.at(row).uuid);
            QCOMPARE(mModel->index(row).data(ViewListModel::SortIndexRole).toUInt(), views.at(row).sortIndex);
        }
    }
}

QTEST_GUILESS_MAIN(ViewListModelTest)

#include "ViewListModelTest.moc"
