// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "LiveRequests.h"

#include <QDir>

#include <algorithm>

namespace {

const QString cProperties = QStringLiteral("org.freedesktop.DBus.Properties");
const QString cSet = QStringLiteral("Set");

LiveRequest makeSet(const char* name, const char* object, const char* property, const char* value,
                    const std::function<QDBusPendingCall(LiveObjects&)>& send)
{
    return {QLatin1String(name),
            QStringLiteral("/%1").arg(QLatin1String(object)),
            cProperties,
            cSet,
            QLatin1String(property),
            QStringLiteral("ssv('de.Telvaro.%1', '%2', <%3>)")
                .arg(QLatin1String(object), QLatin1String(property), QLatin1String(value)),
            {},
            send};
}

LiveRequest makeCall(const char* name, const char* path, const char* interface, const char* member,
                     const QString& arguments, const QStringList& reply,
                     const std::function<QDBusPendingCall(LiveObjects&)>& send)
{
    return {QLatin1String(name),
            QLatin1String(path),
            QLatin1String(interface),
            QLatin1String(member),
            QString(),
            arguments,
            reply,
            send};
}

} // namespace

std::vector<TelvaroLiveObject*> LiveObjects::all()
{
    return {&presence, &taskSwitcher, &screen};
}

bool LiveObjects::areAll(TelvaroLiveObject::Status status)
{
    const std::vector<TelvaroLiveObject*> objects = all();
    return std::all_of(objects.begin(), objects.end(), [status](const TelvaroLiveObject* object) {
        return object->getStatus() == status;
    });
}

QString LiveRequest::description() const
{
    return QStringLiteral("%1 %2.%3 %4").arg(path, interface, member, arguments);
}

void LiveRequest::script(ScriptedServiceProcess& service, const QList<Behaviour>& behaviours) const
{
    if (property.isEmpty()) {
        service.script(path, interface, member, behaviours);
    } else {
        service.scriptProperty(member, path, property, behaviours);
    }
}

const std::vector<LiveRequest>& LiveRequest::all()
{
    static const char cOverlay[] = "/globaloverlay";
    static const char cOverlayInterface[] = "de.Telvaro.globaloverlay";
    static const std::vector<LiveRequest> cAll = {
        makeSet("switchTo", "taskswitcher", "currentView", "'b'",
                [](LiveObjects& objects) {
                    return objects.taskSwitcher.switchTo(QStringLiteral("b"));
                }),
        makeSet("switchToView", "taskswitcher", "currentView", "'c'",
                [](LiveObjects& objects) {
                    return objects.taskSwitcher.switchToView(QStringLiteral("x"), 2);
                }),
        makeSet("next", "taskswitcher", "currentView", "'b'",
                [](LiveObjects& objects) {
                    return objects.taskSwitcher.next();
                }),
        makeSet("previous", "taskswitcher", "currentView", "'c'",
                [](LiveObjects& objects) {
                    return objects.taskSwitcher.previous();
                }),
        makeSet("setScreenSaverEnabled", "screen", "screenSaverEnabled", "false",
                [](LiveObjects& objects) {
                    return objects.screen.setScreenSaverEnabled(false);
                }),
        makeSet("setScreenSaverTimeout", "screen", "screenSaverTimeoutSeconds", "60",
                [](LiveObjects& objects) {
                    return objects.screen.setScreenSaverTimeout(60);
                }),
        makeSet("setOrientation", "screen", "orientation", "'90'",
                [](LiveObjects& objects) {
                    return objects.screen.setOrientation(QStringLiteral("90"));
                }),
        makeSet("setFullScreen", "screen", "fullScreen", "true",
                [](LiveObjects& objects) {
                    return objects.screen.setFullScreen(true);
                }),
        makeCall("showGlobalOverlay", cOverlay, cOverlayInterface, "Show", QStringLiteral("s('text')"), {},
                 [](LiveObjects&) {
                     return TelvaroRequests::showGlobalOverlay(QStringLiteral("text"));
                 }),
        makeCall("hideGlobalOverlay", cOverlay, cOverlayInterface, "Hide", QStringLiteral("()"), {},
                 [](LiveObjects&) {
                     return TelvaroRequests::hideGlobalOverlay();
                 }),
        makeCall("notify", "/org/freedesktop/Notifications", "org.freedesktop.Notifications", "Notify",
                 QStringLiteral("susssasa{sv}i('', uint32 0, 'i', 's', 'b', @as [], {'action-icons': <true>}, 0)"),
                 {QStringLiteral("uint32 7")},
                 [](LiveObjects&) {
                     return TelvaroRequests::notify(QStringLiteral("i"), QStringLiteral("s"), QStringLiteral("b"));
                 }),
        makeCall("captureScreenShot", "/screenshot", "de.Telvaro.screenshot", "ScreenShot", QStringLiteral("s('/')"),
                 {QStringLiteral("'/shots/1.png'")},
                 [](LiveObjects&) {
                     return TelvaroRequests::captureScreenShot(QStringLiteral("/"));
                 }),
    };
    return cAll;
}
