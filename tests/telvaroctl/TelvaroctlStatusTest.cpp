// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "PrivateBus.h"
#include "TelvaroctlFixture.h"
#include "TestMain.h"
#include "ValueText.h"

#include <QDBusConnectionInterface>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcessEnvironment>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <algorithm>
#include <csignal>

#include <sys/types.h>

namespace {

const QString cScreenPath = QStringLiteral("/screen");
const QString cScreenInterface = QStringLiteral("de.Telvaro.screen");
const QString cPropertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");
const QStringList cObjects = {QStringLiteral("globaloverlay"), QStringLiteral("notifications"),
                              QStringLiteral("screen"), QStringLiteral("screenshot"), QStringLiteral("taskswitcher")};

} // namespace

class TelvaroctlStatusTest : public TelvaroctlFixture
{
    Q_OBJECT

private Q_SLOTS:
    void statusTellsDeviceBusServiceAndObjects();
    void statusIsTheSameAsJson();
    void statusWithoutTheService();
    void statusOfAnObjectThatDoesNotAnswer();
    void statusOfAServiceThatDoesNotAnswer();
    void statusOfAnotherDevice_data();
    void statusOfAnotherDevice();
    void aServiceThatAgreesHasNoProblems();
    void theDeepStatusSaysWhatItCannotChange();
    void theDeepStatusRestoresWhatItChanges();
    void theDeepStatusRestoresWhatTheServiceRepliesTooLate();
    void anInterruptedDeepStatusRestoresWhatItHasChanged();
    void theDeepStatusLeavesAnActiveScreenSaverAlone();
    void theDeepStatusFindsWhatDoesNotAgree_data();
    void theDeepStatusFindsWhatDoesNotAgree();

private:
    /// The methods that the plain service does not have.
    void completeService();
    /// Takes the values that were written to the orientation.
    QStringList takeOrientations();
    static QJsonObject toObject(const Result& result);
};

void TelvaroctlStatusTest::completeService()
{
    mService.script(QStringLiteral("/org/freedesktop/Notifications"), QStringLiteral("org.freedesktop.Notifications"),
                    QStringLiteral("GetServerInformation"),
                    {Behaviour::reply({QStringLiteral("'a'"), QStringLiteral("'b'"), QStringLiteral("'c'"),
                                       QStringLiteral("'1.2'")})});
    mService.script(cScreenPath, cPropertiesInterface, QStringLiteral("GetAll"),
                    {Behaviour::reply({QStringLiteral("{'screenSaverActive': <false>, 'screenSaverEnabled': <true>, "
                                                      "'screenSaverTimeoutSeconds': <300>, 'orientation': <'0'>, "
                                                      "'fullScreen': <false>}")})});
    mService.script(QStringLiteral("/taskswitcher"), cPropertiesInterface, QStringLiteral("GetAll"),
                    {Behaviour::reply({QStringLiteral("{'views': <%1>, 'currentView': <'u-1'>}")
                                           .arg(ValueText::views({view("u-1", "notes", 4711, 0, "Shopping"),
                                                                  view("u-2", "notes", 4711, 1, "Recipes")}))})});
    setTwoViews();
    mService.setStateful(true);
}

QStringList TelvaroctlStatusTest::takeOrientations()
{
    static const QRegularExpression cWrite(
        QStringLiteral("Set ssv\\('de.Telvaro.screen', 'orientation', <'(\\d+)'>\\)$"));
    QStringList values;
    const QStringList writes = takeWrites();
    for (const QString& write : writes) {
        const QRegularExpressionMatch match = cWrite.match(write);
        if (match.hasMatch()) {
            values.append(match.captured(1));
        }
    }
    return values;
}

QJsonObject TelvaroctlStatusTest::toObject(const Result& result)
{
    return QJsonDocument::fromJson(result.output.toUtf8()).object();
}

