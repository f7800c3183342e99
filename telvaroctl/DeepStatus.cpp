// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "DeepStatus.h"

#include "ExitStatus.h"
#include "Introspection.h"
#include "Json.h"
#include "Service.h"
#include "TimeLimit.h"
#include "UnixSignals.h"
#include "ViewFields.h"

#include <TelvaroDBusDefinitions.h>
#include <TelvaroScreenDBusConnector.h>
#include <TelvaroTaskSwitcherDBusConnector.h>

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QEventLoop>
#include <QJsonArray>
#include <QJsonDocument>
#include <QMap>
#include <QTimer>

#include <algorithm>
#include <csignal>
#include <limits>
#include <optional>

#include <unistd.h>

namespace {

using Names = TelvaroDBusDefinitions;
using Screen = TelvaroScreenDBusConnector;
using TaskSwitcher = TelvaroTaskSwitcherDBusConnector;

/// For restoring, which is no part of the time limit.
constexpr int cRestoringMilliseconds = 2000;

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

/// Defers SIGINT, SIGTERM and SIGHUP, which end the waits during its lifetime and the process after it.
class SignalDeferral : public QObject
{
    Q_OBJECT

public:
    SignalDeferral()
    {
        UnixSignals::block();
        connect(&mSignals, &UnixSignals::terminationRequested, this, [this](int signal) {
            mSignal = signal;
            Q_EMIT interrupted();
        });
    }

    ~SignalDeferral() override
    {
        UnixSignals::unblock();
        if (mSignal != 0) {
            std::raise(mSignal);
            // The shell has a program in the background ignore SIGINT.
            _exit(Failed);
        }
    }

    bool isInterrupted() const
    {
        return mSignal != 0;
    }

    void run(QEventLoop& loop) const
    {
        connect(this, &SignalDeferral::interrupted, &loop, &QEventLoop::quit);
        if (!isInterrupted()) {
            loop.exec();
        }
    }

