// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "LiveFixture.h"
#include "LiveRequests.h"
#include "PrivateBus.h"
#include "TestMain.h"
#include "ValueText.h"
#include "Warnings.h"

#include <QDBusError>
#include <QMetaEnum>
#include <QRegularExpression>

#include <cstring>
#include <memory>

namespace {

const Behaviour cRefusal = Behaviour::error(QStringLiteral("org.example.Error.Refused"), QStringLiteral("not now"));

/// A live object, and one property that it depends on.
struct Kind
{
    const char* object;
    const char* property;
    const char* goodValue;
    TelvaroLiveObject* (*make)();
};

const Kind cKinds[] = {{"taskswitcher", "currentView", "'a'",
                        []() -> TelvaroLiveObject* {
                            return new TelvaroTaskSwitcher;
                        }},
                       {"screen", "orientation", "'90'", []() -> TelvaroLiveObject* {
                            return new TelvaroScreen;
                        }}};

/// A value by its type's code and its text.
struct Basic
{
    char type;
    const char* text;
};

const Basic cBasics[] = {
    {'b', "true"},     {'y', "byte 0x01"}, {'n', "int16 1"},         {'q', "uint16 1"},     {'i', "1"},
    {'u', "uint32 1"}, {'x', "int64 1"},   {'t', "uint64 1"},        {'d', "0.5"},          {'s', "'text'"},
    {'h', "handle 0"}, {'v', "<'text'>"},  {'o', "objectpath '/a'"}, {'g', "signature 's'"}};

const char* const cContainers[] = {"[%1]", "[[%1]]", "(%1,)", "[(%1,)]", "{'k': %1}", "[{'k': %1}]", "<%1>"};

QStringList containersOf(const char* types)
{
    QStringList values{QStringLiteral("@as []"), QStringLiteral("@ay []")};
    for (const char* const container : cContainers) {
        for (const Basic& basic : cBasics) {
            if (std::strchr(types, basic.type) == nullptr) {
                continue;
            }
            values.append(QString(QLatin1String(container)).arg(QLatin1String(basic.text)));
        }
    }
    return values;
}

const char cAllTypes[] = "bynqiuxtdshvog";

/// All basic values of other types, and containers of the others.
QStringList valuesOtherThan(const char* types, const char* contents = "suv")
{
    QStringList values = containersOf(contents);
    for (const Basic& basic : cBasics) {
        if (std::strchr(types, basic.type) == nullptr) {
            values.append(QLatin1String(basic.text));
        }
    }
    return values;
}

/// All that are no views: anything but a list, a list of anything else, and lists in whose view one member has another
/// type, is missing, or comes twice.
QStringList valuesOtherThanViews()
{
    const char texts[] = "so";
    const char integers[] = "ynqiuxt";
    const char* const memberTypes[] = {texts, texts, texts, texts, texts, texts, integers, integers, ""};
    const QStringList members{QStringLiteral("'u'"),      QStringLiteral("'a'"),      QStringLiteral("'1'"),
                              QStringLiteral("'2'"),      QStringLiteral("'3'"),      QStringLiteral("'4'"),
                              QStringLiteral("uint32 7"), QStringLiteral("uint32 8"), QStringLiteral("{'k': <'v'>}")};
    QStringList values = valuesOtherThan("", cAllTypes);
    const auto append = [&values](const QStringList& view) {
        values.append(QStringLiteral("[(%1)]").arg(view.join(QStringLiteral(", "))));
    };
    for (int index = 0; index < members.size(); ++index) {
        QStringList view = members;
        for (const QString& value : valuesOtherThan(memberTypes[index], "su")) {
            // A dictionary of variants is what the attributes are.
            if (index < 8 || value != QLatin1String("{'k': <'text'>}")) {
                view[index] = value;
                append(view);
            }
        }
        view = members;
        view.removeAt(index);
        append(view);
        // What comes after the attributes is left alone, but they come once.
        view = members;
        view.insert(index, view.at(index));
        if (index < 8) {
            append(view);
        }
    }
    return values;
}

QStringList valuesOtherThanIntegers()
{
    return valuesOtherThan("ynqiuxt")
        + QStringList{QStringLiteral("uint32 2147483648"), QStringLiteral("int64 -2147483649"),
                      QStringLiteral("uint64 18446744073709551615"), QStringLiteral("'1'")};
}

} // namespace

