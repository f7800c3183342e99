// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Command.h"
#include "Console.h"
#include "Result.h"
#include "Service.h"
#include "TimeLimit.h"

#include <TelvaroDBusDefinitions.h>
#include <TelvaroLiveObject.h>
#include <TelvaroRequests.h>

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingReply>
#include <QString>

#include <limits>
#include <memory>

namespace {

using Names = TelvaroDBusDefinitions;

const QString cNotify = QStringLiteral("notify");
const QString cIcon = QStringLiteral("icon");
const QString cAction = QStringLiteral("action");
const QString cUrgency = QStringLiteral("urgency");
const QString cExpire = QStringLiteral("expire");
const QString cReplace = QStringLiteral("replace");
const QString cHint = QStringLiteral("hint");
const QString cPrintId = QStringLiteral("print-id");
const QString cWait = QStringLiteral("wait");
const QString cClose = QStringLiteral("close");
const QStringList cUrgencies = {QStringLiteral("low"), QStringLiteral("normal"), QStringLiteral("critical")};

/// Waits for the end of a notification. Subscribes when it is constructed.
class NotificationWatch : public QObject
{
    Q_OBJECT

public:
    NotificationWatch()
    {
        subscribe(QStringLiteral("NotificationClosed"), QStringLiteral("uu"), SLOT(onClosed(uint, uint)));
        subscribe(QStringLiteral("ActionInvoked"), QStringLiteral("us"), SLOT(onInvoked(uint, QString)));
        connect(&mService, &TelvaroLiveObject::statusChanged, this, [this] {
            if (mService.getStatus() == TelvaroLiveObject::Absent) {
                printError(Service::notOnTheBus());
                QCoreApplication::exit(Failed);
            }
        });
    }

    /// Prints the action if one is chosen. Returns whether one has been, or whether there were none to choose.
    ExitStatus run(uint id, bool hasActions)
    {
        mId = id;
        mHasActions = hasActions;
        return static_cast<ExitStatus>(QCoreApplication::exec());
    }

private Q_SLOTS:
    void onInvoked(uint id, const QString& action)
    {
        if (id == mId) {
            printLine(printable(action));
            QCoreApplication::exit(Done);
        }
    }

    void onClosed(uint id, uint reason)
    {
        if (id != mId) {
            return;
        }
        if (mHasActions) {
            const QStringList reasons = {QStringLiteral("it has expired"), QStringLiteral("it was dismissed"),
                                         QStringLiteral("it was closed by a call")};
            printError(QStringLiteral("no action was chosen: %1")
                           .arg(reasons.value(static_cast<int>(reason) - 1, QStringLiteral("it was closed"))));
        }
        QCoreApplication::exit(mHasActions ? Failed : Done);
    }

private:
    void subscribe(const QString& signal, const QString& signature, const char* slot)
    {
        Service::bus().connect(Names::getServiceName(), Names::getNotificationsPath(),
                               Names::getNotificationsInterface(), signal, {}, signature, this, slot);
    }

