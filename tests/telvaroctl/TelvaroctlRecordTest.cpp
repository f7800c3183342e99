// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Recording.h"
#include "TelvaroctlFixture.h"
#include "TestMain.h"

#include <QDBusConnection>
#include <QDBusPendingCall>
#include <QDBusVariant>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTemporaryFile>

#include <csignal>
#include <memory>

namespace {

const QString cTaskSwitcherPath = QStringLiteral("/taskswitcher");
const QString cTaskSwitcher = QStringLiteral("de.Telvaro.taskswitcher");
const QString cScreenPath = QStringLiteral("/screen");
const QString cScreen = QStringLiteral("de.Telvaro.screen");
const QString cOverlayPath = QStringLiteral("/globaloverlay");
const QString cOverlay = QStringLiteral("de.Telvaro.globaloverlay");
const QString cProperties = QStringLiteral("org.freedesktop.DBus.Properties");

/// The steps of a service without views, as each recording begins.
constexpr int cFirstSteps = 6;

QDBusMessage overlayCall(const QString& service = QStringLiteral(TELVARO_SERVICE_NAME))
{
    QDBusMessage call = QDBusMessage::createMethodCall(service, cOverlayPath, cOverlay, QStringLiteral("Show"));
    call.setArguments({QStringLiteral("overlay text")});
    return call;
}

QDBusMessage propertyCall(const QString& path, const QString& member, const QVariantList& arguments)
{
    QDBusMessage call = QDBusMessage::createMethodCall(QStringLiteral(TELVARO_SERVICE_NAME), path, cProperties, member);
    call.setArguments(arguments);
    return call;
}

/// Gives a list of views in GVariant's text format its type.
QString typed(const QString& records)
{
    return QStringLiteral("@a(ssssssuua{sv}) ") + records;
}

void call(const QDBusMessage& message)
{
    PrivateBus::connection().call(message);
}

/// Returns the steps after the first ones, as JSON without blanks and without times.
QStringList changesOf(const QJsonArray& steps, int firstSteps = cFirstSteps)
{
    QStringList lines;
    for (int i = firstSteps; i < steps.size(); ++i) {
        QJsonObject step = steps.at(i).toObject();
        step.remove(QStringLiteral("at"));
        lines.append(QString::fromUtf8(QJsonDocument(step).toJson(QJsonDocument::Compact)));
    }
    return lines;
}

} // namespace

class TelvaroctlRecordTest : public TelvaroctlFixture
{
    Q_OBJECT

private Q_SLOTS:
    void theStateAtTheStartIsTheFirstStep();
    void everyMemberOfARecordIsRecorded();
    void whatNoScriptCanSayIsLeftOutWithOneWarning();
    void onlyWhatChangesOfAViewIsRecorded();
    void aNewOrderIsRecorded();
    void aCurrentViewThatIsNoneIsRecorded();
    void aValueThatIsOnlyInvalidatedIsRead();
    void changesThatFollowCloselyAreOneMoment();
    void refusedLateAndUnansweredCallsAreFaults();
    void aRefusedReadOfAllPropertiesIsAFault();
    void aServiceThatDiesInACallIsAFault();
    void callsThatReachNoMethodDoNotCount();
    void whatProgramsSayToOthersIsNotRecorded();
    void aServiceThatIsAbsentIsWaitedFor();
    void aServiceThatIsReplacedIsGoneAndBack();
    void aServiceThatCannotBeReadIsRecordedFurther();
    void anonymousRecordingsHaveNoTexts();
    void aKilledRecordingIsAWholeScript();
    void standardOutputIsAWholeScriptAtTheEnd_data();
    void standardOutputIsAWholeScriptAtTheEnd();
    void anExistingFileIsReplacedOnlyOnRequest();
    void aFileThatCannotBeWrittenIsAFailure();
    void aFullDiskIsAFailure();
    void theBusCanBeChosen();
    void withoutABusNothingIsRecorded();
    void theEndOfTheBusIsAFailure();
    void withoutAMonitorTheChangesAreRecorded();

private:
    void emitChange(const QString& path, const QString& interface, const QString& changed,
                    const QStringList& invalidated = {});
    void setRecords(const QString& records);
    void emitRecords(const QString& records);
};

void TelvaroctlRecordTest::emitChange(const QString& path, const QString& interface, const QString& changed,
                                      const QStringList& invalidated)
{
    mService.emitSignal(ServiceSignal::propertiesChanged(path, interface, changed, invalidated));
}

void TelvaroctlRecordTest::setRecords(const QString& records)
{
    mService.setViews(typed(records));
}

