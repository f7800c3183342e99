// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Recorder.h"

#include "BusMessage.h"
#include "BusStream.h"
#include "Console.h"
#include "ScriptWriter.h"
#include "Service.h"
#include "ServiceInterfaces.h"

#include <TelvaroDBusDefinitions.h>

#include <cmath>
#include <utility>

namespace {

/// Longer than the service holds back its changes, so that all of one cause are together.
constexpr int cMomentMilliseconds = 50;
/// For how long changes wait for the values that the service has not notified but is asked for.
constexpr int cPatienceMilliseconds = 2000;

const QString cBus = QStringLiteral("org.freedesktop.DBus");

QStringList signalRules()
{
    const QString service = TelvaroDBusDefinitions::getServiceName();
    return {
        QStringLiteral("type='signal',sender='%1',interface='%2',member='PropertiesChanged'")
            .arg(service, TelvaroDBusDefinitions::getPropertyInterface()),
        // dbus-broker does not show this one to a monitor that names its sender.
        QStringLiteral("type='signal',interface='%1',member='NameOwnerChanged',arg0='%2'").arg(cBus, service),
    };
}

QStringList callRules()
{
    const QString service = TelvaroDBusDefinitions::getServiceName();
    return {
        QStringLiteral("type='method_call',destination='%1'").arg(service),
        QStringLiteral("type='method_return',sender='%1'").arg(service),
        QStringLiteral("type='error',sender='%1'").arg(service),
        // The bus answers the calls that a service leaves behind.
        QStringLiteral("type='error',sender='%1'").arg(cBus),
    };
}

bool isWholeNumber(const QVariant& value)
{
    const int type = value.userType();
    return type == QMetaType::Int || type == QMetaType::UInt || type == QMetaType::LongLong
        || type == QMetaType::ULongLong;
}

bool isKnown(const QString& interface, const QString& property)
{
    const ServiceInterface* const known = ServiceInterface::find(interface);
    return known != nullptr && known->properties.contains(property);
}

/// Returns whether a compositor that plays the script accepts the value.
bool canBeSet(const QString& property, const QVariant& value)
{
    if (property == QLatin1String("orientation")) {
        const QStringList orientations{QStringLiteral("0"), QStringLiteral("90"), QStringLiteral("180"),
                                       QStringLiteral("270")};
        return value.userType() == QMetaType::QString && orientations.contains(value.toString());
    }
    if (property == QLatin1String("screenSaverTimeoutSeconds")) {
        return value.userType() == QMetaType::Int && value.toInt() >= 0;
    }
    return value.userType() == QMetaType::Bool;
}

} // namespace

Recorder::Recorder(std::unique_ptr<ScriptWriter> writer, std::unique_ptr<BusStream> stream,
                   std::unique_ptr<BusStream> sender, bool isAnonymous)
    : mWriter(std::move(writer))
    , mStream(std::move(stream))
    , mSender(std::move(sender))
    , mName(mSender->name())
    , mIsAnonymous(isAnonymous)
    , mCalls([this](const QString& text) {
        return mask(text);
    })
{
    mTimer.setSingleShot(true);
    mTimer.setTimerType(Qt::PreciseTimer);
    connect(&mTimer, &QTimer::timeout, this, &Recorder::endMoment);
}

Recorder::~Recorder() = default;

MaybeError Recorder::start()
{
    if (const MaybeError refusal = mStream->becomeMonitor(signalRules() + callRules())) {
        warn(QStringLiteral("the bus permits no monitor, so that what programs call and how that is answered is not "
                            "recorded: %1")
                 .arg(refusal->text));
        mStream = nullptr;
        if (MaybeError error = mSender->subscribe(signalRules())) {
            return error;
        }
    }
    const BusStream* const stream = mStream ? mStream.get() : mSender.get();
    connect(stream, &BusStream::received, this, &Recorder::noteMessage);
    connect(stream, &BusStream::disconnected, this, [this] {
        printError(Service::busEnd());
        Q_EMIT ended();
    });
    // The timeout of the device goes by its input, which a script does not have.
    mWriter->append({{{QStringLiteral("blanking"), QStringLiteral("scripted")}}}, 0);
    mOwner = mSender->ownerOf(TelvaroDBusDefinitions::getServiceName());
    mClock.start();
    mState.isThere = !mOwner.isEmpty();
    beginMoment();
    if (mState.isThere) {
        readAll();
    }
    return {};
}

