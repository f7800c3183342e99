// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Fault.h"
#include "LiveFixture.h"
#include "LiveRequests.h"
#include "PrivateBus.h"
#include "TestMain.h"
#include "ValueText.h"

#include <QDBusError>
#include <QElapsedTimer>

#include <memory>
#include <vector>

namespace {

/// A property that a live object reads, and how it looks in that object.
struct LiveRead
{
    const char* object;
    const char* property;
    QString text;
    QVariant value;
    QVariant (*get)(const LiveObjects& objects);

    QString path() const;
    QString interface() const;
};

QString LiveRead::path() const
{
    return QStringLiteral("/%1").arg(QLatin1String(object));
}

QString LiveRead::interface() const
{
    return QStringLiteral("de.Telvaro.%1").arg(QLatin1String(object));
}

/// Whether the request fails for the reply's arguments. One that expects none ignores them.
bool isUnusable(Fault fault, const LiveRequest& request)
{
    const bool isWrong = fault == Fault::EmptyReply
        || fault == Fault::OtherContent
        // A number is what Notify returns.
        || (fault == Fault::PlainReply && request.member != QLatin1String("Notify"));
    return isWrong && !request.reply.isEmpty();
}

} // namespace

/// Every read of the live objects with every fault, and every request with the replies that are no refusal.
class LiveFaultMatrixTest : public LiveFixture
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void everyReadMayFailInEveryWay_data();
    void everyReadMayFailInEveryWay();
    void everyRequestMayBeAnsweredInEveryWay_data();
    void everyRequestMayBeAnsweredInEveryWay();

private:
    static const std::vector<LiveRead>& reads();
    void setValues();
};

const std::vector<LiveRead>& LiveFaultMatrixTest::reads()
{
    static const std::vector<LiveRead> cReads = {
        {"taskswitcher", "views", ValueText::views(makeViews(3)), 3,
         [](const LiveObjects& objects) {
             return QVariant(objects.taskSwitcher.getViews()->rowCount());
         }},
        {"taskswitcher", "currentView", QStringLiteral("'a'"), QStringLiteral("a"),
         [](const LiveObjects& objects) {
             return QVariant(objects.taskSwitcher.getCurrentView());
         }},
        {"screen", "screenSaverActive", QStringLiteral("true"), true,
         [](const LiveObjects& objects) {
             return QVariant(objects.screen.isScreenSaverActive());
         }},
        {"screen", "screenSaverEnabled", QStringLiteral("true"), true,
         [](const LiveObjects& objects) {
             return QVariant(objects.screen.isScreenSaverEnabled());
         }},
        {"screen", "screenSaverTimeoutSeconds", QStringLiteral("60"), 60,
         [](const LiveObjects& objects) {
             return QVariant(objects.screen.getScreenSaverTimeout());
         }},
        {"screen", "orientation", QStringLiteral("'90'"), QStringLiteral("90"),
         [](const LiveObjects& objects) {
             return QVariant(objects.screen.getOrientation());
         }},
        {"screen", "fullScreen", QStringLiteral("true"), true,
         [](const LiveObjects& objects) {
             return QVariant(objects.screen.isFullScreen());
         }},
    };
    return cReads;
}

void LiveFaultMatrixTest::init()
{
    LiveFixture::init();
    setValues();
}

void LiveFaultMatrixTest::setValues()
{
    for (const LiveRead& read : reads()) {
        mService.setProperty(read.path(), read.interface(), QLatin1String(read.property), read.text);
    }
}

void LiveFaultMatrixTest::everyReadMayFailInEveryWay_data()
{
    QTest::addColumn<int>("readIndex");
    QTest::addColumn<Fault>("fault");
    for (std::size_t index = 0; index < reads().size(); ++index) {
        for (const auto& [fault, description] : Faults::all()) {
            QTest::addRow("%s is %s", reads().at(index).property, description) << static_cast<int>(index) << fault;
        }
    }
}

