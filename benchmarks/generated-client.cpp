// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ClientMain.h"
#include "GlobalOverlayProxy.h"
#include "NotificationsProxy.h"
#include "QtResult.h"
#include "ScreenProxy.h"
#include "ScreenShotProxy.h"
#include "SignalReceiver.h"
#include "TaskSwitcherProxy.h"
#include "ViewRecord.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMetaType>
#include <QDBusPendingReply>
#include <QDBusReply>
#include <QDBusVariant>
#include <QDir>

#include <algorithm>
#include <stdexcept>

Q_DECLARE_METATYPE(ViewRecordList)

namespace {

/// An application on the proxies that qdbusxml2cpp makes from the interfaces' descriptions.
class GeneratedClient : public Client
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
        mConnection.connect(QStringLiteral(TELVARO_SERVICE_NAME), QStringLiteral("/taskswitcher"),
                            QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("PropertiesChanged"),
                            &mReceiver, SLOT(onPropertiesChanged(QString, QVariantMap, QStringList)));
        QObject::connect(&mReceiver, &SignalReceiver::changed, [this](const QVariantMap& changed) {
            if (changed.contains(QStringLiteral("currentView"))) {
                mResult.text = currentView().uuid;
                mIsChanged = true;
            }
        });
    }

    void readViews() override
    {
        mResult.views = mTaskSwitcher.views();
    }

    void readCurrentView() override
    {
        mResult.view = currentView();
    }

    void setCurrentView() override
    {
        setCurrentView(mResult.view);
    }

    void stepToNextView() override
    {
        const ViewRecordList all = mTaskSwitcher.views();
        const ViewRecord current = currentView();
        ViewRecordList ofApplication;
        std::copy_if(all.begin(), all.end(), std::back_inserter(ofApplication), [&current](const ViewRecord& view) {
            return view.appId == current.appId;
        });
        check(!ofApplication.isEmpty());
        std::sort(ofApplication.begin(), ofApplication.end(), [](const ViewRecord& left, const ViewRecord& right) {
            return left.sortIndex < right.sortIndex;
        });
        auto next = std::find_if(ofApplication.begin(), ofApplication.end(), [&current](const ViewRecord& view) {
            return view.uuid == current.uuid;
        });
        if (next == ofApplication.end() || ++next == ofApplication.end()) {
            next = ofApplication.begin();
        }
        setCurrentView(*next);
    }

    void readOrientation() override
    {
        checkServiceIsThere();
        mResult.text = mScreen.orientation();
    }

    void writeFullScreen() override
    {
        checkServiceIsThere();
        mScreen.setFullScreen(true);
    }

    void showOverlay() override
    {
        checkServiceIsThere();
        mOverlay.Show(QStringLiteral("Please wait")).waitForFinished();
    }

    void notify() override
    {
        checkServiceIsThere();
        const QStringList actions = {QStringLiteral("view-refresh"), QStringLiteral("Install")};
        const QVariantMap hints = {{QStringLiteral("action-icons"), true}};
        mNotifications
            .Notify(QString(), 0, QStringLiteral("dialog-information"), QStringLiteral("Update"),
                    QStringLiteral("A new version is ready."), actions, hints, 0)
            .waitForFinished();
    }

    void captureScreenShot() override
    {
        checkServiceIsThere();
        const QString directory = QStringLiteral("/tmp");
        check(QDir(directory).exists());
        mResult.text = mScreenShots.ScreenShot(directory).value();
    }

    void awaitChange() override
    {
        mIsChanged = false;
        mConnection.send(
            QDBusMessage::createMethodCall(QStringLiteral(TELVARO_SERVICE_NAME), QStringLiteral("/benchmark"),
                                           QStringLiteral("de.Telvaro.benchmark"), QStringLiteral("NotifyChange")));
        while (!mIsChanged) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
    }

    void fetchViews() override
    {
        QDBusMessage request =
            QDBusMessage::createMethodCall(QStringLiteral(TELVARO_SERVICE_NAME), QStringLiteral("/taskswitcher"),
                                           QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
        request << QStringLiteral("de.Telvaro.taskswitcher") << QStringLiteral("views");
        const QDBusReply<QDBusVariant> reply = mConnection.call(request);
        mFetchedViews = reply.value().variant();
    }

    void decodeViews() override
    {
        mResult.views = qdbus_cast<ViewRecordList>(mFetchedViews);
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

    void checkServiceIsThere() const
    {
        check(mConnection.interface()->isServiceRegistered(QStringLiteral(TELVARO_SERVICE_NAME)));
    }

    ViewRecord currentView() const
    {
        const ViewRecordList all = mTaskSwitcher.views();
        checkServiceIsThere();
        const QString uuid = mTaskSwitcher.currentView();
        const auto current = std::find_if(all.begin(), all.end(), [&uuid](const ViewRecord& view) {
            return view.uuid == uuid;
        });
        return current != all.end() ? *current : ViewRecord();
    }

    void setCurrentView(const ViewRecord& view)
    {
        checkServiceIsThere();
        mTaskSwitcher.setCurrentView(view.uuid);
    }

    QDBusConnection mConnection;
    TaskSwitcherProxy mTaskSwitcher;
    ScreenProxy mScreen;
    GlobalOverlayProxy mOverlay;
    NotificationsProxy mNotifications;
    ScreenShotProxy mScreenShots;
    SignalReceiver mReceiver;
    QtResult<ViewRecord> mResult;
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
