// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Desk.h"
#include "PrivateBus.h"
#include "TestMain.h"

#include <TelvaroDBusDefinitions.h>
#include <TelvaroLiveObject.h>
#include <TelvaroRequests.h>
#include <TelvaroScreenDBusConnector.h>

#include <QDBusMessage>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <QTest>

#include <functional>
#include <memory>

using Definitions = TelvaroDBusDefinitions;

/// Runs each example in the compositor, operates it with pointer and keyboard, and reads the result from the service.
class ExamplesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void taskSwitcherBarSwitchesToTheViewThatIsClicked();
    void taskSwitcherBarFollowsTheViews();
    void screenSettingsWritesWhatTheUserSets();
    void screenSettingsShowsWhatTheServiceHas();
    void notesStepsThroughItsViewsAndAround();
    void notesShowsWhatIsWritten();
    void notifyAndCaptureSendsANotification();
    void notifyAndCaptureStoresAPicture();
    void notifyAndCaptureGoesOnAfterAFailure();
    void viewLoggerWritesEveryChange();
    void viewLoggerKeepsTheScreenSaverAway();
    void viewLoggerFollowsARestartOfTheService();
    void viewLoggerStartsBeforeTheService();
    void viewLoggerCatchesUpWithAServiceThatHung();
    void qmlTaskSwitcherSwitchesToTheViewThatIsClicked();
    void qmlTaskSwitcherSwitchesByKeyboard();
    void anExampleOutlivesItsService_data();
    void anExampleOutlivesItsService();

private:
    using Program = std::unique_ptr<ChildProcess>;

    Program startExample(const QString& name, const QStringList& arguments = {});
    /// As above, and returns once its view is current.
    Program startView(const QString& name, const QStringList& arguments = {});
    /// Presses the keys again until they have an effect: a view is current a moment before its program has the keyboard
    /// focus, and earlier keys are lost.
    bool pressUntil(const QString& keys, const std::function<bool()>& condition);
    bool isScreenSaverEnabled();
    /// Does in the example what goes to the service, again until it has an effect.
    bool use(const QString& example);
    /// Starts the compositor again, with a script of these steps.
    void playScript(const QByteArray& steps);

    std::unique_ptr<Desk> mDesk;
    std::unique_ptr<TelvaroScreenDBusConnector> mScreen;
    QTemporaryDir mDirectory;
};

namespace {

const QString cTaskSwitcherBar = QStringLiteral("task-switcher-bar");
const QString cScreenSettings = QStringLiteral("screen-settings");
const QString cNotes = QStringLiteral("notes");
// Its application id.
const QString cNotesId = QStringLiteral("org.example.notes");
const QString cNotifyAndCapture = QStringLiteral("notify-and-capture");
const QString cViewLogger = QStringLiteral("view-logger");
const QString cQmlTaskSwitcher = QStringLiteral("qml-task-switcher");

// Only the rows and tiles of the task switchers are this long in this colour.
const QColor cEntryColor = Qt::white;
constexpr int cEntryLength = 150;
// And only the button of a note in this one.
const QColor cButtonColor(0xe9, 0xdf, 0xc2);
constexpr int cButtonLength = 80;

// How long an effect may take before the user tries again.
constexpr int cPatience = 3000;

// The time in front of each line is left out.
QString readEvent(ChildProcess& logger)
{
    return QString::fromUtf8(logger.readOutputLine()).section(QLatin1Char(' '), 1);
}

} // namespace

void ExamplesTest::init()
{
    mDesk = std::make_unique<Desk>();
    mScreen = std::make_unique<TelvaroScreenDBusConnector>();
}

void ExamplesTest::cleanup()
{
    mScreen.reset();
    mDesk.reset();
}

ExamplesTest::Program ExamplesTest::startExample(const QString& name, const QStringList& arguments)
{
    return mDesk->start(QStringLiteral(TELVARO_EXAMPLES_DIRECTORY "/%1/%1").arg(name), arguments);
}