    void waitFor(const QDBusPendingCall& call) const
    {
        QEventLoop loop;
        const QDBusPendingCallWatcher watcher(call);
        connect(&watcher, &QDBusPendingCallWatcher::finished, &loop, &QEventLoop::quit);
        if (!call.isFinished()) {
            run(loop);
        }
    }

Q_SIGNALS:
    void interrupted();

private:
    UnixSignals mSignals;
    int mSignal = 0;
};

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
    QVariantMap waitFor(const QStringList& properties, int milliseconds, const SignalDeferral& deferral)
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
        deferral.run(loop);
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
    Examination(const QString& path, const QString& interface, const Introspection::Members& members)
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
        if (reply.isError()) {
            for (auto member = mMembers.begin(); member != mMembers.end(); ++member) {
                note(member.key(), QStringLiteral("cannot be introspected: %1").arg(Service::reason(reply.error())));
            }
            return;
        }
        const Introspection::Members described = Introspection::parse(reply.value()).interfaces.value(mInterface);
        for (auto member = mMembers.begin(); member != mMembers.end(); ++member) {
            const auto found = described.find(member.key());
            if (found == described.end()) {
                note(member.key(), QStringLiteral("is missing from the introspection"));
            } else if (!(*found == *member)) {
                note(member.key(),
                     QStringLiteral("is introspected as %1 instead of %2")
                         .arg(found->description(), member->description()));
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
        // From here on nothing may end the process before it has restored. Every wait has a limit of its own.
        TimeLimit::lift();
        mDeferral.emplace();
        Notifications notifications(mPath);
        QMap<QString, QDBusPendingCall> requests = write(changes, TimeLimit::remainingButReserve() / 2);
        for (auto request = requests.begin(); request != requests.end(); ++request) {
            mDeferral->waitFor(*request);
            if (request->isError()) {
                note(request.key(), QStringLiteral("cannot be written: %1").arg(Service::reason(request->error())));
            } else {
                mChanged.append(request.key());
            }
        }
        compareChanges(changes, notifications.waitFor(mChanged, TimeLimit::remaining() / 8, *mDeferral));
        restore(changes.keys());
        mDeferral.reset();
    }

    QList<DeepStatus::Item> items() const
    {
        QList<DeepStatus::Item> result;
        for (auto member = mMembers.begin(); member != mMembers.end(); ++member) {
            const bool isUnchanged =
                member->kind == Introspection::Member::Property && !mChanged.contains(member.key());
            result.append({mInterface + QLatin1Char('.') + member.key(), mProblems.value(member.key()), isUnchanged});
        }
        return result;
    }

private:
    void compareChanges(const QVariantMap& changes, const QVariantMap& notified)
    {
        const QVariantMap answers = readAll();
        for (const QString& name : qAsConst(mChanged)) {
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
    }

    /// Restores also what was refused or not replied to: the service may have changed it nevertheless.
    void restore(const QStringList& names)
    {
        QVariantMap previous;
        for (const QString& name : names) {
            previous.insert(name, mAnswers.value(name));
        }
        QMap<QString, QDBusPendingCall> requests = write(previous, cRestoringMilliseconds);
        for (auto request = requests.begin(); request != requests.end(); ++request) {
            request->waitForFinished();
            const bool isRefused = !mChanged.contains(request.key()) && request->error().type() != QDBusError::NoReply;
            if (request->isError() && !isRefused) {
                note(request.key(), QStringLiteral("cannot be restored: %1").arg(Service::reason(request->error())));
            }
        }
    }

    void note(const QString& member, const QString& problem)
    {
        mProblems[member].append(problem);
    }

    QStringList properties() const
    {
        QStringList names;
        for (auto member = mMembers.begin(); member != mMembers.end(); ++member) {
            if (member->kind == Introspection::Member::Property) {
                names.append(member.key());
            }
        }
        return names;
    }

    void compareType(const QString& name, const QVariant& value, const QString& verb)
    {
        const QString expected = mMembers.value(name).type;
        if (typeOf(value) != expected) {
            note(name, QStringLiteral("%1 the type '%2' instead of '%3'").arg(verb, typeOf(value), expected));
        }
    }

    QDBusPendingCall call(const QString& interface, const QString& method, const QVariantList& arguments,
                          int milliseconds = TimeLimit::remainingButReserve()) const
    {
        QDBusMessage message = QDBusMessage::createMethodCall(Names::getServiceName(), mPath, interface, method);
        message.setAutoStartService(false);
        message.setArguments(arguments);
        return Service::bus().asyncCall(message, milliseconds);
    }

    /// Returns the values of the properties that can be read; not all of them after an interruption.
    QVariantMap readAll()
    {
        QMap<QString, QDBusPendingReply<QDBusVariant>> replies;
        const QStringList names = properties();
        for (const QString& name : names) {
            replies.insert(name, call(Names::getPropertyInterface(), Names::getPropertyMehodGet(), {mInterface, name}));
        }
        QVariantMap values;
        for (auto reply = replies.begin(); reply != replies.end(); ++reply) {
            if (mDeferral) {
                mDeferral->waitFor(*reply);
            } else {
                reply->waitForFinished();
            }
            if (reply->isError()) {
                note(reply.key(), QStringLiteral("cannot be read: %1").arg(Service::reason(reply->error())));
            } else if (reply->isFinished()) {
                values.insert(reply.key(), reply->value().variant());
            }
        }
        return values;
    }

    QMap<QString, QDBusPendingCall> write(const QVariantMap& values, int milliseconds) const
    {
        QMap<QString, QDBusPendingCall> requests;
        for (auto value = values.begin(); value != values.end(); ++value) {
            requests.insert(value.key(),
                            call(Names::getPropertyInterface(), Names::getPropertyMehodSet(),
                                 {mInterface, value.key(), QVariant::fromValue(QDBusVariant(value.value()))},
                                 milliseconds));
        }
        return requests;
    }

    /// Returns valid values of the properties that can be written, other than the present ones.
    QVariantMap otherValues() const
    {
        QVariantMap values;
        for (auto answer = mAnswers.begin(); answer != mAnswers.end(); ++answer) {
            const QString& name = answer.key();
            // To disable the screen saver may end it, which cannot be restored.
            if (name == Screen::cScreenSaverEnabledProperty
                && mAnswers.value(Screen::cScreenSaverActiveProperty).toBool()) {
                continue;
            }
            if (mMembers.value(name).access != QLatin1String("readwrite")) {
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
    Introspection::Members mMembers;
    QVariantMap mAnswers;
    QStringList mChanged;
    QMap<QString, QStringList> mProblems;
    /// While values are changed.
    std::optional<SignalDeferral> mDeferral;
};

} // namespace

QList<DeepStatus::Item> DeepStatus::examine()
{
    QList<Item> items;
    const QList<Introspection> objects = Introspection::expected();
    for (const Introspection& object : objects) {
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
