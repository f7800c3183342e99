// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Compositor.h"

#include "bus/ScreenShotFile.h"
#include "wayland/ClientPopup.h"
#include "wayland/ClientWindow.h"
#include "wayland/WaylandSocketName.h"

#include <QDir>
#include <QStandardPaths>
#include <QWaylandKeymap>
#include <QWaylandSeat>

namespace {

constexpr int cScreenShotMessageMilliseconds = 5000;

} // namespace

Compositor::Compositor(Options options)
    : mOptions(std::move(options))
    , mOutput(mOptions.size)
    , mScreenSaver(mOptions.screenSaverTimeoutSeconds)
    , mScene(mOutput, mScreenSaver)
    , mBackground(mOutput, mViews)
    , mWindowStack(mOutput, mViews, mScene)
    , mStatusBar(mOutput, mViews, mScene)
    , mKeyboard(mOutput, mScene)
    , mNotificationCards(mOutput, mNotificationCenter, mScene)
    , mCommands(mOutput, mViews, mScreenSaver, mWindowStack)
    , mMenu(mOutput, mViews, mWindowStack, mCommands, mScene)
    , mOverlayPanel(mOutput, mScene)
    , mWindow(mOutput, mScene)
    , mServer(mOutput, mWindow, mViews)
    , mTaskSwitcherObject(mViews, mCallGate)
    , mScreenObject(mOutput, mScreenSaver, mCallGate)
    , mGlobalOverlayObject(mOverlayPanel, mCallGate)
    , mScreenShotObject(mScene, mCallGate)
    , mNotificationsObject(mNotificationCenter, mCallGate)
    , mScriptPlayer(mOptions.script, mViews, mScreenSaver, mCallGate, mBusService)
{
    mOutput.setWindowTurning(mOptions.isWindowTurning);
    mScene.addLayer(&mBackground);
    mScene.addLayer(&mWindowStack);
    mScene.addLayer(&mStatusBar);
    mScene.addLayer(&mKeyboard);
    mScene.addLayer(&mNotificationCards);
    mScene.addLayer(&mMenu);
    mScene.addLayer(&mOverlayPanel);
    QObject::connect(&mServer, &WaylandServer::windowCreated, &mWindowStack, &WindowStack::addWindow);
    QObject::connect(&mServer, &WaylandServer::popupCreated, &mWindowStack, &WindowStack::addPopup);
    QObject::connect(&mStatusBar, &StatusBar::clicked, &mMenu, &Menu::toggle);
    QObject::connect(&mCommands, &DeskCommands::menuRequested, &mMenu, &Menu::toggle);
    QObject::connect(&mCommands, &DeskCommands::switchRequested, &mMenu, &Menu::step);
    QObject::connect(&mCommands, &DeskCommands::screenShotRequested, &mWindow, [this] {
        takeScreenShot();
    });
    mScreenSaver.setInhibitor([this] {
        return mWindowStack.inhibitsIdle();
    });
    QObject::connect(&mWindow, &OutputWindow::framePainted, &mWindowStack, &WindowStack::sendFrameCallbacks);
}

MaybeError Compositor::start()
{
    const Result<QByteArray> socketName = WaylandSocketName::choose(mOptions.socketName);
    if (const auto* const error = std::get_if<Error>(&socketName)) {
        return *error;
    }
    // The name is requested before the socket is opened: a second compositor stops here and leaves no trace. Calls wait
    // for the event loop, which runs when everything is up.
    if (const MaybeError error = publishObjects()) {
        return error;
    }
    if (const MaybeError error = mBusService.takeName()) {
        return error;
    }
    mBusService.takeNotificationName();

    mServer.start(std::get<QByteArray>(socketName));
    const QVector<InputLayer*> inputLayers{&mMenu, &mNotificationCards, &mKeyboard, &mStatusBar};
    QWaylandSeat* const seat = mServer.defaultSeat();
    mSeatInput = std::make_unique<SeatInput>(seat, mServer.guard(), mServer.drag(), mWindowStack,
                                             SeatInput::Layers{inputLayers, mMenu, mCommands}, mScreenSaver, mWindow);
    if (!mOptions.keyboardLayout.name.isEmpty()) {
        seat->keymap()->setLayout(mOptions.keyboardLayout.name);
        seat->keymap()->setVariant(mOptions.keyboardLayout.variant);
    }
    const Keymap keymap(mOptions.keyboardLayout);
    mScanCodeCompleter = std::make_unique<ScanCodeCompleter>(keymap);
    mTouchInput = std::make_unique<TouchInput>(mServer.touch(), *mSeatInput, mWindowStack, inputLayers, mScreenSaver);
    mKeyboard.setKeymap(keymap);
    mTextEntry = std::make_unique<TextEntry>(mKeyboard, mServer.textInputs(), mWindowStack, mWindow, keymap);
    QObject::connect(mSeatInput.get(), &SeatInput::pressed, mTextEntry.get(), &TextEntry::noteOtherInput);
    QObject::connect(mTouchInput.get(), &TouchInput::pressed, mTextEntry.get(), &TextEntry::noteFinger);
    QObject::connect(&mCommands, &DeskCommands::keyboardRequested, mTextEntry.get(), &TextEntry::toggle);
    mWindow.setInput(mSeatInput.get(), mTouchInput.get());
    if (mOptions.isMouseFinger) {
        mWindow.useMouseAsFinger();
    }
    if (mOptions.isFullScreenWindow) {
        mWindow.showFullScreen();
    } else {
        mWindow.show();
    }
    return mScriptPlayer.start();
}

MaybeError Compositor::publishObjects()
{
    const std::pair<QString, QObject*> objects[] = {
        {QStringLiteral(TELVARO_TASKSWITCHER_PATH), &mTaskSwitcherObject},
        {QStringLiteral(TELVARO_SCREEN_PATH), &mScreenObject},
        {QStringLiteral(TELVARO_GLOBALOVERLAY_PATH), &mGlobalOverlayObject},
        {QStringLiteral(TELVARO_SCREENSHOT_PATH), &mScreenShotObject},
        {QStringLiteral(TELVARO_NOTIFICATIONS_PATH), &mNotificationsObject},
    };
    for (const auto& [path, object] : objects) {
        if (const MaybeError error = mBusService.publish(path, object)) {
            return error;
        }
    }
    return {};
}

void Compositor::takeScreenShot()
{
    Notification notification;
    notification.timeoutMilliseconds = cScreenShotMessageMilliseconds;
    const QString directory = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    QDir().mkpath(directory);
    ScreenShotFile file(directory);
    if (file.isDirectoryOpen() && file.write(mScene.toImage())) {
        notification.summary = QStringLiteral("Screenshot");
        notification.body = file.path();
    } else {
        notification.summary = QStringLiteral("No screenshot");
        notification.body = file.errorText();
    }
    mNotificationCenter.notify(notification, 0);
}
