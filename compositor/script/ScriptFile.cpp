// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "script/ScriptFile.h"

#include "bus/BusInterfaces.h"

#include <QDBusVariant>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMetaMethod>
#include <QMetaProperty>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr double cMostSeconds = 1000000;
constexpr int cLongestErrorName = 255;

struct Refusal
{
    QString text;
};

[[noreturn]] void refuse(const QString& where, const QString& text)
{
    throw Refusal{where.isEmpty() ? text : QStringLiteral("%1: %2").arg(where, text)};
}

QString quoted(const QString& text)
{
    return QLatin1Char('"') + text + QLatin1Char('"');
}

QString listed(const QStringList& words)
{
    QStringList texts;
    for (const QString& word : words) {
        texts.append(quoted(word));
    }
    return texts.join(QStringLiteral(", "));
}

QString toText(const QString& where, const QJsonValue& value)
{
    if (!value.isString() || value.toString().isEmpty()) {
        refuse(where, QStringLiteral("a text is expected that is not empty"));
    }
    return value.toString();
}

/// `Number` is a whole number's type.
template <typename Number> Number toNumber(const QString& where, const QJsonValue& value, Number smallest)
{
    constexpr Number largest = std::numeric_limits<Number>::max();
    const double number = value.toDouble();
    if (!value.isDouble() || number < smallest || number > largest || std::floor(number) < number) {
        refuse(where, QStringLiteral("a whole number from %1 to %2 is expected").arg(smallest).arg(largest));
    }
    return static_cast<Number>(number);
}

bool toBool(const QString& where, const QJsonValue& value)
{
    if (!value.isBool()) {
        refuse(where, QStringLiteral("true or false is expected"));
    }
    return value.toBool();
}

int toMilliseconds(const QString& where, const QJsonValue& value)
{
    const double seconds = value.toDouble();
    if (!value.isDouble() || seconds < 0 || seconds > cMostSeconds) {
        refuse(where, QStringLiteral("a number of seconds from 0 to %1 is expected").arg(int(cMostSeconds)));
    }
    return static_cast<int>(std::lround(seconds * 1000));
}

/// A value whose type on the bus is not given.
QVariant toPlainValue(const QString& where, const QJsonValue& value)
{
    if (value.isDouble()) {
        const int number = value.toInt(std::numeric_limits<int>::min());
        return number == std::numeric_limits<int>::min() ? QVariant(value.toDouble()) : QVariant(number);
    }
    if (!value.isString() && !value.isBool()) {
        refuse(where, QStringLiteral("a text, a number, true or false is expected"));
    }
    return value.toVariant();
}

QVariantMap toPlainValues(const QString& where, const QJsonValue& value)
{
    if (!value.isObject()) {
        refuse(where, QStringLiteral("an object is expected"));
    }
    QVariantMap values;
    const QJsonObject object = value.toObject();
    for (auto member = object.begin(); member != object.end(); ++member) {
        values.insert(member.key(),
                      toPlainValue(QStringLiteral("%1, %2").arg(where, quoted(member.key())), member.value()));
    }
    return values;
}

QStringList toTexts(const QString& where, const QJsonValue& value)
{
    QStringList texts;
    const QJsonArray array = value.toArray();
    for (const QJsonValue& element : array) {
        texts.append(element.toString());
    }
    if (!value.isArray() || !std::all_of(array.begin(), array.end(), [](const QJsonValue& element) {
            return element.isString();
        })) {
        refuse(where, QStringLiteral("a list of texts is expected"));
    }
    return texts;
}

/// A value of a type that an interface has.
QVariant toValue(const QString& where, const QJsonValue& value, int type)
{
    switch (type) {
    case QMetaType::Bool:
        return toBool(where, value);
    case QMetaType::Int:
        return toNumber<int>(where, value, std::numeric_limits<int>::min());
    case QMetaType::UInt:
        return toNumber<uint>(where, value, 0);
    case QMetaType::QStringList:
        return toTexts(where, value);
    case QMetaType::QVariantMap:
        return toPlainValues(where, value);
    default:
        if (!value.isString()) {
            refuse(where, QStringLiteral("a text is expected"));
        }
        return value.toString();
    }
}

/// An object of the file, whose members are taken one by one; what is left in the end has no meaning.
class Members
{
public:
    Members(const QString& where, const QJsonValue& value)
        : mWhere(where)
        , mObject(value.toObject())
    {
        if (!value.isObject()) {
            refuse(where, QStringLiteral("an object is expected"));
        }
    }

