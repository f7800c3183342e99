// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "TelvaroQmlPlugin.h"

#include "GlobalOverlay.h"
#include "Notifier.h"
#include "Screen.h"
#include "ScreenShot.h"
#include "TaskSwitcher.h"

#include <TelvaroViewModel.h>

#include <QQmlEngine>

TelvaroQmlPlugin::TelvaroQmlPlugin(QObject* parent)
    : QQmlExtensionPlugin(parent)
{
}

void TelvaroQmlPlugin::registerTypes(const char* uri)
{
    qmlRegisterType<GlobalOverlay>(uri, 1, 0, "GlobalOverlay");
    qmlRegisterType<Notifier>(uri, 1, 0, "Notifier");
    qmlRegisterType<Screen>(uri, 1, 0, "Screen");
    qmlRegisterType<ScreenShot>(uri, 1, 0, "ScreenShot");
    qmlRegisterType<TaskSwitcher>(uri, 1, 0, "TaskSwitcher");
    qmlRegisterUncreatableType<TelvaroViewModel>(uri, 1, 0, "ViewListModel",
                                                 QStringLiteral("ViewListModel is TaskSwitcher's property \"views\"."));
}
