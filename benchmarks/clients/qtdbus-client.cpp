// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "clients/BindingClient.h"
#include "clients/ObjectProperties.h"
#include "clients/QtViews.h"
#include "clients/ViewRecord.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusInterface>
#include <QDBusMetaType>
#include <QDBusReply>
#include <QDir>

namespace {

/// The task switcher, with what a handle on it needs.
class TaskSwitcher : public ObjectProperties
{
public:
    TaskSwitcher()
        : ObjectProperties(QStringLiteral("/taskswitcher"), QStringLiteral("de.Telvaro.taskswitcher"))
    {
        qDBusRegisterMetaType<ViewRecord>();
    }
};

/// An application that talks to QtDBus itself, in the way of Qt's own examples.
class QtDBusClient : public BindingClient<ViewRecord, ViewRecordList>
{
public:
    QtDBusClient()
        : mScreen(QStringLiteral("/screen"), QStringLiteral("de.Telvaro.screen"))
        , mOverlay(QStringLiteral(TELVARO_SERVICE_NAME), QStringLiteral("/globaloverlay"),
                   QStringLiteral("de.Telvaro.globaloverlay"), QDBusConnection::TELVARO_BUS())
        , mNotifications(QStringLiteral(TELVARO_SERVICE_NAME), QStringLiteral("/org/freedesktop/Notifications"),
                         QStringLiteral("org.freedesktop.Notifications"), QDBusConnection::TELVARO_BUS())
        , mScreenShots(QStringLiteral(TELVARO_SERVICE_NAME), QStringLiteral("/screenshot"),
                       QStringLiteral("de.Telvaro.screenshot"), QDBusConnection::TELVARO_BUS())
    {
        mOperations["construct"] = [] {
            const TaskSwitcher taskSwitcher;
        };
        QObject::connect(&mTaskSwitcher, &TaskSwitcher::changed, [this](const QVariantMap& values) {
            mIsChanged = mIsChanged || values.contains(QStringLiteral("currentView"));
        });
        // What a screen that is followed begins with.
        checkSucceeded(mScreen.hasOwner());
        mIsScreenSaverActive = mScreen.get(QStringLiteral("screenSaverActive")).toBool();
        QObject::connect(&mScreen, &ObjectProperties::changed, [this](const QVariantMap& values) {
            mIsScreenSaverActive = values.value(QStringLiteral("screenSaverActive"), mIsScreenSaverActive).toBool();
        });
    }

protected:
    bool hasOwner() override
    {
        return mTaskSwitcher.hasOwner();
    }

    ViewRecordList getViews() override
    {
        return qdbus_cast<ViewRecordList>(mTaskSwitcher.get(QStringLiteral("views")));
    }

    QString getCurrentView() override
    {
        return mTaskSwitcher.get(QStringLiteral("currentView")).toString();
    }

    void setCurrentView(const QString& uuid) override
    {
        checkSucceeded(mTaskSwitcher.set(QStringLiteral("currentView"), uuid));
    }

    QString getOrientation() override
    {
        return mScreen.get(QStringLiteral("orientation")).toString();
    }

    void setFullScreen(bool fullScreen) override
    {
        checkSucceeded(mScreen.set(QStringLiteral("fullScreen"), fullScreen));
    }

    void showOverlay() override
    {
        mOverlay.call(QStringLiteral("Show"), QStringLiteral("Please wait"));
    }

    void notify() override
    {
        const QStringList actions = {QStringLiteral("view-refresh"), QStringLiteral("Install")};
        const QVariantMap hints = {{QStringLiteral("action-icons"), true}};
        mNotifications.call(QStringLiteral("Notify"), QString(), 0U, QStringLiteral("dialog-information"),
                            QStringLiteral("Update"), QStringLiteral("A new version is ready."), actions, hints, 0);
    }

    QString captureScreenShot() override
    {
        const QString directory = QStringLiteral("/tmp");
        checkSucceeded(QDir(directory).exists());
        const QDBusReply<QString> reply = mScreenShots.call(QStringLiteral("ScreenShot"), directory);
        return reply.value();
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
    TaskSwitcher mTaskSwitcher;
    ObjectProperties mScreen;
    QDBusInterface mOverlay;
    QDBusInterface mNotifications;
    QDBusInterface mScreenShots;
    QVariant mFetchedViews;
    bool mIsScreenSaverActive = false;
    bool mIsChanged = false;
};

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    return runClient([] {
        return std::make_unique<QtDBusClient>();
    });
}