void TelvaroctlRecordTest::emitRecords(const QString& records)
{
    emitChange(cTaskSwitcherPath, cTaskSwitcher, QStringLiteral("{'views': <%1>}").arg(typed(records)));
}

void TelvaroctlRecordTest::theStateAtTheStartIsTheFirstStep()
{
    setRecords(QStringLiteral("[('u-1', 'notes', 'a', 'b', 'c', 'd', 4711, 3, {'title': <'Shopping'>})]"));
    mService.setCurrentView(QStringLiteral("u-1"));
    Recording recording(program());
    QCOMPARE(QString::fromUtf8(recording.content()), QStringLiteral(R"([
  {"blanking":"scripted"},
  {"add-view":{"appId":"notes","pid":4711,"record":{"attributes":{"title":"Shopping"},"info1":"a","info2":"b","info3":"c","info4":"d","sortIndex":3},"uuid":"u-1"}},
  {"set":{"de.Telvaro.taskswitcher.currentView":"u-1"}},
  {"set":{"de.Telvaro.screen.screenSaverEnabled":true}},
  {"set":{"de.Telvaro.screen.screenSaverTimeoutSeconds":300}},
  {"set":{"de.Telvaro.screen.orientation":"0"}},
  {"set":{"de.Telvaro.screen.fullScreen":false}},
  {"set":{"de.Telvaro.screen.screenSaverActive":false}}
]
)"));
    recording.finish();
    QCOMPARE(recording.errors(), QStringLiteral("telvaroctl: 8 steps written to %1\n").arg(recording.fileName()));
}

void TelvaroctlRecordTest::everyMemberOfARecordIsRecorded()
{
    Recording recording(program());
    emitRecords(QStringLiteral("[('u-1', '', '', '\\\"', 'ä', 'd', 4294967295, 4294967295, "
                               "{'b': <true>, 'y': <byte 7>, 'n': <int16 -3>, 'x': <int64 -5000000000>, "
                               "'d': <0.25>, 's': <'text'>, 'o': <objectpath '/path'>})]"));
    recording.waitFor("u-1");
    QCOMPARE(
        changesOf(recording.finish()).constFirst(),
        QStringLiteral(
            R"({"add-view":{"appId":"","pid":4294967295,"record":{"attributes":{"b":true,"d":0.25,"n":-3,"o":"/path","s":"text","x":-5000000000,"y":7},"info1":"","info2":"\"","info3":"ä","info4":"d","sortIndex":4294967295},"uuid":"u-1"}})"));
}

void TelvaroctlRecordTest::whatNoScriptCanSayIsLeftOutWithOneWarning()
{
    Recording recording(program());
    for (int i = 0; i < 2; ++i) {
        emitRecords(QStringLiteral("[('u-1', 'a', '', '', '', '', 1, %1, {'list': <['x']>, 'nan': <nan>, 'one': <1>}), "
                                   "('u-1', 'a', '', '', '', '', 2, 0, {}), ('', 'a', '', '', '', '', 3, 0, {})]")
                        .arg(i));
        recording.waitFor(QStringLiteral("\"sortIndex\":%1").arg(i).toUtf8());
    }
    emitChange(cScreenPath, cScreen,
               QStringLiteral("{'orientation': <'45'>, 'fullScreen': <'yes'>, "
                              "'screenSaverTimeoutSeconds': <-1>}"));
    emitChange(cScreenPath, cScreen, QStringLiteral("{'screenSaverEnabled': <false>, 'screenSaverActive': <true>}"));
    recording.waitFor("screenSaverEnabled\":false");
    QCOMPARE(
        changesOf(recording.finish()),
        QStringList(
            {QStringLiteral(
                 R"({"add-view":{"appId":"a","pid":1,"record":{"attributes":{"one":1},"info1":"","info2":"","info3":"","info4":"","sortIndex":0},"uuid":"u-1"}})"),
             QStringLiteral(R"({"current-view":""})"),
             QStringLiteral(R"({"change-view":{"record":{"sortIndex":1},"uuid":"u-1"}})"),
             QStringLiteral(R"({"set":{"de.Telvaro.screen.screenSaverEnabled":false}})")}));
    const QString prefix = QStringLiteral("telvaroctl: ");
    QCOMPARE(
        recording.errors(),
        prefix + QStringLiteral("attributes are left out that are no text, number or bool, such as \"list\"\n") + prefix
            + QStringLiteral("attributes are left out that are no text, number or bool, such as \"nan\"\n") + prefix
            + QStringLiteral("views are left out whose record has another type, no uuid or that of another view\n")
            + prefix
            + QStringLiteral("a value of de.Telvaro.screen.fullScreen is left out, because no script can set it\n")
            + prefix
            + QStringLiteral("a value of de.Telvaro.screen.orientation is left out, because no script can set it\n")
            + prefix
            + QStringLiteral("a value of de.Telvaro.screen.screenSaverTimeoutSeconds is left out, because no "
                             "script can set it\n")
            + prefix + QStringLiteral("10 steps written to %1\n").arg(recording.fileName()));
}