/// The edges between the four statuses, each of which is signalled once.
class StatusTest : public LiveFixture
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void anObjectLoadsAndBecomesReady_data();
    void anObjectLoadsAndBecomesReady();
    void anObjectIsAbsentUntilTheServiceComes_data();
    void anObjectIsAbsentUntilTheServiceComes();
    void anObjectBecomesAbsentFromEveryStatus_data();
    void anObjectBecomesAbsentFromEveryStatus();
    void aRefusedReadFailsUntilAGoodValueComes_data();
    void aRefusedReadFailsUntilAGoodValueComes();
    void anInvalidatedValueIsKeptWhileItIsLoading_data();
    void anInvalidatedValueIsKeptWhileItIsLoading();
    void aReplacedOwnerIsLoadedAnew_data();
    void aReplacedOwnerIsLoadedAnew();
    void theLastOwnerCountsWhateverASlotDoes();
    void presenceHasNothingToLoad();
    void everyPropertyHasToBeKnown();
    void everyWrongTypeFailsAndAGoodValueHeals_data();
    void everyWrongTypeFailsAndAGoodValueHeals();
    void aCurrentViewThatIsNoTextMayBeReadByTheConnectorOnlyOrByTheLiveObjectOnly();
    void everyUnusableReplyFails_data();
    void everyUnusableReplyFails();
    void notificationsOfAnotherSignatureAreDropped();

private:
    void addRowPerKind();
    void make();
    void script(const QList<Behaviour>& behaviours);
    void notify(const QString& changed, const QStringList& invalidated = {});
    void notifyGoodValue();
    void invalidate();
    QString path() const;
    QVariant value() const;
    QVariant goodValue() const;
    static QString text(const QList<Status>& statuses);
    void waitFor(const QList<Status>& statuses);

    Kind mKind = cKinds[0];
    std::unique_ptr<TelvaroLiveObject> mObject;
    std::unique_ptr<StatusRecorder> mRecorder;
};

void StatusTest::init()
{
    mRecorder.reset();
    mObject.reset();
    LiveFixture::init();
    setViews(makeViews(2), QStringLiteral("a"));
    mService.setProperty(QStringLiteral("/screen"), QStringLiteral("de.Telvaro.screen"), QStringLiteral("orientation"),
                         QStringLiteral("'90'"));
}

void StatusTest::addRowPerKind()
{
    QTest::addColumn<int>("kind");
    QTest::newRow("the task switcher") << 0;
    QTest::newRow("the screen") << 1;
}

void StatusTest::make()
{
    QFETCH(const int, kind);
    mKind = cKinds[kind];
    mObject.reset(mKind.make());
    mRecorder = std::make_unique<StatusRecorder>(*mObject);
}

QString StatusTest::path() const
{
    return QStringLiteral("/%1").arg(QLatin1String(mKind.object));
}

void StatusTest::script(const QList<Behaviour>& behaviours)
{
    QFETCH(const int, kind);
    mKind = cKinds[kind];
    mService.scriptProperty(QStringLiteral("Get"), path(), QLatin1String(mKind.property), behaviours);
}

void StatusTest::notify(const QString& changed, const QStringList& invalidated)
{
    mService.emitSignal(ServiceSignal::propertiesChanged(
        path(), QStringLiteral("de.Telvaro.%1").arg(QLatin1String(mKind.object)), changed, invalidated));
    PrivateBus::deliver();
}

void StatusTest::notifyGoodValue()
{
    notify(QStringLiteral("{'%1': <%2>}").arg(QLatin1String(mKind.property), QLatin1String(mKind.goodValue)));
}

void StatusTest::invalidate()
{
    notify(QStringLiteral("@a{sv} {}"), {QLatin1String(mKind.property)});
}

QVariant StatusTest::value() const
{
    return mObject->property(mKind.property);
}

QVariant StatusTest::goodValue() const
{
    return QString(QLatin1String(mKind.goodValue)).remove(QLatin1Char('\''));
}

QString StatusTest::text(const QList<Status>& statuses)
{
    QStringList names;
    for (const Status status : statuses) {
        names.append(QLatin1String(QMetaEnum::fromType<Status>().valueToKey(status)));
    }
    return names.join(QLatin1Char(' '));
}

void StatusTest::waitFor(const QList<Status>& statuses)
{
    const bool hasCome = QTest::qWaitFor(
        [&] {
            return mRecorder->getStatuses().size() >= statuses.size();
        },
        ChildProcess::cDeadline);
    QVERIFY(hasCome);
    // Nor does another one follow.
    PrivateBus::deliver();
    QCOMPARE(text(mRecorder->getStatuses()), text(statuses));
    QCOMPARE(mObject->getStatus(), statuses.last());
    QCOMPARE(mObject->getError().isValid(), statuses.last() == Status::Failed);
    mRecorder->clear();
}

