// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "bus/BusInterfaces.h"

#include "GlobalOverlayObjectAdaptor.h"
#include "NotificationsObjectAdaptor.h"
#include "ScreenObjectAdaptor.h"
#include "ScreenShotObjectAdaptor.h"
#include "TaskSwitcherObjectAdaptor.h"

#include <QMetaClassInfo>

#include <algorithm>

namespace {

BusInterfaces::Interface describe(const char* path, const QMetaObject& adaptor)
{
    return {BusInterfaces::nameOf(&adaptor), QString::fromLatin1(path), &adaptor};
}

} // namespace

const QVector<BusInterfaces::Interface>& BusInterfaces::all()
{
    static const QVector<Interface> interfaces{
        describe(TELVARO_TASKSWITCHER_PATH, TaskSwitcherObjectAdaptor::staticMetaObject),
        describe(TELVARO_SCREEN_PATH, ScreenObjectAdaptor::staticMetaObject),
        describe(TELVARO_GLOBALOVERLAY_PATH, GlobalOverlayObjectAdaptor::staticMetaObject),
        describe(TELVARO_SCREENSHOT_PATH, ScreenShotObjectAdaptor::staticMetaObject),
        describe(TELVARO_NOTIFICATIONS_PATH, NotificationsObjectAdaptor::staticMetaObject),
    };
    return interfaces;
}

const BusInterfaces::Interface* BusInterfaces::find(const QString& name)
{
    const QVector<Interface>& interfaces = all();
    const auto found = std::find_if(interfaces.cbegin(), interfaces.cend(), [&name](const Interface& interface) {
        return interface.name == name;
    });
    return found == interfaces.cend() ? nullptr : &*found;
}

QString BusInterfaces::nameOf(const QMetaObject* adaptor)
{
    const int index = adaptor->indexOfClassInfo("D-Bus Interface");
    return index < 0 ? QString() : QString::fromLatin1(adaptor->classInfo(index).value());
}