    QString where() const
    {
        return mWhere;
    }

    QString where(const QString& key) const
    {
        return QStringLiteral("%1, %2").arg(mWhere, quoted(key));
    }

    bool has(const QString& key) const
    {
        return mObject.contains(key);
    }

    QJsonValue take(const QString& key)
    {
        if (!has(key)) {
            refuse(mWhere, QStringLiteral("%1 is missing").arg(quoted(key)));
        }
        return mObject.take(key);
    }

    QString takeText(const QString& key)
    {
        return toText(where(key), take(key));
    }

    int takeMilliseconds(const QString& key)
    {
        return toMilliseconds(where(key), take(key));
    }

    int takeCount(const QString& key)
    {
        return toNumber<int>(where(key), take(key), 1);
    }

    /// The one of `keys` that is there.
    QString choose(const QStringList& keys) const
    {
        QStringList found;
        for (const QString& key : keys) {
            if (has(key)) {
                found.append(key);
            }
        }
        if (found.isEmpty()) {
            const QStringList unknown = mObject.keys();
            refuse(mWhere,
                   QStringLiteral("one of %1 is expected%2")
                       .arg(listed(keys),
                            unknown.isEmpty() ? QString() : QStringLiteral(", not %1").arg(listed(unknown))));
        }
        if (found.size() > 1) {
            refuse(mWhere, QStringLiteral("only one of %1 is expected").arg(listed(found)));
        }
        return found.constFirst();
    }

    void finish() const
    {
        if (!mObject.isEmpty()) {
            refuse(mWhere, QStringLiteral("unknown key %1").arg(quoted(mObject.begin().key())));
        }
    }

private:
    QString mWhere;
    QJsonObject mObject;
};

/// The whole name of a member of an interface, taken apart.
struct MemberName
{
    const BusInterfaces::Interface* interface;
    QString member;
};

MemberName toMemberName(const QString& where, const QString& name)
{
    const int dot = name.lastIndexOf(QLatin1Char('.'));
    const BusInterfaces::Interface* const interface = BusInterfaces::find(name.left(dot));
    if (dot < 0 || interface == nullptr) {
        QStringList interfaces;
        for (const BusInterfaces::Interface& known : BusInterfaces::all()) {
            interfaces.append(known.name);
        }
        refuse(where,
               QStringLiteral("%1 is not a member of an interface; the interfaces are %2")
                   .arg(quoted(name), listed(interfaces)));
    }
    return {interface, name.mid(dot + 1)};
}

[[noreturn]] void refuseMember(const QString& where, const MemberName& name, const QString& kind,
                               const QStringList& known)
{
    refuse(where,
           QStringLiteral("%1 has no %2 %3; it has %4")
               .arg(name.interface->name, kind, quoted(name.member),
                    known.isEmpty() ? QStringLiteral("none") : listed(known)));
}

QMetaMethod findMethod(const QString& where, const MemberName& name)
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
    refuseMember(where, name, QStringLiteral("method"), known);
}

QMetaProperty findProperty(const QString& where, const MemberName& name)
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
    refuseMember(where, name, QStringLiteral("property"), known);
}

const QString cCall = QStringLiteral("call");
const QString cGet = QStringLiteral("get");
const QString cSet = QStringLiteral("set");
const QString cInterface = QStringLiteral("interface");
const QString cView = QStringLiteral("view");
const QStringList cCallKeys{cCall, cGet, cSet, cInterface};

CallPattern takeCalls(Members& members)
{
    const QString key = members.choose(cCallKeys);
    const QString where = members.where(key);
    const QString name = members.takeText(key);
    if (key == cInterface) {
        if (BusInterfaces::find(name) == nullptr) {
            refuse(where, QStringLiteral("there is no interface %1").arg(quoted(name)));
        }
        return {BusCall::Kind::Method, name, QString()};
    }
    const MemberName member = toMemberName(where, name);
    if (key == cCall) {
        findMethod(where, member);
        return {BusCall::Kind::Method, member.interface->name, member.member};
    }
    const QMetaProperty property = findProperty(where, member);
    if (key == cSet && !property.isWritable()) {
        refuse(where, QStringLiteral("%1 can only be read").arg(quoted(name)));
    }
    return {key == cSet ? BusCall::Kind::Write : BusCall::Kind::Read, member.interface->name, member.member};
}

