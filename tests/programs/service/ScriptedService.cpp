// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ScriptedService.h"

#include "DBusMessageText.h"

#include <QStringList>

#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <tuple>
#include <utility>

namespace {

const char cPropertiesInterface[] = "org.freedesktop.DBus.Properties";
const char cIntrospectableInterface[] = "org.freedesktop.DBus.Introspectable";

QString text(const QJsonObject& object, const char* member)
{
    return object.value(QLatin1String(member)).toString();
}

QString stringArgument(GDBusMessage* message, gsize index)
{
    GVariant* const body = g_dbus_message_get_body(message);
    if (body == nullptr || g_variant_n_children(body) <= index) {
        return {};
    }
    const GVariantPointer argument(g_variant_get_child_value(body, index));
    return g_variant_is_of_type(argument.get(), G_VARIANT_TYPE_STRING)
        ? QString::fromUtf8(g_variant_get_string(argument.get(), nullptr))
        : QString();
}

GVariantPointer stringBody(const QString& string)
{
    return GVariantPointer(g_variant_ref_sink(g_variant_new("(s)", string.toUtf8().constData())));
}

} // namespace

struct ScriptedService::DelayedAnswer
{
    ScriptedService* service;
    GObjectPointer<GDBusMessage> call;
    QJsonObject behaviour;
};

struct ScriptedService::DelayedReply
{
    ScriptedService* service;
    GObjectPointer<GDBusMessage> reply;
};

bool ScriptedService::Target::operator<(const Target& other) const
{
    return std::tie(path, interface, member, property)
        < std::tie(other.path, other.interface, other.member, other.property);
}

ScriptedService::ScriptedService(const QString& address, const QString& interfaceDirectory)
    : BusService(address)
    , mIntrospection(interfaceDirectory)
{
}

QJsonObject ScriptedService::handle(const QJsonObject& command)
{
    const QString name = text(command, "command");
    const Target target{text(command, "path"), text(command, "interface"), text(command, "member"),
                        text(command, "property")};
    QJsonObject answer{{QStringLiteral("done"), name}};

    if (name == QLatin1String("script")) {
        QList<QJsonObject> behaviours;
        for (const QJsonValue& behaviour : command.value(QLatin1String("behaviours")).toArray()) {
            behaviours.append(behaviour.toObject());
            DBusMessageText::parseArguments(behaviours.last().value(QLatin1String("reply")).toArray());
        }
        mScripts.insert(target, behaviours);
    } else if (name == QLatin1String("property")) {
        DBusMessageText::parseValue(text(command, "value"));
        mProperties.insert(target, text(command, "value"));
    } else if (name == QLatin1String("stateful")) {
        mStateful = command.value(QLatin1String("enabled")).toBool();
    } else if (name == QLatin1String("late")) {
        mDelays.clear();
        for (const QJsonValue& delay : command.value(QLatin1String("delays")).toArray()) {
            mDelays.append(delay.toInt());
        }
    } else if (name == QLatin1String("emit")) {
        emitSignal(command);
        waitForBus();
    } else if (name == QLatin1String("own")) {
        requestName(text(command, "name"), command.value(QLatin1String("replaceable")).toBool());
    } else if (name == QLatin1String("release")) {
        releaseName(text(command, "name"));
    } else if (name == QLatin1String("calls")) {
        answer.insert(QStringLiteral("calls"), mCalls);
        mCalls = {};
    } else if (name == QLatin1String("uniqueName")) {
        answer.insert(QStringLiteral("uniqueName"), QString::fromUtf8(g_dbus_connection_get_unique_name(get())));
    } else if (name == QLatin1String("reset")) {
        mCalls = {};
        mScripts.clear();
        mProperties.clear();
        mStateful = false;
        mDelays.clear();
    } else {
        throw std::invalid_argument("unknown command \"" + name.toStdString() + "\"");
    }
    return answer;
}

