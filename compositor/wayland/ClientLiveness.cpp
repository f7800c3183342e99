// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "wayland/ClientLiveness.h"

#include <wayland-server-core.h>

#include <cstring>
#include <utility>

namespace {

constexpr int cPatienceMilliseconds = 3000;
constexpr int cIntervalMilliseconds = 1000;
constexpr int cEventsPerPing = 32;
/// Half of the small events that a connection buffers.
constexpr int cMostUnconfirmed = 128;

/// Whether the client has an xdg_wm_base. One that has broken the protocol may have lost it before it is disconnected.
bool hasShell(wl_client* client)
{
    bool found = false;
    wl_client_for_each_resource(
        client,
        [](wl_resource* resource, void* data) {
            if (std::strcmp(wl_resource_get_class(resource), QWaylandXdgShell::interface()->name) == 0) {
                *static_cast<bool*>(data) = true;
                return WL_ITERATOR_STOP;
            }
            return WL_ITERATOR_CONTINUE;
        },
        &found);
    return found;
}

} // namespace

ClientLiveness::ClientLiveness(QWaylandXdgShell* shell, QWaylandClient* client, QObject* parent)
    : QObject(parent)
    , mShell(shell)
    , mClient(client)
{
    mDeadline.setSingleShot(true);
    mDeadline.setInterval(cPatienceMilliseconds);
    connect(&mDeadline, &QTimer::timeout, this, [this] {
        setResponding(false);
    });
    connect(shell, &QWaylandXdgShell::pong, this, &ClientLiveness::handlePong);
    connect(client, &QObject::destroyed, this, &QObject::deleteLater);
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

void ClientLiveness::ping()
{
    if (mWaiting || mClient.isNull() || !hasShell(mClient->client())) {
        return;
    }
    mSincePing.start();
    mSincePingCount = 0;
    mWaiting = true;
    mSerial = mShell->ping(mClient);
    mDeadline.start();
}

void ClientLiveness::handlePong(uint serial)
{
    if (!mWaiting || serial != mSerial) {
        return;
    }
    mWaiting = false;
    mDeadline.stop();
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
