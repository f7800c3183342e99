// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "LiveFixture.h"
#include "LiveRequests.h"
#include "PrivateBus.h"
#include "TestMain.h"
#include "ValueText.h"

#include <QDBusPendingCallWatcher>
#include <QElapsedTimer>
#include <QPointer>
#include <QSignalSpy>

#include <memory>

namespace {

const Behaviour cRefusal = Behaviour::error(QStringLiteral("org.example.Error.Refused"), QStringLiteral("not now"));

bool isOfAnObject(const LiveRequest& request)
{
    return !request.property.isEmpty();
}

} // namespace

/// What becomes of a request that does not succeed, and of one whose object does not outlive it.
class RequestsTest : public LiveFixture
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void aRefusedRequestFailsOnce_data();
    void aRefusedRequestFailsOnce();
    void aRequestToAnAbsentServiceFailsOnce_data();
    void aRequestToAnAbsentServiceFailsOnce();
    void aRequestThatTakesTooLongFailsOnce_data();
    void aRequestThatTakesTooLongFailsOnce();
    void aServiceThatEndsFailsTheRequest_data();
    void aServiceThatEndsFailsTheRequest();
    void aReplyOutlivesItsObject_data();
    void aReplyOutlivesItsObject();
    void aDroppedReplyIsReported();
    void aRefusalWithoutACallIsReportedAfterTheRequestHasReturned();
    void aTimeLimitBelowNoneIsQtsOwn();
    void aSlotMayDeleteTheObject_data();
    void aSlotMayDeleteTheObject();

public Q_SLOTS:
    void deleteObject();

private:
    void addRowPerRequest();
    const LiveRequest& request() const;
    void failsOnceWith(const QDBusPendingReply<>& reply, const QString& name);

    std::unique_ptr<LiveObjects> mObjects;
    QStringList mFailures;
    QPointer<TelvaroTaskSwitcher> mDoomed;
};

void RequestsTest::init()
{
    mObjects.reset();
    LiveFixture::init();
    setViews(makeViews(3), QStringLiteral("a"));
    mObjects = std::make_unique<LiveObjects>();
    mFailures.clear();
    for (TelvaroLiveObject* const object : mObjects->all()) {
        connect(object, &TelvaroLiveObject::requestFailed, this, [this](const QDBusError& error) {
            mFailures.append(error.name());
        });
    }
    TRY_VERIFY(mObjects->areAll(Status::Ready));
}

void RequestsTest::addRowPerRequest()
{
    QTest::addColumn<int>("index");
    for (std::size_t index = 0; index < LiveRequest::all().size(); ++index) {
        QTest::newRow(qPrintable(LiveRequest::all().at(index).name)) << static_cast<int>(index);
    }
}

const LiveRequest& RequestsTest::request() const
{
    QFETCH(const int, index);
    return LiveRequest::all().at(static_cast<std::size_t>(index));
}

void RequestsTest::failsOnceWith(const QDBusPendingReply<>& reply, const QString& name)
{
    QVERIFY(mFailures.isEmpty());
    QVERIFY(waitFor(reply));
    QVERIFY(reply.isError());
    QCOMPARE(reply.error().name(), name);
    PrivateBus::deliver();
    QCOMPARE(mFailures, isOfAnObject(request()) ? QStringList{name} : QStringList());
}

void RequestsTest::aRefusedRequestFailsOnce_data()
{
    addRowPerRequest();
}

void RequestsTest::aRefusedRequestFailsOnce()
{
    request().script(mService, {cRefusal});
    failsOnceWith(request().send(*mObjects), QStringLiteral("org.example.Error.Refused"));
    QVERIFY(mObjects->areAll(Status::Ready));
}

void RequestsTest::aRequestToAnAbsentServiceFailsOnce_data()
{
    addRowPerRequest();
}

void RequestsTest::aRequestToAnAbsentServiceFailsOnce()
{
    // The object still has the views of the service that has just gone.
    mService.kill();
    failsOnceWith(request().send(*mObjects), QStringLiteral("org.freedesktop.DBus.Error.NameHasNoOwner"));
}

void RequestsTest::aRequestThatTakesTooLongFailsOnce_data()
{
    QTest::addColumn<int>("index");
    for (std::size_t index = 0; index < LiveRequest::all().size(); ++index) {
        if (isOfAnObject(LiveRequest::all().at(index))) {
            QTest::newRow(qPrintable(LiveRequest::all().at(index).name)) << static_cast<int>(index);
        }
    }
}

