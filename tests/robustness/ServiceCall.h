// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "ScriptedServiceProcess.h"

#include <QList>
#include <QString>
#include <QStringList>

/// One call to the service that an operation makes: with several of its kind, the one with that number.
struct ServiceCall
{
    QString operation;
    QString path;
    QString interface;
    QString member;
    QString property;
    int number;

    /// All calls of all operations of Operations, the proxies' introspection left out.
    static QList<ServiceCall> all();

    /// The arguments of the answer that the service of Scenario gives.
    QStringList rightAnswer() const;

    /// Has the service do that with this call, and answer those before and after it.
    void script(ScriptedServiceProcess& service, const Behaviour& behaviour) const;
};