ExamplesTest::Program ExamplesTest::startView(const QString& name, const QStringList& arguments)
{
    Program program = startExample(name, arguments);
    mDesk->waitForCurrent(name);
    return program;
}

bool ExamplesTest::pressUntil(const QString& keys, const std::function<bool()>& condition)
{
    return QTest::qWaitFor(
        [this, &keys, &condition] {
            mDesk->press(keys);
            return QTest::qWaitFor(condition, cPatience);
        },
        ChildProcess::cDeadline);
}

bool ExamplesTest::isScreenSaverEnabled()
{
    return mScreen->getProperty(TelvaroScreenDBusConnector::cScreenSaverEnabledProperty).toBool();
}

void ExamplesTest::taskSwitcherBarSwitchesToTheViewThatIsClicked()
{
    const Program settings = startView(cScreenSettings);
    const Program bar = startView(cTaskSwitcherBar);
    mDesk->click(mDesk->waitForRow(cEntryColor, cEntryLength));
    mDesk->waitForCurrent(cScreenSettings);
}

void ExamplesTest::taskSwitcherBarFollowsTheViews()
{
    const Program bar = startView(cTaskSwitcherBar);
    Program settings = startView(cScreenSettings);
    settings->end();
    mDesk->waitForCurrent(cTaskSwitcherBar);
    QTRY_VERIFY_WITH_TIMEOUT(!mDesk->findRow(cEntryColor, cEntryLength), ChildProcess::cDeadline);
    settings = startView(cScreenSettings);
    TelvaroTaskSwitcherDBusConnector taskSwitcher;
    QVERIFY(taskSwitcher.switchToView(cTaskSwitcherBar, 0));
    mDesk->click(mDesk->waitForRow(cEntryColor, cEntryLength));
    QCOMPARE(mDesk->waitForCurrent(cScreenSettings).pid, static_cast<quint32>(settings->processId()));
}

void ExamplesTest::screenSettingsWritesWhatTheUserSets()
{
    const Program settings = startView(cScreenSettings);
    QVERIFY(pressUntil(QStringLiteral("alt+s"), [this] {
        return !isScreenSaverEnabled();
    }));
    mDesk->press(QStringLiteral("alt+s"));
    QTRY_VERIFY_WITH_TIMEOUT(isScreenSaverEnabled(), ChildProcess::cDeadline);

    mDesk->press(QStringLiteral("alt+a"));
    mDesk->press(QStringLiteral("ctrl+a"));
    mDesk->press(QStringLiteral("4"));
    mDesk->press(QStringLiteral("5"));
    mDesk->press(QStringLiteral("Return"));
    QTRY_COMPARE_WITH_TIMEOUT(mScreen->getProperty(TelvaroScreenDBusConnector::cScreenSaverTimoutProperty).toInt(), 45,
                              ChildProcess::cDeadline);

    mDesk->press(QStringLiteral("alt+f"));
    QTRY_VERIFY_WITH_TIMEOUT(mScreen->getFullScreen(), ChildProcess::cDeadline);

    mDesk->press(QStringLiteral("alt+o"));
    mDesk->press(QStringLiteral("Down"));
    QTRY_COMPARE_WITH_TIMEOUT(mScreen->getOrientation(), TelvaroScreenDBusConnector::getOrientationPortrait(),
                              ChildProcess::cDeadline);
}

void ExamplesTest::screenSettingsShowsWhatTheServiceHas()
{
    mScreen->disableScreenSaver();
    mScreen->setFullScreen(true);
    const Program settings = startView(cScreenSettings);
    QVERIFY(pressUntil(QStringLiteral("alt+f"), [this] {
        return !mScreen->getFullScreen();
    }));
    mDesk->press(QStringLiteral("alt+s"));
    QTRY_VERIFY_WITH_TIMEOUT(isScreenSaverEnabled(), ChildProcess::cDeadline);
}

