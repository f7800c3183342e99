// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Compositor.h"

#include "bus/ScreenShotFile.h"
#include "shell/DesktopKeyboard.h"
#include "wayland/ClientPopup.h"
#include "wayland/ClientWindow.h"
#include "wayland/WaylandSocketName.h"

#include <QDir>
#include <QStandardPaths>
#include <QWaylandKeymap>
#include <QWaylandSeat>

namespace {

constexpr int cScreenShotMessageMilliseconds = 5000;

/// Returns the options, with the desktop's keyboard layout where they have none. The keys of a script are those of the
/// layout that it was read with.
Options withKeyboardLayout(Options options)
{
    if (options.keyboardLayout.name.isEmpty() && options.script.steps.empty()) {
        options.keyboardLayout = DesktopKeyboard::layout().value_or(Keymap::Layout());
    }
    return options;
}

} // namespace

Compositor::Compositor(Options options)
    : mOptions(withKeyboardLayout(std::move(options)))
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
    , mDragImage(mScene)
    , mOverlayPanel(mOutput, mScene)
    , mWindow(mOutput, mScene)
    , mKeymap(mOptions.keyboardLayout)
    , mServer(mOutput, mWindow, mViews)
    , mInputInjector(mOutput, mWindowStack, mWindow)
    , mTaskSwitcherObject(mViews, mCallGate)
    , mScreenObject(mOutput, mScreenSaver, mCallGate)
    , mGlobalOverlayObject(mOverlayPanel, mCallGate)
    , mScreenShotObject(mScene, mCallGate)
    , mNotificationsObject(mNotificationCenter, mCallGate)
    , mDeskObject([this](const QByteArray& step, const DeskObject::Done& done) {
        mScriptPlayer.takeStep(step, done);
    })
    , mScriptPlayer(mOptions.script,
                    {mViews, mScreenSaver, mCallGate, mBusService, mInputInjector, mKeymap,
                     [this] {
                         hangUp();
                     },
                     [this] {
                         return mServer.reopen();
                     }})
{
    mOutput.setWindowTurning(mOptions.isWindowTurning);
    mScene.addLayer(&mBackground);
    mScene.addLayer(&mWindowStack);
    mScene.addLayer(&mStatusBar);
    mScene.addLayer(&mKeyboard);
    mScene.addLayer(&mNotificationCards);
    mScene.addLayer(&mMenu);
    mScene.addLayer(&mDragImage);
    mScene.addLayer(&mOverlayPanel);
    QObject::connect(&mStatusBar, &StatusBar::clicked, &mMenu, &Menu::toggle);
    QObject::connect(&mCommands, &DeskCommands::menuRequested, &mMenu, &Menu::toggle);
    QObject::connect(&mCommands, &DeskCommands::switchRequested, &mMenu, &Menu::step);
    QObject::connect(&mCommands, &DeskCommands::screenShotRequested, &mWindow, [this] {
        takeScreenShot();
    });
    mViews.setPanelAppId(mOptions.panel.appId);
    QObject::connect(&mViews, &ViewList::panelChanged, &mOutput, [this] {
        placePanel();
    });
    QObject::connect(&mServer, &WaylandServer::windowCreated, &mWindowStack, &WindowStack::addWindow);
    QObject::connect(&mServer, &WaylandServer::popupCreated, &mWindowStack, &WindowStack::addPopup);
    mScreenSaver.setInhibitor([this] {
        return mWindowStack.inhibitsIdle();
    });
    QObject::connect(&mWindow, &OutputWindow::framePainted, &mWindowStack, &WindowStack::sendFrameCallbacks);
    QObject::connect(&mWindow, &OutputWindow::framePainted, &mDragImage, &DragImage::sendFrameCallbacks);
}