    TelvaroLiveObject mService;
    uint mId = 0;
    bool mHasActions = false;
};

/// Adds the hint of the form TYPE:NAME:VALUE.
MaybeError addHint(const QString& text, QVariantMap& hints)
{
    const QString type = text.section(QLatin1Char(':'), 0, 0);
    const QString name = text.section(QLatin1Char(':'), 1, 1);
    const QString value = text.section(QLatin1Char(':'), 2);
    if (text.count(QLatin1Char(':')) < 2 || name.isEmpty()) {
        return Error{QStringLiteral("'%1' is not of the form TYPE:NAME:VALUE").arg(text)};
    }
    bool isValid = true;
    QVariant hint;
    if (type == QLatin1String("string")) {
        hint = value;
    } else if (type == QLatin1String("boolean")) {
        hint = value == QLatin1String("true");
        isValid = hint.toBool() || value == QLatin1String("false");
    } else if (type == QLatin1String("int")) {
        hint = value.toInt(&isValid);
    } else if (type == QLatin1String("double")) {
        hint = value.toDouble(&isValid);
    } else if (type == QLatin1String("byte")) {
        const ushort number = value.toUShort(&isValid);
        isValid = isValid && number <= std::numeric_limits<uchar>::max();
        hint = QVariant::fromValue(static_cast<uchar>(number));
    } else {
        return Error{
            QStringLiteral("the type '%1' of a hint is not 'boolean', 'byte', 'double', 'int' or 'string'").arg(type)};
    }
    if (!isValid) {
        return Error{QStringLiteral("'%1' is no %2").arg(value, type)};
    }
    hints.insert(name, hint);
    return {};
}

ExitStatus closeNotification(uint id)
{
    if (!Service::connect()) {
        return Failed;
    }
    QDBusMessage message =
        QDBusMessage::createMethodCall(Names::getServiceName(), Names::getNotificationsPath(),
                                       Names::getNotificationsInterface(), QStringLiteral("CloseNotification"));
    message.setAutoStartService(false);
    message << id;
    QDBusPendingCall call = Service::bus().asyncCall(message, TimeLimit::beyond());
    call.waitForFinished();
    // The error without a text that the Desktop Notifications Specification asks for.
    if (call.isError() && call.error().message().isEmpty()) {
        printError(QStringLiteral("there is no notification %1").arg(id));
        return Failed;
    }
    return Service::waitFor(call) ? Done : Failed;
}

ExitStatus notify(const QCommandLineParser& parser, const QStringList& arguments)
{
    if (parser.isSet(cClose)) {
        if (!arguments.isEmpty()) {
            return usageError(cNotify, QStringLiteral("unexpected argument '%1'").arg(arguments.constFirst()));
        }
        for (const QString& name : {cIcon, cAction, cUrgency, cExpire, cReplace, cHint, cPrintId, cWait}) {
            if (parser.isSet(name)) {
                return usageError(cNotify, QStringLiteral("--close and --%1 exclude each other").arg(name));
            }
        }
        const auto id = toNumber(cNotify, parser.value(cClose), 1, std::numeric_limits<uint>::max());
        return id ? closeNotification(static_cast<uint>(*id)) : Usage;
    }
    if (arguments.isEmpty()) {
        return usageError(cNotify, QStringLiteral("SUMMARY is missing"));
    }
    QStringList actions;
    const QStringList actionValues = parser.values(cAction);
    for (const QString& value : actionValues) {
        const int separator = value.indexOf(QLatin1Char('='));
        if (separator < 1) {
            return usageError(cNotify, QStringLiteral("'%1' is not of the form KEY=LABEL").arg(value));
        }
        actions << value.left(separator) << value.mid(separator + 1);
    }
    QVariantMap hints = TelvaroRequests::getDefaultNotificationHints();
    if (parser.isSet(cUrgency)) {
        hints.insert(QStringLiteral("urgency"),
                     QVariant::fromValue(static_cast<uchar>(cUrgencies.indexOf(parser.value(cUrgency)))));
    }
    const QStringList hintValues = parser.values(cHint);
    for (const QString& value : hintValues) {
        if (const MaybeError error = addHint(value, hints)) {
            return usageError(cNotify, error->text);
        }
    }
    const auto expire = toNumber(cNotify, parser.value(cExpire), -1, std::numeric_limits<int>::max());
    const auto replaced = toNumber(cNotify, parser.value(cReplace), 0, std::numeric_limits<uint>::max());
    if (!expire || !replaced) {
        return Usage;
    }

    if (!Service::connect()) {
        return Failed;
    }
    // Before the request: the notification may end at once.
    const auto watch = parser.isSet(cWait) ? std::make_unique<NotificationWatch>() : nullptr;
    const QDBusPendingReply<uint> reply =
        TelvaroRequests::notify(parser.value(cIcon), arguments.at(0), arguments.value(1), actions,
                                static_cast<uint>(*replaced), static_cast<int>(*expire), hints);
    if (!Service::waitFor(reply)) {
        return Failed;
    }
    if (parser.isSet(cPrintId)) {
        printLine(QString::number(reply.value()));
    }
    if (!watch) {
        return Done;
    }
    TimeLimit::lift();
    if (requestedTimeout(parser)) {
        TimeLimit::expect(QStringLiteral("the notification has not been closed in time"));
    }
    return watch->run(reply.value(), !actions.isEmpty());
}

QList<QCommandLineOption> notifyOptions()
{
    return {
        {cIcon, QStringLiteral("Name or path of an icon."), QStringLiteral("ICON")},
        {cAction,
         QStringLiteral("A button: its key, read as the name of an icon, and its label. May "
                        "be given more than once."),
         QStringLiteral("KEY=LABEL...")},
        {cUrgency, QStringLiteral("The urgency of the notification."), cUrgencies.join(QLatin1Char('|'))},
        {cExpire,
         QStringLiteral("Closes it after this time; 0, the default, is never, and -1 leaves it to "
                        "the service."),
         QStringLiteral("MILLISECONDS"), QStringLiteral("0")},
        {cReplace, QStringLiteral("Replaces the notification with this id."), QStringLiteral("ID"),
         QStringLiteral("0")},
        {cHint,
         QStringLiteral("A hint; its type is boolean, byte, double, int or string. May be "
                        "given more than once."),
         QStringLiteral("TYPE:NAME:VALUE...")},
        {cPrintId, QStringLiteral("Prints the id of the notification.")},
        {cWait, QStringLiteral("Waits until it is closed, and prints the key of the action if one is chosen.")},
        {cClose, QStringLiteral("Closes the notification with this id instead."), QStringLiteral("ID")},
    };
}

} // namespace

QList<Command> notificationCommands()
{
    return {
        {"notify",
         "Posts a notification, or closes one.",
         "SUMMARY [BODY] | --close ID",
         "With --wait and actions, exits with 0 if an action is chosen, and with 1 if the notification is closed "
         "without one.",
         notifyOptions,
         notify,
         {QStringLiteral("SUMMARY"), QStringLiteral("BODY")}},
    };
}

#include "NotificationCommands.moc"
