// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "bus/BusCall.h"
#include "bus/FaultTable.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>

class QDBusAbstractAdaptor;

/// Stands before the compositor's objects: every call that a program makes passes here, and those that a fault is for
/// go no further.
class CallGate : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    FaultTable& faults()
    {
        return mFaults;
    }

    /// To be asked before `adaptor` executes the method; false when it must not.
    bool admit(const QDBusAbstractAdaptor& adaptor, int methodIndex);

    /// Calls an object of this program as another program would, past all faults; answers the reply.
    QDBusMessage callOwnObject(const QDBusConnection& connection, const QString& path, const QString& interface,
                               const QString& member, const QVariantList& arguments);

Q_SIGNALS:
    /// A program has called, whatever becomes of it.
    void called(const BusCall& call);

private:
    void answer(const QDBusConnection& connection, const QDBusMessage& message, const CallFault& fault);

    FaultTable mFaults;
    bool mIsOwnCall = false;
};