Result<int> Recorder::finish()
{
    mFaults += mCalls.finish(mClock.elapsed());
    beginMoment();
    endMoment();
    return mWriter->finish();
}

void Recorder::noteMessage(const BusMessage& message)
{
    const qint64 time = mClock.elapsed();
    switch (message.type()) {
    case BusMessage::Type::Call:
        if (mState.isThere && message.sender() != mName) {
            mCalls.noteCall(message, time);
        }
        return;
    case BusMessage::Type::Reply:
    case BusMessage::Type::Error:
        if (message.destination() == mName) {
            noteReadReply(message);
        } else if (const std::optional<QJsonObject> fault = mCalls.noteReply(message, time)) {
            beginMoment();
            mFaults.append(*fault);
        }
        return;
    case BusMessage::Type::Signal:
        break;
    }
    const QVariantList arguments = message.arguments();
    if (message.member() == QLatin1String("NameOwnerChanged") && message.sender() == cBus) {
        noteOwner(arguments.value(2).toString());
    } else if (message.member() == QLatin1String("PropertiesChanged")
               && message.signature() == QLatin1String("sa{sv}as") && mState.isThere) {
        const QString interface = arguments.at(0).toString();
        const QVariantMap changed = arguments.at(1).toMap();
        for (auto property = changed.cbegin(); property != changed.cend(); ++property) {
            noteProperty(interface, property.key(), property.value());
        }
        const QVariantList invalidated = arguments.at(2).toList();
        for (const QVariant& name : invalidated) {
            if (isKnown(interface, name.toString())) {
                read(message.path(), {interface, name.toString()});
            }
        }
    }
}

void Recorder::noteOwner(const QString& owner)
{
    if (owner == mOwner) {
        return;
    }
    mOwner = owner;
    mReads.clear();
    mCalls.noteServiceGone(mClock.elapsed());
    if (mTimer.isActive()) {
        endMoment();
    }
    if (mState.isThere) {
        beginMoment();
        mState.isThere = false;
        endMoment();
    }
    if (!owner.isEmpty()) {
        beginMoment();
        mState.isThere = true;
        readAll();
    }
}

void Recorder::noteProperty(const QString& interface, const QString& name, const QVariant& value)
{
    if (!isKnown(interface, name)) {
        return;
    }
    beginMoment();
    if (interface == TelvaroDBusDefinitions::getScreenInterface()) {
        if (canBeSet(name, value)) {
            mState.screen.insert(name, QJsonValue::fromVariant(value));
        } else {
            warn(QStringLiteral("a value of %1.%2 is left out, because no script can set it").arg(interface, name));
        }
    } else if (name == QLatin1String("currentView")) {
        mState.currentView = value.toString();
    } else {
        noteViews(value.toList());
    }
}

void Recorder::noteViews(const QVariantList& records)
{
    mState.views.clear();
    QSet<QString> uuids;
    for (const QVariant& record : records) {
        const std::optional<QJsonObject> view = toView(record);
        const QString uuid = view ? view->value(QStringLiteral("uuid")).toString() : QString();
        if (uuid.isEmpty() || uuids.contains(uuid)) {
            warn(QStringLiteral("views are left out whose record has another type, no uuid or that of another view"));
            continue;
        }
        uuids.insert(uuid);
        mState.views.append(*view);
    }
}

