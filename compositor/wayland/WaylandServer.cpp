// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/WaylandServer.h"

#include "state/Output.h"
#include "state/ViewList.h"
#include "wayland/ClientKeyboard.h"
#include "wayland/ClientLiveness.h"
#include "wayland/ClientPointer.h"
#include "wayland/ClientPopup.h"
#include "wayland/ClientSurface.h"
#include "wayland/ClientTouch.h"
#include "wayland/ClientWindow.h"
#include "wayland/DataDevices.h"
#include "wayland/Presentation.h"
#include "wayland/Screencopy.h"
#include "wayland/ServerGlobals.h"
#include "wayland/ServerSurface.h"
#include "wayland/SharedMemoryImage.h"
#include "wayland/TextInputs.h"
#include "wayland/XdgDecoration.h"
#include "wayland/XdgOutput.h"
#include "wayland/XdgPopup.h"
#include "wayland/XdgShell.h"
#include "wayland/XdgSurface.h"
#include "wayland/XdgToplevel.h"

#include <QCoreApplication>
#include <QWaylandOutputMode>
#include <QWaylandSeat>
#include <QWaylandSurface>

#include <QtWaylandCompositor/private/qwaylandoutput_p.h>
#include <QtWaylandCompositor/private/qwaylandseat_p.h>
#include <cstdio>
#include <unistd.h>
#include <wayland-server.h>

// This header is not made for QT_NO_KEYWORDS.
#define emit Q_EMIT
#include <QtWaylandCompositor/private/qwaylandcompositor_p.h>
#undef emit

