// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include "ChildProcess.h"

#include <QByteArray>
#include <QList>
#include <QProcessEnvironment>

/// A client program that takes commands and prints events, one per line.
class LineClient
{
public:
    LineClient(const QString& program, const QProcessEnvironment& environment, const QStringList& arguments = {});

    void send(const QByteArray& line);
    /// Returns the rest of the first event that begins with `beginning` and drops the events before it. Throws
    /// std::runtime_error if there is none in time.
    QByteArray waitFor(const QByteArray& beginning);
    /// Returns all events up to this one; throws as above.
    QList<QByteArray> takeEventsUntil(const QByteArray& event);
    /// Returns the events received so far.
    QList<QByteArray> takeEvents();

    qint64 processId() const;
    bool isRunning();
    /// Waits for the program's end and returns its exit status.
    int waitForEnd();
    void kill();
    void freeze();
    void thaw();

private:
    QByteArray takeNext();
    void read();

    ChildProcess mProcess;
    QList<QByteArray> mEvents;
};