void TelvaroctlRecordTest::onlyWhatChangesOfAViewIsRecorded()
{
    const QString record = QStringLiteral("[('u-1', '%1', '%2', 'b', 'c', 'd', %3, 0, {'title': <'%4'>})]");
    setRecords(record.arg(QStringLiteral("app"), QStringLiteral("a"), QStringLiteral("1"), QStringLiteral("t")));
    Recording recording(program());
    emitRecords(record.arg(QStringLiteral("app"), QStringLiteral("A"), QStringLiteral("1"), QStringLiteral("t")));
    recording.waitFor("\"A\"");
    emitRecords(record.arg(QStringLiteral("APP"), QStringLiteral("A"), QStringLiteral("2"), QStringLiteral("t")));
    recording.waitFor("\"APP\"");
    emitRecords(record.arg(QStringLiteral("APP"), QStringLiteral("A"), QStringLiteral("2"), QStringLiteral("T")));
    recording.waitFor("\"T\"");
    // What is as it was is no change.
    emitRecords(record.arg(QStringLiteral("APP"), QStringLiteral("A"), QStringLiteral("2"), QStringLiteral("T")));
    emitRecords(QStringLiteral("[]"));
    recording.waitFor("remove-view");
    QCOMPARE(changesOf(recording.finish(), cFirstSteps + 2),
             QStringList({QStringLiteral(R"({"change-view":{"record":{"info1":"A"},"uuid":"u-1"}})"),
                          QStringLiteral(R"({"change-view":{"appId":"APP","pid":2,"uuid":"u-1"}})"),
                          QStringLiteral(R"({"change-view":{"record":{"attributes":{"title":"T"}},"uuid":"u-1"}})"),
                          QStringLiteral(R"({"remove-view":"u-1"})")}));
}

void TelvaroctlRecordTest::aNewOrderIsRecorded()
{
    const auto records = [](const QStringList& uuids) {
        QStringList list;
        for (const QString& uuid : uuids) {
            list.append(QStringLiteral("('%1', 'app', '', '', '', '', 1, 0, {})").arg(uuid));
        }
        return QLatin1Char('[') + list.join(QStringLiteral(", ")) + QLatin1Char(']');
    };
    const QString one = QStringLiteral("one");
    const QString two = QStringLiteral("two");
    setRecords(records({one, two}));
    mService.setCurrentView(one);
    Recording recording(program());
    const int firstSteps = recording.steps().size();
    emitRecords(records({two, one}));
    recording.waitFor("order-views");
    emitRecords(records({QStringLiteral("new"), two, one}));
    recording.waitFor("order-views", 2);
    // Those that stay are in their old order.
    emitRecords(records({two, one}));
    recording.waitFor("remove-view");
    const QStringList changes = changesOf(recording.finish(), firstSteps);
    QCOMPARE(changes.size(), 6);
    const QString current = QStringLiteral(R"({"set":{"de.Telvaro.taskswitcher.currentView":"one"}})");
    QCOMPARE(changes.at(0), QStringLiteral(R"({"order-views":["two","one"]})"));
    QVERIFY(changes.at(1).startsWith(QLatin1String("{\"add-view\":")));
    QCOMPARE(changes.mid(2),
             QStringList({QStringLiteral(R"({"order-views":["new","two","one"]})"), current,
                          QStringLiteral(R"({"remove-view":"new"})"), current}));
}

void TelvaroctlRecordTest::aCurrentViewThatIsNoneIsRecorded()
{
    setRecords(QStringLiteral("[('u-1', 'app', '', '', '', '', 1, 0, {})]"));
    mService.setCurrentView(QString());
    Recording recording(program());
    const QStringList first = changesOf(recording.steps(), 0);
    QCOMPARE(first.at(2), QStringLiteral(R"({"current-view":""})"));
    emitCurrentView("home");
    recording.waitFor("home");
    emitCurrentView("u-1");
    recording.waitFor(R"("set":{"de.Telvaro.taskswitcher.currentView")");
    // The last view takes the current one along.
    emitChange(cTaskSwitcherPath, cTaskSwitcher,
               QStringLiteral("{'views': <%1>, 'currentView': <''>}").arg(typed(QStringLiteral("[]"))));
    recording.waitFor("remove-view");
    QCOMPARE(changesOf(recording.finish(), first.size()),
             QStringList({QStringLiteral(R"({"current-view":"home"})"),
                          QStringLiteral(R"({"set":{"de.Telvaro.taskswitcher.currentView":"u-1"}})"),
                          QStringLiteral(R"({"remove-view":"u-1"})")}));
}