void StatusTest::anObjectLoadsAndBecomesReady_data()
{
    addRowPerKind();
}

void StatusTest::anObjectLoadsAndBecomesReady()
{
    make();
    QCOMPARE(mObject->getStatus(), Status::Loading);
    QCOMPARE(value(), QVariant(QString()));
    waitFor({Status::Ready});
    QCOMPARE(value(), goodValue());
}

void StatusTest::anObjectIsAbsentUntilTheServiceComes_data()
{
    addRowPerKind();
}

void StatusTest::anObjectIsAbsentUntilTheServiceComes()
{
    mService.release();
    make();
    QCOMPARE(mObject->getStatus(), Status::Loading);
    waitFor({Status::Absent});
    mService.own();
    waitFor({Status::Loading, Status::Ready});
    QCOMPARE(value(), goodValue());
}

void StatusTest::anObjectBecomesAbsentFromEveryStatus_data()
{
    addRowPerKind();
}

void StatusTest::anObjectBecomesAbsentFromEveryStatus()
{
    const QList<QPair<Status, Behaviour>> cases = {
        {Status::Loading, Behaviour::silence()}, {Status::Ready, Behaviour::plain()}, {Status::Failed, cRefusal}};
    for (const auto& [status, behaviour] : cases) {
        script({behaviour});
        make();
        TRY_COMPARE(mObject->getStatus(), status);
        mRecorder->clear();
        mService.kill();
        waitFor({Status::Absent});
        QCOMPARE(value(), QVariant(QString()));
        init();
    }
}

void StatusTest::aRefusedReadFailsUntilAGoodValueComes_data()
{
    addRowPerKind();
}

void StatusTest::aRefusedReadFailsUntilAGoodValueComes()
{
    script({cRefusal});
    make();
    waitFor({Status::Failed});
    QCOMPARE(mObject->getError().name(), QStringLiteral("org.example.Error.Refused"));
    QCOMPARE(mObject->getError().message(), QStringLiteral("not now"));
    notifyGoodValue();
    waitFor({Status::Ready});
    QCOMPARE(value(), goodValue());
    invalidate();
    waitFor({Status::Loading, Status::Failed});
    script({Behaviour::plain()});
    invalidate();
    waitFor({Status::Loading, Status::Ready});
    // Also a read that is under way when the good value comes.
    script({cRefusal.after(100)});
    invalidate();
    notifyGoodValue();
    waitFor({Status::Loading, Status::Ready});
}

void StatusTest::anInvalidatedValueIsKeptWhileItIsLoading_data()
{
    addRowPerKind();
}

void StatusTest::anInvalidatedValueIsKeptWhileItIsLoading()
{
    make();
    waitFor({Status::Ready});
    script({Behaviour::silence()});
    invalidate();
    waitFor({Status::Loading});
    QCOMPARE(value(), goodValue());
    notifyGoodValue();
    waitFor({Status::Ready});
}

void StatusTest::aReplacedOwnerIsLoadedAnew_data()
{
    addRowPerKind();
}

void StatusTest::aReplacedOwnerIsLoadedAnew()
{
    mService.release();
    mService.takeOver();
    make();
    waitFor({Status::Ready});
    ScriptedServiceProcess successor;
    successor.start();
    successor.takeOver();
    waitFor({Status::Absent, Status::Loading, Status::Ready});
    QVERIFY(value() != goodValue());
    script({cRefusal});
    mService.takeOver();
    waitFor({Status::Absent, Status::Loading, Status::Failed});
    QCOMPARE(value(), QVariant(QString()));
    successor.takeOver();
    waitFor({Status::Absent, Status::Loading, Status::Ready});
}

