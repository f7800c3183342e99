// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/ClientLiveness.h"

#include "wayland/XdgShell.h"

#include <QWaylandCompositor>

#include <utility>
#include <xdg-shell-server-protocol.h>

namespace {

constexpr int cPatienceSeconds = 3;
constexpr int cIntervalMilliseconds = 1000;
constexpr int cEventsPerPing = 32;
/// Half of the small events that a connection buffers.
constexpr int cMostUnconfirmed = 128;

} // namespace

ClientLiveness::ClientLiveness(const XdgShell& shell, QWaylandClient* client, QObject* parent)
    : QObject(parent)
    , mClient(client)
{
    mSeconds.setInterval(cIntervalMilliseconds);
    connect(&mSeconds, &QTimer::timeout, this, &ClientLiveness::handleSecond);
    connect(&shell, &XdgShell::pong, this, [this](wl_client* from, uint32_t serial) {
        if (mClient != nullptr && mClient->client() == from) {
            handlePong(serial);
        }
    });
    connect(client, &QObject::destroyed, this, &QObject::deleteLater);
}

void ClientLiveness::setShellObject(wl_resource* object)
{
    mShellObject = object;
    mShellListener = std::make_unique<ResourceListener>(object, [this] {
        mShellObject = nullptr;
    });
}

void ClientLiveness::addWindow()
{
    ++mWindows;
    ping();
}

void ClientLiveness::removeWindow()
{
    --mWindows;
}

void ClientLiveness::handleSecond()
{
    if (mWaiting) {
        if (++mPassedSeconds >= cPatienceSeconds) {
            mSeconds.stop();
            setResponding(false);
        }
    } else if (mWindows > 0) {
        ping();
    } else {
        mSeconds.stop();
    }
}

bool ClientLiveness::admitEvent()
{
    if (mClient.isNull() || !mResponding || mUnconfirmed >= cMostUnconfirmed) {
        mHeldBack = true;
        return false;
    }
    ++mUnconfirmed;
    ++mSincePingCount;
    if (mUnconfirmed % cEventsPerPing == 0 || !mSincePing.isValid() || mSincePing.elapsed() > cIntervalMilliseconds) {
        ping();
    }
    return true;
}

bool ClientLiveness::isBehind() const
{
    return mResponding && mUnconfirmed > cMostUnconfirmed / 2;
}

void ClientLiveness::ping()
{
    if (mWaiting || mClient.isNull() || mShellObject == nullptr) {
        return;
    }
    mSincePing.start();
    mSincePingCount = 0;
    mWaiting = true;
    mSerial = mClient->compositor()->nextSerial();
    xdg_wm_base_send_ping(mShellObject, mSerial);
    mPassedSeconds = 0;
    mSeconds.start();
}

void ClientLiveness::handlePong(uint serial)
{
    if (!mWaiting || serial != mSerial) {
        return;
    }
    mWaiting = false;
    mSeconds.start();
    mUnconfirmed = mSincePingCount;
    setResponding(true);
    if (std::exchange(mHeldBack, false)) {
        Q_EMIT caughtUp();
    }
}

void ClientLiveness::setResponding(bool responding)
{
    if (responding != mResponding) {
        mResponding = responding;
        Q_EMIT respondingChanged();
    }
}
