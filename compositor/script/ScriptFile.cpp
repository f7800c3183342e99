// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "script/ScriptFile.h"

#include "bus/BusInterfaces.h"
#include "script/JsonMembers.h"
#include "script/ViewReader.h"

#include <QDBusVariant>
#include <QFile>
#include <QMetaMethod>
#include <QMetaProperty>
#include <QRegularExpression>

namespace {

constexpr int cLongestErrorName = 255;

const QString cCall = QStringLiteral("call");
const QString cGet = QStringLiteral("get");
const QString cSet = QStringLiteral("set");
const QString cInterface = QStringLiteral("interface");
const QStringList cCallKeys{cCall, cGet, cSet, cInterface};
/// In the order of Script::ViewPattern::State.
const QStringList cViewStates{QStringLiteral("view"), QStringLiteral("current"), QStringLiteral("unresponsive"),
                              QStringLiteral("gone")};
const QString cSeconds = QStringLiteral("seconds");

/// Of a gesture: the next one waits for it.
constexpr int cMostSecondsOfInput = 60;
constexpr int cMostExitStatus = 255;

/// The qualified name of a member of an interface, split.
struct MemberName
{
    const BusInterfaces::Interface* interface;
    QString member;
};

/// Returns the member that `name`, which stands at `reader`, names.
MemberName toMemberName(const JsonReader& reader, const QString& name)
{
    const int dot = name.lastIndexOf(QLatin1Char('.'));
    const BusInterfaces::Interface* const interface = BusInterfaces::find(name.left(dot));
    if (dot < 0 || interface == nullptr) {
        QStringList interfaces;
        for (const BusInterfaces::Interface& known : BusInterfaces::all()) {
            interfaces.append(known.name);
        }
        reader.reject(QStringLiteral("%1 is not a member of an interface; the interfaces are %2")
                          .arg(JsonReader::quoted(name), JsonReader::quotedList(interfaces)));
    }
    return {interface, name.mid(dot + 1)};
}

[[noreturn]] void rejectMember(const JsonReader& reader, const MemberName& name, const QString& kind,
                               const QStringList& known)
{
    reader.reject(QStringLiteral("%1 has no %2 %3; it has %4")
                      .arg(name.interface->name, kind, JsonReader::quoted(name.member),
                           known.isEmpty() ? QStringLiteral("none") : JsonReader::quotedList(known)));
}

QMetaMethod findMethod(const JsonReader& reader, const MemberName& name)
{
    const QMetaObject* const description = name.interface->description;
    QStringList known;
    for (int i = description->methodOffset(); i < description->methodCount(); ++i) {
        const QMetaMethod method = description->method(i);
        if (method.methodType() != QMetaMethod::Slot) {
            continue;
        }
        known.append(QString::fromLatin1(method.name()));
        if (known.constLast() == name.member) {
            return method;
        }
    }
    rejectMember(reader, name, QStringLiteral("method"), known);
}

QMetaProperty findProperty(const JsonReader& reader, const MemberName& name)
{
    const QMetaObject* const description = name.interface->description;
    QStringList known;
    for (int i = description->propertyOffset(); i < description->propertyCount(); ++i) {
        const QMetaProperty property = description->property(i);
        known.append(QString::fromLatin1(property.name()));
        if (known.constLast() == name.member) {
            return property;
        }
    }
    rejectMember(reader, name, QStringLiteral("property"), known);
}

CallPattern takeCalls(JsonMembers& members)
{
    const QString key = members.choose(cCallKeys);
    const JsonReader reader = members.take(key);
    const QString name = reader.readText();
    if (key == cInterface) {
        if (BusInterfaces::find(name) == nullptr) {
            reader.reject(QStringLiteral("there is no interface %1").arg(JsonReader::quoted(name)));
        }
        return {BusCall::Kind::Method, name, QString()};
    }
    const MemberName member = toMemberName(reader, name);
    if (key == cCall) {
        findMethod(reader, member);
        return {BusCall::Kind::Method, member.interface->name, member.member};
    }
    const QMetaProperty property = findProperty(reader, member);
    if (key == cSet && !property.isWritable()) {
        reader.reject(QStringLiteral("%1 can only be read").arg(JsonReader::quoted(name)));
    }
    return {key == cSet ? BusCall::Kind::Write : BusCall::Kind::Read, member.interface->name, member.member};
}

int takeTimes(JsonMembers& members)
{
    return members.take(QStringLiteral("times")).readNumber<int>(1);
}

Script::Event readEvent(const JsonReader& reader)
{
    JsonMembers members(reader);
    Script::Event event;
    const int state = cViewStates.indexOf(members.choose(cCallKeys + cViewStates));
    if (state < 0) {
        event.what = takeCalls(members);
    } else {
        Script::ViewPattern pattern;
        pattern.state = static_cast<Script::ViewPattern::State>(state);
        pattern.appId = members.take(cViewStates.at(state)).readText();
        if (members.has(QStringLiteral("title"))) {
            pattern.title = members.take(QStringLiteral("title")).readText();
        }
        event.what = pattern;
    }
    if (members.has(QStringLiteral("times"))) {
        event.times = takeTimes(members);
    }
    members.finish();
    return event;
}

/// The one member of an object whose key is a name on the bus.
struct NamedValue
{
    MemberName name;
    JsonReader value;
};

NamedValue readNamedValue(const JsonReader& reader)
{
    const QJsonObject object = reader.value().toObject();
    if (object.size() != 1) {
        reader.reject(QStringLiteral("an object with one member is expected"));
    }
    const QString key = object.begin().key();
    return {toMemberName(reader, key), reader.part(JsonReader::quoted(key), object.begin().value())};
}

Script::Action readSet(const JsonReader& reader)
{
    const NamedValue named = readNamedValue(reader);
    const QMetaProperty property = findProperty(reader, named.name);
    const bool isScreenSaverActive = named.name.member == QLatin1String("screenSaverActive");
    if (!property.isWritable() && !isScreenSaverActive) {
        named.value.reject(QStringLiteral("this property can only be read"));
    }
    const QVariant content = named.value.readValue(property.userType());
    if (isScreenSaverActive) {
        return Script::SetScreenSaverActive{content.toBool()};
    }
    return Script::Call{named.name.interface->path,
                        QStringLiteral("org.freedesktop.DBus.Properties"),
                        QStringLiteral("Set"),
                        {named.name.interface->name, named.name.member, QVariant::fromValue(QDBusVariant(content))}};
}

Script::Call readCall(const JsonReader& reader)
{
    const NamedValue named = readNamedValue(reader);
    const QMetaMethod method = findMethod(reader, named.name);
    QVector<int> types;
    for (int i = 0; i < method.parameterCount(); ++i) {
        // Out arguments beside the result are parameters, too: references, whose type Qt does not know.
        if (method.parameterType(i) != QMetaType::UnknownType) {
            types.append(method.parameterType(i));
        }
    }
    const QString description = QStringLiteral("a list of the method's %1 arguments").arg(types.size());
    const QVector<JsonReader> list = named.value.readList(description);
    if (list.size() != types.size()) {
        named.value.reject(QStringLiteral("%1 is expected").arg(description));
    }
    QVariantList arguments;
    for (int i = 0; i < types.size(); ++i) {
        const JsonReader argument = named.value.part(QStringLiteral("argument %1").arg(i + 1), list.at(i).value());
        arguments.append(argument.readValue(types.at(i)));
    }
    return {named.name.interface->path, named.name.interface->name, named.name.member, arguments};
}

QString readErrorName(const JsonReader& reader)
{
    static const QRegularExpression pattern(QStringLiteral("^[A-Za-z_][A-Za-z0-9_]*(?:\\.[A-Za-z_][A-Za-z0-9_]*)+\\z"));
    const QString name = reader.readText();
    if (name.size() > cLongestErrorName || !pattern.match(name).hasMatch()) {
        reader.reject(QStringLiteral("%1 is not the name of a D-Bus error").arg(JsonReader::quoted(name)));
    }
    return name;
}

Script::AddFault readFault(const JsonReader& reader)
{
    const QString error = QStringLiteral("error");
    const QString text = QStringLiteral("text");
    const QString delay = QStringLiteral("delay");
    const QString silent = QStringLiteral("silent");
    JsonMembers members(reader);
    CallFault fault;
    fault.calls = takeCalls(members);
    if (members.has(silent)) {
        fault.isSilent = members.take(silent).readBool();
    }
    const bool isAnswered = members.has(error) || members.has(delay);
    if (fault.isSilent == isAnswered) {
        reader.reject(QStringLiteral("either \"silent\": true or at least one of \"error\" and \"delay\" is expected"));
    }
    if (members.has(error)) {
        fault.errorName = readErrorName(members.take(error));
        fault.errorText = members.has(text) ? members.take(text).readText() : QString();
    }
    if (members.has(delay)) {
        fault.delayMilliseconds = members.take(delay).readMilliseconds();
    }
    if (members.has(cSeconds)) {
        fault.lifetimeMilliseconds = members.take(cSeconds).readMilliseconds();
    }
    if (members.has(QStringLiteral("times"))) {
        fault.lifetimeCalls = takeTimes(members);
    }
    members.finish();
    return {fault};
}

Script::EndFault readEndFault(const JsonReader& reader)
{
    JsonMembers members(reader);
    const CallPattern calls = takeCalls(members);
    members.finish();
    return {calls};
}

Script::SetService readService(const JsonReader& reader)
{
    return {reader.readWord({QStringLiteral("gone"), QStringLiteral("back")}) == 1};
}

Script::RemoveView readRemoveView(const JsonReader& reader)
{
    return {reader.readText()};
}

Script::SetBlanking readBlanking(const JsonReader& reader)
{
    return {reader.readWord({QStringLiteral("automatic"), QStringLiteral("scripted")}) == 0};
}

Script::Freeze readFreeze(const JsonReader& reader)
{
    return {reader.readMilliseconds()};
}

Script::Hang readHang(const JsonReader& reader)
{
    JsonMembers members(reader);
    Script::Hang hang;
    hang.appId = members.take(QStringLiteral("view")).readText();
    if (members.has(cSeconds)) {
        hang.milliseconds = members.take(cSeconds).readMilliseconds();
    }
    members.finish();
    return hang;
}

Script::Restart readRestart(const JsonReader& reader)
{
    return {reader.readMilliseconds()};
}

Script::End readEnd(const JsonReader& reader)
{
    return {reader.readNumber<int>(0, cMostExitStatus)};
}

QPointF takePosition(JsonMembers& members)
{
    const double x = members.take(QStringLiteral("x")).readDecimal();
    return {x, members.take(QStringLiteral("y")).readDecimal()};
}

Gesture::Space takeSpace(JsonMembers& members)
{
    const QString in = QStringLiteral("in");
    const QStringList words{QStringLiteral("output"), QStringLiteral("view")};
    return members.has(in) && members.take(in).readWord(words) == 1 ? Gesture::Space::View : Gesture::Space::Output;
}

int takeInputSeconds(JsonMembers& members, int defaultMilliseconds)
{
    return members.has(cSeconds) ? members.take(cSeconds).readMilliseconds(cMostSecondsOfInput) : defaultMilliseconds;
}

Script::Input readTap(const JsonReader& reader)
{
    JsonMembers members(reader);
    const QPointF position = takePosition(members);
    Gesture gesture = Gesture::tap(position, takeInputSeconds(members, 0));
    gesture.space = takeSpace(members);
    members.finish();
    return {gesture};
}

Script::Input readClick(const JsonReader& reader)
{
    const QString key = QStringLiteral("button");
    const QStringList names{QStringLiteral("left"), QStringLiteral("right"), QStringLiteral("middle")};
    const Qt::MouseButton buttons[] = {Qt::LeftButton, Qt::RightButton, Qt::MiddleButton};
    JsonMembers members(reader);
    const QPointF position = takePosition(members);
    const Qt::MouseButton button = buttons[members.has(key) ? members.take(key).readWord(names) : 0];
    Gesture gesture = Gesture::click(position, button, takeInputSeconds(members, 0));
    gesture.space = takeSpace(members);
    members.finish();
    return {gesture};
}

QPointF readPoint(const JsonReader& reader)
{
    const QString description = QStringLiteral("a list of two numbers, x and y,");
    const QVector<JsonReader> numbers = reader.readList(description);
    if (numbers.size() != 2) {
        reader.reject(QStringLiteral("%1 is expected").arg(description));
    }
    return {numbers.at(0).readDecimal(), numbers.at(1).readDecimal()};
}

Script::Input readDrag(const JsonReader& reader)
{
    constexpr int cUsualMilliseconds = 300;
    const QString key = QStringLiteral("with");
    JsonMembers members(reader);
    const QPointF from = readPoint(members.take(QStringLiteral("from")));
    const QPointF to = readPoint(members.take(QStringLiteral("to")));
    const int milliseconds = takeInputSeconds(members, cUsualMilliseconds);
    const bool isPointer =
        members.has(key) && members.take(key).readWord({QStringLiteral("finger"), QStringLiteral("pointer")}) == 1;
    Gesture gesture =
        isPointer ? Gesture::dragPointer(from, to, milliseconds) : Gesture::dragFinger(from, to, milliseconds);
    gesture.space = takeSpace(members);
    members.finish();
    return {gesture};
}

Script::Input readPointer(const JsonReader& reader)
{
    JsonMembers members(reader);
    Gesture gesture = Gesture::movePointer(takePosition(members));
    gesture.space = takeSpace(members);
    members.finish();
    return {gesture};
}

Script::Input readScroll(const JsonReader& reader)
{
    constexpr int cMostSteps = 1000;
    const auto takeSteps = [](JsonMembers& members, const QString& key) {
        return members.has(key) ? members.take(key).readNumber<int>(-cMostSteps, cMostSteps) : 0;
    };
    JsonMembers members(reader);
    const QPointF position = takePosition(members);
    const QPoint steps(takeSteps(members, QStringLiteral("right")), takeSteps(members, QStringLiteral("down")));
    Gesture gesture = Gesture::scroll(position, steps);
    gesture.space = takeSpace(members);
    members.finish();
    if (steps.isNull()) {
        reader.reject(QStringLiteral("steps \"down\" or \"right\" are expected, negative ones for the other way"));
    }
    return {gesture};
}

template <typename Value> Value valueOf(const JsonReader& reader, Result<Value> result)
{
    if (const auto* const error = std::get_if<Error>(&result)) {
        reader.reject(error->text);
    }
    return std::get<Value>(std::move(result));
}

Script::Input readType(const JsonReader& reader, const Keymap& keymap)
{
    Gesture gesture;
    const QVector<QVector<quint32>> strokes = valueOf(reader, keymap.readText(reader.readText()));
    for (const QVector<quint32>& keys : strokes) {
        gesture.pressKeys(keys);
        gesture.releaseKeys(keys);
    }
    return {gesture};
}

Script::Input readKey(const JsonReader& reader, const Keymap& keymap)
{
    const QString press = QStringLiteral("press");
    const QString release = QStringLiteral("release");
    const QString hold = QStringLiteral("hold");
    const auto readKeys = [&keymap](const JsonReader& keys) {
        return valueOf(keys, keymap.readKeys(keys.readText()));
    };
    Gesture gesture;
    if (!reader.value().isObject()) {
        const QVector<quint32> keys = readKeys(reader);
        gesture.pressKeys(keys);
        gesture.releaseKeys(keys);
        return {gesture};
    }
    JsonMembers members(reader);
    const QString action = members.choose({press, release, hold});
    const QVector<quint32> keys = readKeys(members.take(action));
    if (action != release) {
        gesture.pressKeys(keys);
    }
    if (action != press) {
        gesture.releaseKeys(keys, action == hold ? members.take(cSeconds).readMilliseconds(cMostSecondsOfInput) : 0);
    }
    members.finish();
    return {gesture};
}

struct Verb
{
    QString key;
    Script::Action (*read)(const JsonReader& reader, const Keymap& keymap);
};

template <auto function> Script::Action readWith(const JsonReader& reader, const Keymap& keymap)
{
    if constexpr (std::is_invocable_v<decltype(function), const JsonReader&, const Keymap&>) {
        return function(reader, keymap);
    } else {
        return function(reader);
    }
}

const QVector<Verb>& verbs()
{
    static const QVector<Verb> all{
        {QStringLiteral("add-view"), readWith<ViewReader::readView>},
        {QStringLiteral("change-view"), readWith<ViewReader::readChange>},
        {QStringLiteral("order-views"), readWith<ViewReader::readOrder>},
        {QStringLiteral("current-view"), readWith<ViewReader::readCurrent>},
        {QStringLiteral("remove-view"), readWith<readRemoveView>},
        {QStringLiteral("blanking"), readWith<readBlanking>},
        {cSet, readWith<readSet>},
        {cCall, readWith<readCall>},
        {QStringLiteral("fault"), readWith<readFault>},
        {QStringLiteral("end-fault"), readWith<readEndFault>},
        {QStringLiteral("service"), readWith<readService>},
        {QStringLiteral("freeze"), readWith<readFreeze>},
        {QStringLiteral("hang"), readWith<readHang>},
        {QStringLiteral("restart"), readWith<readRestart>},
        {QStringLiteral("end"), readWith<readEnd>},
        {QStringLiteral("tap"), readWith<readTap>},
        {QStringLiteral("click"), readWith<readClick>},
        {QStringLiteral("drag"), readWith<readDrag>},
        {QStringLiteral("pointer"), readWith<readPointer>},
        {QStringLiteral("scroll"), readWith<readScroll>},
        {QStringLiteral("type"), readWith<readType>},
        {QStringLiteral("key"), readWith<readKey>},
    };
    return all;
}

Script::Action takeAction(JsonMembers& members, const Keymap& keymap)
{
    QStringList keys;
    for (const Verb& verb : verbs()) {
        keys.append(verb.key);
    }
    const Verb& verb = verbs().at(keys.indexOf(members.choose(keys)));
    const Script::Action action = verb.read(members.take(verb.key), keymap);
    members.finish();
    return action;
}

Script::Step readStep(int number, const QJsonValue& value, const Keymap& keymap)
{
    const QString at = QStringLiteral("at");
    const QString after = QStringLiteral("after");
    JsonMembers members(JsonReader(QStringLiteral("step %1").arg(number), value));
    Script::Step step;
    step.number = number;
    if (members.has(at)) {
        step.delayMilliseconds = members.take(at).readMilliseconds();
    }
    if (members.has(after)) {
        step.after = readEvent(members.take(after));
    }
    step.action = takeAction(members, keymap);
    return step;
}

} // namespace

Result<Script::Plan> ScriptFile::read(const QString& fileName, const Keymap& keymap)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        return Error{QStringLiteral("%1: cannot be read: %2").arg(fileName, file.errorString())};
    }
    Script::Plan plan{fileName, {}};
    try {
        const QVector<JsonReader> steps = JsonReader(file.readAll()).readList(QStringLiteral("a list of steps"));
        for (int i = 0; i < steps.size(); ++i) {
            plan.steps.push_back(readStep(i + 1, steps.at(i).value(), keymap));
        }
    } catch (const Error& error) {
        return Error{QStringLiteral("%1: %2").arg(fileName, error.text)};
    }
    return plan;
}

Result<Script::Action> ScriptFile::readAction(const QByteArray& json, const Keymap& keymap)
{
    try {
        JsonMembers members(JsonReader(QStringLiteral("the step"), JsonReader(json).value()));
        return takeAction(members, keymap);
    } catch (const Error& error) {
        return error;
    }
}