MaybeError Compositor::start()
{
    const Result<QByteArray> socketName = WaylandSocketName::choose(mOptions.socketName);
    if (const auto* const error = std::get_if<Error>(&socketName)) {
        return *error;
    }
    // The name is requested before the socket is opened: a second compositor stops here and leaves no trace. Calls wait
    // for the event loop, which runs when everything is up.
    if (MaybeError error = publishObjects()) {
        return error;
    }
    if (MaybeError error = mBusService.takeName()) {
        return error;
    }
    mBusService.takeNotificationName();

    mServer.start(std::get<QByteArray>(socketName));
    mScene.feed(mServer.screencopy());
    const QVector<InputLayer*> inputLayers{&mMenu, &mNotificationCards, &mKeyboard, &mStatusBar};
    QWaylandSeat* const seat = mServer.defaultSeat();
    mSeatInput = std::make_unique<SeatInput>(seat, mServer.guard(), mServer.drag(), mWindowStack,
                                             SeatInput::Layers{inputLayers, mMenu, mCommands}, mScreenSaver, mWindow);
    if (!mOptions.keyboardLayout.name.isEmpty()) {
        seat->keymap()->setLayout(mOptions.keyboardLayout.name);
        seat->keymap()->setVariant(mOptions.keyboardLayout.variant);
    }
    mScanCodeCompleter = std::make_unique<ScanCodeCompleter>(mKeymap);
    mTouchInput = std::make_unique<TouchInput>(mServer.touch(), *mSeatInput, mWindowStack, inputLayers, mScreenSaver);
    mKeyboard.setKeymap(mKeymap);
    mTextEntry = std::make_unique<TextEntry>(mKeyboard, mServer.textInputs(), mWindowStack, mWindow, mKeymap);
    QObject::connect(mSeatInput.get(), &SeatInput::pressed, mTextEntry.get(), &TextEntry::noteOtherInput);
    // What is pressed has been pressed where the surfaces were before.
    QObject::connect(&mOutput, &Output::geometryChanged, mSeatInput.get(), &SeatInput::cancelGrab);
    QObject::connect(&mOutput, &Output::geometryChanged, mTouchInput.get(), &TouchInput::cancel);
    mDragImage.follow(mServer.drag());
    QObject::connect(mSeatInput.get(), &SeatInput::pointerMoved, &mDragImage, [this](const QPointF& position) {
        mDragImage.setPointer(position.toPoint());
    });
    QObject::connect(mTouchInput.get(), &TouchInput::pressed, mTextEntry.get(), &TextEntry::noteFinger);
    QObject::connect(&mCommands, &DeskCommands::keyboardRequested, mTextEntry.get(), &TextEntry::toggle);
    mWindow.setInput(mSeatInput.get(), mTouchInput.get());
    mInputInjector.setInput(mSeatInput.get(), mTouchInput.get());
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

void Compositor::hangUp()
{
    mSeatInput->releaseKeys();
    mTouchInput->cancel();
    mServer.hangUp();
    mOverlayPanel.hide();
    const QVector<Notification> notifications = mNotificationCenter.notifications();
    for (const Notification& notification : notifications) {
        mNotificationCenter.close(notification.id, NotificationCenter::CloseReason::Undefined);
    }
}

MaybeError Compositor::publishObjects()
{
    QVector<std::pair<QString, QObject*>> objects{
        {QStringLiteral(TELVARO_TASKSWITCHER_PATH), &mTaskSwitcherObject},
        {QStringLiteral(TELVARO_SCREEN_PATH), &mScreenObject},
        {QStringLiteral(TELVARO_GLOBALOVERLAY_PATH), &mGlobalOverlayObject},
        {QStringLiteral(TELVARO_SCREENSHOT_PATH), &mScreenShotObject},
        {QStringLiteral(TELVARO_NOTIFICATIONS_PATH), &mNotificationsObject},
    };
    if (mOptions.isRemoteControlled) {
        objects.append({QStringLiteral(TELVARO_DESK_PATH), &mDeskObject});
    }
    for (const auto& [path, object] : qAsConst(objects)) {
        if (MaybeError error = mBusService.publish(path, object)) {
            return error;
        }
    }
    return {};
}

void Compositor::placePanel()
{
    const Options::Panel& panel = mOptions.panel;
    const View& view = mViews.panel();
    const bool isHorizontal = panel.edge == Qt::BottomEdge || panel.edge == Qt::TopEdge;
    if (view.uuid.isEmpty()) {
        mOutput.setPanel(panel.edge, 0);
    } else if (mOutput.panelRect().isEmpty()) {
        // Later sizes are those that the strip has given it.
        const int ownThickness = isHorizontal ? view.size.height() : view.size.width();
        mOutput.setPanel(panel.edge, panel.thickness > 0 ? panel.thickness : ownThickness);
    }
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
