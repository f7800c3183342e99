// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "LiveFixture.h"
#include "LiveRequests.h"
#include "PrivateBus.h"
#include "TestMain.h"
#include "ValueText.h"

#include <QSignalSpy>

#include <functional>

namespace {

const int cLateness = 100;

struct Property
{
    const char* object;
    const char* name;
    /// What is read, and what a notification says later.
    const char* former;
    const char* latter;
    QVariant expected;
    std::function<QVariant(LiveObjects&)> get;
};

const QList<Property>& properties()
{
    const auto views = [](LiveObjects& objects) {
        return QVariant(objects.taskSwitcher.getViews()->index(0).data(TelvaroViewModel::UuidRole));
    };
    static const QList<Property> cProperties = {
        {"taskswitcher", "views", "[('p', 'x', '', '', '', '', uint32 1, uint32 1, @a{sv} {})]",
         "[('q', 'x', '', '', '', '', uint32 1, uint32 1, @a{sv} {})]", QStringLiteral("q"), views},
        {"taskswitcher", "currentView", "'p'", "'q'", QStringLiteral("q"),
         [](LiveObjects& objects) {
             return QVariant(objects.taskSwitcher.getCurrentView());
         }},
        {"screen", "screenSaverActive", "false", "true", true,
         [](LiveObjects& objects) {
             return QVariant(objects.screen.isScreenSaverActive());
         }},
        {"screen", "screenSaverEnabled", "false", "true", true,
         [](LiveObjects& objects) {
             return QVariant(objects.screen.isScreenSaverEnabled());
         }},
        {"screen", "screenSaverTimeoutSeconds", "1", "2", 2,
         [](LiveObjects& objects) {
             return QVariant(objects.screen.getScreenSaverTimeout());
         }},
        {"screen", "orientation", "'90'", "'180'", QStringLiteral("180"),
         [](LiveObjects& objects) {
             return QVariant(objects.screen.getOrientation());
         }},
        {"screen", "fullScreen", "false", "true", true,
         [](LiveObjects& objects) {
             return QVariant(objects.screen.isFullScreen());
         }},
    };
    return cProperties;
}

} // namespace

/// Answers and notifications in any order.
class OrderTest : public LiveFixture
{
    Q_OBJECT

private Q_SLOTS:
    void anAnswerThatIsOlderThanANotificationDoesNotCount_data();
    void anAnswerThatIsOlderThanANotificationDoesNotCount();
    void anAnswerThatIsOlderThanAnInvalidationIsAskedForAgain_data();
    void anAnswerThatIsOlderThanAnInvalidationIsAskedForAgain();
    void anAnswerOfAFormerOwnerDoesNotCount_data();
    void anAnswerOfAFormerOwnerDoesNotCount();
    void aNotificationOfAFormerOwnerDoesNotCount();
    void aRequestIsFollowedBySignalAndAnswerInAnyOrder_data();
    void aRequestIsFollowedBySignalAndAnswerInAnyOrder();
    void bothPropertiesInOneSignalAreOneChange_data();
    void bothPropertiesInOneSignalAreOneChange();
    void anUnknownCurrentViewMayBecomeKnown();

private:
    void addRowPerProperty();
    void script(const Property& property, const QList<Behaviour>& behaviours);
    void notify(const Property& property, const QString& changed, const QStringList& invalidated = {});
    void waitUntilRead(const Property& property);
    /// Waits until the service has sent all answers that it owed when this was called.
    void outlastLateAnswers();
};

void OrderTest::addRowPerProperty()
{
    QTest::addColumn<int>("index");
    for (int index = 0; index < properties().size(); ++index) {
        QTest::newRow(properties().at(index).name) << index;
    }
}

void OrderTest::script(const Property& property, const QList<Behaviour>& behaviours)
{
    mService.scriptProperty(QStringLiteral("Get"), QStringLiteral("/%1").arg(QLatin1String(property.object)),
                            QLatin1String(property.name), behaviours);
}

void OrderTest::notify(const Property& property, const QString& changed, const QStringList& invalidated)
{
    mService.emitSignal(ServiceSignal::propertiesChanged(
        QStringLiteral("/%1").arg(QLatin1String(property.object)),
        QStringLiteral("de.Telvaro.%1").arg(QLatin1String(property.object)), changed, invalidated));
    PrivateBus::deliver();
}

void OrderTest::waitUntilRead(const Property& property)
{
    const bool isRead = QTest::qWaitFor(
        [this, &property] {
            return mService.takeDescriptions().join(QLatin1Char('\n')).contains(QLatin1String(property.name));
        },
        ChildProcess::cDeadline);
    QVERIFY(isRead);
}

void OrderTest::outlastLateAnswers()
{
    mService.script(QStringLiteral("/globaloverlay"), QStringLiteral("de.Telvaro.globaloverlay"),
                    QStringLiteral("Hide"), {Behaviour::reply().after(2 * cLateness)});
    const QDBusPendingReply<> reply = TelvaroRequests::hideGlobalOverlay();
    QVERIFY(waitFor(reply));
}

