// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ScriptedServiceProcess.h"

#include "PrivateBus.h"
#include "ValueText.h"

#include <QJsonArray>

namespace {

const QString cTaskSwitcherPath = QStringLiteral("/taskswitcher");
const QString cTaskSwitcherInterface = QStringLiteral("de.Telvaro.taskswitcher");
const QString cScreenPath = QStringLiteral("/screen");
const QString cScreenInterface = QStringLiteral("de.Telvaro.screen");
const QString cPropertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");

QJsonObject makeCommand(const QString& name)
{
    return {{QStringLiteral("command"), name}};
}

QJsonObject makeScript(const QString& path, const QString& interface, const QString& member, const QString& property,
                       const QList<Behaviour>& behaviours)
{
    QJsonArray descriptions;
    for (const Behaviour& behaviour : behaviours) {
        descriptions.append(behaviour.toJson());
    }
    QJsonObject script = makeCommand(QStringLiteral("script"));
    script.insert(QStringLiteral("path"), path);
    script.insert(QStringLiteral("interface"), interface);
    script.insert(QStringLiteral("member"), member);
    script.insert(QStringLiteral("property"), property);
    script.insert(QStringLiteral("behaviours"), descriptions);
    return script;
}

} // namespace

ServiceSignal ServiceSignal::propertiesChanged(const QString& path, const QString& interface, const QString& changed,
                                               const QStringList& invalidated)
{
    return {path,
            cPropertiesInterface,
            QStringLiteral("PropertiesChanged"),
            {ValueText::string(interface), changed, ValueText::strings(invalidated)}};
}

QJsonObject ServiceSignal::toJson() const
{
    QJsonObject signal{{QStringLiteral("path"), path},
                       {QStringLiteral("interface"), interface},
                       {QStringLiteral("member"), member},
                       {QStringLiteral("arguments"), QJsonArray::fromStringList(arguments)},
                       {QStringLiteral("count"), count}};
    if (!destination.isEmpty()) {
        signal.insert(QStringLiteral("destination"), destination);
    }
    return signal;
}

Behaviour::Behaviour(const QJsonObject& description)
    : mDescription(description)
{
}

Behaviour Behaviour::reply(const QStringList& arguments)
{
    return Behaviour({{QStringLiteral("reply"), QJsonArray::fromStringList(arguments)}});
}

Behaviour Behaviour::error(const QString& name, const QString& message)
{
    return Behaviour({{QStringLiteral("error"), name}, {QStringLiteral("message"), message}});
}

Behaviour Behaviour::silence()
{
    return Behaviour({{QStringLiteral("silence"), true}});
}

Behaviour Behaviour::plain()
{
    return Behaviour({{QStringLiteral("plain"), true}});
}

Behaviour Behaviour::exit()
{
    return Behaviour({{QStringLiteral("exit"), true}});
}

Behaviour Behaviour::killing(qint64 processId)
{
    return Behaviour({{QStringLiteral("kill"), processId}});
}

Behaviour Behaviour::after(int milliseconds) const
{
    QJsonObject description = mDescription;
    description.insert(QStringLiteral("delay"), milliseconds);
    return Behaviour(description);
}

Behaviour Behaviour::withSignal(const ServiceSignal& signal) const
{
    QJsonObject description = mDescription;
    QJsonArray signalsBefore = description.value(QLatin1String("signals")).toArray();
    signalsBefore.append(signal.toJson());
    description.insert(QStringLiteral("signals"), signalsBefore);
    return Behaviour(description);
}

QJsonObject Behaviour::toJson() const
{
    return mDescription;
}

ScriptedServiceProcess::ScriptedServiceProcess()
    : SteeredProcess(QStringLiteral("scripted-service"),
                     {PrivateBus::address(), QStringLiteral(TELVARO_INTERFACE_DIRECTORY)})
{
}

void ScriptedServiceProcess::start()
{
    SteeredProcess::start();
    reset();
}