void TelvaroctlStatusTest::statusTellsDeviceBusServiceAndObjects()
{
    completeService();
    const Result result = telvaroctl("status");
    QCOMPARE(result.errors, QString());
    QCOMPARE(result.status, 0);
    const QString owner = mService.uniqueName();
    const QString pid =
        QString::number(PrivateBus::connection().interface()->servicePid(QStringLiteral(TELVARO_SERVICE_NAME)).value());
    const QString service = QStringLiteral("service " TELVARO_SERVICE_NAME);
    QString expected;
    const QList<QStringList> rows = {
        {QStringLiteral("WHAT"), QStringLiteral("STATE")},
        {QStringLiteral("compositor device"), QStringLiteral("yes")},
        {QStringLiteral("manifest"), QStringLiteral(TELVARO_MANIFEST_PATH)},
        {QStringLiteral("product code"), QStringLiteral("481936")},
        {QStringLiteral(TELVARO_BUS_NAME " bus"), PrivateBus::address()},
        {service, QStringLiteral("registered")},
        {QStringLiteral("owner"), QStringLiteral("%1, process %2").arg(owner, pid)},
        {QStringLiteral("object globaloverlay"), QStringLiteral("answers")},
        {QStringLiteral("object notifications"), QStringLiteral("answers")},
        {QStringLiteral("object screen"), QStringLiteral("answers")},
        {QStringLiteral("object screenshot"), QStringLiteral("answers")},
        {QStringLiteral("object taskswitcher"), QStringLiteral("answers")},
    };
    const int width = std::max(service.size(), QStringLiteral("object globaloverlay").size()) + 2;
    for (const QStringList& row : rows) {
        expected += row.at(0).leftJustified(width) + row.at(1) + QLatin1Char('\n');
    }
    QCOMPARE(result.output, expected);
    QCOMPARE(takeWrites().filter(QStringLiteral(".Set ")), QStringList());
}

void TelvaroctlStatusTest::statusIsTheSameAsJson()
{
    completeService();
    const Result result = telvaroctl("status --json");
    QCOMPARE(result.status, 0);
    const QJsonObject status = toObject(result);
    QCOMPARE(status.value(QLatin1String("compositorDevice")), QJsonValue(true));
    QCOMPARE(status.value(QLatin1String("productCode")), QJsonValue(QStringLiteral("481936")));
    QCOMPARE(status.value(QLatin1String("manifest")), QJsonValue(QStringLiteral(TELVARO_MANIFEST_PATH)));
    QCOMPARE(status.value(QLatin1String("bus")), QJsonValue(QStringLiteral(TELVARO_BUS_NAME)));
    QCOMPARE(status.value(QLatin1String("busAddress")), QJsonValue(PrivateBus::address()));
    QCOMPARE(status.value(QLatin1String("service")), QJsonValue(QStringLiteral(TELVARO_SERVICE_NAME)));
    QCOMPARE(status.value(QLatin1String("serviceRegistered")), QJsonValue(true));
    QCOMPARE(status.value(QLatin1String("owner")), QJsonValue(mService.uniqueName()));
    QVERIFY(status.value(QLatin1String("ownerPid")).toInt() > 0);
    for (const QString& object : cObjects) {
        QCOMPARE(status.value(QLatin1String("proxies")).toObject().value(object), QJsonValue(true));
        QCOMPARE(status.value(QLatin1String("objects")).toObject().value(object),
                 QJsonValue(QStringLiteral("answers")));
    }
}

void TelvaroctlStatusTest::statusWithoutTheService()
{
    const auto absence = releaseName();
    const Result result = telvaroctl("status --json");
    QCOMPARE(result.status, 1);
    QCOMPARE(result.errors, notOnTheBus());
    const QJsonObject status = toObject(result);
    QCOMPARE(status.value(QLatin1String("compositorDevice")), QJsonValue(true));
    QCOMPARE(status.value(QLatin1String("serviceRegistered")), QJsonValue(false));
    QCOMPARE(status.value(QLatin1String("owner")), QJsonValue(QString()));
    for (const QString& object : cObjects) {
        QCOMPARE(status.value(QLatin1String("proxies")).toObject().value(object), QJsonValue(false));
    }
    QVERIFY(telvaroctl("status").output.contains(QLatin1String("not registered\n")));
}

void TelvaroctlStatusTest::statusOfAnObjectThatDoesNotAnswer()
{
    completeService();
    mService.script(cScreenPath, cPropertiesInterface, QStringLiteral("Get"), {Behaviour::silence()});
    const Result result = telvaroctl("status --json --timeout 2");
    QCOMPARE(result.errors, message("not every object of the service answers"));
    QCOMPARE(result.status, 1);
    const QJsonObject status = toObject(result);
    for (const QString& object : cObjects) {
        const bool isSilent = object == QLatin1String("screen");
        QCOMPARE(status.value(QLatin1String("objects")).toObject().value(object),
                 QJsonValue(isSilent ? QStringLiteral("does not answer") : QStringLiteral("answers")));
        QCOMPARE(status.value(QLatin1String("proxies")).toObject().value(object), QJsonValue(!isSilent));
    }
}