gboolean ScriptedService::onDelayOver(gpointer delayedAnswer)
{
    const std::unique_ptr<DelayedAnswer> owned(static_cast<DelayedAnswer*>(delayedAnswer));
    try {
        owned->service->answer(owned->call.get(), owned->behaviour);
    } catch (const std::exception& error) {
        std::cerr << "scripted-service: " << error.what() << '\n';
    }
    return G_SOURCE_REMOVE;
}

gboolean ScriptedService::onReplyDue(gpointer delayedReply)
{
    const std::unique_ptr<DelayedReply> owned(static_cast<DelayedReply*>(delayedReply));
    owned->service->send(owned->reply.get());
    return G_SOURCE_REMOVE;
}

ScriptedService::Target ScriptedService::targetOf(GDBusMessage* call)
{
    Target target{QString::fromUtf8(g_dbus_message_get_path(call)),
                  QString::fromUtf8(g_dbus_message_get_interface(call)),
                  QString::fromUtf8(g_dbus_message_get_member(call)), QString()};
    if (target.interface == QLatin1String(cPropertiesInterface)) {
        target.property = stringArgument(call, 1);
    }
    return target;
}

void ScriptedService::receive(GDBusMessage* call)
{
    mCalls.append(DBusMessageText::describe(call));
    const Target target = targetOf(call);
    QList<QJsonObject>* const script = findScript(target);
    if (script == nullptr) {
        answerByDefault(call, target);
        return;
    }
    behave(call, script->size() > 1 ? script->takeFirst() : script->first());
}

void ScriptedService::behave(GDBusMessage* call, const QJsonObject& behaviour)
{
    const int delay = behaviour.value(QLatin1String("delay")).toInt();
    if (delay == 0) {
        answer(call, behaviour);
        return;
    }
    auto delayedAnswer = std::make_unique<DelayedAnswer>();
    delayedAnswer->service = this;
    delayedAnswer->call.reset(G_DBUS_MESSAGE(g_object_ref(call)));
    delayedAnswer->behaviour = behaviour;
    g_timeout_add(static_cast<guint>(delay), onDelayOver, delayedAnswer.release());
}

void ScriptedService::answer(GDBusMessage* call, const QJsonObject& behaviour)
{
    for (const QJsonValue& signal : behaviour.value(QLatin1String("signals")).toArray()) {
        emitSignal(signal.toObject());
    }
    if (behaviour.contains(QLatin1String("exit"))) {
        // Flushes the signals above before the process ends.
        g_dbus_connection_flush_sync(get(), nullptr, nullptr);
        _exit(EXIT_SUCCESS);
    }
    if (behaviour.contains(QLatin1String("kill"))) {
        kill(behaviour.value(QLatin1String("kill")).toInt(), SIGKILL);
    } else if (behaviour.contains(QLatin1String("error"))) {
        sendError(call, text(behaviour, "error"), text(behaviour, "message"));
    } else if (behaviour.contains(QLatin1String("reply"))) {
        sendReply(call, DBusMessageText::parseArguments(behaviour.value(QLatin1String("reply")).toArray()));
    } else if (behaviour.contains(QLatin1String("plain"))) {
        answerByDefault(call, targetOf(call));
    }
}