void ExamplesTest::notesStepsThroughItsViewsAndAround()
{
    const QStringList titles{QStringLiteral("Shopping list"), QStringLiteral("Recipes"), QStringLiteral("Birthdays")};
    const Program notes = startExample(cNotes, titles);
    const auto currentTitle = [this] {
        return mDesk->waitForCurrent(cNotesId).info1;
    };
    QTRY_COMPARE_WITH_TIMEOUT(currentTitle(), titles.last(), ChildProcess::cDeadline);

    // The background of a note, in the colour of paper.
    const QColor paper(0xfb, 0xf6, 0xe6);
    const QRect heading(0, 40, 512, 80);
    QList<QImage> headings;
    for (const QString& title : titles) {
        mDesk->waitForRow(paper, 900);
        const QImage before = mDesk->picture().copy(heading);
        mDesk->click(mDesk->waitForRow(cButtonColor, cButtonLength));
        QTRY_COMPARE_WITH_TIMEOUT(currentTitle(), title, ChildProcess::cDeadline);
        QTRY_VERIFY_WITH_TIMEOUT(mDesk->picture().copy(heading) != before, ChildProcess::cDeadline);
        mDesk->waitForRow(paper, 900);
        headings.append(mDesk->picture().copy(heading));
        QCOMPARE(headings.count(headings.last()), 1);
    }
}

void ExamplesTest::notesShowsWhatIsWritten()
{
    const Program notes = startExample(cNotes, {QStringLiteral("Recipes")});
    mDesk->waitForCurrent(cNotesId);
    mDesk->waitForRow(QColor(0xfb, 0xf6, 0xe6), 900);
    // From the first dark pixel of the text to the last one, in pixels.
    const auto inkWidth = [this] {
        const QImage text = mDesk->picture().copy(0, 110, 1024, 490);
        int first = text.width();
        int last = first;
        for (int y = 0; y < text.height(); ++y) {
            for (int x = 0; x < text.width(); ++x) {
                if (text.pixelColor(x, y).lightness() < 90) {
                    first = qMin(first, x);
                    last = last == text.width() ? x : qMax(last, x);
                }
            }
        }
        return last - first;
    };
    // A letter, wider than a cursor, replaces the placeholder.
    constexpr int cInvitationWidth = 100;
    constexpr int cCursorWidth = 2;
    QVERIFY(inkWidth() > cInvitationWidth);
    mDesk->click({512, 300});
    QVERIFY(pressUntil(QStringLiteral("m"), [&inkWidth] {
        const int width = inkWidth();
        return width > cCursorWidth && width < cInvitationWidth;
    }));
}

void ExamplesTest::notifyAndCaptureSendsANotification()
{
    QDBusMessage close =
        QDBusMessage::createMethodCall(Definitions::getServiceName(), Definitions::getNotificationsPath(),
                                       Definitions::getNotificationsInterface(), QStringLiteral("CloseNotification"));
    close.setArguments({1U});
    const QDBusConnection bus = PrivateBus::connection();
    QCOMPARE(bus.call(close).type(), QDBusMessage::ErrorMessage);

    const Program example = startView(cNotifyAndCapture);
    // The first notification has the id 1; closing a missing one fails.
    QVERIFY(pressUntil(QStringLiteral("alt+n"), [&bus, &close] {
        return bus.call(close).type() == QDBusMessage::ReplyMessage;
    }));
}

void ExamplesTest::notifyAndCaptureStoresAPicture()
{
    const QTemporaryDir pictures;
    const Program example = startView(cNotifyAndCapture, {pictures.path()});
    QVERIFY(pressUntil(QStringLiteral("alt+s"), [&pictures] {
        return !QDir(pictures.path()).isEmpty();
    }));
    const QDir directory(pictures.path());
    const QString picture = directory.filePath(directory.entryList(QDir::Files).first());
    // The file exists before it is complete.
    QTRY_COMPARE_WITH_TIMEOUT(QImage(picture).size(), QSize(1024, 600), ChildProcess::cDeadline);
}

