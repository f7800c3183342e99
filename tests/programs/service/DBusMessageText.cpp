// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "DBusMessageText.h"

#include <QRegularExpression>
#include <QString>
#include <QStringList>

#include <fcntl.h>
#include <gio/gunixfdlist.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace {

QString typeName(GDBusMessageType type)
{
    switch (type) {
    case G_DBUS_MESSAGE_TYPE_METHOD_CALL:
        return QStringLiteral("call");
    case G_DBUS_MESSAGE_TYPE_METHOD_RETURN:
        return QStringLiteral("return");
    case G_DBUS_MESSAGE_TYPE_ERROR:
        return QStringLiteral("error");
    case G_DBUS_MESSAGE_TYPE_SIGNAL:
        return QStringLiteral("signal");
    case G_DBUS_MESSAGE_TYPE_INVALID:
        break;
    }
    return QStringLiteral("invalid");
}

// Long texts are compared by their digests.
QString describeString(GVariant* string)
{
    const gsize longest = 65536;
    gsize length = 0;
    const gchar* const bytes = g_variant_get_string(string, &length);
    if (length <= longest) {
        gchar* const text = g_variant_print(string, TRUE);
        const QString description = QString::fromUtf8(text);
        g_free(text);
        return description;
    }
    gchar* const digest =
        g_compute_checksum_for_data(G_CHECKSUM_SHA256, reinterpret_cast<const guchar*>(bytes), length);
    const QString description = QStringLiteral("%1 bytes with SHA-256 %2").arg(length).arg(QString::fromUtf8(digest));
    g_free(digest);
    return description;
}

QString describeArgument(GVariant* argument)
{
    if (g_variant_is_of_type(argument, G_VARIANT_TYPE_STRING)) {
        return describeString(argument);
    }
    if (g_variant_is_of_type(argument, G_VARIANT_TYPE_VARIANT)) {
        const GVariantPointer content(g_variant_get_variant(argument));
        return QLatin1Char('<') + describeArgument(content.get()) + QLatin1Char('>');
    }
    if (g_variant_is_of_type(argument, G_VARIANT_TYPE_STRING_ARRAY) && g_variant_n_children(argument) > 0) {
        QStringList strings;
        for (gsize index = 0; index < g_variant_n_children(argument); ++index) {
            const GVariantPointer string(g_variant_get_child_value(argument, index));
            strings.append(describeString(string.get()));
        }
        return QLatin1Char('[') + strings.join(QStringLiteral(", ")) + QLatin1Char(']');
    }
    gchar* const text = g_variant_print(argument, TRUE);
    const QString description = QString::fromUtf8(text);
    g_free(text);
    return description;
}

QJsonArray describeArguments(GVariant* body)
{
    QJsonArray arguments;
    const gsize count = body != nullptr ? g_variant_n_children(body) : 0;
    for (gsize index = 0; index < count; ++index) {
        const GVariantPointer argument(g_variant_get_child_value(body, index));
        arguments.append(describeArgument(argument.get()));
    }
    return arguments;
}

bool containsDescriptor(GVariant* value)
{
    if (g_variant_is_of_type(value, G_VARIANT_TYPE_HANDLE)) {
        return true;
    }
    const gsize count = g_variant_is_container(value) ? g_variant_n_children(value) : 0;
    for (gsize index = 0; index < count; ++index) {
        const GVariantPointer child(g_variant_get_child_value(value, index));
        if (containsDescriptor(child.get())) {
            return true;
        }
    }
    return false;
}

} // namespace

QJsonObject DBusMessageText::describe(GDBusMessage* message)
{
    const GDBusMessageFlags flags = g_dbus_message_get_flags(message);
    const bool noReply = (flags & G_DBUS_MESSAGE_FLAGS_NO_REPLY_EXPECTED) != 0;
    const bool noAutoStart = (flags & G_DBUS_MESSAGE_FLAGS_NO_AUTO_START) != 0;
    return {
        {QStringLiteral("type"), typeName(g_dbus_message_get_message_type(message))},
        {QStringLiteral("sender"), QString::fromUtf8(g_dbus_message_get_sender(message))},
        {QStringLiteral("destination"), QString::fromUtf8(g_dbus_message_get_destination(message))},
        {QStringLiteral("path"), QString::fromUtf8(g_dbus_message_get_path(message))},
        {QStringLiteral("interface"), QString::fromUtf8(g_dbus_message_get_interface(message))},
        {QStringLiteral("member"), QString::fromUtf8(g_dbus_message_get_member(message))},
        {QStringLiteral("errorName"), QString::fromUtf8(g_dbus_message_get_error_name(message))},
        {QStringLiteral("signature"), QString::fromUtf8(g_dbus_message_get_signature(message))},
        {QStringLiteral("arguments"), describeArguments(g_dbus_message_get_body(message))},
        {QStringLiteral("noReply"), noReply},
        {QStringLiteral("noAutoStart"), noAutoStart},
    };
}

GVariantPointer DBusMessageText::parseArguments(const QJsonArray& arguments)
{
    if (arguments.isEmpty()) {
        return nullptr;
    }
    std::vector<GVariantPointer> values;
    std::vector<GVariant*> children;
    for (const QJsonValue& argument : arguments) {
        values.push_back(parseValue(argument.toString()));
        children.push_back(values.back().get());
    }
    return GVariantPointer(g_variant_ref_sink(g_variant_new_tuple(children.data(), children.size())));
}

GVariantPointer DBusMessageText::parseValue(const QString& text)
{
    // GVariant's parser takes minutes for such a string, so it is passed as a separate argument.
    static const QRegularExpression cRepeatedCharacter(QStringLiteral("'([^'])' \\* (\\d+)"));
    const QRegularExpressionMatch repeated = cRepeatedCharacter.match(text);
    if (repeated.hasMatch()) {
        const QByteArray string = repeated.captured(1).repeated(repeated.captured(2).toInt()).toUtf8();
        const QString format =
            QString(text).replace(repeated.capturedStart(), repeated.capturedLength(), QStringLiteral("%s"));
        return GVariantPointer(
            g_variant_ref_sink(g_variant_new_parsed(format.toUtf8().constData(), string.constData())));
    }
    GError* error = nullptr;
    GVariantPointer value(g_variant_parse(nullptr, text.toUtf8().constData(), nullptr, nullptr, &error));
    if (!value) {
        const std::string reason = error->message;
        g_error_free(error);
        throw std::invalid_argument("\"" + text.left(200).toStdString() + "\" is no value: " + reason);
    }
    return value;
}

void DBusMessageText::setBody(GDBusMessage* message, GVariantPointer body)
{
    if (!body) {
        return;
    }
    g_dbus_message_set_body(message, body.get());
    if (containsDescriptor(body.get())) {
        const int descriptor = open("/dev/null", O_RDONLY | O_CLOEXEC);
        const GObjectPointer<GUnixFDList> descriptors(g_unix_fd_list_new_from_array(&descriptor, 1));
        g_dbus_message_set_unix_fd_list(message, descriptors.get());
    }
}
