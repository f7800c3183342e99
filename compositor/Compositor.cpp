// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Compositor.h"

#include "CommandLine.h"
#include "wayland/ClientPopup.h"
#include "wayland/ClientWindow.h"
#include "wayland/WaylandSocketName.h"

Compositor::Compositor(const CommandLine& commandLine)
    : mCommandLine(commandLine)
    , mOutput(commandLine.size())
    , mScreenSaver(commandLine.screenSaverTimeoutSeconds())
    , mScene(mOutput, mScreenSaver)
    , mBackground(mOutput, mViews)
    , mWindowStack(mOutput, mViews, mScene)
    , mStatusBar(mOutput, mViews, mScene)
    , mNotificationCards(mOutput, mNotificationCenter, mScene)
    , mOverlayPanel(mOutput, mScene)
    , mWindow(mOutput, mScene)
    , mServer(mOutput, mWindow, mViews)
    , mTaskSwitcherObject(mViews, mCallGate)
    , mScreenObject(mOutput, mScreenSaver, mCallGate)
    , mGlobalOverlayObject(mOverlayPanel, mCallGate)
    , mScreenShotObject(mScene, mCallGate)
    , mNotificationsObject(mNotificationCenter, mCallGate)
    , mScriptPlayer(commandLine.script(), mViews, mScreenSaver, mCallGate, mBusService)
{
    mScene.addLayer(&mBackground);
    mScene.addLayer(&mWindowStack);
    mScene.addLayer(&mStatusBar);
    mScene.addLayer(&mNotificationCards);
    mScene.addLayer(&mOverlayPanel);
    QObject::connect(&mServer, &WaylandServer::windowCreated, &mWindowStack, &WindowStack::addWindow);
    QObject::connect(&mServer, &WaylandServer::popupCreated, &mWindowStack, &WindowStack::addPopup);
    QObject::connect(&mWindow, &OutputWindow::framePainted, &mWindowStack, &WindowStack::sendFrameCallbacks);
}

bool Compositor::start()
{
    const auto socketName = WaylandSocketName::choose(mCommandLine.socketName());
    if (const auto* const error = std::get_if<WaylandSocketName::Error>(&socketName)) {
        mError = error->text;
        return false;
    }
    // The name is taken before the socket is opened: a second compositor stops here and leaves no trace. Calls are
    // answered by the event loop, when everything is up.
    if (!publishObjects() || !mBusService.takeName()) {
        mError = mBusService.error();
        return false;
    }
    mBusService.takeNotificationName();

    mServer.start(std::get<QByteArray>(socketName));
    mSeatInput = std::make_unique<SeatInput>(mServer.defaultSeat(), mServer.guard(), mWindowStack, mNotificationCards,
                                             mScreenSaver, mWindow);
    mWindow.setInput(mSeatInput.get());
    if (mCommandLine.isFullScreenWindow()) {
        mWindow.showFullScreen();
    } else {
        mWindow.show();
    }
    if (!mScriptPlayer.start()) {
        mError = mScriptPlayer.error();
        return false;
    }
    return true;
}

bool Compositor::publishObjects()
{
    return mBusService.publish(QStringLiteral(TELVARO_TASKSWITCHER_PATH), &mTaskSwitcherObject)
        && mBusService.publish(QStringLiteral(TELVARO_SCREEN_PATH), &mScreenObject)
        && mBusService.publish(QStringLiteral(TELVARO_GLOBALOVERLAY_PATH), &mGlobalOverlayObject)
        && mBusService.publish(QStringLiteral(TELVARO_SCREENSHOT_PATH), &mScreenShotObject)
        && mBusService.publish(QStringLiteral(TELVARO_NOTIFICATIONS_PATH), &mNotificationsObject);
}