// A slot that hears of the end of one owner runs an event loop, in which the next one is replaced or ends as well.
void StatusTest::theLastOwnerCountsWhateverASlotDoes()
{
    mService.release();
    mService.takeOver();
    mService.setCurrentView(QStringLiteral("b"));
    TelvaroTaskSwitcher switcher;
    TRY_COMPARE(switcher.getStatus(), Status::Ready);
    ScriptedServiceProcess successor;
    successor.start();
    const auto returnTheName = [&] {
        successor.kill();
        PrivateBus::deliver();
    };
    const auto takeItAway = [&] {
        mService.release();
        returnTheName();
    };
    bool isFirst = true;
    const auto connection = connect(&switcher, &TelvaroLiveObject::statusChanged, this, [&] {
        if (isFirst) {
            isFirst = false;
            returnTheName();
        }
    });
    successor.takeOver();
    TRY_COMPARE(switcher.getCurrentView(), QStringLiteral("b"));
    TRY_COMPARE(switcher.getStatus(), Status::Ready);
    disconnect(connection);
    connect(&switcher, &TelvaroLiveObject::statusChanged, this, [&] {
        if (switcher.getStatus() == Status::Absent && successor.isRunning()) {
            takeItAway();
        }
    });
    successor.start();
    successor.takeOver();
    TRY_VERIFY(!successor.isRunning());
    PrivateBus::deliver();
    QCOMPARE(switcher.getStatus(), Status::Absent);
}

void StatusTest::presenceHasNothingToLoad()
{
    mService.release();
    mObject = std::make_unique<TelvaroLiveObject>();
    mRecorder = std::make_unique<StatusRecorder>(*mObject);
    QCOMPARE(mObject->getStatus(), Status::Loading);
    waitFor({Status::Absent});
    mService.takeOver();
    waitFor({Status::Ready});
    ScriptedServiceProcess successor;
    successor.start();
    successor.takeOver();
    waitFor({Status::Absent, Status::Ready});
    mService.release();
    successor.kill();
    waitFor({Status::Absent});
}

void StatusTest::everyPropertyHasToBeKnown()
{
    const QList<QPair<QString, QStringList>> objects = {
        {QStringLiteral("/taskswitcher"), {QStringLiteral("views"), QStringLiteral("currentView")}},
        {QStringLiteral("/screen"),
         {QStringLiteral("screenSaverActive"), QStringLiteral("screenSaverEnabled"),
          QStringLiteral("screenSaverTimeoutSeconds"), QStringLiteral("orientation"), QStringLiteral("fullScreen")}}};
    for (const auto& [path, names] : objects) {
        for (const QString& name : names) {
            mService.scriptProperty(QStringLiteral("Get"), path, name, {Behaviour::silence()});
            const LiveObjects live;
            const TelvaroLiveObject& object = path == QLatin1String("/screen")
                ? static_cast<const TelvaroLiveObject&>(live.screen)
                : live.taskSwitcher;
            const TelvaroLiveObject& other = path == QLatin1String("/screen")
                ? static_cast<const TelvaroLiveObject&>(live.taskSwitcher)
                : live.screen;
            TRY_COMPARE(other.getStatus(), Status::Ready);
            PrivateBus::deliver();
            QVERIFY2(object.getStatus() == Status::Loading, qPrintable(name));
            mService.scriptProperty(QStringLiteral("Get"), path, name, {Behaviour::plain()});
        }
    }
}

void StatusTest::everyWrongTypeFailsAndAGoodValueHeals_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("property");
    QTest::addColumn<QString>("good");
    QTest::addColumn<QStringList>("wrong");
    const QStringList noBools = valuesOtherThan("bynqiuxt");
    const QStringList noTexts = valuesOtherThan("bynqiuxtds");
    const auto addRow = [](int kind, const char* property, const char* good, const QStringList& wrong) {
        QTest::newRow(property) << kind << QString(QLatin1String(property)) << QString(QLatin1String(good)) << wrong;
    };
    addRow(0, "views", "[('u', 'a', '1', '2', '3', '4', uint32 7, uint32 8, {'k': <'v'>})]", valuesOtherThanViews());
    addRow(0, "currentView", "'u'", noTexts);
    addRow(1, "screenSaverActive", "true", noBools);
    addRow(1, "screenSaverEnabled", "false", noBools);
    addRow(1, "screenSaverTimeoutSeconds", "7", valuesOtherThanIntegers());
    addRow(1, "orientation", "'90'", noTexts);
    addRow(1, "fullScreen", "true", noBools);
}

void StatusTest::everyWrongTypeFailsAndAGoodValueHeals()
{
    QFETCH(const QString, property);
    QFETCH(const QString, good);
    QFETCH(const QStringList, wrong);
    make();
    waitFor({Status::Ready});
    const QString goodChange = QStringLiteral("{'%1': <%2>}").arg(property, good);
    for (const QString& value : wrong) {
        // Notified, too, it is not believed.
        mService.scriptProperty(QStringLiteral("Get"), path(), property,
                                {Behaviour::reply({ValueText::variant(value)})});
        notify(QStringLiteral("{'%1': <%2>}").arg(property, value));
        const bool hasFailed = QTest::qWaitFor(
            [this] {
                return mObject->getStatus() == Status::Failed;
            },
            ChildProcess::cDeadline);
        QVERIFY2(hasFailed && mObject->getError().type() == QDBusError::InvalidSignature, qPrintable(value));
        notify(goodChange);
        QVERIFY2(mRecorder->getStatuses() == QList<Status>({Status::Loading, Status::Failed, Status::Ready}),
                 qPrintable(value));
        mRecorder->clear();
    }
}

