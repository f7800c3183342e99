// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/ClientWindow.h"

#include "state/ViewList.h"
#include "wayland/ClientBounds.h"
#include "wayland/ClientLiveness.h"

#include <QFile>
#include <QUuid>
#include <QWaylandClient>
#include <QWaylandOutput>
#include <QWaylandSurface>

#include <csignal>

namespace {

/// Some clients draw their first frame in a size of their own.
constexpr int cSettlingMilliseconds = 2000;

QString processNameOf(qint64 pid)
{
    QFile file(QStringLiteral("/proc/%1/comm").arg(pid));
    const QString name = file.open(QIODevice::ReadOnly) ? QString::fromLocal8Bit(file.readAll()).trimmed() : QString();
    return name.isEmpty() ? QStringLiteral("unknown") : name;
}

} // namespace

ClientWindow::ClientWindow(QWaylandXdgToplevel* toplevel, QWaylandXdgSurface* xdgSurface, ClientLiveness* liveness,
                           ViewList& views, QObject* parent)
    : QObject(parent)
    , mToplevel(toplevel)
    , mXdgSurface(xdgSurface)
    , mSurface(ClientSurface::of(xdgSurface->surface()))
    , mLiveness(liveness)
    , mViews(views)
    , mProcessName(processNameOf(xdgSurface->surface()->client()->processId()))
{
    QWaylandSurface* const surface = xdgSurface->surface();
    connect(surface, &QWaylandSurface::hasContentChanged, this, &ClientWindow::handleContentChanged);
    connect(surface, &QWaylandSurface::surfaceDestroyed, this, &ClientWindow::unmap);
    connect(surface, &QWaylandSurface::redraw, this, &ClientWindow::handleCommit);
    connect(mSurface, &ClientSurface::committed, this, &ClientWindow::committed);
    connect(xdgSurface, &QObject::destroyed, this, &ClientWindow::unmap);
    connect(toplevel, &QObject::destroyed, this, [this] {
        unmap();
        deleteLater();
    });

    connect(toplevel, &QWaylandXdgToplevel::titleChanged, this, [this] {
        mViews.setTitle(mUuid, mToplevel->title());
    });
    connect(toplevel, &QWaylandXdgToplevel::appIdChanged, this, [this] {
        mViews.setAppId(mUuid, appId());
        Q_EMIT configureRequested();
    });
    connect(toplevel, &QWaylandXdgToplevel::parentToplevelChanged, this, [this] {
        mViews.setDialog(mUuid, parentToplevel() != nullptr);
        Q_EMIT configureRequested();
    });
    const auto handleStateRequest = [this] {
        mConfigureIsDue = true;
        Q_EMIT configureRequested();
    };
    connect(toplevel, &QWaylandXdgToplevel::setMaximized, this, handleStateRequest);
    connect(toplevel, &QWaylandXdgToplevel::unsetMaximized, this, handleStateRequest);
    connect(toplevel, &QWaylandXdgToplevel::setFullscreen, this, [this, handleStateRequest] {
        mWantsFullScreen = true;
        handleStateRequest();
    });
    connect(toplevel, &QWaylandXdgToplevel::unsetFullscreen, this, [this, handleStateRequest] {
        mWantsFullScreen = false;
        handleStateRequest();
    });
    connect(liveness, &ClientLiveness::respondingChanged, this, [this] {
        mViews.setResponding(mUuid, isResponding());
    });
    connect(liveness, &ClientLiveness::caughtUp, this, &ClientWindow::handleCaughtUp);
}

ClientWindow::~ClientWindow()
{
    unmap();
}

QWaylandXdgToplevel* ClientWindow::parentToplevel() const
{
    return mToplevel == nullptr ? nullptr : mToplevel->parentToplevel();
}

QRect ClientWindow::windowGeometry() const
{
    return mXdgSurface == nullptr ? QRect() : ClientBounds::clamped(mXdgSurface->windowGeometry());
}

bool ClientWindow::isResponding() const
{
    return mLiveness != nullptr && mLiveness->isResponding();
}