void TelvaroctlRecordTest::aValueThatIsOnlyInvalidatedIsRead()
{
    Recording recording(program());
    mService.setProperty(cScreenPath, cScreen, QStringLiteral("orientation"), QStringLiteral("'180'"));
    emitChange(cScreenPath, cScreen, QStringLiteral("@a{sv} {}"), {QStringLiteral("orientation")});
    recording.waitFor("180");
    QCOMPARE(changesOf(recording.finish()),
             QStringList(QStringLiteral(R"({"set":{"de.Telvaro.screen.orientation":"180"}})")));
}

void TelvaroctlRecordTest::changesThatFollowCloselyAreOneMoment()
{
    Recording recording(program());
    // The read that the first one begins keeps the moment open.
    mService.scriptProperty(QStringLiteral("Get"), cScreenPath, QStringLiteral("orientation"),
                            {Behaviour::plain().after(1500)});
    mService.setProperty(cScreenPath, cScreen, QStringLiteral("orientation"), QStringLiteral("'90'"));
    emitChange(cScreenPath, cScreen, QStringLiteral("@a{sv} {}"), {QStringLiteral("orientation")});
    emitChange(cScreenPath, cScreen, QStringLiteral("{'fullScreen': <true>}"));
    emitChange(cScreenPath, cScreen, QStringLiteral("{'fullScreen': <false>}"));
    emitChange(cScreenPath, cScreen, QStringLiteral("{'screenSaverActive': <true>}"));
    recording.waitFor("90");
    const QJsonArray steps = recording.finish();
    QCOMPARE(changesOf(steps),
             QStringList({QStringLiteral(R"({"set":{"de.Telvaro.screen.orientation":"90"}})"),
                          QStringLiteral(R"({"set":{"de.Telvaro.screen.screenSaverActive":true}})")}));
    const QString at = QStringLiteral("at");
    QCOMPARE(steps.at(cFirstSteps).toObject().value(at), steps.at(cFirstSteps + 1).toObject().value(at));
    QVERIFY(steps.at(cFirstSteps).toObject().value(at).toDouble() > 0);
}

void TelvaroctlRecordTest::refusedLateAndUnansweredCallsAreFaults()
{
    Recording recording(program());
    const QString error = QStringLiteral("org.example.Error.Broken");
    mService.script(cOverlayPath, cOverlay, QStringLiteral("Show"),
                    {Behaviour::reply(), Behaviour::error(error, QStringLiteral("no overlay")),
                     Behaviour::error(error, QString()).after(500), Behaviour::reply().after(400),
                     Behaviour::silence()});
    for (int i = 0; i < 4; ++i) {
        call(overlayCall());
    }
    PrivateBus::connection().asyncCall(overlayCall());
    mService.scriptProperty(QStringLiteral("Set"), cScreenPath, QStringLiteral("orientation"),
                            {Behaviour::error(error, QStringLiteral("no orientation"))});
    call(propertyCall(
        cScreenPath, QStringLiteral("Set"),
        {cScreen, QStringLiteral("orientation"), QVariant::fromValue(QDBusVariant(QStringLiteral("90")))}));
    recording.waitFor("no orientation");
    // Meanwhile the call that is not answered has waited long enough.
    mService.scriptProperty(QStringLiteral("Set"), cScreenPath, QStringLiteral("fullScreen"),
                            {Behaviour::reply().after(200)});
    call(propertyCall(cScreenPath, QStringLiteral("Set"),
                      {cScreen, QStringLiteral("fullScreen"), QVariant::fromValue(QDBusVariant(true))}));

    QJsonArray faults;
    QList<double> delays;
    for (const QJsonValue& value : recording.finish()) {
        QJsonObject step = value.toObject();
        QJsonObject fault = step.take(QStringLiteral("fault")).toObject();
        const double delay = fault.take(QStringLiteral("delay")).toDouble();
        const bool isBusyMachine = delay < 0.4 && fault.size() == 2;
        if (fault.isEmpty() || fault.contains(QStringLiteral("set")) || isBusyMachine) {
            continue;
        }
        QVERIFY(!step.contains(QStringLiteral("at")));
        delays.append(delay);
        step.insert(QStringLiteral("fault"), fault);
        faults.append(step);
    }
    QCOMPARE(
        changesOf(faults, 0),
        QStringList(
            {QStringLiteral(
                 R"({"after":{"call":"de.Telvaro.globaloverlay.Show","times":1},"fault":{"call":"de.Telvaro.globaloverlay.Show","error":"org.example.Error.Broken","text":"no overlay","times":1}})"),
             QStringLiteral(
                 R"({"after":{"call":"de.Telvaro.globaloverlay.Show","times":2},"fault":{"call":"de.Telvaro.globaloverlay.Show","error":"org.example.Error.Broken","times":1}})"),
             QStringLiteral(
                 R"({"after":{"call":"de.Telvaro.globaloverlay.Show","times":3},"fault":{"call":"de.Telvaro.globaloverlay.Show","times":1}})"),
             QStringLiteral(
                 R"({"after":{"call":"de.Telvaro.globaloverlay.Show","times":4},"fault":{"call":"de.Telvaro.globaloverlay.Show","silent":true,"times":1}})")}));
    QVERIFY2(delays.at(1) >= 0.5 && delays.at(2) >= 0.4, qPrintable(QString::number(delays.at(1))));
}

