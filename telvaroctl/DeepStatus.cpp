// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "DeepStatus.h"

#include "Json.h"
#include "Service.h"
#include "TimeLimit.h"
#include "ViewFields.h"

#include <TelvaroDBusDefinitions.h>
#include <TelvaroScreenDBusConnector.h>
#include <TelvaroTaskSwitcherDBusConnector.h>

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QMap>
#include <QTimer>
#include <QXmlStreamReader>

#include <algorithm>
#include <limits>

namespace {

using Names = TelvaroDBusDefinitions;
using Screen = TelvaroScreenDBusConnector;
using TaskSwitcher = TelvaroTaskSwitcherDBusConnector;

struct Member
{
    /// "property", "method" or "signal"
    QString kind;
    /// The types of its arguments: those that go in, "->", and those that come out; of a property its type and access.
    QString types;
};

/// The interfaces of an object by their names, with the members by theirs.
using Interfaces = QMap<QString, QMap<QString, Member>>;

struct Object
{
    QString path;
    Interfaces interfaces;
};

/// Reads a D-Bus introspection document.
Object parseDescription(const QString& xml)
{
    Object object;
    QXmlStreamReader reader(xml);
    QString interface;
    QString member;
    while (!reader.atEnd()) {
        reader.readNext();
        if (!reader.isStartElement()) {
            continue;
        }
        const QXmlStreamAttributes attributes = reader.attributes();
        const auto value = [&attributes](const char* name) {
            return attributes.value(QLatin1String(name)).toString();
        };
        const QString element = reader.name().toString();
        if (element == QLatin1String("node") && object.path.isEmpty()) {
            object.path = value("name");
        } else if (element == QLatin1String("interface")) {
            interface = value("name");
        } else if (element == QLatin1String("property")) {
            object.interfaces[interface][value("name")] = {element, value("type") + QLatin1Char(' ') + value("access")};
        } else if (element == QLatin1String("method") || element == QLatin1String("signal")) {
            member = value("name");
            object.interfaces[interface][member] = {element, QStringLiteral("->")};
        } else if (element == QLatin1String("arg")) {
            Member& owner = object.interfaces[interface][member];
            const bool isIn = owner.kind == QLatin1String("method") && value("direction") != QLatin1String("out");
            owner.types.insert(isIn ? owner.types.indexOf(QLatin1String("->")) : owner.types.size(), value("type"));
        }
    }
    return object;
}

QList<Object> expectedObjects()
{
    QList<Object> objects;
    const QDir files(QStringLiteral(":/interfaces"));
    const QStringList names = files.entryList();
    for (const QString& name : names) {
        QFile file(files.filePath(name));
        file.open(QIODevice::ReadOnly);
        objects.append(parseDescription(QString::fromUtf8(file.readAll())));
    }
    return objects;
}

QString typeOf(const QVariant& value)
{
    return value.userType() == qMetaTypeId<QDBusArgument>()
        ? value.value<QDBusArgument>().currentSignature()
        : QString::fromLatin1(QDBusMetaType::typeToSignature(value.userType()));
}

/// The type of the property "views", the only one that is not basic.
const QString cViewsType = QStringLiteral("a(ssssssuua{sv})");

QList<TaskSwitcher::TaskSwitcherEntry> toViews(const QVariant& value)
{
    QList<TaskSwitcher::TaskSwitcherEntry> views;
    // Qt ends a process that reads another type.
    if (typeOf(value) == cViewsType) {
        value.value<QDBusArgument>() >> views;
    }
    return views;
}

QString toText(const QVariant& value)
{
    if (value.userType() != qMetaTypeId<QDBusArgument>()) {
        return value.toString();
    }
    QJsonArray array;
    const auto views = toViews(value);
    for (const TaskSwitcher::TaskSwitcherEntry& view : views) {
        array.append(toJson(ViewFields::of(view, false)));
    }
    return QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Compact));
}

/// Collects the values that PropertiesChanged carries.
class Notifications : public QObject
{
    Q_OBJECT

public:
    explicit Notifications(const QString& path)
    {
        Service::bus().connect(Names::getServiceName(), path, Names::getPropertyInterface(), Screen::cPropertiesChanged,
                               {}, QStringLiteral("sa{sv}as"), this,
                               SLOT(onPropertiesChanged(QString, QVariantMap, QStringList)));
    }

