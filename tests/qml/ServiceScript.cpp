// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ServiceScript.h"

#include "PrivateBus.h"
#include "TelvaroDBusDefinitions.h"
#include "ValueText.h"

#include <QDBusMessage>
#include <QVariantMap>

using Definitions = TelvaroDBusDefinitions;
using View = TelvaroTaskSwitcherDBusConnector::TaskSwitcherEntry;

namespace {

View toView(const QVariantMap& roles)
{
    View view;
    view.uuid = roles.value(QStringLiteral("uuid")).toString();
    view.appId = roles.value(QStringLiteral("appId")).toString();
    view.info1 = roles.value(QStringLiteral("info1")).toString();
    view.info2 = roles.value(QStringLiteral("info2")).toString();
    view.info3 = roles.value(QStringLiteral("info3")).toString();
    view.info4 = roles.value(QStringLiteral("info4")).toString();
    view.pid = roles.value(QStringLiteral("pid")).toUInt();
    view.sortIndex = roles.value(QStringLiteral("sortIndex")).toUInt();
    view.attributes = roles.value(QStringLiteral("attributes")).toMap();
    return view;
}

const QString cLastCall = QStringLiteral("LastCall");

ServiceSignal taskSwitcherNotification(const QString& changed, const QStringList& invalidated = {})
{
    return ServiceSignal::propertiesChanged(Definitions::getTaskSwitcherPath(), Definitions::getTaskSwitcherInterface(),
                                            QStringLiteral("@a{sv} {%1}").arg(changed), invalidated);
}

ServiceSignal screenNotification(const QString& changed, const QStringList& invalidated = {})
{
    return ServiceSignal::propertiesChanged(Definitions::getScreenPath(), Definitions::getScreenInterface(),
                                            QStringLiteral("@a{sv} {%1}").arg(changed), invalidated);
}

} // namespace

ServiceScript::ServiceScript(QObject* parent)
    : QObject(parent)
{
    // Qt holds back what the bus sends until the event loop has run once.
    PrivateBus::deliver();
}

void ServiceScript::begin()
{
    if (!mService.isRunning()) {
        comeBack();
    }
    // What the objects of the test before have sent when they were destroyed is not this one's.
    takeCalls();
    mService.reset();
    mLog.reset();
    mLog = std::make_unique<LogCapture>();
}

QStringList ServiceScript::takeLog()
{
    return mLog->takeTexts();
}

QStringList ServiceScript::takeCalls()
{
    // The service takes calls in their order, so that all of this process are there once it has answered this one.
    PrivateBus::connection().call(QDBusMessage::createMethodCall(Definitions::getServiceName(), QStringLiteral("/"),
                                                                 QStringLiteral("org.example.Test"), cLastCall));
    QStringList calls = mService.takeDescriptions();
    calls.removeLast();
    return calls;
}

void ServiceScript::leave()
{
    mService.kill();
}

void ServiceScript::comeBack()
{
    mService.start();
    mService.own();
    PrivateBus::deliver();
}

void ServiceScript::setViews(const QVariantList& views, const QString& currentView)
{
    QList<View> entries;
    for (const QVariant& view : views) {
        entries.append(toView(view.toMap()));
    }
    setViewsText(ValueText::views(entries), currentView);
}

void ServiceScript::setViewsText(const QString& views, const QString& currentView)
{
    mViews = views;
    mCurrentView = currentView;
    mService.setViews(views);
    mService.setCurrentView(currentView);
}

void ServiceScript::notifyViews()
{
    mService.emitSignal(taskSwitcherNotification(QStringLiteral("'views': <%1>").arg(mViews)));
}

void ServiceScript::notifyAll()
{
    mService.emitSignal(
        taskSwitcherNotification(QStringLiteral("'views': <%1>, 'currentView': <'%2'>").arg(mViews, mCurrentView)));
}

void ServiceScript::invalidateAll()
{
    mService.emitSignal(taskSwitcherNotification(
        QString(),
        {TelvaroTaskSwitcherDBusConnector::cViewsProperty, TelvaroTaskSwitcherDBusConnector::cCurrentViewProperty}));
}

void ServiceScript::storeWrites()
{
    mService.setStateful(true);
}

void ServiceScript::refuseCurrentView(const QString& error)
{
    mService.scriptProperty(Definitions::getPropertyMehodSet(), Definitions::getTaskSwitcherPath(),
                            TelvaroTaskSwitcherDBusConnector::cCurrentViewProperty,
                            {Behaviour::error(QStringLiteral("org.freedesktop.DBus.Error.InvalidArgs"), error)});
}

void ServiceScript::refuseScreen(const QString& property, const QString& error)
{
    mService.scriptProperty(Definitions::getPropertyMehodSet(), Definitions::getScreenPath(), property,
                            {Behaviour::error(QStringLiteral("org.freedesktop.DBus.Error.InvalidArgs"), error)});
}

void ServiceScript::setScreen(const QString& property, const QString& valueText)
{
    mService.setProperty(Definitions::getScreenPath(), Definitions::getScreenInterface(), property, valueText);
}

void ServiceScript::notifyScreen(const QString& property, const QString& valueText)
{
    setScreen(property, valueText);
    mService.emitSignal(screenNotification(QStringLiteral("'%1': <%2>").arg(property, valueText)));
}

void ServiceScript::invalidateScreen(const QString& property)
{
    mService.emitSignal(screenNotification(QString(), {property}));
}

void ServiceScript::refuseOverlays(const QString& error)
{
    mService.script(Definitions::getGlobalOverlayPath(), Definitions::getGlobalOverlayInterface(),
                    Definitions::getGlobalOverlayMethodShow(),
                    {Behaviour::error(QStringLiteral("org.freedesktop.DBus.Error.LimitsExceeded"), error)});
}

void ServiceScript::giveNotificationId(uint id)
{
    mService.script(Definitions::getNotificationsPath(), Definitions::getNotificationsInterface(),
                    Definitions::getNotificationsMethodNotify(),
                    {Behaviour::reply({QStringLiteral("uint32 %1").arg(id)})});
}

void ServiceScript::refuseNotifications(const QString& error)
{
    mService.script(Definitions::getNotificationsPath(), Definitions::getNotificationsInterface(),
                    Definitions::getNotificationsMethodNotify(),
                    {Behaviour::error(QStringLiteral("org.freedesktop.DBus.Error.LimitsExceeded"), error)});
}

void ServiceScript::refuseScreenShots(const QString& error)
{
    mService.script(Definitions::getScreenShotPath(), Definitions::getScreenShotInterface(),
                    Definitions::getScreenShotMethod(),
                    {Behaviour::error(QStringLiteral("org.freedesktop.DBus.Error.AccessDenied"), error)});
}

void ServiceScript::freeze()
{
    mService.freeze();
}

void ServiceScript::thaw()
{
    mService.thaw();
}