void TelvaroctlRecordTest::aRefusedReadOfAllPropertiesIsAFault()
{
    Recording recording(program());
    const QString error = QStringLiteral("org.example.Error.Broken");
    call(propertyCall(cScreenPath, QStringLiteral("Get"), {cScreen, QStringLiteral("fullScreen")}));
    call(propertyCall(cScreenPath, QStringLiteral("GetAll"), {cScreen}));
    mService.script(cScreenPath, cProperties, QStringLiteral("GetAll"),
                    {Behaviour::error(error, QStringLiteral("first"))});
    call(propertyCall(cScreenPath, QStringLiteral("GetAll"), {cScreen}));
    mService.scriptProperty(QStringLiteral("Get"), cScreenPath, QStringLiteral("orientation"),
                            {Behaviour::error(error, QStringLiteral("second"))});
    call(propertyCall(cScreenPath, QStringLiteral("Get"), {cScreen, QStringLiteral("orientation")}));
    recording.waitFor("second");
    QStringList faults = changesOf(recording.finish()).filter(error);
    for (QString& fault : faults) {
        fault.remove(QRegularExpression(QStringLiteral("\"delay\":[0-9.]*,")));
    }
    // The first property stands for all: it has been read three times, and the other one three times, too.
    QCOMPARE(
        faults,
        QStringList(
            {QStringLiteral(
                 R"({"after":{"get":"de.Telvaro.screen.fullScreen","times":2},"fault":{"error":"org.example.Error.Broken","get":"de.Telvaro.screen.fullScreen","text":"first","times":1}})"),
             QStringLiteral(
                 R"({"after":{"get":"de.Telvaro.screen.orientation","times":2},"fault":{"error":"org.example.Error.Broken","get":"de.Telvaro.screen.orientation","text":"second","times":1}})")}));
}

void TelvaroctlRecordTest::aServiceThatDiesInACallIsAFault()
{
    Recording recording(program());
    mService.script(cOverlayPath, cOverlay, QStringLiteral("Show"), {Behaviour::exit()});
    call(overlayCall());
    recording.waitFor("org.freedesktop.DBus.Error.NoReply");
    recording.waitFor(R"("service":"gone")");
    startService();
    recording.waitFor(R"("service":"back")");
    recording.finish();
}

void TelvaroctlRecordTest::callsThatReachNoMethodDoNotCount()
{
    Recording recording(program());
    const QString service = QStringLiteral(TELVARO_SERVICE_NAME);
    call(QDBusMessage::createMethodCall(service, cOverlayPath, cOverlay, QStringLiteral("Show")));
    call(QDBusMessage::createMethodCall(service, cOverlayPath, cOverlay, QStringLiteral("Blink")));
    call(QDBusMessage::createMethodCall(service, cScreenPath, cOverlay, QStringLiteral("Hide")));
    call(propertyCall(cScreenPath, QStringLiteral("Get"), {cScreen, QStringLiteral("colour")}));
    call(propertyCall(cScreenPath, QStringLiteral("Get"), {cScreen}));
    mService.script(cOverlayPath, cOverlay, QStringLiteral("Show"),
                    {Behaviour::error(QStringLiteral("org.example.Error.Broken"), QStringLiteral("counted"))});
    call(overlayCall());
    recording.waitFor("counted");
    const QStringList changes = changesOf(recording.finish());
    QCOMPARE(changes.size(), 1);
    QVERIFY2(!changes.constFirst().contains(QLatin1String("after")), qPrintable(changes.constFirst()));
}

