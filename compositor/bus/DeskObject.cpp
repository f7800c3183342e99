// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "bus/DeskObject.h"

#include "DeskObjectAdaptor.h"

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>

#include <utility>

DeskObject::DeskObject(Taker taker, QObject* parent)
    : QObject(parent)
    , mTaker(std::move(taker))
{
    new DeskObjectAdaptor(this);
}

void DeskObject::Take(const QString& step)
{
    setDelayedReply(true);
    mTaker(step.toUtf8(), [connection = connection(), message = message()](const MaybeError& error) {
        connection.send(error ? message.createErrorReply(QDBusError::Failed, error->text) : message.createReply());
    });
}
