// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "LiveValues.h"

#include "PrivateBus.h"

#include <QDBusMessage>
#include <QDBusReply>
#include <QDebug>

QVariant LiveValues::readCurrentView()
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(QStringLiteral(TELVARO_SERVICE_NAME), QStringLiteral("/taskswitcher"),
                                       QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    call << QStringLiteral("de.Telvaro.taskswitcher") << QStringLiteral("currentView");
    return QDBusReply<QVariant>(PrivateBus::connection().call(call)).value();
}

QVariantList LiveValues::fromViews(const QList<TelvaroViewModel::View>& views)
{
    QVariantList values;
    for (const TelvaroViewModel::View& view : views) {
        values += QVariantList{view.uuid,  view.appId, view.info1,     view.info2,     view.info3,
                               view.info4, view.pid,   view.sortIndex, view.attributes};
    }
    return values;
}

QString LiveValues::text(const QVariant& value)
{
    QString text;
    QDebug(&text).nospace() << value;
    return text;
}
