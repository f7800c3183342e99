// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "ClientWatch.h"

#include <wayland-server-core.h>

#include <cstring>

namespace {
constexpr int cPatienceMilliseconds = 3000;
constexpr int cIntervalMilliseconds = 1000;

/// A client that has broken the protocol may have lost its shell object and still be there for a moment.
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

ClientWatch::ClientWatch(QWaylandXdgShell* shell, QWaylandClient* client, QObject* parent)
    : QObject(parent)
    , mShell(shell)
    , mClient(client)
{
    mDeadline.setSingleShot(true);
    mDeadline.setInterval(cPatienceMilliseconds);
    connect(&mDeadline, &QTimer::timeout, this, [this] {
        setResponding(false);
    });
    connect(shell, &QWaylandXdgShell::pong, this, &ClientWatch::handlePong);
    connect(client, &QObject::destroyed, this, &QObject::deleteLater);
}

void ClientWatch::ping()
{
    const bool isEarly = mSincePing.isValid() && mSincePing.elapsed() < cIntervalMilliseconds;
    if (mWaiting || isEarly || mClient.isNull() || !hasShell(mClient->client())) {
        return;
    }
    mSincePing.start();
    mWaiting = true;
    mSerial = mShell->ping(mClient);
    mDeadline.start();
}

void ClientWatch::handlePong(uint serial)
{
    if (mWaiting && serial == mSerial) {
        mWaiting = false;
        mDeadline.stop();
        setResponding(true);
    }
}

void ClientWatch::setResponding(bool responding)
{
    if (responding != mResponding) {
        mResponding = responding;
        Q_EMIT respondingChanged();
    }
}
