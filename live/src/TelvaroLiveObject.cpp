// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "TelvaroLiveObject.h"

#include "LiveProperties.h"
#include "ServiceCall.h"

TelvaroLiveObject::TelvaroLiveObject(QObject* parent)
    : TelvaroLiveObject(new LiveProperties, parent)
{
}

TelvaroLiveObject::TelvaroLiveObject(LiveProperties* properties, QObject* parent)
    : QObject(parent)
    , mProperties(properties)
{
    mProperties->start(this);
}

TelvaroLiveObject::~TelvaroLiveObject() = default;

TelvaroLiveObject::Status TelvaroLiveObject::getStatus() const
{
    return mProperties->getStatus();
}

QDBusError TelvaroLiveObject::getError() const
{
    return mProperties->getError();
}

int TelvaroLiveObject::getTimeout() const
{
    return mTimeout;
}

void TelvaroLiveObject::setTimeout(int milliseconds)
{
    mTimeout = milliseconds;
}

QDBusPendingCall TelvaroLiveObject::report(const QDBusPendingCall& request)
{
    ServiceCall::whenAnswered(request, this, [this](const QDBusPendingCall& answered) {
        if (answered.isError()) {
            Q_EMIT requestFailed(answered.error());
        }
    });
    return request;
}
