// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "bus/CallGate.h"

#include "bus/BusInterfaces.h"

#include <QDBusAbstractAdaptor>
#include <QDBusContext>
#include <QMetaMethod>
#include <QScopedValueRollback>
#include <QTimer>

namespace {

BusCall describe(const QString& interface, const QDBusMessage& message)
{
    if (interface != QLatin1String("org.freedesktop.DBus.Properties")) {
        return {BusCall::Kind::Method, interface, message.member()};
    }
    const bool isWrite = message.member() == QLatin1String("Set");
    // GetAll has no second argument.
    return {isWrite ? BusCall::Kind::Write : BusCall::Kind::Read, message.arguments().value(0).toString(),
            message.arguments().value(1).toString()};
}

} // namespace

bool CallGate::admit(const QDBusAbstractAdaptor& adaptor, int methodIndex)
{
    const QMetaObject* const description = adaptor.metaObject();
    const QMetaMethod method = description->method(methodIndex);
    // Signals that the object relays through its adaptor pass here, too.
    if (mIsOwnCall || method.methodType() != QMetaMethod::Slot || method.access() != QMetaMethod::Public) {
        return true;
    }
    const auto* const context = static_cast<const QDBusContext*>(adaptor.parent()->qt_metacast("QDBusContext"));
    const BusCall call = describe(BusInterfaces::nameOf(description), context->message());
    Q_EMIT called(call);
    const std::optional<CallFault> fault = mFaults.take(call);
    if (!fault) {
        return true;
    }

    context->setDelayedReply(true);
    const QDBusConnection connection = context->connection();
    const QDBusMessage message = context->message();
    if (fault->isSilent) {
        return false;
    }
    if (fault->delayMilliseconds == 0) {
        answer(connection, message, *fault);
    } else {
        QTimer::singleShot(fault->delayMilliseconds, Qt::PreciseTimer, this, [this, connection, message, fault] {
            answer(connection, message, *fault);
        });
    }
    return false;
}

QDBusMessage CallGate::callOwnObject(const QDBusConnection& connection, const QString& path, const QString& interface,
                                     const QString& member, const QVariantList& arguments)
{
    // QtDBus delivers a call to its own unique name directly, without the bus.
    QDBusMessage call = QDBusMessage::createMethodCall(connection.baseService(), path, interface, member);
    call.setArguments(arguments);
    const QScopedValueRollback<bool> ownCall(mIsOwnCall, true);
    return connection.call(call);
}

void CallGate::answer(const QDBusConnection& connection, const QDBusMessage& message, const CallFault& fault)
{
    QDBusMessage reply;
    if (fault.errorName.isEmpty()) {
        const QDBusMessage result =
            callOwnObject(connection, message.path(), message.interface(), message.member(), message.arguments());
        reply = result.type() == QDBusMessage::ErrorMessage
            ? message.createErrorReply(result.errorName(), result.errorMessage())
            : message.createReply(result.arguments());
    } else {
        reply = message.createErrorReply(fault.errorName, fault.errorText);
    }
    if (message.isReplyRequired()) {
        connection.send(reply);
    }
}
