// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QString>

/// What a program wants by a call: a method, or to read or write a property.
struct BusCall
{
    enum class Kind
    {
        Method,
        Read,
        Write
    };

    Kind kind = Kind::Method;
    QString interface;
    /// Empty for all properties at once.
    QString member;
};

/// Calls of one kind to one member, or all calls to an interface.
struct CallPattern
{
    BusCall::Kind kind = BusCall::Kind::Method;
    QString interface;
    /// Empty for every member, in any way.
    QString member;

    bool matches(const BusCall& call) const
    {
        if (interface != call.interface || member.isEmpty()) {
            return interface == call.interface;
        }
        return kind == call.kind && (call.member.isEmpty() || member == call.member);
    }

    bool operator==(const CallPattern& other) const
    {
        return kind == other.kind && interface == other.interface && member == other.member;
    }
};
