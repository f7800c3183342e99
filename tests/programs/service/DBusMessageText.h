// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "GObjectPointer.h"

#include <QJsonArray>
#include <QJsonObject>

/// D-Bus messages and their arguments as JSON: values are texts in GVariant's text format, with type annotations;
/// strings above 64 KiB are their lengths and digests.
namespace DBusMessageText {

/// Type, sender, destination, path, interface, member, signature, arguments, whether a reply is expected, whether
/// the bus may start the destination, and for errors the name.
QJsonObject describe(GDBusMessage* message);

/// The body of a message made of the given arguments; null without arguments. Throws std::invalid_argument on an
/// invalid text.
GVariantPointer parseArguments(const QJsonArray& arguments);

/// One value; at most one string in it may be written as a repeated character, 'x' * 1000. Throws std::invalid_argument
/// on an invalid text.
GVariantPointer parseValue(const QString& text);

/// Sets the body and, if it contains handles, attaches a descriptor with index 0.
void setBody(GDBusMessage* message, GVariantPointer body);

} // namespace DBusMessageText
