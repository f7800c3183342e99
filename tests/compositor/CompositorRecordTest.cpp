// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "CompositorBus.h"
#include "CompositorFixture.h"
#include "Recording.h"
#include "TestMain.h"

#include <QDBusPendingCall>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <algorithm>
#include <stdexcept>

namespace {

const QString cTelvaroctl = QStringLiteral(TELVAROCTL);
const QString cAt = QStringLiteral("at");
const QString cFault = QStringLiteral("fault");
const QString cDelay = QStringLiteral("delay");

/// Less than the delay that the test injects, and more than those of a busy machine.
constexpr double cDelaySeconds = 1.5;

QJsonObject service(const char* state)
{
    return {{QStringLiteral("service"), QString::fromLatin1(state)}};
}

/// A recording without its times.
struct Score
{
    QJsonArray steps;
    QList<double> times;
    /// The faults, without small delays and with all others the same.
    QJsonArray faults;
};

Score toScore(const QJsonArray& recording)
{
    Score score;
    for (const QJsonValue& value : recording) {
        QJsonObject step = value.toObject();
        QJsonObject fault = step.value(cFault).toObject();
        if (fault.isEmpty()) {
            score.times.append(step.take(cAt).toDouble());
            score.steps.append(step);
            continue;
        }
        const bool isDelayed = fault.take(cDelay).toDouble() >= cDelaySeconds;
        if (isDelayed) {
            fault.insert(cDelay, cDelaySeconds);
        }
        if (isDelayed || fault.contains(QStringLiteral("error")) || fault.contains(QStringLiteral("silent"))) {
            step.insert(cFault, fault);
            score.faults.append(step);
        }
    }
    return score;
}

/// Numbers the texts of an anonymous recording in the order of the steps: the recorder does so in the order in which it
/// receives them, and that varies.
QByteArray toText(const QJsonArray& steps)
{
    const QString json = QString::fromUtf8(QJsonDocument(steps).toJson());
    QString result;
    QStringList texts;
    int end = 0;
    static const QRegularExpression masked(QStringLiteral("\"text \\d+\""));
    for (QRegularExpressionMatchIterator matches = masked.globalMatch(json); matches.hasNext();) {
        const QRegularExpressionMatch match = matches.next();
        if (!texts.contains(match.captured())) {
            texts.append(match.captured());
        }
        result += json.midRef(end, match.capturedStart() - end)
            + QStringLiteral("\"text %1\"").arg(texts.indexOf(match.captured()) + 1);
        end = match.capturedEnd();
    }
    return (result + json.midRef(end)).toUtf8();
}

/// Sets all moments the same distance apart, and all calls before them, so that a busy machine does not make one of two
/// and does not change their order.
QJsonArray inSlowMotion(const QJsonArray& recording)
{
    constexpr double cDistance = 0.6;
    QJsonArray slow;
    double last = 0;
    int moment = 3;
    for (const QJsonValue& value : recording) {
        QJsonObject step = value.toObject();
        const double time = step.value(cAt).toDouble(last);
        if (time > last) {
            last = time;
            ++moment;
        }
        if (step.contains(cAt)) {
            step.insert(cAt, moment * cDistance);
        }
        slow.append(step);
    }
    return slow;
}

void hide()
{
    CompositorBus::callChecked(CompositorBus::cOverlayPath, CompositorBus::cOverlay, QStringLiteral("Hide"));
}

QDBusMessage show()
{
    return CompositorBus::call(CompositorBus::cOverlayPath, CompositorBus::cOverlay, QStringLiteral("Show"),
                               {QStringLiteral("overlay text")});
}

QDBusMessage setCurrentView(const QString& uuid)
{
    return CompositorBus::set(CompositorBus::cTaskSwitcherPath, CompositorBus::cTaskSwitcher,
                              QStringLiteral("currentView"), uuid);
}

void setOnScreen(const char* property, const QVariant& value)
{
    const QString error = CompositorBus::errorOf(
        CompositorBus::set(CompositorBus::cScreenPath, CompositorBus::cScreen, QString::fromLatin1(property), value));
    if (!error.isEmpty()) {
        throw std::runtime_error(error.toStdString());
    }
}

/// The calls of a program, of which some fail.
QStringList callAsProgram()
{
    const QDBusMessage screenShot = [] {
        QDBusMessage call =
            QDBusMessage::createMethodCall(QStringLiteral(TELVARO_SERVICE_NAME), CompositorBus::cScreenShotPath,
                                           CompositorBus::cScreenShot, QStringLiteral("ScreenShot"));
        call.setArguments({QStringLiteral("/")});
        return call;
    }();
    PrivateBus::connection().asyncCall(screenShot);
    return {CompositorBus::errorOf(show()), CompositorBus::errorOf(show()),
            CompositorBus::errorOf(setCurrentView(QStringLiteral("nobody"))), CompositorBus::errorOf(show())};
}

} // namespace

