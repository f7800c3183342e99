// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "ScriptedServiceProcess.h"

#include <TelvaroRequests.h>
#include <TelvaroScreen.h>
#include <TelvaroTaskSwitcher.h>

#include <QDBusPendingCall>
#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

/// One of each live object.
struct LiveObjects
{
    TelvaroLiveObject presence;
    TelvaroTaskSwitcher taskSwitcher;
    TelvaroScreen screen;

    std::vector<TelvaroLiveObject*> all();
    bool areAll(TelvaroLiveObject::Status status);
};

/// A request of the layer, and the one call that it is to send.
struct LiveRequest
{
    QString name;
    QString path;
    QString interface;
    QString member;
    /// With Set of a property, otherwise empty.
    QString property;
    QString arguments;
    QStringList reply;
    std::function<QDBusPendingCall(LiveObjects&)> send;

    /// As RecordedCall describes it.
    QString description() const;
    void script(ScriptedServiceProcess& service, const QList<Behaviour>& behaviours) const;

    /// Every request, with arguments that reach a service with the views "a", "b" and "c" of the application "x", the
    /// first of them the current one.
    static const std::vector<LiveRequest>& all();
};
