// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QString>

/// A call that a program makes: of a method, or a read or a write of a property.
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
    /// Empty for GetAll.
    QString member;
};

/// Matches the calls of one kind to one member, or all calls to an interface.
struct CallPattern
{
    BusCall::Kind kind = BusCall::Kind::Method;
    QString interface;
    /// Empty matches every member, called, read or written.
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