void LiveFaultMatrixTest::everyReadMayFailInEveryWay()
{
    QFETCH(const int, readIndex);
    QFETCH(const Fault, fault);
    const LiveRead& read = reads().at(static_cast<std::size_t>(readIndex));
    const bool isOfTheScreen = read.path() == QLatin1String("/screen");
    const QVariant none(read.value.type(), nullptr);
    const Status expected = fault == Fault::Exit                     ? Status::Absent
        : fault == Fault::ExtraArgument || fault == Fault::LateReply ? Status::Ready
                                                                     : Status::Failed;
    mService.scriptProperty(QStringLiteral("Get"), read.path(), QLatin1String(read.property),
                            {Faults::behaviour(fault, {ValueText::variant(read.text)}), Behaviour::plain()});

    QElapsedTimer timer;
    timer.start();
    LiveObjects objects;
    const TelvaroLiveObject& object =
        isOfTheScreen ? static_cast<const TelvaroLiveObject&>(objects.screen) : objects.taskSwitcher;
    const TelvaroLiveObject& other =
        isOfTheScreen ? static_cast<const TelvaroLiveObject&>(objects.taskSwitcher) : objects.screen;
    StatusRecorder recorder(object);
    QCOMPARE(object.getStatus(), Status::Loading);
    TRY_COMPARE(object.getStatus(), expected);
    TRY_COMPARE(other.getStatus(), fault == Fault::Exit ? Status::Absent : Status::Ready);
    QVERIFY(fault != Fault::LateReply || timer.elapsed() >= Faults::cDelay);
    PrivateBus::deliver();
    QCOMPARE(recorder.getStatuses(), QList<Status>{expected});
    QCOMPARE(read.get(objects), expected == Status::Ready ? read.value : none);
    QCOMPARE(object.getError().name(),
             expected != Status::Failed       ? QString()
                 : fault == Fault::ErrorReply ? QStringLiteral("org.example.Error.Refused")
                                              : QDBusError::errorString(QDBusError::InvalidSignature));

    // The fault leaves no state.
    recorder.clear();
    if (fault == Fault::Exit) {
        mService.start();
        setValues();
        mService.own();
    } else {
        mService.emitSignal(ServiceSignal::propertiesChanged(read.path(), read.interface(), QStringLiteral("@a{sv} {}"),
                                                             {QLatin1String(read.property)}));
    }
    PrivateBus::deliver();
    TRY_VERIFY(objects.areAll(Status::Ready));
    PrivateBus::deliver();
    QCOMPARE(recorder.getStatuses(), QList<Status>({Status::Loading, Status::Ready}));
    QCOMPARE(read.get(objects), read.value);
}

void LiveFaultMatrixTest::everyRequestMayBeAnsweredInEveryWay_data()
{
    QTest::addColumn<int>("requestIndex");
    QTest::addColumn<Fault>("fault");
    for (std::size_t index = 0; index < LiveRequest::all().size(); ++index) {
        for (const auto& [fault, description] : Faults::all()) {
            // How a refusal and the end of the service fail a request, and signal it, is a matter of RequestsTest.
            if (fault != Fault::ErrorReply && fault != Fault::Exit) {
                QTest::addRow("%s is %s", qPrintable(LiveRequest::all().at(index).name), description)
                    << static_cast<int>(index) << fault;
            }
        }
    }
}

void LiveFaultMatrixTest::everyRequestMayBeAnsweredInEveryWay()
{
    QFETCH(const int, requestIndex);
    QFETCH(const Fault, fault);
    const LiveRequest& request = LiveRequest::all().at(static_cast<std::size_t>(requestIndex));
    LiveObjects objects;
    int failures = 0;
    for (TelvaroLiveObject* const object : objects.all()) {
        connect(object, &TelvaroLiveObject::requestFailed, this, [&failures] {
            ++failures;
        });
    }
    TRY_VERIFY(objects.areAll(Status::Ready));
    request.script(mService, {Faults::behaviour(fault, request.reply), Behaviour::reply(request.reply)});

    QElapsedTimer timer;
    timer.start();
    // Not as a QDBusPendingReply<>, which would accept any arguments.
    const QDBusPendingCall call = request.send(objects);
    TRY_VERIFY(call.isFinished());
    QVERIFY(fault != Fault::LateReply || timer.elapsed() >= Faults::cDelay);
    QCOMPARE(call.error().type(), isUnusable(fault, request) ? QDBusError::InvalidSignature : QDBusError::NoError);

    const QDBusPendingCall next = request.send(objects);
    TRY_VERIFY(next.isFinished());
    QVERIFY(!next.isError());
    PrivateBus::deliver();
    QCOMPARE(failures, 0);
    QVERIFY(objects.areAll(Status::Ready));
}

TELVARO_TEST_MAIN(LiveFaultMatrixTest)
#include "LiveFaultMatrixTest.moc"