void OrderTest::anAnswerThatIsOlderThanANotificationDoesNotCount_data()
{
    addRowPerProperty();
}

void OrderTest::anAnswerThatIsOlderThanANotificationDoesNotCount()
{
    QFETCH(const int, index);
    const Property& property = properties().at(index);
    const Behaviour former = Behaviour::reply({ValueText::variant(QLatin1String(property.former))});
    script(property, {former.after(cLateness), former});
    LiveObjects objects;
    waitUntilRead(property);
    notify(property, QStringLiteral("{'%1': <%2>}").arg(QLatin1String(property.name), QLatin1String(property.latter)));
    QCOMPARE(property.get(objects), property.expected);
    outlastLateAnswers();
    TRY_VERIFY(objects.areAll(Status::Ready));
    QCOMPARE(property.get(objects), property.expected);
    // Nor was it asked for again.
    QVERIFY(!mService.takeDescriptions().join(QLatin1Char('\n')).contains(QLatin1String(property.name)));
}

void OrderTest::anAnswerThatIsOlderThanAnInvalidationIsAskedForAgain_data()
{
    addRowPerProperty();
}

void OrderTest::anAnswerThatIsOlderThanAnInvalidationIsAskedForAgain()
{
    QFETCH(const int, index);
    const Property& property = properties().at(index);
    script(property,
           {Behaviour::reply({ValueText::variant(QLatin1String(property.former))}).after(cLateness),
            Behaviour::reply({ValueText::variant(QLatin1String(property.latter))})});
    LiveObjects objects;
    const QVariant empty = property.get(objects);
    waitUntilRead(property);
    notify(property, QStringLiteral("@a{sv} {}"), {QLatin1String(property.name)});
    TRY_VERIFY(property.get(objects) != empty);
    QCOMPARE(property.get(objects), property.expected);
    TRY_VERIFY(objects.areAll(Status::Ready));
}

void OrderTest::anAnswerOfAFormerOwnerDoesNotCount_data()
{
    addRowPerProperty();
}

void OrderTest::anAnswerOfAFormerOwnerDoesNotCount()
{
    QFETCH(const int, index);
    const Property& property = properties().at(index);
    mService.release();
    mService.takeOver();
    script(property, {Behaviour::reply({ValueText::variant(QLatin1String(property.former))}).after(cLateness)});
    LiveObjects objects;
    waitUntilRead(property);
    ScriptedServiceProcess successor;
    successor.start();
    successor.scriptProperty(QStringLiteral("Get"), QStringLiteral("/%1").arg(QLatin1String(property.object)),
                             QLatin1String(property.name),
                             {Behaviour::reply({ValueText::variant(QLatin1String(property.latter))})});
    successor.takeOver();
    TRY_COMPARE(property.get(objects), property.expected);
    outlastLateAnswers();
    QCOMPARE(property.get(objects), property.expected);
    QVERIFY(objects.areAll(Status::Ready));
}

void OrderTest::aNotificationOfAFormerOwnerDoesNotCount()
{
    mService.release();
    mService.takeOver();
    setViews(makeViews(2), QStringLiteral("a"));
    LiveObjects objects;
    TRY_VERIFY(objects.areAll(Status::Ready));
    ScriptedServiceProcess successor;
    successor.start();
    successor.setViews(ValueText::views(makeViews(3)));
    successor.setCurrentView(QStringLiteral("c"));
    successor.takeOver();
    emitPropertiesChanged(QStringLiteral("{'currentView': <'b'>}"), {QStringLiteral("views")});
    TRY_VERIFY(objects.areAll(Status::Ready));
    QCOMPARE(objects.taskSwitcher.getCurrentView(), QStringLiteral("c"));
    QCOMPARE(objects.taskSwitcher.getViews()->getCount(), 3);
}

void OrderTest::aRequestIsFollowedBySignalAndAnswerInAnyOrder_data()
{
    QTest::addColumn<bool>("isSignalFirst");
    QTest::newRow("the signal before the answer") << true;
    QTest::newRow("the signal after the answer") << false;
}

