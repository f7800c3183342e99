// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "clients/Client.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QList>
#include <QStringList>
#include <QVariantMap>

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

std::function<void()> sendAll(const QList<QDBusMessage>& calls)
{
    return [calls, connection = QDBusConnection::TELVARO_BUS()] {
        for (const QDBusMessage& call : calls) {
            checkSucceeded(connection.call(call).type() == QDBusMessage::ReplyMessage);
        }
    };
}

/// The lower bound of every application on QtDBus: sends messages that were made before, and does not look at the
/// replies.
class PreparedClient : public Client
{
public:
    PreparedClient()
    {
        const QString taskSwitcherPath = QStringLiteral("/taskswitcher");
        const QString taskSwitcher = QStringLiteral("de.Telvaro.taskswitcher");
        const QString screenPath = QStringLiteral("/screen");
        const QString screen = QStringLiteral("de.Telvaro.screen");
        const QStringList actions = {QStringLiteral("view-refresh"), QStringLiteral("Install")};
        const QVariantMap hints = {{QStringLiteral("action-icons"), true}};
        // The one in the middle of ten.
        const QString uuid = QStringLiteral("{6b1f0a52-93c4-4e0d-8a77-000000000005}");
        const QDBusMessage ownerQuery = prepareOwnerQuery();
        mOperations = {
            // Prepares nothing here, since the view that is set is known.
            {"current", [] {}},
            {"views", sendAll({prepareGet(taskSwitcherPath, taskSwitcher, QStringLiteral("views"))})},
            {"set",
             sendAll({ownerQuery, prepareSet(taskSwitcherPath, taskSwitcher, QStringLiteral("currentView"), uuid)})},
            {"screen-read", sendAll({ownerQuery, prepareGet(screenPath, screen, QStringLiteral("orientation"))})},
            {"screen-write", sendAll({ownerQuery, prepareSet(screenPath, screen, QStringLiteral("fullScreen"), true)})},
            {"overlay",
             sendAll({ownerQuery,
                      prepareCall(QStringLiteral("/globaloverlay"), QStringLiteral("de.Telvaro.globaloverlay"),
                                  QStringLiteral("Show"), {QStringLiteral("Please wait")})})},
            {"notify",
             sendAll({ownerQuery,
                      prepareCall(QStringLiteral("/org/freedesktop/Notifications"),
                                  QStringLiteral("org.freedesktop.Notifications"), QStringLiteral("Notify"),
                                  {QString(), 0U, QStringLiteral("dialog-information"), QStringLiteral("Update"),
                                   QStringLiteral("A new version is ready."), actions, hints, 0})})},
            {"screenshot",
             sendAll({ownerQuery,
                      prepareCall(QStringLiteral("/screenshot"), QStringLiteral("de.Telvaro.screenshot"),
                                  QStringLiteral("ScreenShot"), {QStringLiteral("/tmp")})})},
        };
    }
};

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    return runClient([] {
        return std::make_unique<PreparedClient>();
    });
}
