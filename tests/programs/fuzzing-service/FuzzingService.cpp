// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "FuzzingService.h"

#include "DBusMessageText.h"

#include <utility>

namespace {

const char cPropertiesInterface[] = "org.freedesktop.DBus.Properties";

/// The property's name as DBusMessageText writes it.
QString named(const char* property)
{
    return QLatin1Char('\'') + QLatin1String(property) + QLatin1Char('\'');
}

GVariantPointer body(const std::vector<GVariantPointer>& values)
{
    std::vector<GVariant*> children;
    children.reserve(values.size());
    for (const GVariantPointer& value : values) {
        children.push_back(value.get());
    }
    return GVariantPointer(g_variant_ref_sink(g_variant_new_tuple(children.data(), children.size())));
}

GVariantPointer string(const std::string& text)
{
    return GVariantPointer(g_variant_ref_sink(g_variant_new_string(text.c_str())));
}

GObjectPointer<GDBusMessage> refusal(GDBusMessage* call, const std::string& text)
{
    return GObjectPointer<GDBusMessage>(
        g_dbus_message_new_method_error_literal(call, "org.freedesktop.DBus.Error.Failed", text.c_str()));
}

/// Builds the arguments of PropertiesChanged.
class Changes
{
public:
    Changes()
    {
        g_variant_builder_init(&mChanged, G_VARIANT_TYPE("a{sv}"));
        g_variant_builder_init(&mInvalidated, G_VARIANT_TYPE("as"));
    }

    void change(const char* name, const GVariantPointer& value)
    {
        g_variant_builder_add(&mChanged, "{sv}", name, value.get());
    }

    void invalidate(const char* name)
    {
        g_variant_builder_add(&mInvalidated, "s", name);
    }

    std::vector<GVariantPointer> take(const std::string& interface)
    {
        std::vector<GVariantPointer> arguments;
        arguments.push_back(string(interface));
        arguments.emplace_back(g_variant_ref_sink(g_variant_builder_end(&mChanged)));
        arguments.emplace_back(g_variant_ref_sink(g_variant_builder_end(&mInvalidated)));
        return arguments;
    }

private:
    GVariantBuilder mChanged;
    GVariantBuilder mInvalidated;
};

} // namespace

struct FuzzingService::Object
{
    const char* path;
    const char* interface;
    std::vector<const char*> properties;
};

const std::vector<FuzzingService::Object>& FuzzingService::objects()
{
    static const std::vector<Object> cObjects = {
        {"/taskswitcher", "de.Telvaro.taskswitcher", {"views", "currentView"}},
        {"/screen",
         "de.Telvaro.screen",
         {"screenSaverActive", "screenSaverEnabled", "screenSaverTimeoutSeconds", "orientation", "fullScreen"}},
    };
    return cObjects;
}

FuzzingService::FuzzingService(const QString& address, const QString& interfaceDirectory, std::uint64_t seed)
    : BusService(address)
    , mIntrospection(interfaceDirectory)
    , mRandom(seed)
{
}

QJsonObject FuzzingService::handle(const QJsonObject& command)
{
    const QString name = command.value(QLatin1String("command")).toString();
    if (name == QLatin1String("own")) {
        requestName(command.value(QLatin1String("name")).toString());
    } else if (name == QLatin1String("rest")) {
        rest();
    } else if (name == QLatin1String("resume")) {
        mIsAtRest = false;
    }
    return {{QStringLiteral("replies"), mReplies},
            {QStringLiteral("viewsType"), mViewsType},
            {QStringLiteral("viewsCount"), mViewsCount}};
}

void FuzzingService::receive(GDBusMessage* call)
{
    while (!mIsAtRest && mRandom.oneIn(4)) {
        emitNotification();
    }
    answer(call);
    while (mRandom.oneIn(4)) {
        release();
    }
    mReplies += mIsAtRest ? 0 : 1;
}

