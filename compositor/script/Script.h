// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "bus/BusCall.h"
#include "bus/FaultTable.h"
#include "shell/Gesture.h"
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

/// Makes the input of a person.
struct Input
{
    Gesture gesture;
};

/// Stops the processes of an application, and lets its views of the script not respond.
struct Hang
{
    QString appId;
    /// For ever if there is none.
    std::optional<int> milliseconds;
};

/// Ends the Wayland server and all that applications know of the compositor, and starts it again later.
struct Restart
{
    int milliseconds = 0;
};

/// Ends the program.
struct End
{
    int status = 0;
};

using Action = std::variant<AddView, RemoveView, Call, SetScreenSaverActive, AddFault, EndFault, SetService, Freeze,
                            ChangeView, OrderViews, AnnounceCurrentView, SetBlanking, Input, Hang, Restart, End>;

/// What a view of an application comes to.
struct ViewPattern
{
    enum class State
    {
        Shown,
        Current,
        Unresponsive,
        Gone
    };

    State state = State::Shown;
    QString appId;
    /// Any if there is none.
    std::optional<QString> title;
};

/// What a step waits for: the n-th matching call, or the n-th time that a view comes to be as the pattern says.
struct Event
{
    std::variant<CallPattern, ViewPattern> what;
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
