// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ClientMain.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QStringList>
#include <QVariantMap>

#include <stdexcept>

namespace {

QDBusMessage prepareCall(const QString& path, const QString& interface, const QString& member,
                         const QVariantList& arguments)
{
    QDBusMessage call = QDBusMessage::createMethodCall(QStringLiteral(TELVARO_SERVICE_NAME), path, interface, member);
    call.setArguments(arguments);
    return call;
}

QDBusMessage prepareGet(const QString& path, const QString& interface, const QString& property)
{
    return prepareCall(path, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"),
                       {interface, property});
}

QDBusMessage prepareSet(const QString& path, const QString& interface, const QString& property, const QVariant& value)
{
    return prepareCall(path, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Set"),
                       {interface, property, QVariant::fromValue(QDBusVariant(value))});
}

QDBusMessage prepareOwnerQuery()
{
    QDBusMessage query =
        QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
                                       QStringLiteral("org.freedesktop.DBus"), QStringLiteral("NameHasOwner"));
    query.setArguments({QStringLiteral(TELVARO_SERVICE_NAME)});
    return query;
}

/// What no application on QtDBus can go below: it sends messages that were made before, and does not look at the
/// answers. Of use for nothing else.
class PreparedClient : public Client
{
public:
    void readViews() override
    {
        send(mReadViews);
    }

    void readCurrentView() override
    {
        // Asked for before the current view is set; what is set is prepared, too.
    }

    void setCurrentView() override
    {
        send(mOwnerQuery);
        send(mSetCurrentView);
    }

    void stepToNextView() override
    {
        refuse();
    }

    void readOrientation() override
    {
        send(mOwnerQuery);
        send(mReadOrientation);
    }

    void writeFullScreen() override
    {
        send(mOwnerQuery);
        send(mWriteFullScreen);
    }

    void showOverlay() override
    {
        send(mOwnerQuery);
        send(mShowOverlay);
    }

    void notify() override
    {
        send(mOwnerQuery);
        send(mNotify);
    }

    void captureScreenShot() override
    {
        send(mOwnerQuery);
        send(mCaptureScreenShot);
    }

    void awaitChange() override
    {
        refuse();
    }

    void fetchViews() override
    {
        refuse();
    }

    void decodeViews() override
    {
        refuse();
    }

    void addResult(Digest& /*digest*/) const override
    {
    }

private:
    [[noreturn]] static void refuse()
    {
        throw std::logic_error("needs what was read before, and this reads nothing");
    }

    void send(const QDBusMessage& call)
    {
        if (mConnection.call(call).type() != QDBusMessage::ReplyMessage) {
            throw std::runtime_error("the call has failed");
        }
    }

    const QString mTaskSwitcherPath = QStringLiteral("/taskswitcher");
    const QString mTaskSwitcherInterface = QStringLiteral("de.Telvaro.taskswitcher");
    const QString mScreenPath = QStringLiteral("/screen");
    const QString mScreenInterface = QStringLiteral("de.Telvaro.screen");

    const QDBusMessage mOwnerQuery = prepareOwnerQuery();
    const QDBusMessage mReadViews = prepareGet(mTaskSwitcherPath, mTaskSwitcherInterface, QStringLiteral("views"));
    const QDBusMessage mSetCurrentView =
        prepareSet(mTaskSwitcherPath, mTaskSwitcherInterface, QStringLiteral("currentView"),
                   // The one in the middle of ten.
                   QStringLiteral("{6b1f0a52-93c4-4e0d-8a77-000000000005}"));
    const QDBusMessage mReadOrientation = prepareGet(mScreenPath, mScreenInterface, QStringLiteral("orientation"));
    const QDBusMessage mWriteFullScreen = prepareSet(mScreenPath, mScreenInterface, QStringLiteral("fullScreen"), true);
    const QDBusMessage mShowOverlay =
        prepareCall(QStringLiteral("/globaloverlay"), QStringLiteral("de.Telvaro.globaloverlay"),
                    QStringLiteral("Show"), {QStringLiteral("Please wait")});
    const QDBusMessage mNotify = prepareCall(QStringLiteral("/org/freedesktop/Notifications"),
                                             QStringLiteral("org.freedesktop.Notifications"), QStringLiteral("Notify"),
                                             {QString(), 0U, QStringLiteral("dialog-information"),
                                              QStringLiteral("Update"), QStringLiteral("A new version is ready."),
                                              QStringList{QStringLiteral("view-refresh"), QStringLiteral("Install")},
                                              QVariantMap{{QStringLiteral("action-icons"), true}}, 0});
    const QDBusMessage mCaptureScreenShot =
        prepareCall(QStringLiteral("/screenshot"), QStringLiteral("de.Telvaro.screenshot"),
                    QStringLiteral("ScreenShot"), {QStringLiteral("/tmp")});

    QDBusConnection mConnection = QDBusConnection::TELVARO_BUS();
};

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    return runClient([] {
        return std::make_unique<PreparedClient>();
    });
}