    /// Waits until all of them have been notified, or for the time. Returns the values, invalid ones for properties
    /// that were invalidated.
    QVariantMap waitFor(const QStringList& properties, int milliseconds)
    {
        QEventLoop loop;
        QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
        connect(this, &Notifications::received, &loop, [this, &loop, &properties] {
            const bool isComplete = std::all_of(properties.begin(), properties.end(), [this](const QString& property) {
                return mValues.contains(property);
            });
            if (isComplete) {
                loop.quit();
            }
        });
        QTimer::singleShot(0, this, &Notifications::received);
        loop.exec();
        return mValues;
    }

Q_SIGNALS:
    void received();

private Q_SLOTS:
    void onPropertiesChanged(const QString& /*interface*/, const QVariantMap& changed, const QStringList& invalidated)
    {
        for (auto value = changed.begin(); value != changed.end(); ++value) {
            mValues.insert(value.key(), value.value());
        }
        for (const QString& property : invalidated) {
            mValues.insert(property, QVariant());
        }
        Q_EMIT received();
    }

private:
    QVariantMap mValues;
};

/// Examines one interface of one object.
class Examination
{
public:
    Examination(const QString& path, const QString& interface, const QMap<QString, Member>& members)
        : mPath(path)
        , mInterface(interface)
        , mMembers(members)
    {
    }

    void compareDescription()
    {
        QDBusPendingReply<QString> reply =
            call(QStringLiteral("org.freedesktop.DBus.Introspectable"), QStringLiteral("Introspect"), {});
        reply.waitForFinished();
        const QMap<QString, Member> described = parseDescription(reply.value()).interfaces.value(mInterface);
        for (auto member = mMembers.begin(); member != mMembers.end(); ++member) {
            const auto found = described.find(member.key());
            if (found == described.end()) {
                note(member.key(), QStringLiteral("is missing from the introspection"));
            } else if (found->kind != member->kind || found->types != member->types) {
                note(member.key(),
                     QStringLiteral("is introspected as %1 %2 instead of %3 %4")
                         .arg(found->kind, found->types, member->kind, member->types));
            }
        }
    }

    void compareReads()
    {
        if (properties().isEmpty()) {
            return;
        }
        QDBusPendingReply<QVariantMap> all =
            call(Names::getPropertyInterface(), QStringLiteral("GetAll"), {mInterface});
        mAnswers = readAll();
        all.waitForFinished();
        const QVariantMap values = all.value();
        const QStringList names = properties();
        for (const QString& name : names) {
            const auto answer = mAnswers.constFind(name);
            if (answer == mAnswers.constEnd()) {
                continue;
            }
            compareType(name, *answer, QStringLiteral("answers"));
            if (all.isError()) {
                note(name, QStringLiteral("GetAll: %1").arg(Service::reason(all.error())));
            } else if (!values.contains(name)) {
                note(name, QStringLiteral("is missing from GetAll"));
            } else if (typeOf(values.value(name)) != typeOf(*answer) || toText(values.value(name)) != toText(*answer)) {
                note(name,
                     QStringLiteral("Get answers '%1', GetAll '%2'").arg(toText(*answer), toText(values.value(name))));
            }
        }
    }

    /// Changes properties that can be written, looks at what is notified, and restores them.
    void compareNotifications()
    {
        const QVariantMap changes = otherValues();
        if (changes.isEmpty()) {
            return;
        }
        Notifications notifications(mPath);
        const QStringList written = write(changes);
        const QVariantMap notified = notifications.waitFor(written, TimeLimit::remaining() / 8);
        const QVariantMap answers = readAll();
        for (const QString& name : written) {
            const QVariant answer = answers.value(name);
            if (answer != changes.value(name)) {
                note(name,
                     QStringLiteral("'%1' was written, '%2' is answered")
                         .arg(toText(changes.value(name)), toText(answer)));
            } else if (!notified.contains(name)) {
                note(name, QStringLiteral("changes without a notification"));
            } else if (notified.value(name).isValid()) {
                compareType(name, notified.value(name), QStringLiteral("notifies"));
                if (toText(notified.value(name)) != toText(answer)) {
                    note(name,
                         QStringLiteral("notifies '%1', answers '%2'")
                             .arg(toText(notified.value(name)), toText(answer)));
                }
            }
        }
        QVariantMap restored;
        for (const QString& name : written) {
            restored.insert(name, mAnswers.value(name));
        }
        write(restored);
    }

    QList<DeepStatus::Item> items() const
    {
        QList<DeepStatus::Item> result;
        for (auto member = mMembers.begin(); member != mMembers.end(); ++member) {
            result.append({mInterface + QLatin1Char('.') + member.key(), mProblems.value(member.key())});
        }
        return result;
    }

private:
    void note(const QString& member, const QString& problem)
    {
        mProblems[member].append(problem);
    }

