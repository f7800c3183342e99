// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "bus/CallGate.h"

#include <QDBusAbstractAdaptor>

/// An adaptor whose calls pass a CallGate. Its object also derives from QDBusContext.
template <typename Adaptor> class GatedAdaptor : public Adaptor
{
public:
    template <typename Object>
    GatedAdaptor(Object* object, CallGate& gate)
        : Adaptor(object)
        , mGate(gate)
    {
    }

    /// QtDBus delivers every method call through qt_metacall().
    int qt_metacall(QMetaObject::Call call, int id, void** arguments) override
    {
        const bool isAdmitted = call != QMetaObject::InvokeMetaMethod || mGate.admit(*this, id);
        return isAdmitted ? Adaptor::qt_metacall(call, id, arguments) : -1;
    }

private:
    CallGate& mGate;
};
