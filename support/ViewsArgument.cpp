// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ViewsArgument.h"

#include <QDBusArgument>
#include <QLatin1String>
#include <QString>
#include <QStringRef>

#include <algorithm>

namespace {

// An array of structures that begin with six strings or object paths, two integers and a{sv}.
bool isSignatureOfEntries(const QString& signature)
{
    const QLatin1String textTypes("so");
    const QLatin1String integerTypes("ynqiuxt");
    const QLatin1String head("a(");
    const QLatin1String attributes("a{sv}");
    const int textCount = 6;
    const int integerCount = 2;

    const auto consistsOf = [](const QStringRef& part, QLatin1String types) {
        return std::all_of(part.begin(), part.end(), [types](QChar type) {
            return types.contains(type);
        });
    };
    const int integersAt = head.size() + textCount;
    const int attributesAt = integersAt + integerCount;
    return signature.startsWith(head) && signature.midRef(attributesAt).startsWith(attributes)
        && consistsOf(signature.midRef(head.size(), textCount), textTypes)
        && consistsOf(signature.midRef(integersAt, integerCount), integerTypes);
}

bool isEmptyArray(const QDBusArgument& argument, const QString& signature)
{
    if (!signature.startsWith(QLatin1Char('a'))) {
        return false;
    }
    // A const copy, because reading advances the argument. endArray() must follow beginArray(), or Qt leaks the
    // message.
    const QDBusArgument copy(argument); // NOLINT(performance-unnecessary-copy-initialization): it is advanced
    copy.beginArray();
    const bool isEmpty = copy.atEnd();
    copy.endArray();
    return isEmpty;
}

} // namespace

bool ViewsArgument::isReadable(const QDBusArgument& argument)
{
    const QString signature = argument.currentSignature();
    // Fast path: the regular signature is accepted by one comparison.
    return signature == QLatin1String("a(ssssssuua{sv})") || isSignatureOfEntries(signature)
        || isEmptyArray(argument, signature);
}
