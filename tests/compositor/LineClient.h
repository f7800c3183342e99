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
    /// The rest of the first event that begins like this and was not waited for before; those before it are dropped.
    /// Throws std::runtime_error when there is none in time.
    QByteArray waitFor(const QByteArray& beginning);
    /// All events up to this one; throws as above.
    QList<QByteArray> takeEventsUntil(const QByteArray& event);
    /// The events that there are now.
    QList<QByteArray> takeEvents();

    qint64 processId() const;
    bool isRunning();
    /// Waits for the program's end and answers its exit status.
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
