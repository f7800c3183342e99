// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "bus/BusCall.h"
#include "bus/FaultTable.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>

class QDBusAbstractAdaptor;

/// Every call to the compositor's objects passes here. Calls that an injected fault matches do not reach the object.
class CallGate : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    FaultTable& faults()
    {
        return mFaults;
    }

    /// Returns whether `adaptor` may execute the method. Replies to the call itself otherwise.
    bool admit(const QDBusAbstractAdaptor& adaptor, int methodIndex);

    /// Calls an object of this program as another program would, bypassing the faults. Returns the reply.
    QDBusMessage callOwnObject(const QDBusConnection& connection, const QString& path, const QString& interface,
                               const QString& member, const QVariantList& arguments);

Q_SIGNALS:
    /// Emitted for every call of another program, also for one that is not admitted.
    void called(const BusCall& call);

private:
    void answer(const QDBusConnection& connection, const QDBusMessage& message, const CallFault& fault);

    FaultTable mFaults;
    bool mIsOwnCall = false;
};
