// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "Fault.h"

const QList<QPair<Fault, const char*>>& Faults::all()
{
    static const QList<QPair<Fault, const char*>> cAll{
        {Fault::ErrorReply, "answered with an error"},
        {Fault::EmptyReply, "answered with nothing"},
        {Fault::PlainReply, "answered with another type"},
        {Fault::OtherContent, "answered with a variant of another content"},
        {Fault::ExtraArgument, "answered with an argument more"},
        {Fault::Exit, "not answered, the service ends"},
        {Fault::LateReply, "answered late"},
    };
    return cAll;
}

Behaviour Faults::behaviour(Fault fault, const QStringList& rightAnswer)
{
    switch (fault) {
    case Fault::ErrorReply:
        return Behaviour::error(QStringLiteral("org.example.Error.Refused"), QStringLiteral("not now"));
    case Fault::EmptyReply:
        return Behaviour::reply();
    case Fault::PlainReply:
        return Behaviour::reply({QStringLiteral("uint32 7")});
    case Fault::OtherContent:
        return Behaviour::reply({QStringLiteral("<{1: 2.5}>")});
    case Fault::ExtraArgument:
        return Behaviour::reply(rightAnswer + QStringList{QStringLiteral("'more'")});
    case Fault::Exit:
        return Behaviour::exit();
    case Fault::LateReply:
        return Behaviour::reply(rightAnswer).after(cDelay);
    }
    Q_UNREACHABLE();
}
