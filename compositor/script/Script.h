// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "bus/BusCall.h"
#include "bus/FaultTable.h"
#include "state/View.h"

#include <QString>
#include <QStringList>
#include <QVariantList>

#include <optional>
#include <variant>
#include <vector>

/// The steps of a script: what to do, and when.
namespace Script {

struct AddView
{
    View view;
    std::optional<quint32> sortIndex;
};

struct ChangeView
{
    QString uuid;
    ViewChange change;
};

/// Arranges these views in this order, in the places that they have together.
struct OrderViews
{
    QStringList uuids;
};

/// Announces a text as the current view, which need not be one.
struct AnnounceCurrentView
{
    QString text;
};

struct RemoveView
{
    QString uuid;
};

/// Calls a method as another program would; a property is written by Set of org.freedesktop.DBus.Properties.
struct Call
{
    QString path;
    QString interface;
    QString member;
    QVariantList arguments;
};

struct SetScreenSaverActive
{
    bool isActive = false;
};

/// Lets the timeout blank the screen, or only the script.
struct SetBlanking
{
    bool isAutomatic = true;
};

struct AddFault
{
    CallFault fault;
};

struct EndFault
{
    CallPattern calls;
};

struct SetService
{
    bool isThere = false;
};

/// Blocks the event loop, as a hanging program does.
struct Freeze
{
    int milliseconds = 0;
};

using Action = std::variant<AddView, RemoveView, Call, SetScreenSaverActive, AddFault, EndFault, SetService, Freeze,
                            ChangeView, OrderViews, AnnounceCurrentView, SetBlanking>;

/// What a step waits for: the n-th matching call, or the n-th view of an application.
struct Event
{
    std::variant<CallPattern, QString> what;
    int times = 1;
};

struct Step
{
    int number = 0;
    /// The start if there is none.
    std::optional<Event> after;
    int delayMilliseconds = 0;
    Action action;
};

struct Plan
{
    QString fileName;
    std::vector<Step> steps;
};

} // namespace Script