bool ClientWindow::isBehind() const
{
    return mLiveness != nullptr && mLiveness->isBehind();
}

void ClientWindow::ping()
{
    if (mLiveness != nullptr) {
        mLiveness->ping();
    }
}

bool ClientWindow::admitEvent()
{
    return mLiveness != nullptr && mLiveness->admitEvent();
}

void ClientWindow::endProcess() const
{
    const View* const view = std::as_const(mViews).find(mUuid);
    // A process that has taken over the socket of an ended one keeps that one's number, which may be in use again.
    if (view != nullptr && view->pid > 1 && processNameOf(view->pid) == mProcessName) {
        kill(static_cast<pid_t>(view->pid), SIGKILL);
    }
}

void ClientWindow::configure(const QSize& size, bool isFullScreen, bool isActivated)
{
    const bool isDialog = parentToplevel() != nullptr;
    QVector<QWaylandXdgToplevel::State> states;
    if (!isDialog) {
        // xdg-shell permits a fullscreen state with less than the size of the output.
        states.append(isFullScreen || mWantsFullScreen ? QWaylandXdgToplevel::FullscreenState
                                                       : QWaylandXdgToplevel::MaximizedState);
    }
    // A window that is about to be mapped will be the current one: saying so at once spares it another configure event.
    if (isActivated || !isMapped()) {
        states.append(QWaylandXdgToplevel::ActivatedState);
    }
    // A dialog chooses its own size.
    const QSize wanted = isDialog ? QSize(0, 0) : size;
    mConfigureIsDue = mConfigureIsDue || wanted != mSize || states != mStates;
    mSize = wanted;
    mStates = states;
    sendConfigure();
}

void ClientWindow::sendConfigure()
{
    if (mConfigureIsDue && mIsCommitted && mToplevel != nullptr && admitEvent()) {
        mConfigureIsDue = false;
        mSinceConfigure.start();
        mToplevel->sendConfigure(mSize, mStates);
    }
}

bool ClientWindow::isSettled() const
{
    // The geometry may precede the buffer that it is for.
    const QRect geometry = windowGeometry();
    const bool isDrawn = mSurface != nullptr && QRect(QPoint(), mSurface->size()).contains(geometry);
    return (isDrawn && (mSize.isEmpty() || geometry.size() == mSize))
        || mSinceConfigure.hasExpired(cSettlingMilliseconds);
}

void ClientWindow::handleCaughtUp()
{
    sendConfigure();
    Q_EMIT caughtUp();
}

void ClientWindow::handleContentChanged()
{
    const QWaylandSurface* const surface = mSurface == nullptr ? nullptr : mSurface->surface();
    if (surface != nullptr && surface->hasContent()) {
        map();
    } else {
        unmap();
    }
}

void ClientWindow::handleCommit()
{
    if (isMapped()) {
        mViews.setSize(mUuid, windowGeometry().size());
    } else {
        // The initial commit, without a buffer: the client waits for a configure event.
        mIsCommitted = true;
        mConfigureIsDue = true;
        sendConfigure();
    }
}

void ClientWindow::map()
{
    if (isMapped() || mToplevel == nullptr) {
        return;
    }
    mUuid = QUuid::createUuid().toString(QUuid::WithoutBraces);

    View view;
    view.uuid = mUuid;
    view.appId = appId();
    view.title = mToplevel->title();
    view.processName = mProcessName;
    view.pid = static_cast<quint32>(mSurface->surface()->client()->processId());
    view.size = windowGeometry().size();
    view.isDialog = parentToplevel() != nullptr;
    view.isResponding = isResponding();
    mViews.addWindow(view);
    if (mLiveness != nullptr) {
        mLiveness->addWindow();
    }
}

void ClientWindow::unmap()
{
    if (!isMapped()) {
        return;
    }
    mViews.remove(std::exchange(mUuid, QString()));
    if (mLiveness != nullptr) {
        mLiveness->removeWindow();
    }
}

QString ClientWindow::appId() const
{
    return mToplevel == nullptr || mToplevel->appId().isEmpty() ? mProcessName : mToplevel->appId();
}