void TelvaroctlStatusTest::statusOfAServiceThatDoesNotAnswer()
{
    mService.freeze();
    const Result result = telvaroctl("status --timeout 2");
    mService.thaw();
    QCOMPARE(result.errors, message("not every object of the service answers"));
    QCOMPARE(result.output.count(QLatin1String(" does not answer\n")), cObjects.size());
    QVERIFY(result.output.contains(QLatin1String(" registered\n")));
    QCOMPARE(result.status, 1);
}

void TelvaroctlStatusTest::statusOfAnotherDevice_data()
{
    QTest::addColumn<QString>("command");
    QTest::newRow("status") << "status";
    QTest::newRow("views") << "views";
    QTest::newRow("overlay") << "overlay hide";
}

void TelvaroctlStatusTest::statusOfAnotherDevice()
{
    QFETCH(QString, command);
    completeService();
    QTemporaryDir directory;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LD_LIBRARY_PATH"), QStringLiteral(TELVARO_OTHER_DEVICE));
    ChildProcess process;
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(directory.path());
    start(process, words(qPrintable(command)));
    const Result result = finish(process);
    QCOMPARE(result.status, 1);
    QVERIFY2(result.errors.startsWith(
                 QLatin1String("telvaroctl: this is not a compositor device: its manifest " TELVARO_MANIFEST_PATH " ")),
             qPrintable(result.errors));
    QCOMPARE(result.output.contains(QLatin1String("compositor device     no\n")), command == QLatin1String("status"));
    QCOMPARE(takeWrites().filter(QStringLiteral("overlay")).filter(QStringLiteral("Hide")), QStringList());
}

void TelvaroctlStatusTest::aServiceThatAgreesHasNoProblems()
{
    completeService();
    const Result result = telvaroctl("status --deep");
    QCOMPARE(result.errors, QString());
    QVERIFY2(result.status == 0, qPrintable(result.output));
    for (const char* member : {"de.Telvaro.globaloverlay.Hide", "de.Telvaro.screen.orientation",
                               "de.Telvaro.screenshot.ScreenShot", "de.Telvaro.taskswitcher.currentView",
                               "org.freedesktop.Notifications.Notify", "org.freedesktop.Notifications.ActionInvoked"}) {
        const QString row = QString::fromUtf8(member);
        const int position = result.output.indexOf(row);
        QVERIFY2(position > 0, member);
        QVERIFY2(result.output.mid(position).section(QLatin1Char('\n'), 0, 0).endsWith(QLatin1String(" agrees")),
                 member);
    }
}

void TelvaroctlStatusTest::theDeepStatusSaysWhatItCannotChange()
{
    completeService();
    const QStringList always = {QStringLiteral("de.Telvaro.screen.screenSaverActive"),
                                QStringLiteral("de.Telvaro.taskswitcher.views")};
    const auto unchanged = [] {
        return toObject(telvaroctl("status --deep --json")).value(QLatin1String("deepUnchanged")).toVariant();
    };
    QCOMPARE(unchanged().toStringList(), always);
    QVERIFY(telvaroctl("status --deep")
                .output.contains(QLatin1String(" agrees; not changed, so its notifications are unknown\n")));
    mService.setCurrentView(QString());
    QCOMPARE(unchanged().toStringList(),
             QStringList({always.at(0), QStringLiteral("de.Telvaro.taskswitcher.currentView"), always.at(1)}));
}

void TelvaroctlStatusTest::theDeepStatusRestoresWhatItChanges()
{
    completeService();
    const QString screen = telvaroctl("screen --json").output;
    takeWrites();
    QCOMPARE(telvaroctl("status --deep").status, 0);
    const QStringList writes = takeWrites().filter(QStringLiteral(".Set "));
    QCOMPARE(writes.size(), 10);
    QCOMPARE(writes.filter(QStringLiteral("fullScreen")).size(), 2);
    QCOMPARE(telvaroctl("screen --json").output, screen);
    QCOMPARE(telvaroctl("current --format {{uuid}}").output, QStringLiteral("u-1\n"));
}

