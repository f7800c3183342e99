// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include <TelvaroDBusDefinitions.h>
#include <TelvaroDeviceDistinction.h>
#include <TelvaroGlobalOverlayDBusConnector.h>
#include <TelvaroNotificationDBusConnector.h>
#include <TelvaroRequests.h>
#include <TelvaroScreen.h>
#include <TelvaroScreenDBusConnector.h>
#include <TelvaroScreenShotDBusConnector.h>
#include <TelvaroTaskSwitcher.h>
#include <TelvaroTaskSwitcherDBusConnector.h>

#include <QCoreApplication>
#include <QtGlobal>

#include <cstring>
#include <iostream>

namespace {

// The file of the last warning.
const char* file = nullptr;

void keepFile(QtMsgType, const QMessageLogContext& context, const QString&)
{
    file = context.file;
}

} // namespace

// Runs without a bus: the library loads, its classes can be constructed and their warnings carry their context.
int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    qInstallMessageHandler(keepFile);
    TelvaroTaskSwitcherDBusConnector taskSwitcher;
    TelvaroScreenDBusConnector screen;
    TelvaroGlobalOverlayDBusConnector overlay;
    TelvaroNotificationDBusConnector notification;
    TelvaroScreenShotDBusConnector screenShot;
    TelvaroDeviceDistinction::isCompositorDevice();
    const TelvaroTaskSwitcher liveTaskSwitcher;
    const TelvaroScreen liveScreen;
    if (liveTaskSwitcher.getStatus() != TelvaroLiveObject::Absent || !TelvaroRequests::hideGlobalOverlay().isError()) {
        std::cerr << "there is a service without a bus\n";
        return 1;
    }
    const bool isEmpty = taskSwitcher.getViews().isEmpty();
    if (!isEmpty || file == nullptr || std::strcmp(file, "TelvaroTaskSwitcherDBusConnector.cpp") != 0) {
        std::cerr << "the last warning came from " << (file != nullptr ? file : "nowhere") << '\n';
        return 1;
    }
    std::cout << TelvaroDBusDefinitions::getScreenInterface().toStdString() << " of "
              << TelvaroDBusDefinitions::getServiceName().toStdString() << '\n';
    return 0;
}