void TelvaroctlRecordTest::whatProgramsSayToOthersIsNotRecorded()
{
    ScriptedServiceProcess other;
    other.start();
    const QString otherName = QStringLiteral("org.example.Other");
    other.own(otherName);
    Recording recording(program());
    other.emitSignal(ServiceSignal::propertiesChanged(cScreenPath, cScreen, QStringLiteral("{'orientation': <'90'>}")));
    other.script(cOverlayPath, cOverlay, QStringLiteral("Show"),
                 {Behaviour::error(QStringLiteral("org.example.Error.Broken"), QStringLiteral("of another"))});
    call(overlayCall(otherName));
    emitChange(cScreenPath, cScreen, QStringLiteral("{'fullScreen': <true>}"));
    recording.waitFor("\"de.Telvaro.screen.fullScreen\":true");
    QCOMPARE(changesOf(recording.finish()),
             QStringList(QStringLiteral(R"({"set":{"de.Telvaro.screen.fullScreen":true}})")));
}

void TelvaroctlRecordTest::aServiceThatIsAbsentIsWaitedFor()
{
    mService.release();
    Recording recording(program());
    QCOMPARE(changesOf(recording.steps(), 1), QStringList(QStringLiteral(R"({"service":"gone"})")));
    mService.setCurrentView(QStringLiteral("home"));
    mService.own();
    recording.waitFor(R"("service":"back")");
    const QStringList changes = changesOf(recording.finish(), 2);
    // The service comes with its state.
    QCOMPARE(changes.size(), cFirstSteps + 1);
    QCOMPARE(changes.constFirst(), QStringLiteral(R"({"current-view":"home"})"));
    QCOMPARE(changes.constLast(), QStringLiteral(R"({"service":"back"})"));
}

void TelvaroctlRecordTest::aServiceThatIsReplacedIsGoneAndBack()
{
    mService.release();
    mService.takeOver();
    ScriptedServiceProcess successor;
    successor.start();
    Recording recording(program());
    successor.setProperty(cScreenPath, cScreen, QStringLiteral("orientation"), QStringLiteral("'90'"));
    successor.takeOver();
    recording.waitFor(R"("service":"back")");
    QCOMPARE(changesOf(recording.finish()),
             QStringList({QStringLiteral(R"({"service":"gone"})"),
                          QStringLiteral(R"({"set":{"de.Telvaro.screen.orientation":"90"}})"),
                          QStringLiteral(R"({"service":"back"})")}));
    successor.release();
}

void TelvaroctlRecordTest::aServiceThatCannotBeReadIsRecordedFurther()
{
    mService.script(cScreenPath, cProperties, QStringLiteral("Get"),
                    {Behaviour::error(QStringLiteral("org.example.Error.Broken"), QStringLiteral("not now"))});
    mService.script(cTaskSwitcherPath, cProperties, QStringLiteral("Get"), {Behaviour::silence()});
    Recording recording(program());
    QCOMPARE(changesOf(recording.steps(), 1), QStringList());
    QVERIFY2(recording.warnings().contains("telvaroctl: de.Telvaro.screen.orientation cannot be read: not now"),
             recording.warnings().join('\n'));
    emitChange(cScreenPath, cScreen, QStringLiteral("{'orientation': <'90'>}"));
    recording.waitFor("90");
    QCOMPARE(changesOf(recording.finish(), 1),
             QStringList(QStringLiteral(R"({"set":{"de.Telvaro.screen.orientation":"90"}})")));
}

void TelvaroctlRecordTest::anonymousRecordingsHaveNoTexts()
{
    const QString records = QStringLiteral("[('u-1', 'app', 'private 1', 'private 2', '', 'private 1', 1, 0, "
                                           "{'title': <'private %1'>, 'count': <7>})]");
    setRecords(records.arg(3));
    Recording recording(program(), {QStringLiteral("--anonymous")});
    emitRecords(records.arg(4));
    recording.waitFor("change-view");
    mService.script(cOverlayPath, cOverlay, QStringLiteral("Show"),
                    {Behaviour::error(QStringLiteral("org.example.Error.Broken"), QStringLiteral("private 2"))});
    call(overlayCall());
    recording.waitFor("Error.Broken");
    const QStringList steps = changesOf(recording.finish(), 1);
    QCOMPARE(
        steps.at(0),
        QStringLiteral(
            R"({"add-view":{"appId":"app","pid":1,"record":{"attributes":{"count":7,"title":"text 3"},"info1":"text 1","info2":"text 2","info3":"","info4":"text 1","sortIndex":0},"uuid":"u-1"}})"));
    QVERIFY(steps.contains(
        QStringLiteral(R"({"change-view":{"record":{"attributes":{"count":7,"title":"text 4"}},"uuid":"u-1"}})")));
    QVERIFY2(steps.constLast().contains(QLatin1String("\"text\":\"text 2\"")), qPrintable(steps.constLast()));
    QVERIFY(!recording.content().contains("private"));
    QVERIFY(!recording.content().contains("overlay text"));
}