    QStringList properties() const
    {
        QStringList names;
        for (auto member = mMembers.begin(); member != mMembers.end(); ++member) {
            if (member->kind == QLatin1String("property")) {
                names.append(member.key());
            }
        }
        return names;
    }

    void compareType(const QString& name, const QVariant& value, const QString& verb)
    {
        const QString expected = mMembers.value(name).types.section(QLatin1Char(' '), 0, 0);
        if (typeOf(value) != expected) {
            note(name, QStringLiteral("%1 the type '%2' instead of '%3'").arg(verb, typeOf(value), expected));
        }
    }

    QDBusPendingCall call(const QString& interface, const QString& method, const QVariantList& arguments) const
    {
        QDBusMessage message = QDBusMessage::createMethodCall(Names::getServiceName(), mPath, interface, method);
        message.setAutoStartService(false);
        message.setArguments(arguments);
        return Service::bus().asyncCall(message, TimeLimit::remainingButReserve());
    }

    QVariantMap readAll()
    {
        QMap<QString, QDBusPendingReply<QDBusVariant>> replies;
        const QStringList names = properties();
        for (const QString& name : names) {
            replies.insert(name, call(Names::getPropertyInterface(), Names::getPropertyMehodGet(), {mInterface, name}));
        }
        QVariantMap values;
        for (auto reply = replies.begin(); reply != replies.end(); ++reply) {
            reply->waitForFinished();
            if (reply->isError()) {
                note(reply.key(), QStringLiteral("cannot be read: %1").arg(Service::reason(reply->error())));
            } else {
                values.insert(reply.key(), reply->value().variant());
            }
        }
        return values;
    }

    /// Returns the names of those that were accepted.
    QStringList write(const QVariantMap& values)
    {
        QMap<QString, QDBusPendingReply<>> replies;
        for (auto value = values.begin(); value != values.end(); ++value) {
            replies.insert(value.key(),
                           call(Names::getPropertyInterface(), Names::getPropertyMehodSet(),
                                {mInterface, value.key(), QVariant::fromValue(QDBusVariant(value.value()))}));
        }
        QStringList accepted;
        for (auto reply = replies.begin(); reply != replies.end(); ++reply) {
            reply->waitForFinished();
            if (reply->isError()) {
                note(reply.key(), QStringLiteral("cannot be written: %1").arg(Service::reason(reply->error())));
            } else {
                accepted.append(reply.key());
            }
        }
        return accepted;
    }

    /// Returns valid values of the properties that can be written, other than the present ones.
    QVariantMap otherValues() const
    {
        QVariantMap values;
        for (auto answer = mAnswers.begin(); answer != mAnswers.end(); ++answer) {
            const QString& name = answer.key();
            if (!mMembers.value(name).types.endsWith(QLatin1String("readwrite"))) {
                continue;
            }
            if (name == Screen::cScreenOrientationProperty) {
                const QString landscape = Screen::getOrientationLandscape();
                values.insert(name, *answer == landscape ? Screen::getOrientationPortrait() : landscape);
            } else if (name == TaskSwitcher::cCurrentViewProperty) {
                const auto views = toViews(mAnswers.value(TaskSwitcher::cViewsProperty));
                for (const TaskSwitcher::TaskSwitcherEntry& view : views) {
                    if (view.uuid != answer->toString() && !answer->toString().isEmpty()) {
                        values.insert(name, view.uuid);
                    }
                }
            } else if (answer->userType() == QMetaType::Bool) {
                values.insert(name, !answer->toBool());
            } else if (answer->userType() == QMetaType::Int) {
                values.insert(name, answer->toInt() == std::numeric_limits<int>::max() ? 1 : answer->toInt() + 1);
            }
        }
        return values;
    }

    QString mPath;
    QString mInterface;
    QMap<QString, Member> mMembers;
    QVariantMap mAnswers;
    QMap<QString, QStringList> mProblems;
};

} // namespace

QList<DeepStatus::Item> DeepStatus::examine()
{
    QList<Item> items;
    const QList<Object> objects = expectedObjects();
    for (const Object& object : objects) {
        for (auto interface = object.interfaces.begin(); interface != object.interfaces.end(); ++interface) {
            Examination examination(object.path, interface.key(), interface.value());
            examination.compareDescription();
            examination.compareReads();
            examination.compareNotifications();
            items += examination.items();
        }
    }
    return items;
}

#include "DeepStatus.moc"
