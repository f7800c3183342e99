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

namespace {
QString processNameOf(qint64 pid)
{
    QFile file(QStringLiteral("/proc/%1/comm").arg(pid));
    const QString name = file.open(QIODevice::ReadOnly) ? QString::fromLocal8Bit(file.readAll()).trimmed() : QString();
    return name.isEmpty() ? QStringLiteral("unknown") : name;
}
} // namespace

ClientWindow::ClientWindow(QWaylandXdgToplevel* toplevel, QWaylandXdgSurface* xdgSurface, ClientLiveness* watch,
                           ViewList& views, QObject* parent)
    : QObject(parent)
    , mToplevel(toplevel)
    , mXdgSurface(xdgSurface)
    , mSurface(ClientSurface::of(xdgSurface->surface()))
    , mWatch(watch)
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
    });
    connect(toplevel, &QWaylandXdgToplevel::parentToplevelChanged, this, [this] {
        mViews.setDialog(mUuid, parentToplevel() != nullptr);
        Q_EMIT configureRequested();
    });
    const auto answerRequest = [this] {
        mConfigureIsDue = true;
        Q_EMIT configureRequested();
    };
    connect(toplevel, &QWaylandXdgToplevel::setMaximized, this, answerRequest);
    connect(toplevel, &QWaylandXdgToplevel::unsetMaximized, this, answerRequest);
    connect(toplevel, &QWaylandXdgToplevel::setFullscreen, this, answerRequest);
    connect(toplevel, &QWaylandXdgToplevel::unsetFullscreen, this, answerRequest);
    connect(watch, &ClientLiveness::respondingChanged, this, [this] {
        mViews.setResponding(mUuid, isResponding());
    });
    connect(watch, &ClientLiveness::caughtUp, this, &ClientWindow::handleCaughtUp);
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
    return mXdgSurface == nullptr ? QRect() : ClientBounds::bounded(mXdgSurface->windowGeometry());
}

bool ClientWindow::isResponding() const
{
    return mWatch != nullptr && mWatch->isResponding();
}

void ClientWindow::ping()
{
    if (mWatch != nullptr) {
        mWatch->ping();
    }
}

bool ClientWindow::admitEvent()
{
    return mWatch != nullptr && mWatch->admitEvent();
}

void ClientWindow::configure(const QSize& size, bool isFullScreen, bool isActivated)
{
    const bool isDialog = parentToplevel() != nullptr;
    QVector<QWaylandXdgToplevel::State> states;
    if (!isDialog) {
        states.append(isFullScreen ? QWaylandXdgToplevel::FullscreenState : QWaylandXdgToplevel::MaximizedState);
    }
    if (isActivated) {
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
    if (mConfigureIsDue && mToplevel != nullptr && admitEvent()) {
        mConfigureIsDue = false;
        mToplevel->sendConfigure(mSize, mStates);
    }
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
        // A commit without contents is the wish to be mapped, and the client waits for an answer.
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
    mViews.add(view);
}

void ClientWindow::unmap()
{
    if (isMapped()) {
        mViews.remove(std::exchange(mUuid, QString()));
    }
}

QString ClientWindow::appId() const
{
    return mToplevel->appId().isEmpty() ? mProcessName : mToplevel->appId();
}