void FuzzingService::answer(GDBusMessage* call)
{
    const QString interface = QString::fromUtf8(g_dbus_message_get_interface(call));
    const QString member = QString::fromUtf8(g_dbus_message_get_member(call));
    const QJsonArray arguments = DBusMessageText::describe(call).value(QLatin1String("arguments")).toArray();
    const bool isViews = arguments.at(1).toString() == QLatin1String("'views'");
    if (isViews) {
        mViewsType.clear();
        mViewsCount = 0;
    }
    if (mIsAtRest && member == QLatin1String("Get")) {
        answerAtRest(call, arguments.at(1).toString());
        return;
    }
    if (mRandom.oneIn(12)) {
        sendOrHold(call, refusal(call, mRandom.text()));
        return;
    }
    std::vector<GVariantPointer> values;
    if (interface == QLatin1String("org.freedesktop.DBus.Introspectable") && !mRandom.oneIn(4)) {
        QString xml = mIntrospection.xml(QString::fromUtf8(g_dbus_message_get_path(call)));
        if (mRandom.oneIn(2)) {
            xml.remove(mRandom.below(xml.size()), mRandom.below(50));
        }
        values.push_back(string(xml.toStdString()));
    } else if (member == QLatin1String("Get") && !mRandom.oneIn(15)) {
        GVariantPointer value = property(arguments.at(1).toString());
        if (isViews) {
            mViewsType = QString::fromUtf8(g_variant_get_type_string(value.get()));
            mViewsCount =
                g_variant_is_container(value.get()) != FALSE ? static_cast<int>(g_variant_n_children(value.get())) : 0;
        }
        values.push_back(RandomValue::variant(value));
    } else if (!mRandom.oneIn(15)) {
        values.push_back(mRandom.oneIn(2) ? string(mRandom.text()) : mRandom.any());
        // A bare variant would be a value that the status does not report.
        if (isViews && g_variant_is_of_type(values.back().get(), G_VARIANT_TYPE_VARIANT) != FALSE) {
            values.back() = string(mRandom.text());
        }
    }
    if (mRandom.oneIn(10) && !values.empty()) {
        values.push_back(mRandom.any());
    }
    GObjectPointer<GDBusMessage> reply(g_dbus_message_new_method_reply(call));
    if (!values.empty()) {
        DBusMessageText::setBody(reply.get(), body(values));
    }
    sendOrHold(call, std::move(reply));
}

void FuzzingService::answerAtRest(GDBusMessage* call, const QString& name)
{
    const GVariantPointer& value = mValues.at(name);
    if (value == nullptr) {
        send(refusal(call, "it has no value").get());
        return;
    }
    const GObjectPointer<GDBusMessage> reply(g_dbus_message_new_method_reply(call));
    std::vector<GVariantPointer> values;
    values.push_back(RandomValue::variant(value));
    DBusMessageText::setBody(reply.get(), body(values));
    send(reply.get());
}

void FuzzingService::sendOrHold(GDBusMessage* call, GObjectPointer<GDBusMessage> reply)
{
    const bool isToOwner = g_dbus_message_get_destination(call)[0] == ':';
    const bool isGet = g_strcmp0(g_dbus_message_get_member(call), "Get") == 0;
    if (isToOwner && isGet && mRandom.oneIn(2)) {
        mHeldReplies.push_back(std::move(reply));
    } else {
        send(reply.get());
    }
}

void FuzzingService::release()
{
    if (!mHeldReplies.empty()) {
        const auto reply = mHeldReplies.begin() + mRandom.below(static_cast<int>(mHeldReplies.size()));
        send(reply->get());
        mHeldReplies.erase(reply);
    }
}

GVariantPointer FuzzingService::property(const QString& name)
{
    if (name == QLatin1String("'views'") && !mRandom.oneIn(5)) {
        return mRandom.views();
    }
    return mRandom.oneIn(3) ? string(mRandom.text()) : mRandom.any();
}

std::string FuzzingService::recurringUuid()
{
    return "uuid" + std::to_string(mRandom.below(8));
}

// Of the same few views every time, so that rows stay, move and change.
GVariantPointer FuzzingService::recurringViews()
{
    GVariantBuilder views;
    g_variant_builder_init(&views, G_VARIANT_TYPE("a(ssssssuua{sv})"));
    for (int count = mRandom.below(8); count > 0; --count) {
        const std::string uuid = recurringUuid();
        const GVariantPointer attributes = mRandom.properties({QStringLiteral("title")});
        g_variant_builder_add(&views, "(ssssssuu@a{sv})", uuid.c_str(), "app", mRandom.oneIn(2) ? "a" : "b", "", "", "",
                              101u, static_cast<guint32>(mRandom.below(3)), attributes.get());
    }
    return GVariantPointer(g_variant_ref_sink(g_variant_builder_end(&views)));
}