void ExamplesTest::notifyAndCaptureGoesOnAfterAFailure()
{
    const QTemporaryDir pictures;
    const QString directory = pictures.filePath(QStringLiteral("later"));
    const Program example = startView(cNotifyAndCapture, {directory});
    const QRect message(0, 540, 1024, 60);
    const QImage before = mDesk->picture().copy(message);
    QVERIFY(pressUntil(QStringLiteral("alt+s"), [this, &message, &before] {
        return mDesk->picture().copy(message) != before;
    }));

    QVERIFY(QDir().mkdir(directory));
    QVERIFY(pressUntil(QStringLiteral("alt+s"), [&directory] {
        return !QDir(directory).isEmpty();
    }));
}

void ExamplesTest::viewLoggerWritesEveryChange()
{
    const Program logger = startExample(cViewLogger);
    Program settings = startExample(cScreenSettings);
    const QString settingsView =
        QStringLiteral("screen-settings/0 (process %1), Screen settings").arg(settings->processId());
    QCOMPARE(readEvent(*logger), QStringLiteral("appeared ") + settingsView);
    QCOMPARE(readEvent(*logger), QStringLiteral("current ") + settingsView);

    const Program bar = startExample(cTaskSwitcherBar);
    const QString barView = QStringLiteral("task-switcher-bar/0 (process %1), Views").arg(bar->processId());
    QCOMPARE(readEvent(*logger), QStringLiteral("appeared ") + barView);
    QCOMPARE(readEvent(*logger), QStringLiteral("current ") + barView);

    settings->end();
    QCOMPARE(readEvent(*logger), QStringLiteral("left ") + settingsView);
}

void ExamplesTest::viewLoggerKeepsTheScreenSaverAway()
{
    QVERIFY(isScreenSaverEnabled());
    const Program logger = startExample(cViewLogger, {QStringLiteral("--keep-awake"), cScreenSettings});
    const Program settings = startView(cScreenSettings);
    QTRY_VERIFY_WITH_TIMEOUT(!isScreenSaverEnabled(), ChildProcess::cDeadline);
    Program bar = startView(cTaskSwitcherBar);
    QTRY_VERIFY_WITH_TIMEOUT(isScreenSaverEnabled(), ChildProcess::cDeadline);
    bar->end();
    mDesk->waitForCurrent(cScreenSettings);
    QTRY_VERIFY_WITH_TIMEOUT(!isScreenSaverEnabled(), ChildProcess::cDeadline);

    logger->terminate();
    QVERIFY(logger->waitForFinished(ChildProcess::cDeadline));
    QCOMPARE(logger->exitStatus(), QProcess::NormalExit);
    QCOMPARE(logger->exitCode(), 0);
    QVERIFY(isScreenSaverEnabled());
}

void ExamplesTest::viewLoggerFollowsARestartOfTheService()
{
    const Program logger = startExample(cViewLogger);
    const Program settings = startView(cScreenSettings);
    const QString view = QStringLiteral("screen-settings/0 (process %1), Screen settings").arg(settings->processId());
    QCOMPARE(readEvent(*logger), QStringLiteral("appeared ") + view);
    QCOMPARE(readEvent(*logger), QStringLiteral("current ") + view);

    mScreen.reset();
    mDesk.reset();
    QCOMPARE(readEvent(*logger), QStringLiteral("left ") + view);

    mDesk = std::make_unique<Desk>();
    const Program bar = startView(cTaskSwitcherBar);
    QVERIFY(readEvent(*logger).startsWith(QStringLiteral("appeared task-switcher-bar/0")));
}

void ExamplesTest::viewLoggerStartsBeforeTheService()
{
    playScript(R"({"service": "gone"}, {"after": {"view": "screen-settings"}, "service": "back"})");
    const Program logger = startExample(cViewLogger);
    const Program settings = startExample(cScreenSettings);
    QVERIFY(readEvent(*logger).startsWith(QStringLiteral("appeared org.example.other/0")));
    QVERIFY(readEvent(*logger).startsWith(QStringLiteral("appeared screen-settings/0")));
    QVERIFY(readEvent(*logger).startsWith(QStringLiteral("current screen-settings/0")));
}