Script::Event readEvent(const QString& where, const QJsonValue& value)
{
    Members members(where, value);
    Script::Event event;
    if (members.choose(cCallKeys + QStringList{cView}) == cView) {
        event.what = members.takeText(cView);
    } else {
        event.what = takeCalls(members);
    }
    if (members.has(QStringLiteral("times"))) {
        event.times = members.takeCount(QStringLiteral("times"));
    }
    members.finish();
    return event;
}

Script::AddView readView(const QString& where, const QJsonValue& value)
{
    Members members(where, value);
    View view;
    view.size = QSize(0, 0);
    view.uuid = members.takeText(QStringLiteral("uuid"));
    view.appId = members.takeText(QStringLiteral("appId"));
    view.pid = toNumber<quint32>(members.where(QStringLiteral("pid")), members.take(QStringLiteral("pid")), 1);
    view.title = members.has(QStringLiteral("title")) ? members.takeText(QStringLiteral("title")) : view.appId;
    view.processName =
        members.has(QStringLiteral("processName")) ? members.takeText(QStringLiteral("processName")) : view.appId;
    const QString attributes = QStringLiteral("attributes");
    if (members.has(attributes)) {
        view.attributes = toPlainValues(members.where(attributes), members.take(attributes));
    }
    members.finish();
    return {view};
}

/// The one member of an object, under a name of the bus.
struct NamedValue
{
    MemberName name;
    QString where;
    QJsonValue value;
};

NamedValue readNamedValue(const QString& where, const QJsonValue& value)
{
    const QJsonObject object = value.toObject();
    if (object.size() != 1) {
        refuse(where, QStringLiteral("an object with one member is expected"));
    }
    const QString key = object.begin().key();
    const QString inner = QStringLiteral("%1, %2").arg(where, quoted(key));
    return {toMemberName(where, key), inner, object.begin().value()};
}

Script::Action readSet(const QString& where, const QJsonValue& value)
{
    const NamedValue named = readNamedValue(where, value);
    const QMetaProperty property = findProperty(where, named.name);
    const bool isScreenSaverActive = named.name.member == QLatin1String("screenSaverActive");
    if (!property.isWritable() && !isScreenSaverActive) {
        refuse(named.where, QStringLiteral("this property can only be read"));
    }
    const QVariant content = toValue(named.where, named.value, property.userType());
    if (isScreenSaverActive) {
        return Script::SetScreenSaverActive{content.toBool()};
    }
    return Script::Call{named.name.interface->path,
                        QStringLiteral("org.freedesktop.DBus.Properties"),
                        QStringLiteral("Set"),
                        {named.name.interface->name, named.name.member, QVariant::fromValue(QDBusVariant(content))}};
}

Script::Call readCall(const QString& where, const QJsonValue& value)
{
    const NamedValue named = readNamedValue(where, value);
    const QMetaMethod method = findMethod(where, named.name);
    QVector<int> types;
    for (int i = 0; i < method.parameterCount(); ++i) {
        // What a method gives back beside its result are parameters, too: references, which have no type here.
        if (method.parameterType(i) != QMetaType::UnknownType) {
            types.append(method.parameterType(i));
        }
    }
    const QJsonArray array = named.value.toArray();
    if (!named.value.isArray() || array.size() != types.size()) {
        refuse(named.where, QStringLiteral("a list of the method's %1 arguments is expected").arg(types.size()));
    }
    QVariantList arguments;
    for (int i = 0; i < types.size(); ++i) {
        arguments.append(
            toValue(QStringLiteral("%1, argument %2").arg(named.where).arg(i + 1), array.at(i), types.at(i)));
    }
    return {named.name.interface->path, named.name.interface->name, named.name.member, arguments};
}

QString toErrorName(const QString& where, const QString& name)
{
    static const QRegularExpression pattern(QStringLiteral("^[A-Za-z_][A-Za-z0-9_]*(?:\\.[A-Za-z_][A-Za-z0-9_]*)+\\z"));
    if (name.size() > cLongestErrorName || !pattern.match(name).hasMatch()) {
        refuse(where, QStringLiteral("%1 is not the name of a D-Bus error").arg(quoted(name)));
    }
    return name;
}