void RequestsTest::aRequestThatTakesTooLongFailsOnce()
{
    const int limit = 50;
    request().script(mService, {Behaviour::silence()});
    for (TelvaroLiveObject* const object : mObjects->all()) {
        QCOMPARE(object->getTimeout(), -1);
        object->setTimeout(limit);
        QCOMPARE(object->getTimeout(), limit);
    }
    QElapsedTimer timer;
    timer.start();
    failsOnceWith(request().send(*mObjects), QStringLiteral("org.freedesktop.DBus.Error.NoReply"));
    QVERIFY(timer.elapsed() >= limit / 2);
    QVERIFY(timer.elapsed() < ChildProcess::cDeadline);
}

void RequestsTest::aServiceThatEndsFailsTheRequest_data()
{
    addRowPerRequest();
}

void RequestsTest::aServiceThatEndsFailsTheRequest()
{
    request().script(mService, {Behaviour::exit()});
    failsOnceWith(request().send(*mObjects), QStringLiteral("org.freedesktop.DBus.Error.NoReply"));
    TRY_VERIFY(mObjects->areAll(Status::Absent));
}

void RequestsTest::aReplyOutlivesItsObject_data()
{
    addRowPerRequest();
}

void RequestsTest::aReplyOutlivesItsObject()
{
    request().script(mService, {Behaviour::reply(request().reply).after(50)});
    const QDBusPendingReply<> reply = request().send(*mObjects);
    const QDBusPendingCallWatcher watcher(reply);
    const QSignalSpy ends(&watcher, &QDBusPendingCallWatcher::finished);
    mObjects.reset();
    TRY_COMPARE(ends.size(), 1);
    QVERIFY(!reply.isError());
    QVERIFY(mFailures.isEmpty());
}

void RequestsTest::aDroppedReplyIsReported()
{
    scriptSetCurrentView({cRefusal});
    mObjects->taskSwitcher.switchTo(QStringLiteral("b"));
    QVERIFY(mObjects->taskSwitcher.setProperty("currentView", QStringLiteral("c")));
    TRY_COMPARE(mFailures.size(), 2);
    QCOMPARE(mObjects->taskSwitcher.getCurrentView(), QStringLiteral("a"));
}

void RequestsTest::aRefusalWithoutACallIsReportedAfterTheRequestHasReturned()
{
    const QDBusPendingReply<> reply = mObjects->taskSwitcher.switchTo(QString());
    QVERIFY(reply.isError());
    QVERIFY(mFailures.isEmpty());
    TRY_COMPARE(mFailures, QStringList{QStringLiteral("org.freedesktop.DBus.Error.InvalidArgs")});
}

void RequestsTest::aTimeLimitBelowNoneIsQtsOwn()
{
    mObjects->screen.setTimeout(-2);
    const QDBusPendingReply<> written = mObjects->screen.setFullScreen(true);
    const QDBusPendingReply<QString> captured = TelvaroRequests::captureScreenShot(QStringLiteral("/"), -1000);
    QVERIFY(waitFor(written) && waitFor(captured));
    QVERIFY(!written.isError());
    QVERIFY(!captured.isError());
}

void RequestsTest::aSlotMayDeleteTheObject_data()
{
    QTest::addColumn<QByteArray>("signal");
    for (const char* const signal :
         {SIGNAL(statusChanged()), SIGNAL(currentViewChanged()), SIGNAL(countChanged()), SIGNAL(currentRowChanged()),
          SIGNAL(rowsInserted(QModelIndex, int, int)), SIGNAL(dataChanged(QModelIndex, QModelIndex, QVector<int>)),
          SIGNAL(requestFailed(QDBusError))}) {
        QTest::newRow(signal + 1) << QByteArray(signal);
    }
}

void RequestsTest::aSlotMayDeleteTheObject()
{
    QFETCH(const QByteArray, signal);
    mDoomed = new TelvaroTaskSwitcher;
    TRY_COMPARE(mDoomed->getStatus(), Status::Ready);
    const bool isOfTheObject =
        mDoomed->metaObject()->indexOfSignal(QMetaObject::normalizedSignature(signal.constData() + 1)) >= 0;
    QVERIFY(connect(isOfTheObject ? static_cast<QObject*>(mDoomed) : mDoomed->getViews(), signal.constData(), this,
                    SLOT(deleteObject())));
    scriptSetCurrentView({cRefusal});
    mDoomed->next();
    mDoomed->next();
    emitPropertiesChanged(
        QStringLiteral("{'views': %1, 'currentView': <'d'>}").arg(ValueText::variant(ValueText::views(makeViews(4)))));
    emitPropertiesChanged(QStringLiteral("@a{sv} {}"), {QStringLiteral("views")});
    TRY_VERIFY(mDoomed.isNull());
    PrivateBus::deliver();
}

void RequestsTest::deleteObject()
{
    delete mDoomed;
}

TELVARO_TEST_MAIN(RequestsTest)
#include "RequestsTest.moc"
