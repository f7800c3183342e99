// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ServiceCall.h"

#include "Operations.h"
#include "Scenario.h"
#include "ValueText.h"

#include <QMap>

namespace {

const QString cIntrospect = QStringLiteral("Introspect");

QList<ServiceCall> calls(bool ofIntrospection)
{
    QList<ServiceCall> calls;
    for (const QString& operation : Operations::names()) {
        QMap<QString, int> numbers;
        for (const Message& message : Operations::messages(operation)) {
            if (!message.path.isEmpty() && (message.member == cIntrospect) == ofIntrospection) {
                const int number = ++numbers[message.member + message.property];
                calls.append({operation, message.path, message.interface, message.member, message.property, number});
            }
        }
    }
    return calls;
}

// The property's value in Scenario, in GVariant's text format.
QString propertyValue(const QString& property)
{
    static const QMap<QString, QString> cValues{
        {QStringLiteral("views"), Scenario::views()},
        {QStringLiteral("currentView"), QStringLiteral("'one'")},
        {QStringLiteral("screenSaverActive"), QStringLiteral("true")},
        {QStringLiteral("screenSaverTimeoutSeconds"), QStringLiteral("300")},
        {QStringLiteral("orientation"), QStringLiteral("'90'")},
        {QStringLiteral("fullScreen"), QStringLiteral("true")},
    };
    return cValues.value(property);
}

} // namespace

QList<ServiceCall> ServiceCall::all()
{
    return calls(false);
}

QList<ServiceCall> ServiceCall::introspections()
{
    return calls(true);
}

QStringList ServiceCall::rightAnswer() const
{
    if (member == QLatin1String("Get")) {
        return {ValueText::variant(propertyValue(property))};
    }
    if (member == QLatin1String("Notify")) {
        return {QStringLiteral("uint32 1")};
    }
    if (member == QLatin1String("ScreenShot")) {
        return {QStringLiteral("'/shots/1.png'")};
    }
    return {};
}

void ServiceCall::script(ScriptedServiceProcess& service, const Behaviour& behaviour) const
{
    const Behaviour right = Behaviour::reply(rightAnswer());
    QList<Behaviour> behaviours;
    for (int before = 1; before < number; ++before) {
        behaviours.append(right);
    }
    behaviours.append({behaviour, right});
    if (property.isEmpty()) {
        service.script(path, interface, member, behaviours);
    } else {
        service.scriptProperty(member, path, property, behaviours);
    }
}