void TelvaroctlRecordTest::aKilledRecordingIsAWholeScript()
{
    Recording recording(program());
    emitChange(cScreenPath, cScreen, QStringLiteral("{'orientation': <'90'>}"));
    recording.waitFor("90");
    recording.process().end();
    QCOMPARE(recording.process().exitStatus(), QProcess::CrashExit);
    QCOMPARE(changesOf(recording.steps()),
             QStringList(QStringLiteral(R"({"set":{"de.Telvaro.screen.orientation":"90"}})")));
}

void TelvaroctlRecordTest::standardOutputIsAWholeScriptAtTheEnd_data()
{
    QTest::addColumn<bool>("isFile");
    QTest::newRow("pipe") << false;
    QTest::newRow("file with earlier output") << true;
}

void TelvaroctlRecordTest::standardOutputIsAWholeScriptAtTheEnd()
{
    QFETCH(bool, isFile);
    const QByteArray earlier(isFile ? "earlier\n" : "");
    QTemporaryFile file;
    QVERIFY(file.open());
    QCOMPARE(file.write(earlier), qint64(earlier.size()));
    QVERIFY(file.flush());
    ChildProcess process;
    if (isFile) {
        process.setStandardOutputFile(file.fileName(), QIODevice::Append);
    }
    start(process, {QStringLiteral("record"), QStringLiteral("-")});
    process.setReadChannel(QProcess::StandardError);
    QCOMPARE(QString::fromUtf8(process.readOutputLine()),
             QStringLiteral("telvaroctl: recording " TELVARO_SERVICE_NAME));
    ::kill(static_cast<pid_t>(process.processId()), SIGINT);
    QVERIFY(process.waitForFinished(ChildProcess::cDeadline));
    QCOMPARE(process.exitCode(), 0);
    QCOMPARE(QString::fromUtf8(process.readAllStandardError()), QStringLiteral("telvaroctl: 6 steps written to -\n"));
    QVERIFY(file.seek(0));
    const QByteArray output = isFile ? file.readAll() : process.readAllStandardOutput();
    QVERIFY2(output.startsWith(earlier), output);
    QCOMPARE(QJsonDocument::fromJson(output.mid(earlier.size())).array().size(), cFirstSteps);
}