void ExamplesTest::viewLoggerCatchesUpWithAServiceThatHung()
{
    // The read for the first notification gets no reply.
    playScript(R"({"after": {"call": "de.Telvaro.globaloverlay.Hide"},
                   "fault": {"get": "de.Telvaro.taskswitcher.views", "silent": true, "times": 1}},
                  {"after": {"call": "de.Telvaro.globaloverlay.Hide"},
                   "add-view": {"uuid": "late", "appId": "org.example.late", "pid": 4712}})");
    const Program logger = startExample(cViewLogger);
    QVERIFY(readEvent(*logger).startsWith(QStringLiteral("appeared org.example.other/0")));
    QVERIFY(readEvent(*logger).startsWith(QStringLiteral("current org.example.other/0")));

    QElapsedTimer timer;
    timer.start();
    TelvaroRequests::hideGlobalOverlay().waitForFinished();
    QVERIFY(logger->waitForOutputLine(2 * ChildProcess::cDeadline));
    // The limit of a call is Qt's, of 25 seconds.
    QVERIFY2(timer.elapsed() > 20000, qPrintable(QString::number(timer.elapsed())));
    QString event;
    while (!event.startsWith(QStringLiteral("current org.example.late/0"))) {
        event = readEvent(*logger);
    }
}

void ExamplesTest::qmlTaskSwitcherSwitchesToTheViewThatIsClicked()
{
    const Program settings = startView(cScreenSettings);
    const Program switcher = startView(cQmlTaskSwitcher);
    mDesk->click(mDesk->waitForRow(cEntryColor, cEntryLength));
    mDesk->waitForCurrent(cScreenSettings);
}

void ExamplesTest::qmlTaskSwitcherSwitchesByKeyboard()
{
    const Program settings = startView(cScreenSettings);
    const Program bar = startView(cTaskSwitcherBar);
    const Program switcher = startView(cQmlTaskSwitcher);
    // The border of the tile that has the focus, and of the current view's, which is the last one.
    const auto firstMarkedColumn = [this] {
        const QColor borderColor(0x3d, 0x7a, 0xb5);
        constexpr int cTileDistance = 232;
        return mDesk->waitForRow(borderColor, cEntryLength).x() / cTileDistance;
    };
    QTRY_COMPARE_WITH_TIMEOUT(firstMarkedColumn(), 0, ChildProcess::cDeadline);
    mDesk->press(QStringLiteral("Right"));
    QTRY_COMPARE_WITH_TIMEOUT(firstMarkedColumn(), 1, ChildProcess::cDeadline);
    mDesk->press(QStringLiteral("Return"));
    mDesk->waitForCurrent(cTaskSwitcherBar);
}

void ExamplesTest::playScript(const QByteArray& steps)
{
    cleanup();
    QFile file(mDirectory.filePath(QStringLiteral("script.json")));
    const QByteArray script =
        R"([{"add-view": {"uuid": "other", "appId": "org.example.other", "pid": 4711}}, )" + steps + ']';
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(script) == script.size());
    file.close();
    mDesk = std::make_unique<Desk>(QStringList{QStringLiteral("--script"), file.fileName()});
    mScreen = std::make_unique<TelvaroScreenDBusConnector>();
}

