// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ClientMain.h"
#include "HandwrittenScreen.h"
#include "HandwrittenTaskSwitcher.h"
#include "QtResult.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusInterface>
#include <QDBusReply>
#include <QDBusVariant>
#include <QDir>

#include <stdexcept>

namespace {

/// An application that talks to QtDBus itself, in the way of Qt's own examples.
class QtDBusClient : public Client
{
public:
    QtDBusClient()
        : mOverlay(QStringLiteral(TELVARO_SERVICE_NAME), QStringLiteral("/globaloverlay"),
                   QStringLiteral("de.Telvaro.globaloverlay"), QDBusConnection::TELVARO_BUS())
        , mNotifications(QStringLiteral(TELVARO_SERVICE_NAME), QStringLiteral("/org/freedesktop/Notifications"),
                         QStringLiteral("org.freedesktop.Notifications"), QDBusConnection::TELVARO_BUS())
        , mScreenShots(QStringLiteral(TELVARO_SERVICE_NAME), QStringLiteral("/screenshot"),
                       QStringLiteral("de.Telvaro.screenshot"), QDBusConnection::TELVARO_BUS())
    {
        QObject::connect(&mTaskSwitcher, &HandwrittenTaskSwitcher::currentViewChanged, [this](const QString& uuid) {
            mResult.text = uuid;
            mIsChanged = true;
        });
    }

    void readViews() override
    {
        mResult.views = mTaskSwitcher.views();
    }

    void readCurrentView() override
    {
        mResult.view = mTaskSwitcher.currentView();
    }

    void setCurrentView() override
    {
        check(mTaskSwitcher.setCurrentView(mResult.view));
    }

    void stepToNextView() override
    {
        check(mTaskSwitcher.stepToNextView());
    }

    void readOrientation() override
    {
        mResult.text = mScreen.orientation();
    }

    void writeFullScreen() override
    {
        mScreen.setFullScreen(true);
    }

    void showOverlay() override
    {
        checkServiceIsThere(mOverlay);
        mOverlay.call(QStringLiteral("Show"), QStringLiteral("Please wait"));
    }

    void notify() override
    {
        checkServiceIsThere(mNotifications);
        const QStringList actions = {QStringLiteral("view-refresh"), QStringLiteral("Install")};
        const QVariantMap hints = {{QStringLiteral("action-icons"), true}};
        mNotifications.call(QStringLiteral("Notify"), QString(), 0U, QStringLiteral("dialog-information"),
                            QStringLiteral("Update"), QStringLiteral("A new version is ready."), actions, hints, 0);
    }

    void captureScreenShot() override
    {
        checkServiceIsThere(mScreenShots);
        const QString directory = QStringLiteral("/tmp");
        check(QDir(directory).exists());
        const QDBusReply<QString> reply = mScreenShots.call(QStringLiteral("ScreenShot"), directory);
        mResult.text = reply.value();
    }

    void awaitChange() override
    {
        mIsChanged = false;
        QDBusConnection::TELVARO_BUS().send(
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
        const QDBusReply<QDBusVariant> reply = QDBusConnection::TELVARO_BUS().call(request);
        mFetchedViews = reply.value().variant();
    }

    void decodeViews() override
    {
        mResult.views = qdbus_cast<ViewRecordList>(mFetchedViews);
    }

    void construct() override
    {
        const HandwrittenTaskSwitcher another;
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

    static void checkServiceIsThere(const QDBusInterface& proxy)
    {
        check(proxy.connection().interface()->isServiceRegistered(proxy.service()));
    }

    HandwrittenTaskSwitcher mTaskSwitcher;
    HandwrittenScreen mScreen;
    QDBusInterface mOverlay;
    QDBusInterface mNotifications;
    QDBusInterface mScreenShots;
    QtResult<ViewRecord> mResult;
    QVariant mFetchedViews;
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
