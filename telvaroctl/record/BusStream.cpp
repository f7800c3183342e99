// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "BusStream.h"

#include "BusMessage.h"

#include <QDBusConnection>
#include <QVector>

#include <dbus/dbus.h>

namespace {

const DBusBusType cBus =
    &QDBusConnection::TELVARO_BUS == &QDBusConnection::systemBus ? DBUS_BUS_SYSTEM : DBUS_BUS_SESSION;
constexpr int cBusDeadlineMilliseconds = 5000;

class BusError
{
public:
    BusError()
    {
        dbus_error_init(&mError);
    }
    ~BusError()
    {
        dbus_error_free(&mError);
    }
    BusError(const BusError&) = delete;
    BusError& operator=(const BusError&) = delete;

    DBusError* get()
    {
        return &mError;
    }
    MaybeError toMaybeError() const
    {
        return dbus_error_is_set(&mError) == 0 ? MaybeError() : Error{QString::fromUtf8(mError.message)};
    }

private:
    DBusError mError;
};

struct Unreference
{
    void operator()(DBusMessage* message) const
    {
        dbus_message_unref(message);
    }
};
using OwnedMessage = std::unique_ptr<DBusMessage, Unreference>;

OwnedMessage createCall(const QString& service, const QString& path, const QString& interface, const QString& member)
{
    return OwnedMessage(dbus_message_new_method_call(service.toUtf8().constData(), path.toUtf8().constData(),
                                                     interface.toUtf8().constData(), member.toUtf8().constData()));
}

OwnedMessage createBusCall(const char* member)
{
    return OwnedMessage(dbus_message_new_method_call(DBUS_SERVICE_DBUS, DBUS_PATH_DBUS, DBUS_INTERFACE_DBUS, member));
}

void appendText(DBusMessageIter& iterator, const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    const char* const pointer = bytes.constData();
    dbus_message_iter_append_basic(&iterator, DBUS_TYPE_STRING, &pointer);
}

int descriptorOf(DBusConnection* connection)
{
    int descriptor = -1;
    dbus_connection_get_unix_fd(connection, &descriptor);
    return descriptor;
}

} // namespace

Result<std::unique_ptr<BusStream>> BusStream::open()
{
    BusError error;
    DBusConnection* const connection = dbus_bus_get_private(cBus, error.get());
    if (connection == nullptr) {
        return Error{QStringLiteral("cannot connect to the bus: %1").arg(error.toMaybeError()->text)};
    }
    dbus_connection_set_exit_on_disconnect(connection, FALSE);
    return std::unique_ptr<BusStream>(new BusStream(connection));
}

BusStream::BusStream(DBusConnection* connection)
    : mConnection(connection)
    , mNotifier(descriptorOf(connection), QSocketNotifier::Read)
{
    connect(&mNotifier, &QSocketNotifier::activated, this, &BusStream::read);
}

BusStream::~BusStream()
{
    mNotifier.setEnabled(false);
    dbus_connection_close(mConnection);
    dbus_connection_unref(mConnection);
}

QString BusStream::name() const
{
    return QString::fromUtf8(dbus_bus_get_unique_name(mConnection));
}

MaybeError BusStream::becomeMonitor(const QStringList& rules)
{
    const OwnedMessage call(
        dbus_message_new_method_call(DBUS_SERVICE_DBUS, DBUS_PATH_DBUS, DBUS_INTERFACE_MONITORING, "BecomeMonitor"));
    DBusMessageIter arguments;
    DBusMessageIter list;
    dbus_message_iter_init_append(call.get(), &arguments);
    dbus_message_iter_open_container(&arguments, DBUS_TYPE_ARRAY, DBUS_TYPE_STRING_AS_STRING, &list);
    for (const QString& rule : rules) {
        appendText(list, rule);
    }
    dbus_message_iter_close_container(&arguments, &list);
    const dbus_uint32_t flags = 0;
    dbus_message_iter_append_basic(&arguments, DBUS_TYPE_UINT32, &flags);

    BusError error;
    const OwnedMessage reply(
        dbus_connection_send_with_reply_and_block(mConnection, call.get(), cBusDeadlineMilliseconds, error.get()));
    // What has arrived with the reply does not wake the notifier.
    QMetaObject::invokeMethod(this, &BusStream::read, Qt::QueuedConnection);
    return error.toMaybeError();
}

MaybeError BusStream::subscribe(const QStringList& rules)
{
    for (const QString& rule : rules) {
        BusError error;
        dbus_bus_add_match(mConnection, rule.toUtf8().constData(), error.get());
        if (MaybeError failure = error.toMaybeError()) {
            return failure;
        }
    }
    QMetaObject::invokeMethod(this, &BusStream::read, Qt::QueuedConnection);
    return {};
}

QString BusStream::ownerOf(const QString& name)
{
    const OwnedMessage call = createBusCall("GetNameOwner");
    DBusMessageIter arguments;
    dbus_message_iter_init_append(call.get(), &arguments);
    appendText(arguments, name);
    BusError error;
    const OwnedMessage reply(
        dbus_connection_send_with_reply_and_block(mConnection, call.get(), cBusDeadlineMilliseconds, error.get()));
    QMetaObject::invokeMethod(this, &BusStream::read, Qt::QueuedConnection);
    return reply ? BusMessage(reply.get()).arguments().value(0).toString() : QString();
}

quint32 BusStream::call(const QString& service, const QString& path, const QString& interface, const QString& member,
                        const QStringList& arguments)
{
    const OwnedMessage message = createCall(service, path, interface, member);
    dbus_message_set_auto_start(message.get(), FALSE);
    DBusMessageIter iterator;
    dbus_message_iter_init_append(message.get(), &iterator);
    for (const QString& argument : arguments) {
        appendText(iterator, argument);
    }
    dbus_uint32_t serial = 0;
    dbus_connection_send(mConnection, message.get(), &serial);
    dbus_connection_flush(mConnection);
    QMetaObject::invokeMethod(this, &BusStream::read, Qt::QueuedConnection);
    return serial;
}

void BusStream::read()
{
    dbus_connection_read_write(mConnection, 0);
    while (const OwnedMessage message{dbus_connection_pop_message(mConnection)}) {
        if (dbus_message_is_signal(message.get(), DBUS_INTERFACE_LOCAL, "Disconnected") != 0) {
            mNotifier.setEnabled(false);
            Q_EMIT disconnected();
            return;
        }
        Q_EMIT received(BusMessage(message.get()));
    }
}
