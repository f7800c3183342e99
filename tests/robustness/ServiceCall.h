// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "ScriptedServiceProcess.h"

#include <QList>
#include <QString>
#include <QStringList>

/// A call to the service that an operation makes; `number` counts the operation's calls of one kind.
struct ServiceCall
{
    QString operation;
    QString path;
    QString interface;
    QString member;
    QString property;
    int number;

    /// The calls of all operations except the introspection by new proxies.
    static QList<ServiceCall> all();
    static QList<ServiceCall> introspections();

    /// The arguments of the reply from the service of Scenario.
    QStringList rightAnswer() const;

    /// Scripts the behaviour for this call, and the right reply for those before and after it.
    void script(ScriptedServiceProcess& service, const Behaviour& behaviour) const;
};
