// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "clients/BindingClient.h"
#include "clients/QtViews.h"

#include <TelvaroDBusDefinitions.h>
#include <TelvaroDeviceDistinction.h>
#include <TelvaroGlobalOverlayDBusConnector.h>
#include <TelvaroNotificationDBusConnector.h>
#include <TelvaroScreenDBusConnector.h>
#include <TelvaroScreenShotDBusConnector.h>
#include <TelvaroTaskSwitcherDBusConnector.h>

#include <QCoreApplication>
#include <QDBusArgument>
#include <QList>

namespace {

using Entry = TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry;

/// An application on the library.
class TelvaroClient : public ViewClient<Entry, QList<Entry>>
{
public:
    TelvaroClient()
    {
        QObject::connect(&mTaskSwitcher, &TelvaroTaskSwitcherDBusConnector::currentViewChanged,
                         [this](const QString& uuid) {
                             mText = uuid;
                             mIsChanged = true;
                         });
        mOperations = {
            {"views",
             [this] {
                 mViews = mTaskSwitcher.getViews();
             }},
            {"current",
             [this] {
                 mView = mTaskSwitcher.getCurrentView();
             }},
            {"set",
             [this] {
                 checkSucceeded(!mTaskSwitcher.setCurrentView(mView).isValid());
             }},
            {"step",
             [this] {
                 checkSucceeded(mTaskSwitcher.iterateViews(false));
             }},
            {"screen-read",
             [this] {
                 mText = mScreen.getOrientation();
             }},
            {"screen-write",
             [this] {
                 mScreen.setFullScreen(true);
             }},
            {"overlay",
             [this] {
                 mOverlay.showGlobalOverlay(QStringLiteral("Please wait"));
             }},
            {"notify",
             [this] {
                 mNotifications.notify(QStringLiteral("dialog-information"), QStringLiteral("Update"),
                                       QStringLiteral("A new version is ready."),
                                       {QStringLiteral("view-refresh"), QStringLiteral("Install")});
             }},
            {"screenshot",
             [this] {
                 mText = mScreenShots.captureScreenShot(QStringLiteral("/tmp")).value_or(QString());
             }},
            {"change",
             [this] {
                 mIsChanged = false;
                 awaitChange(mIsChanged);
             }},
            {"fetch",
             [this] {
                 mFetchedViews = fetchViewsProperty();
             }},
            {"decode",
             [this] {
                 QList<Entry> views;
                 mFetchedViews.value<QDBusArgument>() >> views;
                 mViews = views;
             }},
            {"construct",
             [] {
                 const TelvaroTaskSwitcherDBusConnector connector;
             }},
            {"names",
             [this] {
                 readNames();
             }},
        };
    }

private:
    void readNames()
    {
        using Names = TelvaroDBusDefinitions;
        for (const auto getName :
             {Names::getServiceName, Names::getTaskSwitcherPath, Names::getTaskSwitcherInterface,
              Names::getPropertyInterface, Names::getPropertyMehodGet, Names::getPropertyMehodSet,
              Names::getGlobalOverlayPath, Names::getGlobalOverlayInterface, Names::getGlobalOverlayMethodHide,
              Names::getGlobalOverlayMethodShow, Names::getScreenPath, Names::getScreenInterface,
              Names::getNotificationsPath, Names::getNotificationsInterface, Names::getNotificationsMethodNotify,
              Names::getScreenShotPath, Names::getScreenShotInterface, Names::getScreenShotMethod}) {
            mText = getName();
        }
        checkSucceeded(TelvaroDeviceDistinction::isCompositorDevice());
    }

    TelvaroTaskSwitcherDBusConnector mTaskSwitcher;
    TelvaroScreenDBusConnector mScreen;
    TelvaroGlobalOverlayDBusConnector mOverlay;
    TelvaroNotificationDBusConnector mNotifications;
    TelvaroScreenShotDBusConnector mScreenShots;
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
