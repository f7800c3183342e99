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

/// What a script tells the compositor to do, and when.
namespace Script {

struct AddView
{
    View view;
};

struct RemoveView
{
    QString uuid;
};

/// Calls a method or, by the interface for properties, writes one; as another program would.
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

/// Does nothing else meanwhile, as a program that hangs.
struct Freeze
{
    int milliseconds = 0;
};

using Action = std::variant<AddView, RemoveView, Call, SetScreenSaverActive, AddFault, EndFault, SetService, Freeze>;

/// The calls that a program makes, or the views of an application that appear, until there are so many of them.
struct Event
{
    std::variant<CallPattern, QString> what;
    int times = 1;
};

struct Step
{
    int number = 0;
    /// Without one, the start.
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
