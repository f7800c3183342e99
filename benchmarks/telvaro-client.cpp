// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ClientMain.h"
#include "QtResult.h"

#include <TelvaroDBusDefinitions.h>
#include <TelvaroDeviceDistinction.h>
#include <TelvaroGlobalOverlayDBusConnector.h>
#include <TelvaroNotificationDBusConnector.h>
#include <TelvaroScreenDBusConnector.h>
#include <TelvaroScreenShotDBusConnector.h>
#include <TelvaroTaskSwitcherDBusConnector.h>

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusReply>
#include <QDBusVariant>

#include <stdexcept>

namespace {

using Entry = TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry;

/// An application on the library.
class TelvaroClient : public Client
{
public:
    TelvaroClient()
    {
        QObject::connect(&mTaskSwitcher, &TelvaroTaskSwitcherDBusConnector::currentViewChanged,
                         [this](const QString& uuid) {
                             mResult.text = uuid;
                             mIsChanged = true;
                         });
    }

    void readViews() override
    {
        mResult.views = mTaskSwitcher.getViews();
    }

    void readCurrentView() override
    {
        mResult.view = mTaskSwitcher.getCurrentView();
    }

    void setCurrentView() override
    {
        check(!mTaskSwitcher.setCurrentView(mResult.view).isValid());
    }

    void stepToNextView() override
    {
        check(mTaskSwitcher.iterateViews(false));
    }

    void readOrientation() override
    {
        mResult.text = mScreen.getOrientation();
    }

    void writeFullScreen() override
    {
        mScreen.setFullScreen(true);
    }

    void showOverlay() override
    {
        mOverlay.showGlobalOverlay(QStringLiteral("Please wait"));
    }

    void notify() override
    {
        mNotifications.notify(QStringLiteral("dialog-information"), QStringLiteral("Update"),
                              QStringLiteral("A new version is ready."),
                              {QStringLiteral("view-refresh"), QStringLiteral("Install")});
    }

    void captureScreenShot() override
    {
        mResult.text = mScreenShots.captureScreenShot(QStringLiteral("/tmp")).value_or(QString());
    }

    void awaitChange() override
    {
        QDBusMessage request =
            QDBusMessage::createMethodCall(TelvaroDBusDefinitions::getServiceName(), QStringLiteral("/benchmark"),
                                           QStringLiteral("de.Telvaro.benchmark"), QStringLiteral("NotifyChange"));
        mIsChanged = false;
        QDBusConnection::TELVARO_BUS().send(request);
        while (!mIsChanged) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
    }

    void fetchViews() override
    {
        const QDBusMessage request = [] {
            QDBusMessage call = QDBusMessage::createMethodCall(
                TelvaroDBusDefinitions::getServiceName(), TelvaroDBusDefinitions::getTaskSwitcherPath(),
                TelvaroDBusDefinitions::getPropertyInterface(), TelvaroDBusDefinitions::getPropertyMehodGet());
            call << TelvaroDBusDefinitions::getTaskSwitcherInterface()
                 << TelvaroTaskSwitcherDBusConnector::cViewsProperty;
            return call;
        }();
        const QDBusReply<QDBusVariant> reply = QDBusConnection::TELVARO_BUS().call(request);
        mFetchedViews = reply.value().variant();
    }

    void decodeViews() override
    {
        QList<Entry> views;
        mFetchedViews.value<QDBusArgument>() >> views;
        mResult.views = views;
    }

    void construct() override
    {
        const TelvaroTaskSwitcherDBusConnector another;
    }

    void askNames() override
    {
        using Names = TelvaroDBusDefinitions;
        for (const auto getName :
             {Names::getServiceName, Names::getTaskSwitcherPath, Names::getTaskSwitcherInterface,
              Names::getPropertyInterface, Names::getPropertyMehodGet, Names::getPropertyMehodSet,
              Names::getGlobalOverlayPath, Names::getGlobalOverlayInterface, Names::getGlobalOverlayMethodHide,
              Names::getGlobalOverlayMethodShow, Names::getScreenPath, Names::getScreenInterface,
              Names::getNotificationsPath, Names::getNotificationsInterface, Names::getNotificationsMethodNotify,
              Names::getScreenShotPath, Names::getScreenShotInterface, Names::getScreenShotMethod}) {
            mResult.text = getName();
        }
        check(TelvaroDeviceDistinction::isCompositorDevice());
    }

    void addResult(Digest& digest) const override
    {
        mResult.add(digest);
    }

private:
    static void check(bool succeeded)
    {
        if (!succeeded) {
            throw std::runtime_error("the operation has failed");
        }
    }

    TelvaroTaskSwitcherDBusConnector mTaskSwitcher;
    TelvaroScreenDBusConnector mScreen;
    TelvaroGlobalOverlayDBusConnector mOverlay;
    TelvaroNotificationDBusConnector mNotifications;
    TelvaroScreenShotDBusConnector mScreenShots;
    QtResult<Entry> mResult;
    QVariant mFetchedViews;
    bool mIsChanged = false;
};

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    return runClient([] {
        return std::make_unique<TelvaroClient>();
    });
}