void ScriptedService::answerByDefault(GDBusMessage* call, const Target& target)
{
    const Target stored{target.path, stringArgument(call, 0), QString(), target.property};
    if (target.interface == QLatin1String(cIntrospectableInterface)) {
        sendReply(call, stringBody(mIntrospection.xml(target.path)));
    } else if (target.interface == QLatin1String(cPropertiesInterface) && target.member == QLatin1String("Get")
               && mProperties.contains(stored)) {
        const GVariantPointer value = DBusMessageText::parseValue(mProperties.value(stored));
        sendReply(call, GVariantPointer(g_variant_ref_sink(g_variant_new("(v)", value.get()))), takeDelay());
    } else if (target.interface == QLatin1String(cPropertiesInterface) && target.member == QLatin1String("Set")) {
        if (mStateful) {
            const QString value =
                DBusMessageText::describe(call).value(QLatin1String("arguments")).toArray().at(2).toString();
            // The third argument is a variant, printed as <value>.
            mProperties.insert(stored, value.mid(1, value.size() - 2));
            emitSignal(
                {{QStringLiteral("path"), target.path},
                 {QStringLiteral("interface"), QLatin1String(cPropertiesInterface)},
                 {QStringLiteral("member"), QStringLiteral("PropertiesChanged")},
                 {QStringLiteral("arguments"),
                  QJsonArray{QStringLiteral("'%1'").arg(stored.interface),
                             QStringLiteral("{'%1': %2}").arg(stored.property, value), QStringLiteral("@as []")}}});
        }
        sendReply(call, nullptr, takeDelay());
    } else {
        sendError(call, QStringLiteral("org.freedesktop.DBus.Error.UnknownMethod"),
                  QStringLiteral("%1.%2 of %3 is not scripted").arg(target.interface, target.member, target.path));
    }
}

// A script without a property applies to all properties.
QList<QJsonObject>* ScriptedService::findScript(const Target& target)
{
    auto script = mScripts.find(target);
    if (script == mScripts.end()) {
        script = mScripts.find(Target{target.path, target.interface, target.member, QString()});
    }
    return script != mScripts.end() && !script->isEmpty() ? &*script : nullptr;
}

void ScriptedService::sendReply(GDBusMessage* call, GVariantPointer body, int delay)
{
    if ((g_dbus_message_get_flags(call) & G_DBUS_MESSAGE_FLAGS_NO_REPLY_EXPECTED) != 0) {
        return;
    }
    GObjectPointer<GDBusMessage> reply(g_dbus_message_new_method_reply(call));
    DBusMessageText::setBody(reply.get(), std::move(body));
    if (delay == 0) {
        send(reply.get());
        return;
    }
    auto delayedReply = std::make_unique<DelayedReply>(DelayedReply{this, std::move(reply)});
    g_timeout_add(static_cast<guint>(delay), onReplyDue, delayedReply.release());
}

int ScriptedService::takeDelay()
{
    if (mDelays.isEmpty()) {
        return 0;
    }
    mDelays.append(mDelays.takeFirst());
    return mDelays.last();
}

void ScriptedService::sendError(GDBusMessage* call, const QString& name, const QString& text)
{
    if ((g_dbus_message_get_flags(call) & G_DBUS_MESSAGE_FLAGS_NO_REPLY_EXPECTED) != 0) {
        return;
    }
    const GObjectPointer<GDBusMessage> reply(
        g_dbus_message_new_method_error_literal(call, name.toUtf8().constData(), text.toUtf8().constData()));
    send(reply.get());
}

void ScriptedService::emitSignal(const QJsonObject& signal)
{
    const GObjectPointer<GDBusMessage> message(g_dbus_message_new_signal(text(signal, "path").toUtf8().constData(),
                                                                         text(signal, "interface").toUtf8().constData(),
                                                                         text(signal, "member").toUtf8().constData()));
    if (signal.contains(QLatin1String("destination"))) {
        g_dbus_message_set_destination(message.get(), text(signal, "destination").toUtf8().constData());
    }
    DBusMessageText::setBody(message.get(),
                             DBusMessageText::parseArguments(signal.value(QLatin1String("arguments")).toArray()));
    const int count = signal.value(QLatin1String("count")).toInt(1);
    for (int sent = 0; sent < count; ++sent) {
        // A message that has been sent is locked.
        const GObjectPointer<GDBusMessage> copy(g_dbus_message_copy(message.get(), nullptr));
        send(copy.get());
    }
}

// The bus daemon handles this call after everything that was sent before it.
void ScriptedService::waitForBus()
{
    callBusDaemon("GetId", nullptr);
}
