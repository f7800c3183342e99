// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

/// Blanks the screen after a time without input, until there is input again.
class ScreenSaver : public QObject
{
    Q_OBJECT

public:
    explicit ScreenSaver(int timeoutSeconds, QObject* parent = nullptr);

    bool isActive() const
    {
        return mActive;
    }

    bool isEnabled() const
    {
        return mEnabled;
    }
    void setEnabled(bool enabled);

    /// 0 is never.
    int timeoutSeconds() const
    {
        return mTimeoutSeconds;
    }
    void setTimeoutSeconds(int seconds);

    /// Blanks the screen at once. Returns false when the screen saver is disabled.
    bool activate();
    /// To be called for every input.
    void noteInput();

Q_SIGNALS:
    void activeChanged();
    void enabledChanged();
    void timeoutChanged();

private:
    bool canStart() const
    {
        return mEnabled && mTimeoutSeconds > 0;
    }
    void setActive(bool active);
    void restart();
    void startOrWait();

    int mTimeoutSeconds;
    bool mEnabled = true;
    bool mActive = false;
    QElapsedTimer mIdle;
    QTimer mTimer;
};