void ScriptedServiceProcess::reset()
{
    command(makeCommand(QStringLiteral("reset")));
    setViews(ValueText::views({}));
    setCurrentView(QString());
    setProperty(cScreenPath, cScreenInterface, QStringLiteral("screenSaverActive"), QStringLiteral("false"));
    setProperty(cScreenPath, cScreenInterface, QStringLiteral("screenSaverEnabled"), QStringLiteral("true"));
    setProperty(cScreenPath, cScreenInterface, QStringLiteral("screenSaverTimeoutSeconds"), QStringLiteral("300"));
    setProperty(cScreenPath, cScreenInterface, QStringLiteral("orientation"), QStringLiteral("'0'"));
    setProperty(cScreenPath, cScreenInterface, QStringLiteral("fullScreen"), QStringLiteral("false"));
    const QString overlayPath = QStringLiteral("/globaloverlay");
    const QString overlayInterface = QStringLiteral("de.Telvaro.globaloverlay");
    script(overlayPath, overlayInterface, QStringLiteral("Show"), {Behaviour::reply()});
    script(overlayPath, overlayInterface, QStringLiteral("Hide"), {Behaviour::reply()});
    script(QStringLiteral("/org/freedesktop/Notifications"), QStringLiteral("org.freedesktop.Notifications"),
           QStringLiteral("Notify"), {Behaviour::reply({QStringLiteral("uint32 1")})});
    script(QStringLiteral("/screenshot"), QStringLiteral("de.Telvaro.screenshot"), QStringLiteral("ScreenShot"),
           {Behaviour::reply({QStringLiteral("'/shots/1.png'")})});
}

void ScriptedServiceProcess::own(const QString& name)
{
    QJsonObject own = makeCommand(QStringLiteral("own"));
    own.insert(QStringLiteral("name"), name);
    command(own);
}

void ScriptedServiceProcess::takeOver(const QString& name)
{
    QJsonObject own = makeCommand(QStringLiteral("own"));
    own.insert(QStringLiteral("name"), name);
    own.insert(QStringLiteral("replaceable"), true);
    command(own);
}

void ScriptedServiceProcess::release(const QString& name)
{
    QJsonObject release = makeCommand(QStringLiteral("release"));
    release.insert(QStringLiteral("name"), name);
    command(release);
}

void ScriptedServiceProcess::script(const QString& path, const QString& interface, const QString& member,
                                    const QList<Behaviour>& behaviours)
{
    command(makeScript(path, interface, member, QString(), behaviours));
}

void ScriptedServiceProcess::scriptProperty(const QString& method, const QString& path, const QString& property,
                                            const QList<Behaviour>& behaviours)
{
    command(makeScript(path, cPropertiesInterface, method, property, behaviours));
}

void ScriptedServiceProcess::setProperty(const QString& path, const QString& interface, const QString& name,
                                         const QString& value)
{
    QJsonObject property = makeCommand(QStringLiteral("property"));
    property.insert(QStringLiteral("path"), path);
    property.insert(QStringLiteral("interface"), interface);
    property.insert(QStringLiteral("property"), name);
    property.insert(QStringLiteral("value"), value);
    command(property);
}

void ScriptedServiceProcess::setViews(const QString& value)
{
    setProperty(cTaskSwitcherPath, cTaskSwitcherInterface, QStringLiteral("views"), value);
}

void ScriptedServiceProcess::setCurrentView(const QString& uuid)
{
    setProperty(cTaskSwitcherPath, cTaskSwitcherInterface, QStringLiteral("currentView"), ValueText::string(uuid));
}

void ScriptedServiceProcess::setStateful(bool enabled)
{
    QJsonObject stateful = makeCommand(QStringLiteral("stateful"));
    stateful.insert(QStringLiteral("enabled"), enabled);
    command(stateful);
}

void ScriptedServiceProcess::setLate(const QList<int>& delays)
{
    QJsonArray list;
    for (const int delay : delays) {
        list.append(delay);
    }
    QJsonObject late = makeCommand(QStringLiteral("late"));
    late.insert(QStringLiteral("delays"), list);
    command(late);
}

void ScriptedServiceProcess::emitSignal(const ServiceSignal& signal, int count)
{
    // Pending subscriptions of this process must be handled first.
    PrivateBus::synchronise();
    QJsonObject emission = signal.toJson();
    emission.insert(QStringLiteral("command"), QStringLiteral("emit"));
    emission.insert(QStringLiteral("count"), count * signal.count);
    command(emission);
}

QList<RecordedCall> ScriptedServiceProcess::takeCalls()
{
    return RecordedCall::fromJson(
        command(makeCommand(QStringLiteral("calls"))).value(QLatin1String("calls")).toArray());
}

QStringList ScriptedServiceProcess::takeDescriptions()
{
    QStringList descriptions;
    for (const RecordedCall& call : takeCalls()) {
        descriptions.append(call.description());
    }
    return descriptions;
}

QString ScriptedServiceProcess::uniqueName()
{
    return command(makeCommand(QStringLiteral("uniqueName"))).value(QLatin1String("uniqueName")).toString();
}
