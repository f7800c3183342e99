// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "clients/BindingClient.h"
#include "clients/ObjectProperties.h"
#include "clients/QtViews.h"
#include "clients/ViewRecord.h"

#include "GlobalOverlayProxy.h"
#include "NotificationsProxy.h"
#include "ScreenProxy.h"
#include "ScreenShotProxy.h"
#include "TaskSwitcherProxy.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMetaType>
#include <QDBusPendingReply>
#include <QDir>

Q_DECLARE_METATYPE(ViewRecordList)

namespace {

/// An application on the proxies that qdbusxml2cpp makes from the interfaces' descriptions.
class GeneratedClient : public BindingClient<ViewRecord, ViewRecordList>
{
public:
    GeneratedClient()
        : mConnection(QDBusConnection::TELVARO_BUS())
        , mTaskSwitcher(QStringLiteral(TELVARO_SERVICE_NAME), QStringLiteral("/taskswitcher"), mConnection)
        , mScreen(QStringLiteral(TELVARO_SERVICE_NAME), QStringLiteral("/screen"), mConnection)
        , mOverlay(QStringLiteral(TELVARO_SERVICE_NAME), QStringLiteral("/globaloverlay"), mConnection)
        , mNotifications(QStringLiteral(TELVARO_SERVICE_NAME), QStringLiteral("/org/freedesktop/Notifications"),
                         mConnection)
        , mScreenShots(QStringLiteral(TELVARO_SERVICE_NAME), QStringLiteral("/screenshot"), mConnection)
    {
        qDBusRegisterMetaType<ViewRecord>();
        qDBusRegisterMetaType<ViewRecordList>();
        mWatcher.watch(QStringLiteral("/taskswitcher"));
        QObject::connect(&mWatcher, &PropertyWatcher::changed, [this](const QVariantMap& values) {
            mIsChanged = mIsChanged || values.contains(QStringLiteral("currentView"));
        });
    }

protected:
    bool hasOwner() override
    {
        return mConnection.interface()->isServiceRegistered(QStringLiteral(TELVARO_SERVICE_NAME));
    }

    ViewRecordList getViews() override
    {
        return mTaskSwitcher.views();
    }

    QString getCurrentView() override
    {
        return mTaskSwitcher.currentView();
    }

    void setCurrentView(const QString& uuid) override
    {
        mTaskSwitcher.setCurrentView(uuid);
    }

    QString getOrientation() override
    {
        return mScreen.orientation();
    }

    void setFullScreen(bool fullScreen) override
    {
        mScreen.setFullScreen(fullScreen);
    }

    void showOverlay() override
    {
        mOverlay.Show(QStringLiteral("Please wait")).waitForFinished();
    }

    void notify() override
    {
        const QStringList actions = {QStringLiteral("view-refresh"), QStringLiteral("Install")};
        const QVariantMap hints = {{QStringLiteral("action-icons"), true}};
        mNotifications
            .Notify(QString(), 0, QStringLiteral("dialog-information"), QStringLiteral("Update"),
                    QStringLiteral("A new version is ready."), actions, hints, 0)
            .waitForFinished();
    }

    QString captureScreenShot() override
    {
        const QString directory = QStringLiteral("/tmp");
        checkSucceeded(QDir(directory).exists());
        return mScreenShots.ScreenShot(directory).value();
    }

    void awaitNotification() override
    {
        mIsChanged = false;
        awaitChange(mIsChanged);
    }

    void fetchViews() override
    {
        mFetchedViews = fetchViewsProperty();
    }

    ViewRecordList decodeFetchedViews() override
    {
        return qdbus_cast<ViewRecordList>(mFetchedViews);
    }

private:
    QDBusConnection mConnection;
    PropertyWatcher mWatcher;
    TaskSwitcherProxy mTaskSwitcher;
    ScreenProxy mScreen;
    GlobalOverlayProxy mOverlay;
    NotificationsProxy mNotifications;
    ScreenShotProxy mScreenShots;
    QVariant mFetchedViews;
    bool mIsChanged = false;
};

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    return runClient([] {
        return std::make_unique<GeneratedClient>();
    });
}
