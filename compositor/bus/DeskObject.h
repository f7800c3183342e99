// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "Result.h"

#include <QDBusContext>
#include <QObject>

#include <functional>

/// Steps of a script on the bus, which other programs take. Only published where the compositor is one of a desk: the
/// steps type, too.
class DeskObject : public QObject, protected QDBusContext
{
    Q_OBJECT

public:
    /// Receives why a step could not be taken, or nothing when it has been.
    using Done = std::function<void(const MaybeError&)>;
    using Taker = std::function<void(const QByteArray& step, const Done& done)>;

    explicit DeskObject(Taker taker, QObject* parent = nullptr);

    /// Replies when the step has been taken.
    void Take(const QString& step);

private:
    const Taker mTaker;
};
