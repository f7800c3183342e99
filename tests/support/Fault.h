// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "ScriptedServiceProcess.h"

#include <QList>
#include <QMetaType>
#include <QPair>
#include <QStringList>

/// The fault injected into one call to the service.
enum class Fault
{
    ErrorReply,
    EmptyReply,
    PlainReply,
    OtherContent,
    ExtraArgument,
    Exit,
    LateReply
};

namespace Faults {

/// How late the late reply is, in milliseconds.
const int cDelay = 300;

/// Every fault, with its description.
const QList<QPair<Fault, const char*>>& all();

/// The service's behaviour for a call to which `rightAnswer` are the arguments of the right reply.
Behaviour behaviour(Fault fault, const QStringList& rightAnswer);

} // namespace Faults

Q_DECLARE_METATYPE(Fault)
