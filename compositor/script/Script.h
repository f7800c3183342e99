// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "bus/BusCall.h"
#include "bus/FaultTable.h"
#include "state/View.h"

#include <QString>
#include <QVariantList>

#include <optional>
#include <variant>
#include <vector>

/// The steps of a script: what to do, and when.
namespace Script {

struct AddView
{
    View view;
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

using Action = std::variant<AddView, RemoveView, Call, SetScreenSaverActive, AddFault, EndFault, SetService, Freeze>;

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