class CompositorRecordTest : public CompositorFixture
{
    Q_OBJECT

private Q_SLOTS:
    void aRecordingThatIsPlayedIsRecordedAgain_data();
    void aRecordingThatIsPlayedIsRecordedAgain();

private:
    /// Each test starts the compositor with a script.
    void startCompositor() override
    {
    }

    void play(const QByteArray& script);
    /// Lets a compositor with windows and a script do all that can be recorded.
    QJsonArray recordSession(const QStringList& options);

    QTemporaryDir mDirectory;
};

void CompositorRecordTest::play(const QByteArray& script)
{
    QFile file(mDirectory.filePath(QStringLiteral("script.json")));
    if (!file.open(QIODevice::WriteOnly) || file.write(script) != script.size()) {
        throw std::runtime_error("cannot write " + file.fileName().toStdString());
    }
    file.close();
    mCompositor = std::make_unique<CompositorProcess>();
    mCompositor->start({QStringLiteral("--script"), file.fileName()});
}

QJsonArray CompositorRecordTest::recordSession(const QStringList& options)
{
    play(R"([
        {"add-view": {"uuid": "song", "appId": "player", "pid": 4711, "title": "private song",
                      "processName": "private process", "attributes": {"volume": 11, "gain": 0.5, "muted": true}}},
        {"add-view": {"uuid": "mail", "appId": "mail", "pid": 4712, "title": "private mail"}},

        {"after": {"call": "de.Telvaro.globaloverlay.Hide", "times": 1},
         "change-view": {"uuid": "song", "title": "private other song", "record": {"info4": "private info"}}},
        {"after": {"call": "de.Telvaro.globaloverlay.Hide", "times": 2}, "order-views": ["mail", "song"]},
        {"after": {"call": "de.Telvaro.globaloverlay.Hide", "times": 3}, "current-view": ""},
        {"after": {"call": "de.Telvaro.globaloverlay.Hide", "times": 4},
         "set": {"de.Telvaro.screen.screenSaverActive": true}},
        {"after": {"call": "de.Telvaro.globaloverlay.Hide", "times": 5},
         "set": {"de.Telvaro.screen.screenSaverActive": false}},
        {"after": {"call": "de.Telvaro.globaloverlay.Hide", "times": 6}, "service": "gone"},
        {"after": {"call": "de.Telvaro.globaloverlay.Hide", "times": 6}, "at": 0.3, "remove-view": "mail"},
        {"after": {"call": "de.Telvaro.globaloverlay.Hide", "times": 6}, "at": 0.6, "service": "back"},

        {"after": {"call": "de.Telvaro.globaloverlay.Show", "times": 1},
         "fault": {"call": "de.Telvaro.globaloverlay.Show", "times": 1,
                   "error": "org.example.Error.Broken", "text": "private error"}},
        {"after": {"call": "de.Telvaro.globaloverlay.Show", "times": 2},
         "fault": {"call": "de.Telvaro.globaloverlay.Show", "times": 1, "delay": 2}},
        {"fault": {"call": "de.Telvaro.screenshot.ScreenShot", "silent": true}}
    ])");
    Recording recording(cTelvaroctl, options);
    const QByteArray currentView = R"("set":{"de.Telvaro.taskswitcher.currentView":")";
    callAsProgram();
    const auto client = testClient();
    client->send("open app private window");
    client->waitFor("activated 1");
    const QByteArray window = CompositorBus::viewWithTitle(QStringLiteral("private window")).uuid.toUtf8();
    recording.waitFor(currentView + window);
    client->send("title 1 private new title");
    recording.waitFor(R"("change-view")", 2);

    setCurrentView(QStringLiteral("song"));
    recording.waitFor(currentView + "song");
    hide();
    recording.waitFor(R"("info4")");
    hide();
    recording.waitFor(R"("order-views")");
    hide();
    recording.waitFor(R"("current-view")");
    setOnScreen("orientation", QStringLiteral("90"));
    setOnScreen("fullScreen", true);
    setOnScreen("screenSaverTimeoutSeconds", 17);
    recording.waitFor(R"("de.Telvaro.screen.screenSaverTimeoutSeconds":17)");
    hide();
    recording.waitFor(R"("de.Telvaro.screen.screenSaverActive":true)");
    hide();
    recording.waitFor(R"("de.Telvaro.screen.screenSaverActive":false)", 2);
    hide();
    recording.waitFor(R"("service":"back")");
    client->send("close 1");
    recording.waitFor("\"remove-view\":\"" + window);
    return recording.finish();
}

