// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "Background.h"
#include "BusService.h"
#include "CallGate.h"
#include "GlobalOverlayObject.h"
#include "NotificationCards.h"
#include "NotificationCenter.h"
#include "NotificationsObject.h"
#include "Output.h"
#include "OutputWindow.h"
#include "OverlayPanel.h"
#include "Scene.h"
#include "ScreenObject.h"
#include "ScreenSaver.h"
#include "ScreenShotObject.h"
#include "ScriptPlayer.h"
#include "SeatInput.h"
#include "StatusBar.h"
#include "TaskSwitcherObject.h"
#include "ViewList.h"
#include "WaylandServer.h"
#include "WindowStack.h"

#include <memory>

class CommandLine;

/// Puts the parts together and starts them.
class Compositor
{
public:
    explicit Compositor(const CommandLine& commandLine);

    /// False, with a reason in error(), when the compositor cannot work here; nothing is left behind then.
    bool start();
    QString error() const
    {
        return mError;
    }
    QByteArray socketName() const
    {
        return mServer.socketName();
    }

    BusService& busService()
    {
        return mBusService;
    }
    const ScriptPlayer& scriptPlayer() const
    {
        return mScriptPlayer;
    }

private:
    bool publishObjects();

    const CommandLine& mCommandLine;
    QString mError;

    Output mOutput;
    ScreenSaver mScreenSaver;
    ViewList mViews;
    NotificationCenter mNotificationCenter;

    Scene mScene;
    Background mBackground;
    WindowStack mWindowStack;
    StatusBar mStatusBar;
    NotificationCards mNotificationCards;
    OverlayPanel mOverlayPanel;
    OutputWindow mWindow;

    WaylandServer mServer;
    std::unique_ptr<SeatInput> mSeatInput;

    CallGate mCallGate;
    TaskSwitcherObject mTaskSwitcherObject;
    ScreenObject mScreenObject;
    GlobalOverlayObject mGlobalOverlayObject;
    ScreenShotObject mScreenShotObject;
    NotificationsObject mNotificationsObject;
    BusService mBusService;
    ScriptPlayer mScriptPlayer;
};
