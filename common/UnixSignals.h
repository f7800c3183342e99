// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QObject>
#include <QSocketNotifier>

/// Turns SIGINT, SIGTERM and SIGHUP into a Qt signal.
class UnixSignals : public QObject
{
    Q_OBJECT

public:
    /// Blocks the signals. To be called before the first thread starts, because threads inherit the signal mask.
    static void block();
    /// Unblocks them in the calling thread.
    static void unblock();

    explicit UnixSignals(QObject* parent = nullptr);
    ~UnixSignals() override;

Q_SIGNALS:
    void terminationRequested(int signal);

private:
    int mDescriptor;
    QSocketNotifier mNotifier;
};