void CompositorRecordTest::aRecordingThatIsPlayedIsRecordedAgain_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::newRow("with its texts") << QStringList();
    QTest::newRow("anonymous") << QStringList(QStringLiteral("--anonymous"));
}

void CompositorRecordTest::aRecordingThatIsPlayedIsRecordedAgain()
{
    QFETCH(QStringList, options);
    const QJsonArray first = inSlowMotion(recordSession(options));
    QCOMPARE(mCompositor->end(), 0);
    const QByteArray script = QJsonDocument(first).toJson();
    QCOMPARE(script.contains("private"), options.isEmpty());
    QVERIFY(!script.contains("overlay text"));

    // The recording begins before the service, so that it misses nothing of it.
    Recording recording(cTelvaroctl, options);
    play(script);
    recording.waitFor(R"("service":"back")");
    const QStringList errors = callAsProgram();
    QCOMPARE(errors.at(0), QString());
    QVERIFY(errors.at(1).startsWith(QLatin1String("org.example.Error.Broken: ")));
    QVERIFY(errors.at(2).startsWith(QLatin1String("org.freedesktop.DBus.Error.InvalidArgs: ")));
    QCOMPARE(errors.at(3), QString());

    const Score expected = toScore(first);
    // The service is absent at first, and comes with the views and settings that the first recording begins with.
    const int initialSteps = static_cast<int>(std::count(expected.times.cbegin(), expected.times.cend(), 0.0));
    TRY_VERIFY(toScore(recording.steps()).steps.size() >= expected.steps.size() + 2);
    Score played = toScore(recording.finish());
    QCOMPARE(played.steps.takeAt(1).toObject(), service("gone"));
    played.times.removeAt(1);
    QCOMPARE(played.steps.takeAt(initialSteps).toObject(), service("back"));
    const double start = played.times.takeAt(initialSteps);

    QCOMPARE(toText(played.steps), toText(expected.steps));
    QCOMPARE(toText(played.faults), toText(expected.faults));
    QCOMPARE(expected.faults.size(), 4);
    for (int i = initialSteps; i < played.times.size(); ++i) {
        const double time = played.times.at(i) - start;
        QVERIFY2(qAbs(time - expected.times.at(i)) < 3, qPrintable(QStringLiteral("%1: %2").arg(i).arg(time)));
    }
}

TELVARO_TEST_MAIN(CompositorRecordTest)

#include "CompositorRecordTest.moc"
