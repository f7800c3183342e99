// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ServiceInterfaces.h"

#include <QDir>
#include <QFile>
#include <QXmlStreamReader>

#include <algorithm>

namespace {

ServiceInterface readFile(const QString& fileName)
{
    ServiceInterface interface;
    QFile file(fileName);
    file.open(QIODevice::ReadOnly);
    QXmlStreamReader xml(&file);
    QString method;
    while (!xml.atEnd()) {
        xml.readNext();
        if (!xml.isStartElement()) {
            continue;
        }
        const QXmlStreamAttributes attributes = xml.attributes();
        const QString name = attributes.value(QLatin1String("name")).toString();
        const QString type = attributes.value(QLatin1String("type")).toString();
        if (xml.name() == QLatin1String("node")) {
            interface.path = name;
        } else if (xml.name() == QLatin1String("interface")) {
            interface.name = name;
        } else if (xml.name() == QLatin1String("property")) {
            const bool isWritable = attributes.value(QLatin1String("access")) == QLatin1String("readwrite");
            interface.properties.insert(name, {type, isWritable});
        } else if (xml.name() == QLatin1String("method")) {
            method = name;
            interface.methods.insert(method, QString());
        } else if (attributes.value(QLatin1String("direction")) == QLatin1String("in")) {
            interface.methods[method] += type;
        }
    }
    return interface;
}

} // namespace

const QVector<ServiceInterface>& ServiceInterface::all()
{
    static const QVector<ServiceInterface> interfaces = [] {
        QVector<ServiceInterface> found;
        const QDir directory(QStringLiteral(":/interfaces"));
        const QStringList names = directory.entryList();
        for (const QString& name : names) {
            found.append(readFile(directory.filePath(name)));
        }
        return found;
    }();
    return interfaces;
}

const ServiceInterface* ServiceInterface::find(const QString& name)
{
    const QVector<ServiceInterface>& interfaces = all();
    const auto found = std::find_if(interfaces.cbegin(), interfaces.cend(), [&name](const ServiceInterface& candidate) {
        return candidate.name == name;
    });
    return found == interfaces.cend() ? nullptr : &*found;
}