namespace {

constexpr int cRefreshMilliHertz = 60000;
constexpr qreal cMillimetresPerPixel = 25.4 / 96;

/// Hides Qt's plugins for client buffers in a GPU's memory. Only shared memory can be painted, and without those
/// globals that is what clients use.
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

void greetSeat(wl_resource* seat)
{
    if (wl_resource_get_version(seat) >= WL_SEAT_NAME_SINCE_VERSION) {
        wl_seat_send_name(seat, "seat0");
    }
}

QWaylandOutput::Transform transformOf(const Output& output)
{
    // wl_output.transform counts anticlockwise.
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

WaylandServer::WaylandServer(const Output& output, QWindow& window, ViewList& views)
    : mOutput(output)
    , mViews(views)
    , mWaylandOutput(this, &window)
    , mGuard(*this)
    , mViewporter(this)
    , mIdleInhibitManager(this)
{
    setUseHardwareIntegrationExtension(false);
    mWaylandOutput.setSizeFollowsWindow(false);
    mWaylandOutput.setManufacturer(QStringLiteral("Telvaro"));
    mWaylandOutput.setModel(QStringLiteral("Reference display"));

    connect(this, &QWaylandCompositor::surfaceRequested, this, [this](QWaylandClient* client, uint id, int version) {
        new ServerSurface(this, client, id, version);
    });
    connect(this, &QWaylandCompositor::surfaceCreated, this, [this](QWaylandSurface* surface) {
        new ClientSurface(surface, recordOf(surface->client()).budget, this);
    });
    connect(&mOutput, &Output::geometryChanged, this, &WaylandServer::describeOutput);
}

WaylandServer::~WaylandServer()
{
    // Must happen while the receivers of the signals still exist. QWaylandCompositor destroys only some clients.
    wl_display_destroy_clients(display());
    ::unlink(hiddenSocketPath().constData());
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
    // Qt creates globals in Polish events; the first client must find all of them.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::Polish);
    announceGlobals();
    SharedMemoryImage::announceFormats(display());
    mXdgOutput = std::make_unique<XdgOutput>(display(), mOutput);
}

QByteArray WaylandServer::socketPath() const
{
    return qgetenv("XDG_RUNTIME_DIR") + '/' + socketName();
}

QByteArray WaylandServer::hiddenSocketPath() const
{
    return socketPath() + ".closed";
}

void WaylandServer::hangUp()
{
    // libwayland has no function that closes a socket before the display is destroyed. Under another name nobody
    // connects to it.
    ::rename(socketPath().constData(), hiddenSocketPath().constData());
    wl_display_destroy_clients(display());
}

MaybeError WaylandServer::reopen()
{
    const QByteArray path = socketPath();
    // Unlike rename(), takes the name from nobody.
    if (::link(hiddenSocketPath().constData(), path.constData()) != 0) {
        return Error{
            QStringLiteral("cannot open the socket %1: %2").arg(QString::fromLocal8Bit(path), qt_error_string())};
    }
    ::unlink(hiddenSocketPath().constData());
    return {};
}

QWaylandSeat* WaylandServer::createSeat()
{
    auto* const seat = new QWaylandSeat(this, QWaylandSeat::Pointer | QWaylandSeat::Keyboard | QWaylandSeat::Touch);
    seat->setParent(this);
    return seat;
}

QWaylandPointer* WaylandServer::createPointerDevice(QWaylandSeat* seat)
{
    return new ClientPointer(seat);
}

QWaylandKeyboard* WaylandServer::createKeyboardDevice(QWaylandSeat* seat)
{
    return new ClientKeyboard(seat);
}

ClientDrag& WaylandServer::drag()
{
    return mDataDevices->drag();
}

ClientTouch& WaylandServer::touch()
{
    return *mTouch;
}

TextInputs& WaylandServer::textInputs()
{
    return *mTextInputs;
}

Screencopy& WaylandServer::screencopy()
{
    return *mScreencopy;
}

void WaylandServer::announceGlobals()
{
    mGlobals = std::make_unique<ServerGlobals>(display());
    mGlobals->announce<QtWaylandServer::wl_compositor>(*QWaylandCompositorPrivate::get(this), 4);
    mGlobals->announce<QtWaylandServer::wl_seat, greetSeat>(*QWaylandSeatPrivate::get(defaultSeat()), 6);
    mGlobals->announce<QtWaylandServer::wl_output>(*QWaylandOutputPrivate::get(&mWaylandOutput), 3);
    mShell = std::make_unique<XdgShell>(*mGlobals);
    connect(mShell.get(), &XdgShell::toplevelCreated, this, &WaylandServer::addWindow);
    connect(mShell.get(), &XdgShell::popupCreated, this, &WaylandServer::addPopup);
    XdgDecoration::announce(*mGlobals);
    Presentation::announce(*mGlobals);
    mDataDevices = std::make_unique<DataDevices>(*mGlobals, *defaultSeat());
    mTouch = std::make_unique<ClientTouch>(*defaultSeat());
    mTextInputs = std::make_unique<TextInputs>(*mGlobals, *defaultSeat());
    mScreencopy = std::make_unique<Screencopy>(*mGlobals, mOutput);
}

void WaylandServer::addWindow(XdgToplevel* toplevel)
{
    ServerSurface* const surface = toplevel->xdgSurface()->surface();
    ClientLiveness* const liveness = recordOf(surface->client()).liveness;
    liveness->setShellObject(toplevel->xdgSurface()->shellObject());
    Q_EMIT windowCreated(new ClientWindow(toplevel, liveness, mViews, this));
    mWaylandOutput.surfaceEnter(surface);
}

void WaylandServer::addPopup(XdgPopup* popup)
{
    ServerSurface* const surface = popup->xdgSurface()->surface();
    Q_EMIT popupCreated(new ClientPopup(popup, this));
    mWaylandOutput.surfaceEnter(surface);
}

const WaylandServer::ClientRecord& WaylandServer::recordOf(QWaylandClient* client)
{
    auto record = mClients.find(client);
    if (record == mClients.end()) {
        record = mClients.insert(client, {new ClientLiveness(*mShell, client, this), std::make_shared<PixelBudget>()});
        connect(client, &QObject::destroyed, this, [this, client] {
            mClients.remove(client);
        });
    }
    return *record;
}

void WaylandServer::describeOutput()
{
    const QSize size = mOutput.physicalSize();
    const QWaylandOutputMode mode(size, cRefreshMilliHertz);
    if (!mWaylandOutput.modes().contains(mode)) {
        mWaylandOutput.addMode(mode, true);
    }
    mWaylandOutput.setPhysicalSize((QSizeF(size) * cMillimetresPerPixel).toSize());
    mWaylandOutput.setTransform(transformOf(mOutput));
    mWaylandOutput.setCurrentMode(mode);
    if (mXdgOutput != nullptr) {
        mXdgOutput->announceSize();
    }
}