bool ExamplesTest::use(const QString& example)
{
    if (example == cNotifyAndCapture) {
        const QRect message(0, 540, 1024, 60);
        const QImage before = mDesk->picture().copy(message);
        const QDir directory(mDirectory.path());
        const QStringList pictures{QStringLiteral("*.png")};
        const int count = directory.entryList(pictures).size();
        return pressUntil(QStringLiteral("alt+n"),
                          [this, &message, &before] {
                              return mDesk->picture().copy(message) != before;
                          })
            && pressUntil(QStringLiteral("alt+s"), [&directory, &pictures, count] {
                   return directory.entryList(pictures).size() > count;
               });
    }
    if (example == cScreenSettings) {
        return pressUntil(QStringLiteral("alt+f"), [this] {
            return mScreen->getFullScreen();
        });
    }
    TelvaroTaskSwitcherDBusConnector taskSwitcher;
    const QString before = taskSwitcher.getCurrentView().uuid;
    const bool isNotes = example == cNotes;
    return QTest::qWaitFor(
        [&] {
            const std::optional<QPoint> target =
                isNotes ? mDesk->findRow(cButtonColor, cButtonLength) : mDesk->findRow(cEntryColor, cEntryLength);
            if (target) {
                mDesk->click(*target);
            } else {
                // An entry that has been chosen has another colour.
                mDesk->press(QStringLiteral("Return"));
            }
            return QTest::qWaitFor(
                [&taskSwitcher, &before] {
                    return taskSwitcher.getCurrentView().uuid != before;
                },
                cPatience);
        },
        ChildProcess::cDeadline);
}

void ExamplesTest::anExampleOutlivesItsService_data()
{
    QTest::addColumn<QString>("example");
    QTest::addColumn<QByteArray>("script");
    // Of each, "%1" is the application id.
    const QByteArray absent = R"({"service": "gone"}, {"after": {"view": "%1"}, "service": "back"})";
    const QByteArray restarted = R"({"after": {"call": "de.Telvaro.globaloverlay.Hide"}, "service": "gone"},
                                    {"after": {"call": "de.Telvaro.globaloverlay.Hide"}, "at": 1, "service": "back"})";
    const QByteArray hung = R"({"fault": {"set": "de.Telvaro.taskswitcher.currentView", "silent": true, "times": 1}},
                               {"fault": {"set": "de.Telvaro.screen.fullScreen", "silent": true, "times": 1}},
                               {"fault": {"call": "org.freedesktop.Notifications.Notify", "silent": true, "times": 1}})";
    for (const QString& example : {cTaskSwitcherBar, cScreenSettings, cNotes, cNotifyAndCapture, cQmlTaskSwitcher}) {
        const QByteArray name = example.toUtf8();
        const auto addRow = [&](const char* state, QByteArray steps) {
            steps.replace("%1", example == cNotes ? cNotesId.toUtf8() : name);
            QTest::addRow("%s, %s", name.constData(), state) << example << steps;
        };
        addRow("absent at the start", absent);
        addRow("restarted", restarted);
        addRow("hung", hung);
    }
}

void ExamplesTest::anExampleOutlivesItsService()
{
    QFETCH(QString, example);
    QFETCH(QByteArray, script);
    playScript(script);
    const TelvaroLiveObject service;
    const auto waitFor = [&service](TelvaroLiveObject::Status status) {
        return QTest::qWaitFor(
            [&service, status] {
                return service.getStatus() == status;
            },
            ChildProcess::cDeadline);
    };

    QStringList arguments;
    if (example == cNotes) {
        arguments = QStringList{QStringLiteral("Recipes"), QStringLiteral("Birthdays")};
    } else if (example == cNotifyAndCapture) {
        arguments = QStringList{mDirectory.path()};
    }
    const Program program = startExample(example, arguments);
    QVERIFY(waitFor(TelvaroLiveObject::Ready));
    mDesk->waitForCurrent(example == cNotes ? cNotesId : example);
    if (script.contains("Hide")) {
        TelvaroRequests::hideGlobalOverlay();
        QVERIFY(waitFor(TelvaroLiveObject::Absent));
        QVERIFY(waitFor(TelvaroLiveObject::Ready));
    }
    // A program that waits for an answer that never comes stands still for 25 seconds.
    QElapsedTimer timer;
    timer.start();
    QVERIFY(use(example));
    QVERIFY2(timer.elapsed() < 20000, qPrintable(QString::number(timer.elapsed())));
}

TELVARO_TEST_MAIN(ExamplesTest)

#include "ExamplesTest.moc"
