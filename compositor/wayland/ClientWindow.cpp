// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/ClientWindow.h"

#include "state/ViewList.h"
#include "wayland/ClientLiveness.h"

#include <QFile>
#include <QUuid>
#include <QWaylandClient>

#include <xdg-shell-server-protocol.h>

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

ClientWindow::ClientWindow(XdgToplevel* toplevel, ClientLiveness* liveness, ViewList& views, QObject* parent)
    : QObject(parent)
    , mToplevel(toplevel)
    , mXdgSurface(toplevel->xdgSurface())
    , mSurface(ClientSurface::of(mXdgSurface->surface()))
    , mLiveness(liveness)
    , mViews(views)
    , mProcessName(processNameOf(mXdgSurface->surface()->client()->processId()))
{
    connect(mSurface, &ClientSurface::committed, this, &ClientWindow::committed);
    connect(mXdgSurface, &XdgSurface::initialCommit, this, &ClientWindow::handleStateRequest);
    connect(mXdgSurface, &XdgSurface::mappedChanged, this, &ClientWindow::handleMappedChanged);
    connect(mXdgSurface, &XdgSurface::committed, this, [this] {
        mViews.setSize(mUuid, windowGeometry().size());
    });
    connect(toplevel, &QObject::destroyed, this, [this] {
        unmap();
        deleteLater();
    });

    connect(toplevel, &XdgToplevel::titleChanged, this, [this] {
        mViews.setTitle(mUuid, mToplevel->title());
    });
    connect(toplevel, &XdgToplevel::appIdChanged, this, [this] {
        mViews.setAppId(mUuid, appId());
        Q_EMIT configureRequested();
    });
    connect(toplevel, &XdgToplevel::parentChanged, this, [this] {
        mViews.setDialog(mUuid, parentToplevel() != nullptr);
        Q_EMIT configureRequested();
    });
    connect(toplevel, &XdgToplevel::stateRequested, this, &ClientWindow::handleStateRequest);
    connect(liveness, &ClientLiveness::respondingChanged, this, [this] {
        mViews.setResponding(mUuid, isResponding());
    });
    connect(liveness, &ClientLiveness::caughtUp, this, &ClientWindow::handleCaughtUp);
}

ClientWindow::~ClientWindow()
{
    unmap();
}

const XdgToplevel* ClientWindow::parentToplevel() const
{
    return mToplevel == nullptr ? nullptr : mToplevel->parentToplevel();
}

bool ClientWindow::wantsFullScreen() const
{
    return mToplevel != nullptr && mToplevel->wantsFullScreen();
}

void ClientWindow::close()
{
    if (mToplevel != nullptr && admitEvent()) {
        mToplevel->sendClose();
    }
}

QRect ClientWindow::windowGeometry() const
{
    return mXdgSurface == nullptr ? QRect() : mXdgSurface->windowGeometry();
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
    // A dialog chooses its own size.
    const bool isFree = parentToplevel() != nullptr && !wantsFullScreen();
    QVector<uint32_t> states;
    if (!isFree) {
        states.append(isFullScreen ? XDG_TOPLEVEL_STATE_FULLSCREEN : XDG_TOPLEVEL_STATE_MAXIMIZED);
    }
    // A window that is about to be mapped will be the current one: saying so at once spares it another configure event.
    if (isActivated || !isMapped()) {
        states.append(XDG_TOPLEVEL_STATE_ACTIVATED);
    }
    const QSize wanted = isFree ? QSize(0, 0) : size;
    mConfigureIsDue = mConfigureIsDue || wanted != mSize || states != mStates;
    mSize = wanted;
    mStates = states;
    sendConfigure();
}

void ClientWindow::sendConfigure()
{
    if (mConfigureIsDue && mToplevel != nullptr && mXdgSurface->isInitialized() && admitEvent()) {
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

void ClientWindow::handleStateRequest()
{
    mConfigureIsDue = true;
    Q_EMIT configureRequested();
}

void ClientWindow::handleMappedChanged()
{
    if (mXdgSurface->isMapped()) {
        map();
    } else {
        unmap();
    }
}

void ClientWindow::map()
{
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
