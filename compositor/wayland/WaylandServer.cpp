// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/WaylandServer.h"

#include "shell/WindowStack.h"
#include "state/Output.h"
#include "state/ViewList.h"
#include "wayland/ClientLiveness.h"
#include "wayland/ClientPopup.h"
#include "wayland/ClientSurface.h"
#include "wayland/ClientWindow.h"
#include "wayland/XdgOutput.h"

#include <QCoreApplication>
#include <QWaylandOutputMode>
#include <QWaylandSeat>
#include <QWaylandSurface>

#include <wayland-server.h>

namespace {
constexpr int cRefreshMilliHertz = 60000;
constexpr qreal cMillimetresPerPixel = 25.4 / 96;

/// Keeps Qt from finding the plugins that take buffers in a GPU's memory. There would be nothing to paint them with,
/// and a client that does not find them uses shared memory.
class WithoutPlugins
{
public:
    WithoutPlugins()
    {
        QCoreApplication::setLibraryPaths({});
    }
    ~WithoutPlugins()
    {
        QCoreApplication::setLibraryPaths(mPaths);
    }
    WithoutPlugins(const WithoutPlugins&) = delete;
    WithoutPlugins& operator=(const WithoutPlugins&) = delete;

private:
    const QStringList mPaths = QCoreApplication::libraryPaths();
};

QWaylandOutput::Transform transformOf(const Output& output)
{
    // Wayland counts the turn of the contents anticlockwise.
    switch (output.rotation()) {
    case 90:
        return QWaylandOutput::Transform270;
    case 180:
        return QWaylandOutput::Transform180;
    case 270:
        return QWaylandOutput::Transform90;
    default:
        return QWaylandOutput::TransformNormal;
    }
}
} // namespace

WaylandServer::WaylandServer(const Output& output, QWindow& window, ViewList& views, WindowStack& stack)
    : mGeometry(output)
    , mViews(views)
    , mStack(stack)
    , mOutput(this, &window)
    , mShell(this)
    , mGuard(*this, mShell)
    , mViewporter(this)
{
    setUseHardwareIntegrationExtension(false);
    mOutput.setSizeFollowsWindow(false);
    mOutput.setManufacturer(QStringLiteral("Telvaro"));
    mOutput.setModel(QStringLiteral("Reference display"));
    mShell.setFocusPolicy(QWaylandShell::ManualFocus);
    mDecorations.setPreferredMode(QWaylandXdgToplevel::ServerSideDecoration);
    mDecorations.setExtensionContainer(this);

    connect(this, &QWaylandCompositor::surfaceCreated, this, [this](QWaylandSurface* surface) {
        new ClientSurface(surface, this);
    });
    connect(&mShell, &QWaylandXdgShell::toplevelCreated, this, &WaylandServer::addWindow);
    connect(&mShell, &QWaylandXdgShell::popupCreated, this, &WaylandServer::addPopup);
    connect(&mGeometry, &Output::geometryChanged, this, &WaylandServer::describeOutput);
    connect(&mViews, &ViewList::currentChanged, this, &WaylandServer::focusCurrent);
}

WaylandServer::~WaylandServer()
{
    // While everything that hears of it is still there. Qt knows only of those that have asked for something.
    wl_display_destroy_clients(display());
}

void WaylandServer::start(const QByteArray& socketName)
{
    setSocketName(socketName);
    describeOutput();
    {
        const WithoutPlugins withoutPlugins;
        create();
    }
    mGuard.start();
    // The globals are announced by events of their own; the first client must find all of them.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::Polish);
    mDecorations.initialize();
    mXdgOutput = std::make_unique<XdgOutput>(display(), mGeometry);
}

QWaylandSeat* WaylandServer::createSeat()
{
    // Touches arrive as the mouse events that Qt makes of them.
    auto* const seat = new QWaylandSeat(this, QWaylandSeat::Pointer | QWaylandSeat::Keyboard);
    seat->setParent(this);
    return seat;
}

void WaylandServer::addWindow(QWaylandXdgToplevel* toplevel, QWaylandXdgSurface* xdgSurface)
{
    ClientLiveness* const watch = watchOf(xdgSurface->surface()->client());
    mStack.addWindow(new ClientWindow(toplevel, xdgSurface, watch, mViews, this));
    mOutput.surfaceEnter(xdgSurface->surface());
}

void WaylandServer::addPopup(QWaylandXdgPopup* popup, QWaylandXdgSurface* xdgSurface)
{
    mStack.addPopup(new ClientPopup(popup, xdgSurface, this));
    mOutput.surfaceEnter(xdgSurface->surface());
}

ClientLiveness* WaylandServer::watchOf(QWaylandClient* client)
{
    ClientLiveness*& watch = mWatches[client];
    if (watch == nullptr) {
        watch = new ClientLiveness(&mShell, client, this);
        connect(client, &QObject::destroyed, this, [this, client] {
            mWatches.remove(client);
        });
    }
    return watch;
}

void WaylandServer::describeOutput()
{
    const QSize size = mGeometry.physicalSize();
    const QWaylandOutputMode mode(size, cRefreshMilliHertz);
    if (!mOutput.modes().contains(mode)) {
        mOutput.addMode(mode, true);
    }
    mOutput.setPhysicalSize((QSizeF(size) * cMillimetresPerPixel).toSize());
    mOutput.setTransform(transformOf(mGeometry));
    mOutput.setCurrentMode(mode);
    if (mXdgOutput != nullptr) {
        mXdgOutput->announceSize();
    }
}

void WaylandServer::focusCurrent()
{
    ClientWindow* const window = mStack.current();
    ClientSurface* const surface = window == nullptr ? nullptr : window->surface();
    defaultSeat()->setKeyboardFocus(surface == nullptr ? nullptr : surface->surface());
    if (window != nullptr) {
        window->ping();
    }
}