void TelvaroctlStatusTest::theDeepStatusRestoresWhatTheServiceRepliesTooLate()
{
    completeService();
    mService.scriptProperty(QStringLiteral("Set"), cScreenPath, QStringLiteral("orientation"),
                            {Behaviour::silence(), Behaviour::plain()});
    const Result result = telvaroctl("status --deep --json --timeout 2");
    QCOMPARE(result.status, 1);
    QCOMPARE(takeOrientations(), QStringList({QStringLiteral("90"), QStringLiteral("0")}));
    QCOMPARE(toObject(result)
                 .value(QLatin1String("deep"))
                 .toObject()
                 .value(QLatin1String("de.Telvaro.screen.orientation"))
                 .toArray(),
             QJsonArray({QStringLiteral("cannot be written: the service " TELVARO_SERVICE_NAME " does not answer")}));
}

void TelvaroctlStatusTest::anInterruptedDeepStatusRestoresWhatItHasChanged()
{
    completeService();
    mService.scriptProperty(QStringLiteral("Set"), cScreenPath, QStringLiteral("orientation"),
                            {Behaviour::silence(), Behaviour::plain()});
    ChildProcess status;
    start(status, words("status --deep --timeout 100"));
    QStringList orientations;
    const auto haveBeenWritten = [this, &orientations](int count) {
        return QTest::qWaitFor(
            [this, &orientations, count] {
                orientations += takeOrientations();
                return orientations.size() == count;
            },
            ChildProcess::cDeadline);
    };
    QVERIFY(haveBeenWritten(1));
    QCOMPARE(::kill(static_cast<pid_t>(status.processId()), SIGTERM), 0);
    QVERIFY(haveBeenWritten(2));
    QCOMPARE(orientations, QStringList({QStringLiteral("90"), QStringLiteral("0")}));
    QVERIFY(status.waitForFinished(ChildProcess::cDeadline));
    QCOMPARE(status.exitStatus(), QProcess::CrashExit);
    QCOMPARE(status.exitCode(), SIGTERM);
    QCOMPARE(telvaroctl("fullscreen").output, QStringLiteral("off\n"));
}

void TelvaroctlStatusTest::theDeepStatusLeavesAnActiveScreenSaverAlone()
{
    completeService();
    mService.setProperty(cScreenPath, cScreenInterface, QStringLiteral("screenSaverActive"), QStringLiteral("true"));
    const Result result = telvaroctl("status --deep --json");
    QCOMPARE(takeWrites().filter(QStringLiteral("screenSaverEnabled")), QStringList());
    QVERIFY(toObject(result)
                .value(QLatin1String("deepUnchanged"))
                .toArray()
                .contains(QStringLiteral("de.Telvaro.screen.screenSaverEnabled")));
}

void TelvaroctlStatusTest::theDeepStatusFindsWhatDoesNotAgree_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<QString>("property");
    QTest::addColumn<QString>("problem");
    QTest::newRow("type") << "type"
                          << "fullScreen"
                          << "answers the type 's' instead of 'b'";
    QTest::newRow("GetAll lacks it") << "missing from GetAll"
                                     << "fullScreen"
                                     << "is missing from GetAll";
    QTest::newRow("GetAll differs") << "other GetAll"
                                    << "orientation"
                                    << "Get answers '0', GetAll '90'";
    QTest::newRow("introspection") << "introspection"
                                   << "fullScreen"
                                   << "is missing from the introspection";
    QTest::newRow("no introspection") << "no introspection"
                                      << "fullScreen"
                                      << "cannot be introspected: org.example.Error.No: not today";
    QTest::newRow("introspected type") << "introspected type"
                                       << "fullScreen"
                                       << "is introspected as property s read instead of property b readwrite";
    QTest::newRow("not taken") << "not taken"
                               << "fullScreen"
                               << "'true' was written, 'false' is answered";
    QTest::newRow("refused") << "refused"
                             << "orientation"
                             << "cannot be written: org.example.Error.No: not today";
    QTest::newRow("not notified") << "not notified"
                                  << "fullScreen"
                                  << "changes without a notification";
    QTest::newRow("notified otherwise") << "notified otherwise"
                                        << "orientation"
                                        << "notifies '270', answers '90'";
    QTest::newRow("notified type") << "notified type"
                                   << "fullScreen"
                                   << "notifies the type 's' instead of 'b'";
}

