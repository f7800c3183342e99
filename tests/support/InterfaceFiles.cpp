// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "InterfaceFiles.h"

#include <QDir>
#include <QFile>
#include <QXmlStreamReader>

#include <stdexcept>

namespace {

QString attribute(const QXmlStreamReader& reader, const char* name)
{
    return reader.attributes().value(QLatin1String(name)).toString();
}

// The content of a string as GVariant prints it.
QString unquoted(const QString& text)
{
    return text.mid(1, text.size() - 2);
}

// The D-Bus type of a variant's content, as GVariant prints it. Strings, booleans and 32-bit integers are all that the
// library writes; other values carry their type in front.
QString contentType(const QString& variant)
{
    const QString content = unquoted(variant);
    if (content.startsWith(QLatin1Char('\'')) || content.startsWith(QLatin1Char('"'))) {
        return QStringLiteral("s");
    }
    if (content == QLatin1String("true") || content == QLatin1String("false")) {
        return QStringLiteral("b");
    }
    bool isNumber = false;
    content.toInt(&isNumber);
    return isNumber ? QStringLiteral("i") : content;
}

} // namespace

InterfaceFiles::InterfaceFiles()
{
    const QDir directory(QStringLiteral(TELVARO_INTERFACE_DIRECTORY), QStringLiteral("*.xml"));
    for (const QString& name : directory.entryList()) {
        read(directory.filePath(name));
    }
}

QString InterfaceFiles::problem(const RecordedCall& call) const
{
    if (call.destination != QLatin1String(TELVARO_SERVICE_NAME)) {
        return QStringLiteral("sent to ") + call.destination;
    }
    if (call.interface == QLatin1String("org.freedesktop.DBus.Properties")) {
        return propertyProblem(call);
    }
    const auto interface = mInterfaces.constFind(call.interface);
    if (interface == mInterfaces.constEnd()) {
        return QStringLiteral("no such interface");
    }
    if (interface->path != call.path) {
        return QStringLiteral("the object is ") + interface->path;
    }
    const auto method = interface->methodSignatures.constFind(call.member);
    if (method == interface->methodSignatures.constEnd()) {
        return QStringLiteral("no such method");
    }
    return *method == call.signature ? QString() : QStringLiteral("the signature is ") + *method;
}

QStringList InterfaceFiles::members() const
{
    QStringList members;
    for (auto interface = mInterfaces.cbegin(); interface != mInterfaces.cend(); ++interface) {
        for (const QString& method : interface->methodSignatures.keys()) {
            members.append(interface.key() + QLatin1Char('.') + method);
        }
        for (const QString& property : interface->properties.keys()) {
            members.append(interface.key() + QLatin1Char(':') + property);
        }
    }
    return members;
}

void InterfaceFiles::read(const QString& fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        throw std::runtime_error("cannot read " + fileName.toStdString());
    }
    QXmlStreamReader reader(&file);
    QString path;
    Interface* interface = nullptr;
    QString* method = nullptr;
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement) {
            continue;
        }
        const QString name = attribute(reader, "name");
        if (reader.name() == QLatin1String("node")) {
            path = name;
        } else if (reader.name() == QLatin1String("interface")) {
            interface = &mInterfaces[name];
            interface->path = path;
        } else if (reader.name() == QLatin1String("method")) {
            method = &interface->methodSignatures[name];
        } else if (reader.name() == QLatin1String("arg") && attribute(reader, "direction") == QLatin1String("in")) {
            *method += attribute(reader, "type");
        } else if (reader.name() == QLatin1String("property")) {
            interface->properties.insert(name, {attribute(reader, "type"), attribute(reader, "access")});
        }
    }
    if (reader.hasError()) {
        throw std::runtime_error(fileName.toStdString() + ": " + reader.errorString().toStdString());
    }
}

QString InterfaceFiles::propertyProblem(const RecordedCall& call) const
{
    const bool isRead = call.member == QLatin1String("Get");
    const QString signature = isRead ? QStringLiteral("ss") : QStringLiteral("ssv");
    if (!isRead && call.member != QLatin1String("Set")) {
        return QStringLiteral("no such method");
    }
    if (call.signature != signature) {
        return QStringLiteral("the signature is ") + signature;
    }
    const auto interface = mInterfaces.constFind(unquoted(call.arguments.at(0)));
    if (interface == mInterfaces.constEnd()) {
        return QStringLiteral("no such interface");
    }
    if (interface->path != call.path) {
        return QStringLiteral("the object is ") + interface->path;
    }
    const auto property = interface->properties.constFind(unquoted(call.arguments.at(1)));
    if (property == interface->properties.constEnd()) {
        return QStringLiteral("no such property");
    }
    if (!property->access.contains(isRead ? QLatin1String("read") : QLatin1String("write"))) {
        return QStringLiteral("the access is ") + property->access;
    }
    if (!isRead && contentType(call.arguments.at(2)) != property->type) {
        return QStringLiteral("the type is ") + property->type;
    }
    return {};
}