std::optional<QJsonObject> Recorder::toView(const QVariant& record)
{
    constexpr int cTexts = 6;
    constexpr int cMembers = 9;
    const QVariantList members = record.toList();
    if (members.size() < cMembers || !isWholeNumber(members.at(cTexts)) || !isWholeNumber(members.at(cTexts + 1))) {
        return {};
    }
    const auto text = [&members](int index) {
        return members.at(index).toString();
    };
    const auto number = [&members](int index) {
        return static_cast<qint64>(static_cast<quint32>(members.at(index).toLongLong()));
    };
    return QJsonObject{
        {QStringLiteral("uuid"), text(0)},
        {QStringLiteral("appId"), text(1)},
        {QStringLiteral("pid"), number(cTexts)},
        {QStringLiteral("record"),
         QJsonObject{
             {QStringLiteral("info1"), mask(text(2))},
             {QStringLiteral("info2"), mask(text(3))},
             {QStringLiteral("info3"), mask(text(4))},
             {QStringLiteral("info4"), mask(text(5))},
             {QStringLiteral("sortIndex"), number(cTexts + 1)},
             {QStringLiteral("attributes"), toAttributes(members.at(cTexts + 2).toMap())},
         }},
    };
}

QJsonObject Recorder::toAttributes(const QVariantMap& attributes)
{
    QJsonObject object;
    for (auto attribute = attributes.cbegin(); attribute != attributes.cend(); ++attribute) {
        const QVariant& value = attribute.value();
        const bool isNumber =
            isWholeNumber(value) || (value.userType() == QMetaType::Double && std::isfinite(value.toDouble()));
        if (value.userType() == QMetaType::QString) {
            object.insert(attribute.key(), mask(value.toString()));
        } else if (isNumber || value.userType() == QMetaType::Bool) {
            object.insert(attribute.key(), QJsonValue::fromVariant(value));
        } else {
            warn(QStringLiteral("attributes are left out that are no text, number or bool, such as \"%1\"")
                     .arg(attribute.key()));
        }
    }
    return object;
}

void Recorder::readAll()
{
    for (const ServiceInterface& interface : ServiceInterface::all()) {
        const QStringList properties = interface.properties.keys();
        for (const QString& property : properties) {
            read(interface.path, {interface.name, property});
        }
    }
}

void Recorder::read(const QString& path, const QStringList& property)
{
    beginMoment();
    mTimer.start(cPatienceMilliseconds);
    mReads.insert(mSender->call(TelvaroDBusDefinitions::getServiceName(), path,
                                TelvaroDBusDefinitions::getPropertyInterface(),
                                TelvaroDBusDefinitions::getPropertyMehodGet(), property),
                  property);
}

void Recorder::noteReadReply(const BusMessage& message)
{
    if (!mReads.contains(message.replySerial())) {
        return;
    }
    const QStringList property = mReads.take(message.replySerial());
    const QVariant value = message.arguments().value(0);
    if (message.type() == BusMessage::Type::Error) {
        warn(QStringLiteral("%1 cannot be read: %2").arg(property.join(QLatin1Char('.')), value.toString()));
    } else {
        noteProperty(property.at(0), property.at(1), value);
    }
    if (mReads.isEmpty()) {
        mTimer.start(cMomentMilliseconds);
    }
}

void Recorder::beginMoment()
{
    if (!mTimer.isActive()) {
        mMoment = mClock.elapsed();
        mTimer.start(cMomentMilliseconds);
    }
}

void Recorder::endMoment()
{
    mTimer.stop();
    const QVector<QJsonObject> steps = mWritten.stepsTo(mState) + mFaults;
    mWritten = mState;
    mFaults.clear();
    if (!steps.isEmpty() && !mWriter->append(steps, mMoment)) {
        Q_EMIT ended();
    } else if (!mHasStarted) {
        mHasStarted = true;
        Q_EMIT started();
    }
}

QString Recorder::mask(const QString& text)
{
    if (!mIsAnonymous || text.isEmpty()) {
        return text;
    }
    QString& masked = mMaskedTexts[text];
    if (masked.isEmpty()) {
        masked = QStringLiteral("text %1").arg(mMaskedTexts.size());
    }
    return masked;
}

void Recorder::warn(const QString& text)
{
    if (!mWarnings.contains(text)) {
        mWarnings.insert(text);
        printError(text);
    }
}
