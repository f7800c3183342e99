// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "Options.h"
#include "Result.h"
#include "bus/BusService.h"
#include "bus/CallGate.h"
#include "bus/DeskObject.h"
#include "bus/GlobalOverlayObject.h"
#include "bus/NotificationsObject.h"
#include "bus/ScreenObject.h"
#include "bus/ScreenShotObject.h"
#include "bus/TaskSwitcherObject.h"
#include "script/ScriptPlayer.h"
#include "shell/Background.h"
#include "shell/DeskCommands.h"
#include "shell/DragImage.h"
#include "shell/InputInjector.h"
#include "shell/Keymap.h"
#include "shell/Menu.h"
#include "shell/NotificationCards.h"
#include "shell/OnScreenKeyboard.h"
#include "shell/OutputWindow.h"
#include "shell/OverlayPanel.h"
#include "shell/ScanCodeCompleter.h"
#include "shell/Scene.h"
#include "shell/SeatInput.h"
#include "shell/StatusBar.h"
#include "shell/TextEntry.h"
#include "shell/TouchInput.h"
#include "shell/WindowStack.h"
#include "state/NotificationCenter.h"
#include "state/Output.h"
#include "state/ScreenSaver.h"
#include "state/ViewList.h"
#include "wayland/WaylandServer.h"

#include <memory>

/// Owns the parts of the program, connects them and starts them.
class Compositor
{
public:
    explicit Compositor(Options options);

    /// Returns why the compositor cannot work here; nothing is left behind then.
    MaybeError start();
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
    MaybeError publishObjects();
    /// Gives the panel its strip of the output when it appears.
    void placePanel();
    /// Disconnects the clients, and forgets what they and other programs have made the compositor show.
    void hangUp();
    /// Stores a screenshot among the person's pictures and posts a notification about it.
    void takeScreenShot();

    const Options mOptions;

    Output mOutput;
    ScreenSaver mScreenSaver;
    ViewList mViews;
    NotificationCenter mNotificationCenter;

    Scene mScene;
    Background mBackground;
    WindowStack mWindowStack;
    StatusBar mStatusBar;
    OnScreenKeyboard mKeyboard;
    NotificationCards mNotificationCards;
    DeskCommands mCommands;
    Menu mMenu;
    DragImage mDragImage;
    OverlayPanel mOverlayPanel;
    OutputWindow mWindow;

    const Keymap mKeymap;
    WaylandServer mServer;
    InputInjector mInputInjector;
    std::unique_ptr<SeatInput> mSeatInput;
    std::unique_ptr<TouchInput> mTouchInput;
    std::unique_ptr<TextEntry> mTextEntry;
    std::unique_ptr<ScanCodeCompleter> mScanCodeCompleter;

    CallGate mCallGate;
    TaskSwitcherObject mTaskSwitcherObject;
    ScreenObject mScreenObject;
    GlobalOverlayObject mGlobalOverlayObject;
    ScreenShotObject mScreenShotObject;
    NotificationsObject mNotificationsObject;
    DeskObject mDeskObject;
    BusService mBusService;
    ScriptPlayer mScriptPlayer;
};
