// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "bus/NotificationsObject.h"

#include "NotificationsObjectAdaptor.h"
#include "bus/GatedAdaptor.h"
#include "bus/NotificationImage.h"
#include "state/Limits.h"
#include "state/NotificationCenter.h"
#include "state/SanitizedText.h"

#include <QDBusError>
#include <QRegularExpression>

namespace {

constexpr int cDefaultTimeoutMilliseconds = 5000;
constexpr int cLongestSummary = 500;
constexpr int cLongestBody = 2000;
constexpr int cLongestAction = 500;
constexpr int cMostActions = 9;
constexpr int cCriticalUrgency = 2;

/// Returns the body without the markup that the Desktop Notifications Specification allows.
QString plainBody(QString body)
{
    static const QRegularExpression tags(QStringLiteral("</?(?:b|i|u|a|img)(?:\\s[^<>]*)?/?>"),
                                         QRegularExpression::CaseInsensitiveOption);
    body.truncate(4 * cLongestBody);
    body.remove(tags);
    const std::pair<QLatin1String, QLatin1String> entities[] = {
        {QLatin1String("&lt;"), QLatin1String("<")},    {QLatin1String("&gt;"), QLatin1String(">")},
        {QLatin1String("&quot;"), QLatin1String("\"")}, {QLatin1String("&apos;"), QLatin1String("'")},
        {QLatin1String("&#39;"), QLatin1String("'")},   {QLatin1String("&amp;"), QLatin1String("&")},
    };
    for (const auto& entity : entities) {
        body.replace(entity.first, entity.second);
    }
    return sanitizedText(body, cLongestBody);
}

/// Returns the picture that comes first in the order of the Desktop Notifications Specification.
QImage iconOf(const QVariantMap& hints, const QString& appIcon)
{
    for (const auto& key : {QStringLiteral("image-data"), QStringLiteral("image_data")}) {
        const QImage image = NotificationImage::fromHint(hints.value(key), Limits::cNotificationIconSize);
        if (!image.isNull()) {
            return image;
        }
    }
    for (const QString& source : {hints.value(QStringLiteral("image-path")).toString(),
                                  hints.value(QStringLiteral("image_path")).toString(), appIcon}) {
        const QImage image = NotificationImage::load(source, Limits::cNotificationIconSize);
        if (!image.isNull()) {
            return image;
        }
    }
    return NotificationImage::fromHint(hints.value(QStringLiteral("icon_data")), Limits::cNotificationIconSize);
}

/// `list` alternates keys and labels; a last key without a label is its own label.
QVector<Notification::Action> actionsOf(const QStringList& list, bool keysAreIcons)
{
    QVector<Notification::Action> actions;
    for (int i = 0; i < list.size() && actions.size() < cMostActions; i += 2) {
        Notification::Action action;
        action.key = list.at(i);
        action.label = sanitizedText(list.value(i + 1, action.key), cLongestAction);
        if (action.key.isEmpty() || action.key.size() > cLongestAction) {
            continue;
        }
        if (keysAreIcons) {
            action.icon = NotificationImage::load(action.key, Limits::cActionIconSize);
        }
        actions.append(action);
    }
    return actions;
}

} // namespace

NotificationsObject::NotificationsObject(NotificationCenter& center, CallGate& gate, QObject* parent)
    : QObject(parent)
    , mCenter(center)
{
    new GatedAdaptor<NotificationsObjectAdaptor>(this, gate);
    connect(&center, &NotificationCenter::closed, this, [this](quint32 id, NotificationCenter::CloseReason reason) {
        Q_EMIT NotificationClosed(id, static_cast<uint>(reason));
    });
    connect(&center, &NotificationCenter::actionInvoked, this, &NotificationsObject::ActionInvoked);
}

uint NotificationsObject::Notify(const QString&, uint replacesId, const QString& appIcon, const QString& summary,
                                 const QString& body, const QStringList& actions, const QVariantMap& hints,
                                 int expireTimeout)
{
    Notification notification;
    notification.summary = sanitizedText(summary, cLongestSummary);
    notification.body = plainBody(body);
    notification.icon = iconOf(hints, appIcon);
    notification.actions = actionsOf(actions, hints.value(QStringLiteral("action-icons")).toBool());
    notification.isResident = hints.value(QStringLiteral("resident")).toBool();
    notification.isCritical = hints.value(QStringLiteral("urgency")).toInt() == cCriticalUrgency;
    bool isNumber = false;
    const int progress = hints.value(QStringLiteral("value")).toInt(&isNumber);
    if (isNumber) {
        notification.progress = qBound(0, progress, 100);
    }
    if (!notification.isCritical) {
        notification.timeoutMilliseconds = expireTimeout < 0 ? cDefaultTimeoutMilliseconds : expireTimeout;
    }
    return mCenter.notify(notification, replacesId);
}

void NotificationsObject::CloseNotification(uint id)
{
    if (!mCenter.close(id, NotificationCenter::CloseReason::Requested)) {
        sendErrorReply(QDBusError::InvalidArgs, QString());
    }
}

QStringList NotificationsObject::GetCapabilities() const
{
    return {QStringLiteral("action-icons"), QStringLiteral("actions"), QStringLiteral("body"),
            QStringLiteral("icon-static"), QStringLiteral("persistence")};
}

QString NotificationsObject::GetServerInformation(QString& vendor, QString& version,
                                                  QString& specificationVersion) const
{
    vendor = QStringLiteral("The Telvaro authors");
    version = QStringLiteral(TELVARO_VERSION);
    specificationVersion = QStringLiteral("1.2");
    return QStringLiteral("telvaro-compositor");
}