void OrderTest::aRequestIsFollowedBySignalAndAnswerInAnyOrder()
{
    QFETCH(const bool, isSignalFirst);
    setViews(makeViews(4), QStringLiteral("a"));
    TelvaroTaskSwitcher switcher;
    TRY_COMPARE(switcher.getStatus(), Status::Ready);
    const QSignalSpy changes(&switcher, &TelvaroTaskSwitcher::currentViewChanged);
    const QSignalSpy failures(&switcher, &TelvaroLiveObject::requestFailed);
    const char* const expected[] = {"b", "c", "d"};
    for (const char* const uuid : expected) {
        const ServiceSignal signal =
            ServiceSignal::propertiesChanged(QStringLiteral("/taskswitcher"), QStringLiteral("de.Telvaro.taskswitcher"),
                                             QStringLiteral("{'currentView': <'%1'>}").arg(QLatin1String(uuid)));
        const Behaviour answer = Behaviour::reply();
        scriptSetCurrentView({isSignalFirst ? answer.withSignal(signal) : answer});
        mService.takeCalls();
        const QDBusPendingReply<> reply = switcher.next();
        QVERIFY(waitFor(reply));
        if (!isSignalFirst) {
            mService.emitSignal(signal);
        }
        PrivateBus::deliver();
        QCOMPARE(switcher.getCurrentView(), QLatin1String(uuid));
        QCOMPARE(mService.takeDescriptions(), QStringList{setCurrentViewCall(QLatin1String(uuid))});
    }
    QCOMPARE(changes.size(), 3);
    QCOMPARE(failures.size(), 0);
    // Others switch too; a step then begins at their view.
    emitPropertiesChanged(QStringLiteral("{'currentView': <'a'>}"));
    mService.takeCalls();
    const QDBusPendingReply<> reply = switcher.next();
    QVERIFY(waitFor(reply));
    QCOMPARE(mService.takeDescriptions(), QStringList{setCurrentViewCall(QStringLiteral("b"))});
}

void OrderTest::bothPropertiesInOneSignalAreOneChange_data()
{
    QTest::addColumn<QString>("changed");
    const QString views = QStringLiteral("'views': ") + ValueText::variant(ValueText::views(makeViews(3)));
    const QString currentView = QStringLiteral("'currentView': <'c'>");
    QTest::newRow("the views first") << QStringLiteral("{%1, %2}").arg(views, currentView);
    QTest::newRow("the current view first") << QStringLiteral("{%1, %2}").arg(currentView, views);
}

void OrderTest::bothPropertiesInOneSignalAreOneChange()
{
    QFETCH(const QString, changed);
    setViews(makeViews(2), QStringLiteral("a"));
    TelvaroTaskSwitcher switcher;
    TelvaroViewModel* const model = switcher.getViews();
    TRY_COMPARE(switcher.getStatus(), Status::Ready);
    QStringList records;
    const auto record = [&](const char* signal) {
        records.append(QStringLiteral("%1: %2 of %3, %4")
                           .arg(QLatin1String(signal), switcher.getCurrentView(),
                                uuids(model->getViews()).join(QString()), currentRows(*model).join(QString())));
    };
    connect(model, &QAbstractItemModel::dataChanged, this, [&] {
        record("dataChanged");
    });
    connect(model, &QAbstractItemModel::rowsInserted, this, [&] {
        record("rowsInserted");
    });
    connect(model, &TelvaroViewModel::countChanged, this, [&] {
        record("countChanged");
    });
    connect(model, &TelvaroViewModel::currentRowChanged, this, [&] {
        record("currentRowChanged");
    });
    connect(&switcher, &TelvaroTaskSwitcher::currentViewChanged, this, [&] {
        record("currentViewChanged");
    });
    connect(&switcher, &TelvaroLiveObject::statusChanged, this, [&] {
        record("statusChanged");
    });
    emitPropertiesChanged(changed);
    // The rows follow one after the other; the current view is known before the first of them.
    QCOMPARE(records,
             QStringList({QStringLiteral("dataChanged: c of ab, "), QStringLiteral("rowsInserted: c of abc, c"),
                          QStringLiteral("countChanged: c of abc, c"), QStringLiteral("currentRowChanged: c of abc, c"),
                          QStringLiteral("currentViewChanged: c of abc, c")}));
}

void OrderTest::anUnknownCurrentViewMayBecomeKnown()
{
    setViews(makeViews(2), QStringLiteral("c"));
    TelvaroTaskSwitcher switcher;
    const TelvaroViewModel* const model = switcher.getViews();
    TRY_COMPARE(switcher.getStatus(), Status::Ready);
    QCOMPARE(switcher.getCurrentView(), QStringLiteral("c"));
    QCOMPARE(model->getCurrentRow(), -1);
    QCOMPARE(currentRows(*model), QStringList());
    const QSignalSpy currentRowChanges(model, &TelvaroViewModel::currentRowChanged);
    const QSignalSpy currentViewChanges(&switcher, &TelvaroTaskSwitcher::currentViewChanged);
    emitPropertiesChanged(QStringLiteral("{'views': %1}").arg(ValueText::variant(ValueText::views(makeViews(3)))));
    QCOMPARE(model->getCurrentRow(), 2);
    QCOMPARE(currentRows(*model), QStringList{QStringLiteral("c")});
    QCOMPARE(currentRowChanges.size(), 1);
    emitPropertiesChanged(QStringLiteral("{'views': %1}").arg(ValueText::variant(ValueText::views(makeViews(1)))));
    QCOMPARE(model->getCurrentRow(), -1);
    QCOMPARE(switcher.getCurrentView(), QStringLiteral("c"));
    QCOMPARE(currentRowChanges.size(), 2);
    QCOMPARE(currentViewChanges.size(), 0);
}

TELVARO_TEST_MAIN(OrderTest)
#include "OrderTest.moc"