Script::AddFault readFault(const QString& where, const QJsonValue& value)
{
    const QString error = QStringLiteral("error");
    const QString text = QStringLiteral("text");
    const QString delay = QStringLiteral("delay");
    const QString silent = QStringLiteral("silent");
    Members members(where, value);
    CallFault fault;
    fault.calls = takeCalls(members);
    if (members.has(silent)) {
        fault.isSilent = toBool(members.where(silent), members.take(silent));
    }
    const bool isAnswered = members.has(error) || members.has(delay);
    if (fault.isSilent == isAnswered) {
        refuse(where, QStringLiteral("either \"silent\": true or at least one of \"error\" and \"delay\" is expected"));
    }
    if (members.has(error)) {
        fault.errorName = toErrorName(members.where(error), members.takeText(error));
        fault.errorText = members.has(text) ? members.takeText(text) : QString();
    }
    if (members.has(delay)) {
        fault.delayMilliseconds = members.takeMilliseconds(delay);
    }
    if (members.has(QStringLiteral("seconds"))) {
        fault.lifetimeMilliseconds = members.takeMilliseconds(QStringLiteral("seconds"));
    }
    if (members.has(QStringLiteral("times"))) {
        fault.lifetimeCalls = members.takeCount(QStringLiteral("times"));
    }
    members.finish();
    return {fault};
}

Script::EndFault readEndFault(const QString& where, const QJsonValue& value)
{
    Members members(where, value);
    const CallPattern calls = takeCalls(members);
    members.finish();
    return {calls};
}

Script::SetService readService(const QString& where, const QJsonValue& value)
{
    const QString text = value.toString();
    if (text != QLatin1String("gone") && text != QLatin1String("back")) {
        refuse(where, QStringLiteral("\"gone\" or \"back\" is expected"));
    }
    return {text == QLatin1String("back")};
}

struct Verb
{
    QString key;
    Script::Action (*read)(const QString& where, const QJsonValue& value);
};

template <auto function> Script::Action readWith(const QString& where, const QJsonValue& value)
{
    return function(where, value);
}

Script::RemoveView readRemoveView(const QString& where, const QJsonValue& value)
{
    return {toText(where, value)};
}

Script::Freeze readFreeze(const QString& where, const QJsonValue& value)
{
    return {toMilliseconds(where, value)};
}

const QVector<Verb>& verbs()
{
    static const QVector<Verb> all{
        {QStringLiteral("add-view"), readWith<readView>},
        {QStringLiteral("remove-view"), readWith<readRemoveView>},
        {cSet, readSet},
        {cCall, readWith<readCall>},
        {QStringLiteral("fault"), readWith<readFault>},
        {QStringLiteral("end-fault"), readWith<readEndFault>},
        {QStringLiteral("service"), readWith<readService>},
        {QStringLiteral("freeze"), readWith<readFreeze>},
    };
    return all;
}

Script::Step readStep(int number, const QJsonValue& value)
{
    const QString at = QStringLiteral("at");
    const QString after = QStringLiteral("after");
    Members members(QStringLiteral("step %1").arg(number), value);
    Script::Step step;
    step.number = number;
    if (members.has(at)) {
        step.delayMilliseconds = members.takeMilliseconds(at);
    }
    if (members.has(after)) {
        step.after = readEvent(members.where(after), members.take(after));
    }
    QStringList keys;
    for (const Verb& verb : verbs()) {
        keys.append(verb.key);
    }
    const Verb& verb = verbs().at(keys.indexOf(members.choose(keys)));
    step.action = verb.read(members.where(verb.key), members.take(verb.key));
    members.finish();
    return step;
}

QJsonArray parse(const QByteArray& content)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(content, &error);
    if (document.isNull()) {
        const int line = content.left(error.offset).count('\n') + 1;
        refuse(QStringLiteral("line %1").arg(line), QStringLiteral("not JSON: %1").arg(error.errorString()));
    }
    if (!document.isArray()) {
        refuse(QString(), QStringLiteral("a list of steps is expected"));
    }
    return document.array();
}

} // namespace

Result<Script::Plan> ScriptFile::read(const QString& fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        return Error{QStringLiteral("%1: cannot be read: %2").arg(fileName, file.errorString())};
    }
    Script::Plan plan{fileName, {}};
    try {
        const QJsonArray steps = parse(file.readAll());
        for (int i = 0; i < steps.size(); ++i) {
            plan.steps.push_back(readStep(i + 1, steps.at(i)));
        }
    } catch (const Refusal& refusal) {
        return Error{QStringLiteral("%1: %2").arg(fileName, refusal.text)};
    }
    return plan;
}