void TelvaroctlRecordTest::anExistingFileIsReplacedOnlyOnRequest()
{
    QTemporaryDir directory;
    QFile file(directory.filePath(QStringLiteral("script.json")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(QByteArray(10000, 'x')), qint64(10000));
    file.close();
    const Result refused = telvaroctl({QStringLiteral("record"), file.fileName()});
    QCOMPARE(refused.status, 1);
    QCOMPARE(refused.errors,
             QStringLiteral("telvaroctl: %1 exists already; --force replaces it\n").arg(file.fileName()));
    QCOMPARE(file.size(), qint64(10000));

    ChildProcess process;
    start(process, {QStringLiteral("record"), QStringLiteral("--force"), file.fileName()});
    process.setReadChannel(QProcess::StandardError);
    process.readOutputLine();
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(QJsonDocument::fromJson(file.readAll()).array().size(), cFirstSteps);
}

void TelvaroctlRecordTest::aFileThatCannotBeWrittenIsAFailure()
{
    const Result result = telvaroctl({QStringLiteral("record"), QStringLiteral("/no/such/directory/script.json")});
    QCOMPARE(result.status, 1);
    QCOMPARE(result.errors,
             QStringLiteral("telvaroctl: /no/such/directory/script.json cannot be written: No such file or "
                            "directory\n"));
    QCOMPARE(telvaroctl("record").status, 2);
    QCOMPARE(telvaroctl("record a b").status, 2);
}

void TelvaroctlRecordTest::aFullDiskIsAFailure()
{
    const Result result =
        telvaroctl({QStringLiteral("record"), QStringLiteral("--force"), QStringLiteral("/dev/full")});
    QCOMPARE(result.status, 1);
    QCOMPARE(result.errors, QStringLiteral("telvaroctl: /dev/full cannot be written: No space left on device\n"));
}

void TelvaroctlRecordTest::theBusCanBeChosen()
{
    const QByteArray ownBus = PrivateBus::address().toUtf8();
    PrivateBus::setAddress("unix:path=/nonexistent");
    Recording recording(program(), {QStringLiteral("--bus"), QString::fromUtf8(ownBus)});
    PrivateBus::setAddress(ownBus);
    QCOMPARE(recording.finish().size(), cFirstSteps);
}

void TelvaroctlRecordTest::withoutABusNothingIsRecorded()
{
    const QByteArray ownBus = PrivateBus::address().toUtf8();
    QTemporaryDir directory;
    const QString fileName = directory.filePath(QStringLiteral("script.json"));
    PrivateBus::setAddress("unix:path=/nonexistent");
    const Result result = telvaroctl({QStringLiteral("record"), fileName});
    PrivateBus::setAddress(ownBus);
    QCOMPARE(result.status, 1);
    QCOMPARE(result.errors, QStringLiteral("telvaroctl: there is no bus at unix:path=/nonexistent\n"));
    QVERIFY(!QFile::exists(fileName));
}

void TelvaroctlRecordTest::theEndOfTheBusIsAFailure()
{
    const QByteArray ownBus = PrivateBus::address().toUtf8();
    std::unique_ptr<Recording> recording;
    {
        PrivateBus bus;
        recording = std::make_unique<Recording>(program());
        PrivateBus::setAddress(ownBus);
        bus.kill();
        QVERIFY(recording->process().waitForFinished(ChildProcess::cDeadline));
    }
    QCOMPARE(recording->process().exitCode(), 1);
    QCOMPARE(recording->errors(),
             QStringLiteral("telvaroctl: the bus has ended\ntelvaroctl: 2 steps written to %1\n")
                 .arg(recording->fileName()));
    QCOMPARE(changesOf(recording->steps(), 1), QStringList(QStringLiteral(R"({"service":"gone"})")));
}

void TelvaroctlRecordTest::withoutAMonitorTheChangesAreRecorded()
{
    QTemporaryDir directory;
    QFile configuration(QStringLiteral(TELVARO_BUS_CONFIGURATION));
    QVERIFY(configuration.open(QIODevice::ReadOnly));
    QFile strict(directory.filePath(QStringLiteral("bus.conf")));
    QVERIFY(strict.open(QIODevice::WriteOnly));
    strict.write(configuration.readAll().replace(
        "</policy>", "<deny send_interface=\"org.freedesktop.DBus.Monitoring\"/></policy>"));
    strict.close();
    const QByteArray ownBus = PrivateBus::address().toUtf8();
    ChildProcess daemon;
    daemon.setProcessChannelMode(QProcess::SeparateChannels);
    daemon.setStandardErrorFile(QProcess::nullDevice());
    daemon.run(QStringLiteral("dbus-daemon"),
               {QStringLiteral("--nofork"), QStringLiteral("--print-address"),
                QStringLiteral("--config-file=") + strict.fileName(),
                QStringLiteral("--address=unix:dir=") + directory.path()});
    PrivateBus::setAddress(daemon.readOutputLine());
    ScriptedServiceProcess service;
    service.start();
    service.own();
    ChildProcess process;
    const QString fileName = directory.filePath(QStringLiteral("script.json"));
    start(process, {QStringLiteral("record"), fileName});
    PrivateBus::setAddress(ownBus);
    process.setReadChannel(QProcess::StandardError);
    const QString warning = QString::fromUtf8(process.readOutputLine());
    QVERIFY2(warning.startsWith(QLatin1String("telvaroctl: the bus permits no monitor, so that what programs call and "
                                              "how that is answered is not recorded: ")),
             qPrintable(warning));
    process.readOutputLine();
    service.emitSignal(
        ServiceSignal::propertiesChanged(cScreenPath, cScreen, QStringLiteral("{'orientation': <'90'>}")));
    service.setProperty(cScreenPath, cScreen, QStringLiteral("fullScreen"), QStringLiteral("true"));
    service.emitSignal(ServiceSignal::propertiesChanged(cScreenPath, cScreen, QStringLiteral("@a{sv} {}"),
                                                        {QStringLiteral("fullScreen")}));
    service.release();
    const auto content = [&fileName] {
        QFile file(fileName);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    QTRY_VERIFY_WITH_TIMEOUT(content().contains(R"("service":"gone")"), ChildProcess::cDeadline);
    service.own();
    QTRY_VERIFY_WITH_TIMEOUT(content().contains(R"("service":"back")"), ChildProcess::cDeadline);
    const QStringList changes = changesOf(QJsonDocument::fromJson(content()).array());
    QCOMPARE(changes.constFirst(), QStringLiteral(R"({"set":{"de.Telvaro.screen.orientation":"90"}})"));
    QVERIFY(changes.contains(QStringLiteral(R"({"set":{"de.Telvaro.screen.fullScreen":true}})")));
}

TELVARO_TEST_MAIN(TelvaroctlRecordTest)

#include "TelvaroctlRecordTest.moc"
