// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "FuzzingService.h"

#include "DBusMessageText.h"

#include <vector>

namespace {

const char cPropertiesInterface[] = "org.freedesktop.DBus.Properties";

GVariantPointer body(const std::vector<GVariantPointer>& values)
{
    std::vector<GVariant*> children;
    for (const GVariantPointer& value : values) {
        children.push_back(value.get());
    }
    return GVariantPointer(g_variant_ref_sink(g_variant_new_tuple(children.data(), children.size())));
}

GVariantPointer string(const std::string& text)
{
    return GVariantPointer(g_variant_ref_sink(g_variant_new_string(text.c_str())));
}

} // namespace

FuzzingService::FuzzingService(const QString& address, const QString& interfaceDirectory, std::uint64_t seed)
    : BusService(address)
    , mIntrospection(interfaceDirectory)
    , mRandom(seed)
{
}

QJsonObject FuzzingService::handle(const QJsonObject& command)
{
    if (command.value(QLatin1String("command")) == QLatin1String("own")) {
        requestName(command.value(QLatin1String("name")).toString());
    }
    return {{QStringLiteral("replies"), mReplies},
            {QStringLiteral("viewsType"), mViewsType},
            {QStringLiteral("viewsCount"), mViewsCount}};
}

void FuzzingService::receive(GDBusMessage* call)
{
    while (mRandom.oneIn(4)) {
        emitNotification();
    }
    answer(call);
    ++mReplies;
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
    if (mRandom.oneIn(12)) {
        const GObjectPointer<GDBusMessage> error(
            g_dbus_message_new_method_error_literal(call, "org.freedesktop.DBus.Error.Failed", mRandom.text().c_str()));
        send(error.get());
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
    const GObjectPointer<GDBusMessage> reply(g_dbus_message_new_method_reply(call));
    if (!values.empty()) {
        DBusMessageText::setBody(reply.get(), body(values));
    }
    send(reply.get());
}

GVariantPointer FuzzingService::property(const QString& name)
{
    if (name == QLatin1String("'views'") && !mRandom.oneIn(5)) {
        return mRandom.views();
    }
    return mRandom.oneIn(3) ? string(mRandom.text()) : mRandom.any();
}

void FuzzingService::emitNotification()
{
    const GObjectPointer<GDBusMessage> message(g_dbus_message_new_signal(mRandom.oneIn(2) ? "/taskswitcher" : "/screen",
                                                                         cPropertiesInterface, "PropertiesChanged"));
    std::vector<GVariantPointer> values;
    if (mRandom.oneIn(2)) {
        values.push_back(string(mRandom.text()));
        values.push_back(mRandom.properties({QStringLiteral("views"), QStringLiteral("currentView"),
                                             QStringLiteral("screenSaverActive"), QStringLiteral("orientation"),
                                             QStringLiteral("fullScreen")}));
        values.push_back(DBusMessageText::parseValue(QStringLiteral("@as ['views', 'currentView']")));
    } else {
        for (int count = mRandom.below(4); count > 0; --count) {
            values.push_back(mRandom.oneIn(3) ? mRandom.properties({QStringLiteral("views")}) : mRandom.any());
        }
    }
    if (!values.empty()) {
        DBusMessageText::setBody(message.get(), body(values));
    }
    send(message.get());
}