void TelvaroctlStatusTest::theDeepStatusFindsWhatDoesNotAgree()
{
    QFETCH(QString, fault);
    QFETCH(QString, property);
    QFETCH(QString, problem);
    completeService();
    const auto setAll = [this](const char* fullScreen, const char* orientation) {
        mService.script(cScreenPath, cPropertiesInterface, QStringLiteral("GetAll"),
                        {Behaviour::reply({QStringLiteral("{'screenSaverActive': <false>, 'screenSaverEnabled': "
                                                          "<true>, 'screenSaverTimeoutSeconds': <300>, %1%2}")
                                               .arg(QString::fromUtf8(fullScreen), QString::fromUtf8(orientation))})});
    };
    const auto answer = [this, &property](const QList<Behaviour>& get, const Behaviour& set) {
        mService.scriptProperty(QStringLiteral("Get"), cScreenPath, property, get);
        mService.scriptProperty(QStringLiteral("Set"), cScreenPath, property, {set});
    };
    const auto value = [](const char* text) {
        return Behaviour::reply({QStringLiteral("<%1>").arg(QString::fromUtf8(text))});
    };
    const auto notified = [](const char* text) {
        return Behaviour::reply().withSignal(
            ServiceSignal::propertiesChanged(cScreenPath, cScreenInterface, QString::fromUtf8(text)));
    };
    if (fault == QLatin1String("type")) {
        mService.setProperty(cScreenPath, cScreenInterface, property, QStringLiteral("'no'"));
        setAll("'fullScreen': <'no'>, ", "'orientation': <'0'>");
    } else if (fault == QLatin1String("missing from GetAll")) {
        setAll("", "'orientation': <'0'>");
    } else if (fault == QLatin1String("other GetAll")) {
        setAll("'fullScreen': <false>, ", "'orientation': <'90'>");
    } else if (fault == QLatin1String("introspection")) {
        mService.script(cScreenPath, QStringLiteral("org.freedesktop.DBus.Introspectable"),
                        QStringLiteral("Introspect"), {Behaviour::reply({QStringLiteral("'<node/>'")})});
    } else if (fault == QLatin1String("no introspection")) {
        mService.script(cScreenPath, QStringLiteral("org.freedesktop.DBus.Introspectable"),
                        QStringLiteral("Introspect"),
                        {Behaviour::error(QStringLiteral("org.example.Error.No"), QStringLiteral("not today"))});
    } else if (fault == QLatin1String("introspected type")) {
        mService.script(cScreenPath, QStringLiteral("org.freedesktop.DBus.Introspectable"),
                        QStringLiteral("Introspect"),
                        {Behaviour::reply(
                            {QStringLiteral("'<node><interface name=\"de.Telvaro.screen\"><property "
                                            "name=\"fullScreen\" type=\"s\" access=\"read\"/></interface></node>'")})});
    } else if (fault == QLatin1String("not taken")) {
        answer({value("false")}, notified("{'fullScreen': <true>}"));
    } else if (fault == QLatin1String("refused")) {
        answer({value("'0'")}, Behaviour::error(QStringLiteral("org.example.Error.No"), QStringLiteral("not today")));
    } else if (fault == QLatin1String("not notified")) {
        // Asked by the status, by its depth before and after the change.
        answer({value("false"), value("true")}, Behaviour::reply());
    } else if (fault == QLatin1String("notified otherwise")) {
        answer({value("'0'"), value("'90'")}, notified("{'orientation': <'270'>}"));
    } else {
        answer({value("false"), value("true")}, notified("{'fullScreen': <'true'>}"));
    }
    const Result result = telvaroctl("status --deep --json --timeout 5");
    QCOMPARE(result.errors, message("the service does not agree with its interfaces"));
    QCOMPARE(result.status, 1);
    const QJsonObject deep = toObject(result).value(QLatin1String("deep")).toObject();
    const QJsonArray problems = deep.value(QStringLiteral("de.Telvaro.screen.%1").arg(property)).toArray();
    QVERIFY2(problems.contains(problem), result.output.toUtf8().constData());
    QCOMPARE(deep.value(QLatin1String("de.Telvaro.taskswitcher.currentView")).toArray(), QJsonArray());
}

TELVARO_TEST_MAIN(TelvaroctlStatusTest)

#include "TelvaroctlStatusTest.moc"