void StatusTest::aCurrentViewThatIsNoTextMayBeReadByTheConnectorOnlyOrByTheLiveObjectOnly()
{
    setViews(
        {makeView(QStringLiteral("120"), QStringLiteral("x")), makeView(QStringLiteral("x"), QStringLiteral("x"))});
    TelvaroTaskSwitcherDBusConnector connector;
    scriptCurrentView({Behaviour::reply({QStringLiteral("<byte 0x78>")})});
    TelvaroTaskSwitcher byteReader;
    TRY_COMPARE(byteReader.getStatus(), Status::Ready);
    QCOMPARE(byteReader.getCurrentView(), QStringLiteral("120"));
    QCOMPARE(connector.getCurrentView().uuid, QString());
    QCOMPARE(mLog->takeTexts(), QStringList{Warnings::cUnparsed});

    for (const char* const list : {"<['x']>", "<[byte 0x78]>"}) {
        scriptCurrentView({Behaviour::reply({QLatin1String(list)})});
        TelvaroTaskSwitcher listReader;
        TRY_COMPARE(listReader.getStatus(), Status::Failed);
        QCOMPARE(connector.getCurrentView().uuid, QStringLiteral("x"));
    }
}

void StatusTest::everyUnusableReplyFails_data()
{
    addRowPerKind();
}

void StatusTest::everyUnusableReplyFails()
{
    make();
    waitFor({Status::Ready});
    QStringList replies = containersOf(cAllTypes).filter(QRegularExpression(QStringLiteral("^[^<]")));
    for (const Basic& basic : cBasics) {
        if (basic.type != 'v') {
            replies.append(QLatin1String(basic.text));
        }
    }
    QList<Behaviour> behaviours{Behaviour::reply()};
    for (const QString& reply : replies) {
        behaviours.append(Behaviour::reply({reply, QStringLiteral("<'a'>")}));
    }
    for (const Behaviour& behaviour : behaviours) {
        script({behaviour});
        invalidate();
        waitFor({Status::Loading, Status::Failed});
        QCOMPARE(mObject->getError().type(), QDBusError::InvalidSignature);
        notifyGoodValue();
        waitFor({Status::Ready});
    }
}

void StatusTest::notificationsOfAnotherSignatureAreDropped()
{
    LiveObjects objects;
    TRY_VERIFY(objects.areAll(Status::Ready));
    mService.takeCalls();
    const QString name = QStringLiteral("'de.Telvaro'");
    const QString changed = QStringLiteral("{'views': <1>, 'currentView': <1>, 'orientation': <[1]>}");
    const QString invalidated = QStringLiteral("['views', 'orientation']");
    QList<QStringList> signatures = {{},
                                     {name},
                                     {name, changed},
                                     {name, changed, invalidated, name},
                                     {changed, invalidated},
                                     {name, invalidated, changed}};
    for (const QString& value : valuesOtherThan("")) {
        signatures.append({value, changed, invalidated});
        signatures.append({name, value, invalidated});
        signatures.append({name, changed, value});
    }
    for (const QStringList& arguments : signatures) {
        // Among them are the right types.
        if (arguments.size() == 3 && arguments.at(0).startsWith(QLatin1Char('\''))
            && (arguments.at(1) == changed || arguments.at(1) == QLatin1String("{'k': <'text'>}"))
            && (arguments.at(2) == invalidated || arguments.at(2) == QLatin1String("@as []")
                || arguments.at(2) == QLatin1String("['text']"))) {
            continue;
        }
        for (const char* const path : {"/taskswitcher", "/screen"}) {
            mService.emitSignal({QLatin1String(path), QStringLiteral("org.freedesktop.DBus.Properties"),
                                 QStringLiteral("PropertiesChanged"), arguments});
        }
    }
    PrivateBus::deliver();
    QVERIFY(objects.areAll(Status::Ready));
    QCOMPARE(mService.takeDescriptions(), QStringList());
}

TELVARO_TEST_MAIN(StatusTest)
#include "StatusTest.moc"
