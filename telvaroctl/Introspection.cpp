// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Introspection.h"

#include <QDir>
#include <QFile>
#include <QIODevice>
#include <QStringList>
#include <QXmlStreamReader>

#include <tuple>

bool Introspection::Member::operator==(const Member& other) const
{
    return std::tie(kind, type, results, access) == std::tie(other.kind, other.type, other.results, other.access);
}

QString Introspection::Member::description() const
{
    switch (kind) {
    case Property:
        return QStringLiteral("property %1 %2").arg(type, access);
    case Method:
        return QStringLiteral("method %1 -> %2").arg(type, results);
    case Signal:
        return QStringLiteral("signal %1").arg(results);
    }
    return {};
}

Introspection Introspection::parse(const QString& xml)
{
    Introspection object;
    QXmlStreamReader reader(xml);
    Members* interface = nullptr;
    Member* member = nullptr;
    while (!reader.atEnd()) {
        reader.readNext();
        if (!reader.isStartElement()) {
            continue;
        }
        const auto attribute = [attributes = reader.attributes()](const char* name) {
            return attributes.value(QLatin1String(name)).toString();
        };
        const QString element = reader.name().toString();
        if (element == QLatin1String("node") && interface == nullptr) {
            object.path = attribute("name");
        } else if (element == QLatin1String("interface")) {
            interface = &object.interfaces[attribute("name")];
        } else if (interface == nullptr) {
            continue;
        } else if (element == QLatin1String("property")) {
            interface->insert(attribute("name"), {Member::Property, attribute("type"), {}, attribute("access")});
        } else if (element == QLatin1String("method") || element == QLatin1String("signal")) {
            member = &(*interface)[attribute("name")];
            member->kind = element == QLatin1String("method") ? Member::Method : Member::Signal;
        } else if (element == QLatin1String("arg") && member != nullptr) {
            const bool isIn = member->kind == Member::Method && attribute("direction") != QLatin1String("out");
            (isIn ? member->type : member->results) += attribute("type");
        }
    }
    return object;
}

QList<Introspection> Introspection::expected()
{
    QList<Introspection> objects;
    const QDir files(QStringLiteral(":/interfaces"));
    const QStringList names = files.entryList();
    for (const QString& name : names) {
        QFile file(files.filePath(name));
        file.open(QIODevice::ReadOnly);
        objects.append(parse(QString::fromUtf8(file.readAll())));
    }
    return objects;
}
