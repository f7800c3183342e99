// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QObject>
#include <QSocketNotifier>

/// Turns the signals by which a process is asked to end into a Qt signal.
class UnixSignals : public QObject
{
    Q_OBJECT

public:
    /// To be called before the first thread starts, because every thread inherits the mask.
    static void block();

    explicit UnixSignals(QObject* parent = nullptr);
    ~UnixSignals() override;

Q_SIGNALS:
    void terminationRequested(int signal);

private:
    int mDescriptor;
    QSocketNotifier mNotifier;
};
