// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ServiceInterfaces.h"

#include "Introspection.h"

#include <QList>

#include <algorithm>

namespace {

ServiceInterface toInterface(const QString& path, const QString& name, const Introspection::Members& members)
{
    ServiceInterface interface;
    interface.path = path;
    interface.name = name;
    for (auto member = members.begin(); member != members.end(); ++member) {
        if (member->kind == Introspection::Member::Property) {
            interface.properties.insert(member.key(), {member->type, member->access == QLatin1String("readwrite")});
        } else if (member->kind == Introspection::Member::Method) {
            interface.methods.insert(member.key(), member->type);
        }
    }
    return interface;
}

} // namespace

const QVector<ServiceInterface>& ServiceInterface::all()
{
    static const QVector<ServiceInterface> interfaces = [] {
        QVector<ServiceInterface> found;
        const QList<Introspection> objects = Introspection::expected();
        for (const Introspection& object : objects) {
            for (auto interface = object.interfaces.begin(); interface != object.interfaces.end(); ++interface) {
                found.append(toInterface(object.path, interface.key(), interface.value()));
            }
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
