// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "Result.h"
#include "wayland/RequestGuard.h"

#include <QHash>
#include <QWaylandCompositor>
#include <QWaylandIdleInhibitManagerV1>
#include <QWaylandOutput>
#include <QWaylandViewporter>

#include <memory>

class ClientDrag;
class ClientLiveness;
class ClientPopup;
class ClientTouch;
class ClientWindow;
class DataDevices;
class Output;
class PixelBudget;
class Screencopy;
class ServerGlobals;
class TextInputs;
class ViewList;
class XdgOutput;
class XdgPopup;
class XdgShell;
class XdgToplevel;

/// The Wayland server: its globals, and the windows and popups that clients create.
class WaylandServer : public QWaylandCompositor
{
    Q_OBJECT

public:
    WaylandServer(const Output& output, QWindow& window, ViewList& views);
    ~WaylandServer() override;

    /// Opens the socket.
    void start(const QByteArray& socketName);
    /// Hides the socket and disconnects all clients, as if the compositor had ended.
    void hangUp();
    /// Shows the socket again.
    MaybeError reopen();
    RequestGuard& guard()
    {
        return mGuard;
    }
    /// Exist after start().
    ClientDrag& drag();
    ClientTouch& touch();
    TextInputs& textInputs();
    Screencopy& screencopy();

Q_SIGNALS:
    void windowCreated(ClientWindow* window);
    void popupCreated(ClientPopup* popup);

protected:
    QWaylandSeat* createSeat() override;
    QWaylandPointer* createPointerDevice(QWaylandSeat* seat) override;
    QWaylandKeyboard* createKeyboardDevice(QWaylandSeat* seat) override;

private:
    struct ClientRecord
    {
        ClientLiveness* liveness;
        std::shared_ptr<PixelBudget> budget;
    };

    void addWindow(XdgToplevel* toplevel);
    void addPopup(XdgPopup* popup);
    const ClientRecord& recordOf(QWaylandClient* client);
    void announceGlobals();
    void describeOutput();
    /// Returns the path of the socket.
    QByteArray socketPath() const;
    /// The socket's path between hangUp() and reopen().
    QByteArray hiddenSocketPath() const;

    const Output& mOutput;
    ViewList& mViews;
    QWaylandOutput mWaylandOutput;
    RequestGuard mGuard;
    QWaylandViewporter mViewporter;
    QWaylandIdleInhibitManagerV1 mIdleInhibitManager;
    std::unique_ptr<ServerGlobals> mGlobals;
    std::unique_ptr<XdgShell> mShell;
    std::unique_ptr<DataDevices> mDataDevices;
    std::unique_ptr<ClientTouch> mTouch;
    std::unique_ptr<TextInputs> mTextInputs;
    std::unique_ptr<Screencopy> mScreencopy;
    std::unique_ptr<XdgOutput> mXdgOutput;
    QHash<QWaylandClient*, ClientRecord> mClients;
};