// Mostly one that a client can read.
GVariantPointer FuzzingService::likelyValue(const QString& name)
{
    if (mRandom.oneIn(20)) {
        return mRandom.any();
    }
    if (name == named("views")) {
        return mRandom.oneIn(2) ? mRandom.views() : recurringViews();
    }
    if (name == named("currentView") && mRandom.oneIn(2)) {
        return string(recurringUuid());
    }
    if (name == named("currentView") || name == named("orientation")) {
        return string(mRandom.text());
    }
    return DBusMessageText::parseValue(name == named("screenSaverTimeoutSeconds") ? QString::number(mRandom.below(100))
                                           : mRandom.oneIn(2)                     ? QStringLiteral("true")
                                                                                  : QStringLiteral("false"));
}

void FuzzingService::rest()
{
    mIsAtRest = true;
    for (const Object& object : objects()) {
        for (const char* const name : object.properties) {
            mValues[named(name)] = mRandom.oneIn(20) ? GVariantPointer() : likelyValue(named(name));
        }
    }
    while (mRandom.oneIn(2)) {
        emitNotification();
    }
    for (const Object& object : objects()) {
        notifyRest(object);
    }
    while (!mHeldReplies.empty()) {
        release();
    }
}

// Either the signal holds the value, or it makes the listeners read it: by an invalidation, by an empty text in its
// place, or by another value under the name of another interface.
void FuzzingService::notifyRest(const Object& object)
{
    std::vector<const char*> names = object.properties;
    while (!names.empty()) {
        Changes changes;
        const bool isOfObject = !mRandom.oneIn(4);
        do {
            const auto name = names.begin() + mRandom.below(static_cast<int>(names.size()));
            const GVariantPointer& value = mValues.at(named(*name));
            const int kind = mRandom.below(4);
            if (kind == 0) {
                changes.invalidate(*name);
            } else if (kind == 1 || value == nullptr) {
                changes.change(*name, string(""));
            } else if (isOfObject) {
                changes.change(*name, value);
            } else {
                changes.change(*name, likelyValue(named(*name)));
            }
            names.erase(name);
        } while (!names.empty() && mRandom.oneIn(2));
        emitPropertiesChanged(object.path, changes.take(isOfObject ? object.interface : mRandom.text()));
    }
}

void FuzzingService::emitNotification()
{
    const Object& object = objects().at(static_cast<std::size_t>(mRandom.below(2)));
    std::vector<GVariantPointer> values;
    switch (mRandom.below(4)) {
    case 0:
        values.push_back(string(mRandom.text()));
        values.push_back(mRandom.properties({QStringLiteral("views"), QStringLiteral("currentView"),
                                             QStringLiteral("screenSaverActive"), QStringLiteral("orientation"),
                                             QStringLiteral("fullScreen")}));
        values.push_back(DBusMessageText::parseValue(QStringLiteral("@as ['views', 'currentView']")));
        break;
    case 1:
        for (int count = mRandom.below(4); count > 0; --count) {
            values.push_back(mRandom.oneIn(3) ? mRandom.properties({QStringLiteral("views")}) : mRandom.any());
        }
        break;
    default: {
        Changes changes;
        for (const char* const name : object.properties) {
            const int kind = mRandom.below(4);
            if (kind == 0) {
                changes.invalidate(name);
            } else if (kind == 1) {
                changes.change(name, likelyValue(named(name)));
            }
        }
        values = changes.take(object.interface);
        break;
    }
    }
    emitPropertiesChanged(object.path, values);
}

void FuzzingService::emitPropertiesChanged(const char* path, const std::vector<GVariantPointer>& arguments)
{
    const GObjectPointer<GDBusMessage> message(
        g_dbus_message_new_signal(path, cPropertiesInterface, "PropertiesChanged"));
    if (!arguments.empty()) {
        DBusMessageText::setBody(message.get(), body(arguments));
    }
    send(message.get());
}
